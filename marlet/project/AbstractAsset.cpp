#include <marlet/project/AbstractAsset.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/project/AssetPicture.h>

namespace marlet::project
{

AbstractAsset::~AbstractAsset() = default;

double AbstractAsset::AspectRatio(const std::shared_ptr<AbstractAsset> &asset)
{
    Require(asset, "asset");
    return PictureOf(*asset).pixelAspect;
}

std::shared_ptr<AbstractAsset>
FindAssetByID(const kytl::KyList<std::shared_ptr<AbstractAsset>, std::vector> &assets, const kytl::KyID &id)
{
    return assets.FindFirst(
        [&id](const std::shared_ptr<AbstractAsset> &asset) { return asset && asset->ID() == id; });
}

} // namespace marlet::project
