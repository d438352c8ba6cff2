#pragma once

#include "Surface.h"

#include <marlet/foundation/KyList.h>

#include <memory>
#include <vector>

namespace marlet::project
{
class Mask;
}

namespace marlet::tool
{

/// How the tool reads a mask's blend mode, which the library only stores.
enum class MaskMode : int { None, Subtract, Add, Intersect, Difference };

/// How much of each pixel is left, from 0 to 255, row behind row.
using MaskCoverage = std::vector<unsigned char>;

/// What a layer's visible masks leave of its picture at a relative time, from the first to the last; empty if
/// none of them cuts. Outlines are in pixels from the middle of the content, Y up. Feathers blur to both
/// sides; roundness is left to finer renderers. Of the surface only its size and place count.
MaskCoverage CoverageOfMasks(const kytl::KyList<std::shared_ptr<project::Mask>, std::vector> &masks,
                             const Surface &surface, int time);

/// Cuts a premultiplied picture by a coverage of its size.
void Cut(QImage &picture, const MaskCoverage &coverage);

} // namespace marlet::tool
