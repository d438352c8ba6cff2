#pragma once

#include <marlet/operations/curves/AnimatedProperty.h>

#include <memory>

namespace marlet::project
{

class AbstractLayer;
class CompositionAsset;
class Project;
struct ExchangeOptions;

// What of a project the options mean: by ID, by a name that only one has, or the only one there is.
// @throws OperationException if there is none, or several

std::shared_ptr<CompositionAsset> SelectedComposition(const Project &project, const ExchangeOptions &options);
std::shared_ptr<AbstractLayer> SelectedLayer(const Project &project, const ExchangeOptions &options);
/// Of the layer, or of an effect on it as "effect/property". Without a name it is the only one that has key
/// frames.
AnimatedProperty SelectedProperty(const Project &project, const ExchangeOptions &options);

} // namespace marlet::project
