#pragma once

#include <marlet/platform/media/contents/VideoFacts.h>
#include <marlet/platform/media/decoding/FrameCache.h>
#include <marlet/platform/media/decoding/Scalers.h>

namespace kyh::media
{

/// Turns decoded frames into what the interface hands out. The result depends on the frame alone.
class FrameConverter
{
public:
    /// Uses memory of the cache. It and the scalers must outlive it.
    FrameConverter(const VideoFacts &facts, FrameCache &cache, Scalers &scalers)
        : width_(facts.width), height_(facts.height), turn_(facts.turn), cache_(cache), scalers_(scalers)
    {
    }

    /// Fills the buffer with the frame at the stream's size. @throws MediaFailure
    void Convert(const AVFrame &frame, KyImageChannels channels, unsigned char *buffer) const;

private:
    Scalers::Form FormOf(const AVFrame &frame, KyImageChannels channels) const;
    void Scale(const AVFrame &frame, KyImageChannels channels, unsigned char *buffer, int rowBytes) const;
    void CopyTurned(const unsigned char *picture, int bytesPerPixel, int rowBytes,
                    unsigned char *buffer) const;

    int width_; ///< as stored
    int height_;
    Turn turn_;
    FrameCache &cache_;
    Scalers &scalers_;
};

} // namespace kyh::media
