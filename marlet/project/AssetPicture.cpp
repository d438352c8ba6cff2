#include <marlet/project/AssetPicture.h>

#include <marlet/foundation/KyCriticalSection.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/project/SolidAsset.h>

namespace marlet::project
{

namespace
{

/// Asked only where the file can be used, since an image looks at it.
AssetPicture Picture(const AbstractAsset &asset, double pixelAspect)
{
    return {.width = asset.Width(), .height = asset.Height(), .pixelAspect = pixelAspect};
}

AssetPicture OfflinePicture()
{
    return {.width = ImageAsset::OfflineWidth(), .height = ImageAsset::OfflineHeight(), .isOffline = true};
}

AssetPicture MediaPicture(const MediaAsset &media)
{
    if (media.MediaFileStatus() != MediaAsset::Status::Usable)
        return OfflinePicture();
    const auto video = media.VideoStream();
    return Picture(media, video ? AudioVideoSettings::PARValue(video->AspectRatio()) : 1.0);
}

} // namespace

AssetPicture PictureOf(const AbstractAsset &asset)
{
    if (const auto *solid = dynamic_cast<const SolidAsset *>(&asset))
        return Picture(asset, AudioVideoSettings::PARValue(solid->PixelAspectRatio()));
    if (const auto *composition = dynamic_cast<const CompositionAsset *>(&asset))
        return Picture(asset, composition->Settings().PixelAspectRatioValue());
    if (const auto *media = dynamic_cast<const MediaAsset *>(&asset)) {
        // Status and stream must belong to the same file.
        const kytl::thread::KyScopedLock hold(media->ShortLock());
        return MediaPicture(*media);
    }
    const auto *image = dynamic_cast<const ImageAsset *>(&asset);
    if (!image)
        return Picture(asset, 1.0);
    if (image->Status() != ImageAsset::FileStatus::Usable)
        return OfflinePicture();
    return Picture(asset, AudioVideoSettings::PARValue(image->PixelAspectRatio()));
}

double AudioFrameRateOf(const AbstractAsset &asset)
{
    if (const auto *composition = dynamic_cast<const CompositionAsset *>(&asset))
        return composition->Settings().FrameRate();
    const auto *media = dynamic_cast<const MediaAsset *>(&asset);
    if (!media)
        return 0.0;
    constexpr double kRateOfSoundAlone = 30.0;
    const auto video = media->VideoStream();
    return video ? video->FrameRate() : kRateOfSoundAlone;
}

} // namespace marlet::project
