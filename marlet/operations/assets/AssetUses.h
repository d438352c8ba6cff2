#pragma once

#include <marlet/foundation/Export.h>

#include <memory>
#include <vector>

namespace marlet::project
{

class AbstractAsset;
class AbstractAssetInstance;
class CompositionAsset;
class Project;

/// What shows an asset.
struct UseOfAsset {
    std::shared_ptr<AbstractAssetInstance> instance;
    /// Of a layer; empty for an object of the sequence.
    std::shared_ptr<CompositionAsset> composition;
};

/// All layers and objects of the sequence that show an asset, in project order, whatever its list of
/// instances says. A walk over the project.
MARLET_EXPORT std::vector<UseOfAsset> UsesOf(const Project &project, const AbstractAsset &asset);

} // namespace marlet::project
