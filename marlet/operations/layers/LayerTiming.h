#pragma once

#include <marlet/foundation/Export.h>

#include <memory>
#include <vector>

namespace marlet::project
{

class AbstractLayer;
class Project;

// Layers in time, as one Edit each. Frames are of the composition, ends are exclusive. Key frames of a layer
// and of its effects, masks and trackers go with what is seen; what a 3D effect of the host's animates counts
// from the start of its layer. What cannot be done is an OperationException, and nothing is changed. Null
// pointers are std::invalid_argument. Belongs to the thread that edits the project.

/// The layer becomes the head. The tail, which is returned, stands directly above it, and is a copy with all
/// that the layer owns. Others go on referring to the head.
MARLET_EXPORT std::shared_ptr<AbstractLayer>
SplitLayer(const std::shared_ptr<Project> &project, const std::shared_ptr<AbstractLayer> &layer, int frame);
/// What is seen stays where it is in time. An edge that would pass those of media or a composition is
/// refused.
MARLET_EXPORT void TrimLayer(const std::shared_ptr<Project> &project,
                             const std::shared_ptr<AbstractLayer> &layer, int startFrame, int endFrame);
/// A layer of media or of a composition shows other frames of it, that many later, in the same place. Key
/// frames stay.
MARLET_EXPORT void SlipLayer(const std::shared_ptr<Project> &project,
                             const std::shared_ptr<AbstractLayer> &layer, int frames);
/// Layers of whatever compositions, each by as many frames.
MARLET_EXPORT void MoveLayers(const std::shared_ptr<Project> &project,
                              const std::vector<std::shared_ptr<AbstractLayer>> &layers, int frames);

} // namespace marlet::project
