#pragma once

#include "EditorWindow.h"

#include <string>

namespace editor
{

/// The selected layer as each panel shows it with the colour in the middle of the picture, then the buttons
/// and the mark of the title.
QString Shown(EditorWindow &window);

/// Works with an editor of the small project as a user does, by mouse and keys, and compares what the panels
/// show after each step. @throws std::runtime_error with the first step after which they show another thing,
/// and what a panel throws when it hears of a change
void RunScript(Document &document, EditorWindow &window);

/// Writes what the screen shows of the window as a PNG file.
/// @throws std::runtime_error if it cannot be written, or is a picture of one colour
void TakePhoto(EditorWindow &window, const std::string &path);

} // namespace editor
