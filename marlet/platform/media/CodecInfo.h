#pragma once

#include <marlet/platform/media/KyAbstractCodecInfo.h>
#include <marlet/platform/media/KyMediaTypes.h>

extern "C" {
#include <libavcodec/codec_id.h>
}

namespace kyh::media
{

class CodecInfo final : public KyAbstractCodecInfo
{
public:
    CodecInfo(AVCodecID codec, int profile) : codec_(codec), profile_(profile) {}

    kytl::NarrowString Name() const override;
    kytl::NarrowString LongName() const override;
    kytl::NarrowString Profile() const override;

private:
    AVCodecID codec_;
    int profile_;
};

KyVideoCodec VideoCodecOf(AVCodecID codec);
KyAudioCodec AudioCodecOf(AVCodecID codec);

} // namespace kyh::media
