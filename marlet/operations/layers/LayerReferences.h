#pragma once

#include <marlet/foundation/Strings.h>

#include <memory>
#include <unordered_map>
#include <vector>

namespace marlet::project
{

class AbstractLayer;
class CompositionAsset;
class Edit;
class Project;

/// The IDs of layers that may be referred to, in text form.
using ValidLayers = std::unordered_map<NarrowString, bool>;

/// Those of a composition, and what the project keeps without knowing it.
ValidLayers LayersOf(const CompositionAsset &composition, const Project &project);

/// Clears what a layer of the project refers to in vain, and announces that. A 3D effect of the host's, which
/// nothing but itself knows how to put back, gives way to a copy of it that is cleared.
void ClearInvalidReferences(Edit &edit, const std::shared_ptr<AbstractLayer> &layer,
                            const ValidLayers &valid);

} // namespace marlet::project
