#pragma once

#include "EditorWindow.h"

#include <string>

namespace editor
{

/// Works with an editor of the small project as a user does, by mouse and keys, and compares what the panels
/// show after each step. @throws std::runtime_error with the first step after which they show another thing
void RunScript(EditorWindow &window);

/// Writes what the screen shows of the window as a PNG file.
/// @throws std::runtime_error if it cannot be written, or is a picture of one colour
void TakePhoto(EditorWindow &window, const std::string &path);

} // namespace editor
