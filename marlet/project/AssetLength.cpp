#include <marlet/project/AssetLength.h>

#include <marlet/project/CompositionAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaAudioStream.h>
#include <marlet/project/MediaVideoStream.h>

namespace marlet::project
{

std::optional<int> AssetLength(const AbstractAsset &asset, double frameRate)
{
    if (const auto *composition = dynamic_cast<const CompositionAsset *>(&asset)) {
        const AudioVideoSettings &format = composition->Settings();
        // Without rates there are no frames to count.
        return format.FrameRate() > 0 && frameRate > 0 ? std::optional(format.FrameCount(frameRate))
                                                       : std::nullopt;
    }
    const auto *media = dynamic_cast<const MediaAsset *>(&asset);
    if (!media || media->IsOffline())
        return std::nullopt;
    if (const auto video = media->VideoStream())
        return video->FrameCount(frameRate);
    if (const auto audio = media->AudioStream())
        return audio->FrameCount(frameRate);
    return std::nullopt;
}

} // namespace marlet::project
