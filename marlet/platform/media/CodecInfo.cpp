#include <marlet/platform/media/CodecInfo.h>

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace kyh::media
{

namespace
{

kytl::NarrowString TextOf(const char *text)
{
    return text ? text : "";
}

} // namespace

kytl::NarrowString CodecInfo::Name() const
{
    return TextOf(avcodec_get_name(codec_));
}

kytl::NarrowString CodecInfo::LongName() const
{
    const AVCodecDescriptor *descriptor = avcodec_descriptor_get(codec_);
    return descriptor ? TextOf(descriptor->long_name) : "";
}

kytl::NarrowString CodecInfo::Profile() const
{
    return TextOf(avcodec_profile_name(codec_, profile_));
}

KyVideoCodec VideoCodecOf(AVCodecID codec)
{
    switch (codec) {
    case AV_CODEC_ID_MPEG2VIDEO:
        return KyVideoCodec::MPEG2;
    case AV_CODEC_ID_MPEG4:
        return KyVideoCodec::MPEG4;
    case AV_CODEC_ID_H264:
        return KyVideoCodec::H264;
    case AV_CODEC_ID_HEVC:
        return KyVideoCodec::HEVC;
    case AV_CODEC_ID_VP8:
        return KyVideoCodec::VP8;
    case AV_CODEC_ID_VP9:
        return KyVideoCodec::VP9;
    case AV_CODEC_ID_AV1:
        return KyVideoCodec::AV1;
    case AV_CODEC_ID_THEORA:
        return KyVideoCodec::Theora;
    case AV_CODEC_ID_MJPEG:
        return KyVideoCodec::MotionJPEG;
    case AV_CODEC_ID_PRORES:
        return KyVideoCodec::ProRes;
    case AV_CODEC_ID_DNXHD:
        return KyVideoCodec::DNxHD;
    case AV_CODEC_ID_DVVIDEO:
        return KyVideoCodec::DV;
    case AV_CODEC_ID_RAWVIDEO:
        return KyVideoCodec::Raw;
    default:
        return KyVideoCodec::Unknown;
    }
}

KyAudioCodec AudioCodecOf(AVCodecID codec)
{
    switch (codec) {
    case AV_CODEC_ID_AAC:
        return KyAudioCodec::AAC;
    case AV_CODEC_ID_MP3:
        return KyAudioCodec::MP3;
    case AV_CODEC_ID_AC3:
        return KyAudioCodec::AC3;
    case AV_CODEC_ID_VORBIS:
        return KyAudioCodec::Vorbis;
    case AV_CODEC_ID_OPUS:
        return KyAudioCodec::Opus;
    case AV_CODEC_ID_FLAC:
        return KyAudioCodec::FLAC;
    default:
        // All of them stand together in libav's list.
        return codec >= AV_CODEC_ID_FIRST_AUDIO && codec < AV_CODEC_ID_ADPCM_IMA_QT ? KyAudioCodec::PCM
                                                                                    : KyAudioCodec::Unknown;
    }
}

} // namespace kyh::media
