#include <marlet/platform/media/KyMedia.h>

#include <marlet/platform/media/MediaFailure.h>
#include <marlet/platform/media/MediaFile.h>

#include <memory>

namespace kyh::media
{

namespace
{

template <class... Rate> int Create(const char16_t *path, KyAbstractMediaFile **file, Rate... rate)
{
    return CodeOf([&] {
        if (!path || !file)
            throw MediaFailure{kFailed};
        *file = std::make_unique<MediaFile>(marlet::project::ToUtf8(path), rate...).release();
    });
}

} // namespace

int KyMediaFileCreate(const char16_t *path, KyAbstractMediaFile **file)
{
    return Create(path, file);
}

int KyImageSequenceCreate(const char16_t *path, double frameRate, KyAbstractMediaFile **file)
{
    return Create(path, file, frameRate);
}

int KyMediaFileRelease(KyAbstractMediaFile *file)
{
    delete file;
    return kSuccess;
}

} // namespace kyh::media
