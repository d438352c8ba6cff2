#pragma once

#include <marlet/foundation/Export.h>

#include <memory>
#include <vector>

namespace marlet::project
{

class AbstractAsset;
class AbstractLayer;
class AssetLayer;
class CompositionAsset;
class Project;

// Layers that come into the stack of a composition, move in it and leave it, and hang on one another, as one
// Edit each. References between layers and the assets' lists of instances stay in step. Frames are of the
// composition, positions count from the top of the stack. What cannot be done is an OperationException, and
// nothing is changed. Null pointers are std::invalid_argument. Belongs to the thread that edits the project.

/// A new layer of any class. One without frames reaches from its start to the end of what it shows, or else
/// of the composition. Its effects name it, and what it refers to in vain is cleared.
MARLET_EXPORT void AddLayer(const std::shared_ptr<Project> &project,
                            const std::shared_ptr<CompositionAsset> &composition,
                            const std::shared_ptr<AbstractLayer> &layer, unsigned int position = 0);
/// A new layer that shows the whole asset from a frame on.
MARLET_EXPORT std::shared_ptr<AssetLayer> AddAssetLayer(const std::shared_ptr<Project> &project,
                                                        const std::shared_ptr<CompositionAsset> &composition,
                                                        const std::shared_ptr<AbstractAsset> &asset,
                                                        int startFrame = 0, unsigned int position = 0);
/// What then refers to nothing in their compositions is cleared.
MARLET_EXPORT void RemoveLayers(const std::shared_ptr<Project> &project,
                                const std::vector<std::shared_ptr<AbstractLayer>> &layers);
/// To a place among the other layers.
MARLET_EXPORT void ReorderLayer(const std::shared_ptr<Project> &project,
                                const std::shared_ptr<AbstractLayer> &layer, unsigned int position);

/// Hangs a layer on another one of its composition, as ParentHelper does, so that it stays where it is at a
/// frame. What would hang on itself is refused.
MARLET_EXPORT void SetParent(const std::shared_ptr<Project> &project,
                             const std::shared_ptr<AbstractLayer> &layer,
                             const std::shared_ptr<AbstractLayer> &parent, int frame);
/// The reverse. A parent that is missing has no place, so that the layer is only cut loose.
/// @throws OperationException if the layer has no parent
MARLET_EXPORT void RemoveParent(const std::shared_ptr<Project> &project,
                                const std::shared_ptr<AbstractLayer> &layer, int frame);

} // namespace marlet::project
