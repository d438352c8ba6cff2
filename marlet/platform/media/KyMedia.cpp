#include <marlet/platform/media/KyMedia.h>

#include <marlet/platform/media/MediaFailure.h>
#include <marlet/platform/media/MediaFile.h>
#include <marlet/platform/media/MediaResources.h>

#include <memory>

namespace kyh::media
{

namespace
{

template <class... Rate>
int Create(const char16_t *path, const MediaResourcesPtr &resources, KyAbstractMediaFile **file, Rate... rate)
{
    return CodeOf([&] {
        if (!path || !file)
            throw MediaFailure{kFailed};
        *file = std::make_unique<MediaFile>(marlet::project::ToUtf8(path), resources, rate...).release();
    });
}

} // namespace

int KyMediaFileCreate(const char16_t *path, KyAbstractMediaFile **file)
{
    return Create(path, CommonResources(), file);
}

int KyImageSequenceCreate(const char16_t *path, double frameRate, KyAbstractMediaFile **file)
{
    return Create(path, CommonResources(), file, frameRate);
}

int CreateMediaFile(const char16_t *path, const MediaResourcesPtr &resources, KyAbstractMediaFile **file)
{
    return Create(path, resources, file);
}

int CreateImageSequence(const char16_t *path, double frameRate, const MediaResourcesPtr &resources,
                        KyAbstractMediaFile **file)
{
    return Create(path, resources, file, frameRate);
}

KyAbstractMediaFile *CreateUnopenedFile(const char16_t *path, std::optional<double> frameRate,
                                        const MediaResourcesPtr &resources)
{
    return new MediaFile(MediaFile::Unopened(), marlet::project::ToUtf8(path), resources, frameRate);
}

int KyMediaFileRelease(KyAbstractMediaFile *file)
{
    delete file;
    return kSuccess;
}

} // namespace kyh::media
