#include <marlet/platform/media/AudioStream.h>

#include <marlet/platform/media/CodecInfo.h>
#include <marlet/platform/media/MediaFailure.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

namespace kyh::media
{

using kytl::thread::KyScopedLock;

AudioStream::AudioStream(const SoundFacts &facts, std::unique_ptr<SoundReader> reader)
    : facts_(facts), reader_(std::move(reader))
{
}

void AudioStream::Sleep()
{
    const KyScopedLock lock(lock_);
    reader_->Close();
    isAsleep_ = true;
}

void AudioStream::Wake()
{
    const KyScopedLock lock(lock_);
    isAsleep_ = false;
}

void AudioStream::Wake(std::unique_ptr<SoundReader> reader)
{
    const KyScopedLock lock(lock_);
    reader_ = std::move(reader);
    isAsleep_ = false;
}

void AudioStream::Retire()
{
    const KyScopedLock lock(lock_);
    reader_->Close();
    isRetired_ = true;
}

unsigned int AudioStream::SampleRate() const
{
    return static_cast<unsigned int>(facts_.sampleRate);
}

unsigned char AudioStream::BitsPerSample() const
{
    return static_cast<unsigned char>(facts_.bytesPerSample * 8);
}

unsigned char AudioStream::ChannelCount() const
{
    return static_cast<unsigned char>(facts_.channels);
}

unsigned long long AudioStream::SampleCount() const
{
    return static_cast<unsigned long long>(facts_.count);
}

kytl::NarrowString AudioStream::DurationTimeCode() const
{
    const std::int64_t seconds = facts_.count / facts_.sampleRate;
    const std::int64_t hundredths = facts_.count % facts_.sampleRate * 100 / facts_.sampleRate;
    char text[64];
    std::snprintf(text, sizeof text, "%02lld:%02lld:%02lld.%02lld", static_cast<long long>(seconds / 3600),
                  static_cast<long long>(seconds / 60 % 60), static_cast<long long>(seconds % 60),
                  static_cast<long long>(hundredths));
    return text;
}

KyAudioCodec AudioStream::Codec() const
{
    return AudioCodecOf(facts_.codec);
}

std::shared_ptr<KyAbstractCodecInfo> AudioStream::CodecInfo() const
{
    return std::make_shared<media::CodecInfo>(facts_.codec, facts_.profile);
}

/// Returns how many samples lie inside.
int AudioStream::Read(long long start, int count, unsigned char *buffer)
{
    const std::int64_t frameBytes = std::int64_t{facts_.bytesPerSample} * facts_.channels;
    // Nothing is added to a start behind the stream, which may lie at the end of all numbers.
    const std::int64_t end =
        start < facts_.count ? std::min<std::int64_t>(start + count, facts_.count) : facts_.count;
    const std::int64_t begin = std::clamp<std::int64_t>(start, 0, facts_.count);
    if (begin >= end) {
        std::memset(buffer, 0, static_cast<std::size_t>(count * frameBytes));
        return 0;
    }
    unsigned char *inside = buffer + (begin - start) * frameBytes;
    unsigned char *behind = inside + (end - begin) * frameBytes;
    std::fill(buffer, inside, 0);
    reader_->Read(begin, static_cast<int>(end - begin), inside);
    std::fill(behind, buffer + count * frameBytes, 0);
    return static_cast<int>(end - begin);
}

int AudioStream::GetSamples(long long start, int count, unsigned char *buffer, int size, int *out)
{
    return CodeOf([&] {
        if (count < 0)
            throw MediaFailure{kOutOfRange};
        if (!buffer || size < 0 || size / (facts_.bytesPerSample * facts_.channels) < count)
            throw MediaFailure{kBufferTooSmall};
        const KyScopedLock lock(lock_);
        if (isRetired_)
            throw MediaFailure{kDamaged};
        if (isAsleep_)
            throw MediaFailure{kAsleep};
        const int inside = Read(start, count, buffer);
        if (out)
            *out = inside;
    });
}

} // namespace kyh::media
