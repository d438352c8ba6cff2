#pragma once

namespace kyh::media
{

/// The kinds of streams that a file can have.
constexpr int kAudioStream = 0;
constexpr int kVideoStream = 1;

/// How a picture is compressed. The value 4 stands for a format that says nothing of its pixels' shape; no
/// file is reported with it.
enum class KyVideoCodec : int {
    Unknown = 0,
    MPEG2 = 1,
    MPEG4 = 2,
    H264 = 3,
    Shapeless = 4,
    HEVC = 5,
    VP8 = 6,
    VP9 = 7,
    AV1 = 8,
    Theora = 9,
    MotionJPEG = 10,
    ProRes = 11,
    DNxHD = 12,
    DV = 13,
    Still = 14, ///< the files of an image sequence, or a still
    Raw = 15,
};

enum class KyAudioCodec : int {
    Unknown = 0,
    PCM = 1,
    AAC = 2,
    MP3 = 3,
    AC3 = 4,
    Vorbis = 5,
    Opus = 6,
    FLAC = 7,
};

/// How the bytes of a pixel are arranged.
enum class KyChannelOrder : int {
    None,
    RGB,  ///< 24 bits
    BGRA, ///< 32 bits
};

/// What a frame is asked for in.
enum class KyImageChannels : int {
    Three = 0, ///< R, G, B, 24 bits to the pixel
    Four = 1,  ///< B, G, R, A, 32 bits to the pixel, alpha not multiplied in
};

} // namespace kyh::media
