#pragma once

#include <marlet/platform/media/KyMediaTypes.h>
#include <marlet/platform/media/LibavHandles.h>
#include <marlet/platform/media/contents/FrameIndex.h>

namespace kyh::media
{

/// How a picture is turned before it is shown: first its rows become its columns, or not, then it is
/// mirrored.
struct Turn {
    bool isTransposed = false;
    bool isMirroredAcross = false; ///< left and right
    bool isMirroredDown = false;   ///< top and bottom

    bool operator==(const Turn &) const = default;
};

/// What a video stream says of itself.
struct VideoFacts {
    int width = 0; ///< as the picture is stored
    int height = 0;
    Turn turn;
    double pixelAspect = 1; ///< as the picture is shown
    double frameRate = 0;
    int frameCount = 0;
    int fieldOrder = 0;
    bool hasAlpha = false;
    bool isStill = false;
    AVCodecID codec = AV_CODEC_ID_NONE;
    int profile = FF_PROFILE_UNKNOWN;

    bool operator==(const VideoFacts &) const = default;
};

/// Whether the headers tell all facts of a stream. If not, its first frame does, which comes of `packet`.
bool AreFactsKnown(const AVStream &stream, const AVPacket &packet);
/// The first frame of such a stream, without its pixels.
FramePtr DescribedFrame(const AVCodecParameters &parameters);
/// The facts of a stream of a container, by its first frame where the container says nothing.
/// @throws MediaFailure if the pictures are none that could be shown
VideoFacts FactsOfClip(AVFormatContext &format, AVStream &stream, const FrameIndex &index,
                       const AVFrame &first);
/// The same of pictures in files of their own.
VideoFacts FactsOfStills(AVCodecID codec, int profile, int count, double frameRate, const AVFrame &first);

} // namespace kyh::media
