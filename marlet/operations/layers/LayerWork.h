#pragma once

#include <memory>
#include <vector>

namespace marlet::project
{

class AbstractLayer;
class CompositionAsset;
class Project;

/// @throws OperationException if it is in no composition of the project
std::shared_ptr<CompositionAsset> RequireCompositionOf(const Project &project,
                                                       const std::shared_ptr<AbstractLayer> &layer);
/// The composition that all of them are in.
/// @throws OperationException if there is no such composition, and for no layers
std::shared_ptr<CompositionAsset>
RequireOneComposition(const Project &project, const std::vector<std::shared_ptr<AbstractLayer>> &layers);
/// From the topmost on, each once.
std::vector<std::shared_ptr<AbstractLayer>>
InStackingOrder(const CompositionAsset &composition,
                const std::vector<std::shared_ptr<AbstractLayer>> &layers);
/// At a place in the stack, counted from the top, or else at its bottom.
void InsertLayer(CompositionAsset &composition, const std::shared_ptr<AbstractLayer> &layer,
                 unsigned int position);

} // namespace marlet::project
