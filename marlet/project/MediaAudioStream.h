#pragma once

#include <marlet/foundation/Strings.h>
#include <marlet/platform/media/KyMediaTypes.h>

#include <cstdio>
#include <memory>

namespace kyh::media
{
class KyAbstractAudioStream;
class KyAbstractCodecInfo;
} // namespace kyh::media

namespace marlet::project
{

struct MediaAudioStream_Impl;

/// The sound of a media asset, and a place for the host's conformed file. It owns that file and closes it.
///
/// GetSamples and the operations on the conformed file may be called from any thread.
class MARLET_EXPORT MediaAudioStream
{
public:
    /// A file that the host opened for the conformed sound. The library keeps and closes it, no more.
    struct FileHandle {
        std::FILE *file = nullptr;
        long long length = 0;
    };

    MediaAudioStream(const MediaAudioStream &) = delete;
    MediaAudioStream &operator=(const MediaAudioStream &) = delete;
    ~MediaAudioStream();

    unsigned int SampleRate() const; ///< hertz
    unsigned char BitsPerSample() const;
    unsigned char ChannelCount() const;
    unsigned long long SampleCount() const; ///< per channel
    kytl::NarrowString DurationTimeCode() const;
    kyh::media::KyAudioCodec Codec() const;
    std::shared_ptr<kyh::media::KyAbstractCodecInfo> CodecInfo() const;
    /// Interleaved samples of all channels. Returns 0 or a code of the media layer.
    int GetSamples(long long start, int count, unsigned char *buffer, int size, int *out) const;

    /// Sound without a picture counts by 30 frames a second.
    double FrameRate() const;
    int FrameCount() const;
    /// A last frame that is not full counts.
    int FrameCount(double frameRate) const;
    double DurationSeconds() const;
    int DurationMilliseconds() const;

    /// Free for the host.
    bool ReadyToPreview() const;
    void SetReadyToPreview(bool ready);
    const FileHandle &ConformedFile() const;
    /// Takes over the file and closes the one before.
    void SetConformedFile(std::FILE *file, long long length);
    void CloseConformedFile();

    const std::shared_ptr<kyh::media::KyAbstractAudioStream> &SourceAudioStream() const;

private:
    friend class MediaAsset;

    explicit MediaAudioStream(std::shared_ptr<kyh::media::KyAbstractAudioStream> stream);

    std::unique_ptr<MediaAudioStream_Impl> impl_;
};

} // namespace marlet::project
