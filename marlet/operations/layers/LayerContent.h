#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/KyList.h>

#include <memory>
#include <vector>

namespace marlet::project
{

class AbstractLayer;
class Edit;
class EffectInstance;
class Mask;
class Tracker;

// What layers own, whatever their class. Null for classes that have none.

kytl::KyList<std::shared_ptr<EffectInstance>, std::vector> *EffectsOf(AbstractLayer &layer);
kytl::KyList<std::shared_ptr<Mask>, std::vector> *MasksOf(AbstractLayer &layer);
kytl::KyList<std::shared_ptr<Tracker>, std::vector> *TrackersOf(AbstractLayer &layer);

/// The layer and its effects name the composition, which may not have it yet.
void NameComposition(Edit &edit, const std::shared_ptr<AbstractLayer> &layer, const kytl::KyID &composition);

/// Moves the key frames of a layer and of its effects, masks and trackers by frames of the composition. Those
/// that stand on a frame stand on one again, although times are cut to milliseconds.
void MoveKeyFrames(Edit &edit, const std::shared_ptr<AbstractLayer> &layer, long long frames,
                   double frameRate);

} // namespace marlet::project
