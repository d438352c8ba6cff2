#pragma once

#include <marlet/project/AbstractAsset.h>

#include <unordered_map>

namespace marlet::project
{

/// Finds the assets of a list by ID without walking it; of several with one ID, the first, as a search from
/// the front does. A snapshot: it does not follow the list, and it keeps no asset alive.
class AssetsByID
{
public:
    AssetsByID() = default;
    explicit AssetsByID(const kytl::KyList<std::shared_ptr<AbstractAsset>, std::vector> &assets);

    /// An empty pointer if there is no such asset, or it has gone.
    std::shared_ptr<AbstractAsset> Find(const kytl::KyID &id) const;

private:
    std::unordered_map<kytl::KyID, std::weak_ptr<AbstractAsset>> entries_;
};

} // namespace marlet::project
