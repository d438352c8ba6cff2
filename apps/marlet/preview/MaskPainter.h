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

/// Cuts a layer's content by its visible masks at a relative time, from the first to the last. Outlines are
/// in pixels from the middle of the content, Y up. Feathers blur to both sides; roundness is left to finer
/// renderers.
void ApplyMasks(Surface &surface, const kytl::KyList<std::shared_ptr<project::Mask>, std::vector> &masks,
                int time);

} // namespace marlet::tool
