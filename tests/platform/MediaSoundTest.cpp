// Samples by number: of a sine that tells where a sample comes from, and of sound written by hand.

#include "MediaClips.h"

#include <encode/EncoderOutput.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <random>

using namespace clips;

namespace
{

template <class Number> void Append(std::string &bytes, Number number)
{
    char little[sizeof number];
    std::memcpy(little, &number, sizeof number);
    bytes.append(little, sizeof number);
}

/// A sound file of one channel at 8000 hertz. Format 1 is integers, 3 floating values.
template <class Sample> std::string WaveFile(int format, const std::vector<Sample> &samples)
{
    const auto size = static_cast<std::uint32_t>(samples.size() * sizeof(Sample));
    std::string bytes = "RIFF";
    Append(bytes, 36 + size);
    bytes += "WAVEfmt ";
    Append(bytes, std::uint32_t{16});
    Append(bytes, static_cast<std::uint16_t>(format));
    Append(bytes, std::uint16_t{1});
    Append(bytes, std::uint32_t{8000});
    Append(bytes, static_cast<std::uint32_t>(8000 * sizeof(Sample)));
    Append(bytes, static_cast<std::uint16_t>(sizeof(Sample)));
    Append(bytes, static_cast<std::uint16_t>(sizeof(Sample) * 8));
    bytes += "data";
    Append(bytes, size);
    for (const Sample sample : samples)
        Append(bytes, sample);
    return bytes;
}

/// Noise, which decoders of AC-3 make up anew where nothing of it was stored.
std::string MakeNoise(const std::string &path, int packets)
{
    marlet::tool::EncoderOutput output(path);
    const marlet::tool::CodecPtr encoder = output.NewEncoder(AV_CODEC_ID_AC3);
    encoder->sample_fmt = AV_SAMPLE_FMT_FLTP;
    encoder->sample_rate = 48000;
    encoder->time_base = {1, 48000};
    encoder->bit_rate = 64000;
    av_channel_layout_default(&encoder->ch_layout, 1);
    output.Check(avcodec_open2(encoder.get(), nullptr, nullptr));
    AVStream *stream = output.AddStream(*encoder);
    output.WriteHeader();
    const marlet::tool::FramePtr frame(av_frame_alloc());
    frame->nb_samples = encoder->frame_size;
    frame->format = encoder->sample_fmt;
    frame->ch_layout = encoder->ch_layout;
    output.Check(av_frame_get_buffer(frame.get(), 0));
    std::mt19937 random(1);
    for (int packet = 0; packet < packets; ++packet) {
        output.Check(av_frame_make_writable(frame.get()));
        auto *samples = reinterpret_cast<float *>(frame->data[0]);
        std::generate_n(samples, frame->nb_samples, [&random] {
            return static_cast<float>(random()) / static_cast<float>(std::mt19937::max()) - 0.5f;
        });
        frame->pts = packet * frame->nb_samples;
        output.Encode(*encoder, *stream, frame.get());
    }
    output.Encode(*encoder, *stream, nullptr);
    output.Finish();
    return path;
}

} // namespace

TEST(MediaSound, SamplesAreExactInAnyOrderOfAsking)
{
    constexpr int kSamples = 50000;
    for (const char *ending : {".mov", ".avi", ".mkv"}) {
        SCOPED_TRACE(ending);
        const Folder folder;
        EncoderOptions options = SmallClip();
        options.sampleRate = 16000;
        options.channels = 3;
        const Media media(MakeClip(folder.Path(std::string("clip") + ending), options, 60, kSamples));
        ASSERT_EQ(media.code, kSuccess);
        ASSERT_EQ(media.audio->SampleCount(), static_cast<unsigned long long>(kSamples));
        EXPECT_EQ(media.audio->SampleRate(), 16000u);
        EXPECT_EQ(media.audio->ChannelCount(), 3);
        EXPECT_EQ(media.audio->BitsPerSample(), 16);
        EXPECT_EQ(media.audio->Codec(), KyAudioCodec::PCM);
        EXPECT_EQ(media.audio->DurationTimeCode(), "00:00:03.12"); // 3.125 s
        std::mt19937 random(3);
        for (int i = 0; i < 60; ++i) {
            const long long start = static_cast<long long>(random() % (kSamples + 2000)) - 1000;
            const auto samples = media.Samples<std::int16_t>(start, 1000);
            for (int sample = 0; sample < 1000; sample += 7)
                for (int channel = 0; channel < 3; ++channel) {
                    const long long place = start + sample;
                    const bool isInside = place >= 0 && place < kSamples;
                    ASSERT_EQ(samples[static_cast<std::size_t>(sample * 3 + channel)],
                              isInside ? Sine(place, channel) : 0)
                        << place;
                }
        }
    }
}

