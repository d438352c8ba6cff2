#pragma once

#include <marlet/foundation/Strings.h>
#include <marlet/platform/media/KyAbstractMediaStream.h>
#include <marlet/platform/media/KyMediaTypes.h>

#include <memory>

namespace kyh::media
{

class KyAbstractCodecInfo;

/// The sound of an open file, as interleaved signed integers in the machine's byte order. Facts may be asked
/// on any thread; GetSamples calls wait for one another. A stream keeps what it needs of its file alive.
class MARLET_EXPORT KyAbstractAudioStream : public KyAbstractMediaStream
{
public:
    virtual unsigned int SampleRate() const = 0; ///< hertz
    /// 32 if the decoder gives more than 16 bits, as codecs with losses mostly do; else 16.
    virtual unsigned char BitsPerSample() const = 0;
    virtual unsigned char ChannelCount() const = 0;
    virtual unsigned long long SampleCount() const = 0; ///< per channel
    /// Hours, minutes, seconds and hundredths, such as "00:01:02.50".
    virtual kytl::NarrowString DurationTimeCode() const = 0;
    virtual KyAudioCodec Codec() const = 0;
    virtual std::shared_ptr<KyAbstractCodecInfo> CodecInfo() const = 0;
    /// Writes `count` samples of each channel, from sample `start` on. Samples outside the stream are
    /// silence. `out`, which may be null, takes the samples per channel that lie inside. Returns 0, or one of
    /// the codes of KyMedia.h; the buffer must have room for count * channels * bytes.
    virtual int GetSamples(long long start, int count, unsigned char *buffer, int size, int *out) = 0;
};

} // namespace kyh::media
