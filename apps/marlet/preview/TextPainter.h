#pragma once

#include "Surface.h"

#include <marlet/layers/TextLayer.h>

namespace marlet::tool
{

/// How the tool reads a paragraph's justification, which the library only stores.
enum class Justification : int { Left, Centred, Right };

/// The text of a layer in its frame, from the top, with lines broken at the frame's width. Sizes and
/// leading are in pixels, tracking in thousandths of the size; a leading of 0 is the font's own. Text that
/// overflows makes the picture larger than the frame. Needs a QGuiApplication.
Surface PaintText(const project::TextLayer &layer);

} // namespace marlet::tool
