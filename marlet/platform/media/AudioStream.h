#pragma once

#include <marlet/foundation/KyCriticalSection.h>
#include <marlet/platform/media/KyAbstractAudioStream.h>
#include <marlet/platform/media/decoding/SoundReader.h>

#include <memory>

namespace kyh::media
{

/// What an audio stream says of itself.
struct SoundFacts {
    int sampleRate = 0;
    int channels = 0;
    int bytesPerSample = 0;
    std::int64_t count = 0;
    AVCodecID codec = AV_CODEC_ID_NONE;
    int profile = FF_PROFILE_UNKNOWN;

    bool operator==(const SoundFacts &) const = default;
};

class AudioStream final : public KyAbstractAudioStream
{
public:
    AudioStream(const SoundFacts &facts, std::unique_ptr<SoundReader> reader);

    const SoundFacts &Facts() const { return facts_; }
    void Sleep();
    /// Wakes it with the reader that it had.
    void Wake();
    /// Wakes it with another, of the same facts.
    void Wake(std::unique_ptr<SoundReader> reader);
    /// The file holds another stream by now. From here on, reading fails with kDamaged.
    void Retire();

    unsigned int SampleRate() const override;
    unsigned char BitsPerSample() const override;
    unsigned char ChannelCount() const override;
    unsigned long long SampleCount() const override;
    kytl::NarrowString DurationTimeCode() const override;
    KyAudioCodec Codec() const override;
    std::shared_ptr<KyAbstractCodecInfo> CodecInfo() const override;
    int GetSamples(long long start, int count, unsigned char *buffer, int size, int *out) override;

private:
    int Read(long long start, int count, unsigned char *buffer);

    const SoundFacts facts_;
    kytl::thread::KyCriticalSection lock_; ///< of what follows
    std::unique_ptr<SoundReader> reader_;
    bool isAsleep_ = false;
    bool isRetired_ = false;
};

} // namespace kyh::media
