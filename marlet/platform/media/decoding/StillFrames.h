#pragma once

#include <marlet/platform/media/MediaResources.h>
#include <marlet/platform/media/decoding/Decoder.h>
#include <marlet/platform/media/decoding/FrameSource.h>
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
    int Profile() const { return decoder_ ? decoder_->Context().profile : FF_PROFILE_UNKNOWN; }
    int Count() const override { return sequence_.count; }
    const AVFrame &Frame(int number) override;
    void Close() override;

private:
    void Decode(const std::string &path);

    MediaResourcesPtr resources_;
    ImageSequence sequence_;
    AVCodecID codec_;
    std::unique_ptr<DecoderFeed> decoder_;
    FramePtr frame_ = NewFrame();
    const ImageSequence::Member *shown_ = nullptr;
};

} // namespace kyh::media
