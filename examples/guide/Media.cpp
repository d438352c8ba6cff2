#include "Media.h"

#include <marlet/platform/media/KyAbstractMediaFile.h>
#include <marlet/platform/media/KyAbstractVideoStream.h>
#include <marlet/platform/media/KyMedia.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/project/Project.h>

#include <stdexcept>

namespace guide
{

using namespace kyh::media;

// Without a project: whoever opens a file releases it.
Picture FirstPicture(const WideString &path)
{
    KyAbstractMediaFile *opened = nullptr;
    if (const int code = KyMediaFileCreate(path.c_str(), &opened); code != kSuccess)
        throw std::runtime_error("The file cannot be opened: code " + std::to_string(code));
    const std::unique_ptr<KyAbstractMediaFile, int (*)(KyAbstractMediaFile *)> file(opened,
                                                                                    KyMediaFileRelease);
    const auto stream = std::static_pointer_cast<KyAbstractVideoStream>(file->Stream(kVideoStream));
    if (!stream)
        return {};
    const int size = stream->FrameBufferSize(KyImageChannels::Four);
    Picture picture{stream->Width(), stream->Height(), std::vector<unsigned char>(size)};
    if (stream->GetFrame(0, KyImageChannels::Four, picture.pixels.data(), size, nullptr, 0) != kSuccess)
        return {};
    return picture;
}

// Within a project: the media manager opens, keeps and releases.
std::shared_ptr<MediaAsset> Import(Project &project, const WideString &path)
{
    const auto asset = project.Media().CreateMediaAsset(path);
    if (asset->IsOffline())
        throw std::runtime_error(asset->MediaFileStatus() == MediaAsset::Status::Missing
                                     ? "There is no such file"
                                     : "The file is none that can be read");
    project.Assets().All().Add(asset);
    return asset;
}

// On any thread, while another one may relink the asset. An offline asset has no stream.
Picture PictureAt(const MediaAsset &asset, double projectRate, int frame)
{
    const auto stream = asset.VideoStream();
    if (!stream)
        return {};
    const int size = stream->FrameBufferSize(KyImageChannels::Four);
    Picture picture{stream->Width(), stream->Height(), std::vector<unsigned char>(size)};
    const int code =
        stream->GetFrame(projectRate, frame, KyImageChannels::Four, picture.pixels.data(), size, nullptr, 0);
    return code == kSuccess ? picture : Picture();
}

} // namespace guide
