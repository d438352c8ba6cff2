#pragma once

#include "Surface.h"

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/KyList.h>

#include <functional>
#include <memory>
#include <vector>

namespace marlet::project
{
class EffectInstance;
}

namespace marlet::tool
{

/// The picture of another layer of the composition, before its own effects; null if it has none.
using LayerPictures = std::function<QImage(const kytl::KyID &layer)>;

/// Runs the enabled effects over a layer's content, in order, at a relative time. Each enlarges the picture
/// by its margins. Effects that are not the tool's own leave it as it is.
void ApplyEffects(Surface &surface,
                  const kytl::KyList<std::shared_ptr<project::EffectInstance>, std::vector> &effects,
                  int time, const LayerPictures &layers);

} // namespace marlet::tool
