// Samples by number: of a sine that tells where a sample comes from, and of sound written by hand.

#include "MediaClips.h"
#include "PlainDecoding.h"

#include <encode/EncoderOutput.h>

#include <marlet/platform/media/LibavHandles.h>
#include <marlet/platform/media/decoding/SampleFormat.h>

extern "C" {
#include <libavutil/opt.h>
}

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

constexpr int kLowRate = 64000;

/// Tones and noise in whatever form the encoder takes. False if there is no such encoder. At a high rate, AAC
/// stores all of the noise.
bool MakeSoundOf(AVCodecID codec, const std::string &path, int samples, int bitRate)
{
    const AVCodec *found = avcodec_find_encoder(codec);
    if (!found)
        return false;
    marlet::tool::EncoderOutput output(path);
    const marlet::tool::CodecPtr encoder = output.NewEncoder(codec);
    encoder->sample_fmt =
        *std::find_if(found->sample_fmts, found->sample_fmts + 2,
                      [](AVSampleFormat format) { return av_get_bytes_per_sample(format) > 1; });
    encoder->sample_rate = 48000;
    encoder->time_base = {1, 48000};
    encoder->bit_rate = bitRate;
    encoder->strict_std_compliance = FF_COMPLIANCE_EXPERIMENTAL;
    av_channel_layout_default(&encoder->ch_layout, 2);
    av_opt_set_int(encoder.get(), "aac_pns", bitRate == kLowRate, AV_OPT_SEARCH_CHILDREN);
    output.Check(avcodec_open2(encoder.get(), nullptr, nullptr));
    AVStream *stream = output.AddStream(*encoder);
    output.WriteHeader();
    const int length = encoder->frame_size > 0 ? encoder->frame_size : 1024;
    const bool isPlanar = av_sample_fmt_is_planar(encoder->sample_fmt);
    const bool isReal = av_get_packed_sample_fmt(encoder->sample_fmt) == AV_SAMPLE_FMT_FLT;
    std::mt19937 random(9);
    for (int first = 0; first < samples; first += length) {
        const marlet::tool::FramePtr frame(av_frame_alloc());
        frame->nb_samples = length;
        frame->format = encoder->sample_fmt;
        output.Check(av_channel_layout_copy(&frame->ch_layout, &encoder->ch_layout));
        output.Check(av_frame_get_buffer(frame.get(), 0));
        for (int i = 0; i < 2 * length; ++i) {
            const int sample = Sine(first + i / 2, i % 2) / 2 + static_cast<int>(random() % 4000);
            unsigned char *plane = frame->data[isPlanar ? i % 2 : 0];
            const int place = isPlanar ? i / 2 : i;
            if (isReal)
                reinterpret_cast<float *>(plane)[place] = static_cast<float>(sample) / 32768;
            else
                reinterpret_cast<std::int16_t *>(plane)[place] = static_cast<std::int16_t>(sample);
        }
        frame->pts = first;
        output.Encode(*encoder, *stream, frame.get());
    }
    output.Encode(*encoder, *stream, nullptr);
    output.Finish();
    return true;
}

/// All samples as a bare decoder gives them from the start of the file on.
Bytes DecodeSoundBare(const std::string &path, int bytesPerSample)
{
    Bytes samples;
    DecodePlainly(path, [&](const AVFrame &frame) {
        const std::size_t before = samples.size();
        samples.resize(before + static_cast<std::size_t>(frame.nb_samples * 2 * bytesPerSample));
        CopySamples(frame, 0, frame.nb_samples, 2, bytesPerSample, samples.data() + before);
    });
    return samples;
}

} // namespace

TEST(MediaSound, InAnyOrderItIsThatOfABareDecoder)
{
    constexpr std::size_t kFew = 1'500'000;
    constexpr std::size_t kAll = 8'000'000;
    struct {
        AVCodecID codec;
        const char *ending;
        std::size_t most; ///< bytes of the file that are read for a piece
        int bitRate = kLowRate;
    } const kSounds[] = {{AV_CODEC_ID_PCM_S16LE, ".wav", kFew}, {AV_CODEC_ID_FLAC, ".mkv", kFew},
                         {AV_CODEC_ID_ALAC, ".mov", kFew},      {AV_CODEC_ID_MP2, ".mkv", kAll},
                         {AV_CODEC_ID_MP3, ".mkv", kFew},       {AV_CODEC_ID_VORBIS, ".mkv", kFew},
                         {AV_CODEC_ID_AAC, ".mp4", kAll},       {AV_CODEC_ID_AAC, ".mp4", 300'000, 256'000},
                         {AV_CODEC_ID_AC3, ".mkv", kAll},       {AV_CODEC_ID_OPUS, ".mkv", kAll},
                         {AV_CODEC_ID_ADPCM_MS, ".wav", kAll},  {AV_CODEC_ID_ADPCM_IMA_WAV, ".wav", kAll},
                         {AV_CODEC_ID_WAVPACK, ".mkv", kFew}};
    constexpr int kSamples = 900'000; // that fit the first stretch of any codec
    for (const auto &sound : kSounds) {
        SCOPED_TRACE(avcodec_get_name(sound.codec));
        const Folder folder;
        const std::string path = folder.Path(std::string("sound") + sound.ending);
        if (!MakeSoundOf(sound.codec, path, kSamples, sound.bitRate))
            continue;
        for (const std::size_t budget : {FrameCache::kUsualBudget, std::size_t{0}}) {
            const auto resources = std::make_shared<MediaResources>();
            resources->Frames().SetBudget(budget);
            const Media media(path, std::nullopt, resources);
            ASSERT_EQ(media.code, kSuccess);
            const int bytesPerSample = media.audio->BitsPerSample() / 8;
            const std::size_t frameBytes = static_cast<std::size_t>(2 * bytesPerSample);
            const Bytes expected = DecodeSoundBare(path, bytesPerSample);
            const auto count = static_cast<int>(media.audio->SampleCount());
            ASSERT_EQ(static_cast<std::size_t>(count) * frameBytes, expected.size());
            std::mt19937 random(4);
            for (int i = 0; i < 40; ++i) {
                // At random, and a little in order.
                const int length = 3000;
                const int start = i < 30 ? static_cast<int>(random() % (count - length)) : i * length;
                Bytes piece(static_cast<std::size_t>(length) * frameBytes);
                const std::size_t bytes = BytesReadBy([&] {
                    media.audio->GetSamples(start, length, piece.data(), static_cast<int>(piece.size()),
                                            nullptr);
                });
                const auto place = expected.begin() + static_cast<std::ptrdiff_t>(start * frameBytes);
                const auto wrong = std::mismatch(piece.begin(), piece.end(), place).first - piece.begin();
                EXPECT_EQ(wrong, std::ssize(piece)) << start;
                if (wrong != std::ssize(piece))
                    break;
                EXPECT_LE(bytes, sound.most) << start;
            }
        }
    }
}

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