TEST(MediaSound, LongSoundIsTheSameAcrossAllOfIt)
{
    // More than is decoded at a time.
    constexpr int kSamples = 5'000'000;
    std::vector<std::int16_t> sine;
    for (int i = 0; i < kSamples; ++i)
        sine.push_back(static_cast<std::int16_t>(i * 31));
    const Folder folder;
    const Media media(folder.Write("long.wav", WaveFile(1, sine)));
    ASSERT_EQ(media.code, kSuccess);
    ASSERT_EQ(media.audio->SampleCount(), static_cast<unsigned long long>(kSamples));
    for (const int start : {4'900'000, 4'194'000, 100, 4'194'304, 0}) {
        const auto samples = media.Samples<std::int16_t>(start, 50'000);
        EXPECT_TRUE(std::equal(samples.begin(), samples.end(), sine.begin() + start)) << start;
    }
}

TEST(MediaSound, IsTheSameAgainWhereADecoderMakesUpNoise)
{
    // More than is decoded at a time.
    constexpr int kPackets = 1500;
    const Folder folder;
    const Media media(MakeNoise(folder.Path("noise.ac3"), kPackets));
    ASSERT_EQ(media.code, kSuccess);
    const auto first = media.Samples<std::int32_t>(20'000, 2000);
    const auto late = media.Samples<std::int32_t>(2'200'000, 2000);
    EXPECT_EQ(media.Samples<std::int32_t>(20'000, 2000), first);
    EXPECT_EQ(media.Samples<std::int32_t>(2'200'000, 2000), late);
}

TEST(MediaSound, HasThirtyTwoBitsForMoreThanSixteen)
{
    const Folder folder;
    const Media eight(folder.Write("8.wav", WaveFile<std::uint8_t>(1, {0, 128, 255, 129})));
    EXPECT_EQ(eight.audio->BitsPerSample(), 16);
    EXPECT_EQ(eight.Samples<std::int16_t>(0, 4), (std::vector<std::int16_t>{-32768, 0, 32512, 256}));

    constexpr int kMost = std::numeric_limits<int>::max();
    constexpr int kLeast = std::numeric_limits<int>::min();
    const Media full(folder.Write("32.wav", WaveFile<std::int32_t>(1, {kMost, kLeast, 1})));
    EXPECT_EQ(full.audio->BitsPerSample(), 32);
    EXPECT_EQ(full.Samples<std::int32_t>(0, 3), (std::vector<std::int32_t>{kMost, kLeast, 1}));

    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Media real(folder.Write("real.wav", WaveFile<float>(3, {0.5f, -2.0f, 1.0f, nan, -0.25f})));
    EXPECT_EQ(real.audio->BitsPerSample(), 32);
    EXPECT_EQ(real.Samples<std::int32_t>(0, 5),
              (std::vector<std::int32_t>{1 << 30, kLeast, kMost, 0, -(1 << 29)}));
}

TEST(MediaSound, OutsideIsSilentAndBuffersAreKept)
{
    const Folder folder;
    const Media media(folder.Write("short.wav", WaveFile<std::int16_t>(1, {1, 2, 3})));
    ASSERT_EQ(media.code, kSuccess);
    EXPECT_EQ(media.video, nullptr);
    unsigned char bytes[10] = {};
    int inside = -1;
    EXPECT_EQ(media.audio->GetSamples(-1, 5, bytes, 10, &inside), kSuccess);
    EXPECT_EQ(inside, 3);
    constexpr long long kFar = std::numeric_limits<long long>::max();
    for (const long long start : {kFar, kFar - 2, -kFar - 1, 3LL, -5LL}) {
        EXPECT_EQ(media.audio->GetSamples(start, 5, bytes, 10, &inside), kSuccess);
        EXPECT_EQ(inside, 0);
        EXPECT_TRUE(std::all_of(bytes, bytes + 10, [](unsigned char byte) { return byte == 0; }));
    }
    EXPECT_EQ(media.audio->GetSamples(0, 5, bytes, 9, &inside), kBufferTooSmall);
    EXPECT_EQ(media.audio->GetSamples(0, -1, bytes, 10, &inside), kOutOfRange);
}
