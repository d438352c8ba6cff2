#include <marlet/project/AbstractAsset.h>

#include <marlet/project/AssetPicture.h>

#include <stdexcept>

namespace marlet::project
{

AbstractAsset::~AbstractAsset() = default;

double AbstractAsset::AspectRatio(const std::shared_ptr<AbstractAsset> &asset)
{
    if (!asset)
        throw std::invalid_argument("No asset to take the aspect ratio of");
    return PictureOf(*asset).pixelAspect;
}

std::shared_ptr<AbstractAsset>
FindAssetByID(const kytl::KyList<std::shared_ptr<AbstractAsset>, std::vector> &assets, const kytl::KyID &id)
{
    return assets.FindFirst([&id](const std::shared_ptr<AbstractAsset> &asset) { return asset->ID() == id; });
}

} // namespace marlet::project
