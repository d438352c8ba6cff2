#pragma once

#include <marlet/platform/media/decoding/FrameSource.h>
#include <marlet/platform/media/decoding/StreamCache.h>
#include <marlet/platform/media/files/FileSource.h>
#include <marlet/platform/media/files/ImageSequence.h>

namespace kyh::media
{

/// The frames of an image sequence, or of a single picture.
class StillFrames final : public FrameSource
{
public:
    /// @throws MediaFailure if the first file is no picture
    StillFrames(ImageSequence sequence, MediaResourcesPtr resources);

    AVCodecID Codec() const { return codec_; }
    int Profile() const { return profile_; } ///< of the last picture that was decoded
    int Count() const override { return sequence_.count; }
    FramePtr Frame(int number) override;
    StreamCache &Cache() override { return cache_; }
    void Close() override { cache_.Clear(); }

private:
    FramePtr Decode(const std::string &path);

    ImageSequence sequence_;
    AVCodecID codec_;
    int profile_ = FF_PROFILE_UNKNOWN;
    StreamCache cache_;
};

} // namespace kyh::media
