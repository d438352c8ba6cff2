#pragma once

#include <memory>
#include <string>
#include <vector>

namespace marlet::project
{

class AbstractAsset;
class AbstractAssetInstance;
class AssetLayer;
class CompositionAsset;
class Edit;
class Project;
struct UseOfAsset;

// What operations on assets and their uses are made of.

std::vector<std::shared_ptr<AssetLayer>> AssetLayersOf(const CompositionAsset &composition);

/// @throws OperationException if it is none of the project's
void RequireAsset(const Project &project, const AbstractAsset &asset);
/// @throws OperationException if the composition cannot show the asset, since that comes to show the
/// composition itself
void RequireNoCircle(const Project &project, const CompositionAsset &composition,
                     const std::shared_ptr<AbstractAsset> &asset);

/// Adds what shows an asset to the asset's list, which holds all uses then, also if nobody kept it before.
void ListInstance(Edit &edit, const std::shared_ptr<AbstractAsset> &asset,
                  const std::shared_ptr<AbstractAssetInstance> &instance);
/// The reverse. Nothing if the asset is gone.
void UnlistInstance(Edit &edit, const std::shared_ptr<AbstractAssetInstance> &instance);

/// layer "Moon" of composition "Orbit", object "Clip" of the sequence
std::string PlaceOf(const UseOfAsset &use);

} // namespace marlet::project
