#include <marlet/project/AbstractAsset.h>

#include <marlet/project/CompositionAsset.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/SolidAsset.h>

#include <stdexcept>

namespace marlet::project
{

AbstractAsset::~AbstractAsset() = default;

double AbstractAsset::AspectRatio(const std::shared_ptr<AbstractAsset> &asset)
{
    if (!asset)
        throw std::invalid_argument("No asset to take the aspect ratio of");
    if (const auto *solid = dynamic_cast<const SolidAsset *>(asset.get()))
        return AudioVideoSettings::PARValue(solid->PixelAspectRatio());
    if (const auto *composition = dynamic_cast<const CompositionAsset *>(asset.get()))
        return composition->Settings().PixelAspectRatioValue();
    const auto *image = dynamic_cast<const ImageAsset *>(asset.get());
    if (image && image->Status() == ImageAsset::FileStatus::Usable)
        return AudioVideoSettings::PARValue(image->PixelAspectRatio());
    return 1.0;
}

std::shared_ptr<AbstractAsset>
FindAssetByID(const kytl::KyList<std::shared_ptr<AbstractAsset>, std::vector> &assets, const kytl::KyID &id)
{
    return assets.FindFirst([&id](const std::shared_ptr<AbstractAsset> &asset) { return asset->ID() == id; });
}

} // namespace marlet::project
