#include <marlet/project/AssetsByID.h>

namespace marlet::project
{

AssetsByID::AssetsByID(const kytl::KyList<std::shared_ptr<AbstractAsset>, std::vector> &assets)
{
    entries_.reserve(assets.size());
    for (const std::shared_ptr<AbstractAsset> &asset : assets)
        if (asset)
            entries_.try_emplace(asset->ID(), asset);
}

std::shared_ptr<AbstractAsset> AssetsByID::Find(const kytl::KyID &id) const
{
    const auto found = entries_.find(id);
    return found == entries_.end() ? nullptr : found->second.lock();
}

} // namespace marlet::project
