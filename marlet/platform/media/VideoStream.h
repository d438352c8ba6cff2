#pragma once

#include <marlet/foundation/KyCriticalSection.h>
#include <marlet/platform/media/KyAbstractVideoStream.h>
#include <marlet/platform/media/contents/VideoFacts.h>
#include <marlet/platform/media/decoding/FrameConverter.h>
#include <marlet/platform/media/decoding/FrameSource.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace kyh::media
{

class VideoStream final : public KyAbstractVideoStream
{
public:
    VideoStream(const VideoFacts &facts, std::unique_ptr<FrameSource> frames);

    const VideoFacts &Facts() const { return facts_; }
    void Sleep();
    /// Wakes it with the frames that it had.
    void Wake();
    /// Wakes it with others, of the same facts.
    void Wake(std::unique_ptr<FrameSource> frames);
    /// The file holds another stream by now. From here on, reading fails with kDamaged.
    void Retire();

    int Width() const override;
    int Height() const override;
    double PixelAspectRatio() const override;
    int FrameCount() const override;
    double FrameRate() const override;
    int FieldOrder() const override;
    KyVideoCodec Codec() const override;
    std::shared_ptr<KyAbstractCodecInfo> CodecInfo() const override;
    int PixelBitCount() const override;
    KyChannelOrder PixelChannelOrder() const override;
    int FrameBufferSize(KyImageChannels channels) const override;
    int GetFrame(int frame, KyImageChannels channels, unsigned char *buffer, int size, int *out,
                 int flags) override;

private:
    void FillPicture(int frame, KyImageChannels channels, unsigned char *buffer, std::size_t bytes);

    const VideoFacts facts_;
    kytl::thread::KyCriticalSection lock_; ///< of what follows
    std::unique_ptr<FrameSource> frames_;
    const FrameConverter converter_;
    std::int64_t lastPicture_ = -1; ///< that was asked for, by frame and channels
    bool isAsleep_ = false;
    bool isRetired_ = false;
};

} // namespace kyh::media
