#pragma once

#include <marlet/checks/CheckScope.h>

namespace marlet::project
{

class AbstractLayer;

/// What a layer owns: effects, masks with their outlines, trackers, text. The IDs are those of the layers of
/// its composition.
void CheckLayerContent(CheckScope &scope, const Place &place, const std::shared_ptr<AbstractLayer> &layer,
                       const Findings::IDSet &layers);

} // namespace marlet::project
