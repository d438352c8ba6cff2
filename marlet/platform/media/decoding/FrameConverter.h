#pragma once

#include <marlet/platform/media/contents/VideoFacts.h>
#include <marlet/platform/media/decoding/FrameCache.h>

namespace kyh::media
{

/// Turns decoded frames into what the interface hands out. The result depends on the frame alone. Not for
/// several threads at once.
class FrameConverter
{
public:
    /// Uses memory of the cache, which must outlive it.
    FrameConverter(const VideoFacts &facts, FrameCache &cache)
        : width_(facts.width), height_(facts.height), turn_(facts.turn), cache_(cache)
    {
    }

    /// Fills the buffer with the frame at the stream's size. @throws MediaFailure
    void Convert(const AVFrame &frame, KyImageChannels channels, unsigned char *buffer);
    /// Frees what is kept for the next frame.
    void Close();

private:
    /// What a scaler is made for.
    struct Input {
        int width = 0;
        int height = 0;
        int format = AV_PIX_FMT_NONE;
        int colourSpace = AVCOL_SPC_UNSPECIFIED;
        bool isFullRange = false;

        bool operator==(const Input &) const = default;
    };
    struct Scaler {
        Input input;
        ScalerPtr context;
    };

    static Input InputOf(const AVFrame &frame);
    SwsContext *ScalerFor(const AVFrame &frame, KyImageChannels channels);
    void CopyTurned(const unsigned char *picture, int bytesPerPixel, int rowBytes,
                    unsigned char *buffer) const;

    int width_; ///< as stored
    int height_;
    Turn turn_;
    FrameCache &cache_;
    Scaler scalers_[2];
};

} // namespace kyh::media
