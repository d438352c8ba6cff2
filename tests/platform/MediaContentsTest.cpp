// What is learnt of a file when it is opened, and how much of it that takes.

#include "CodedClips.h"
#include "PlainDecoding.h"

#include <marlet/platform/media/contents/SoundCounter.h>

#include <algorithm>

using namespace clips;
namespace fs = std::filesystem;

namespace
{

/// As NumberIn, of the frame as it was decoded.
int NumberInLuma(const AVFrame &frame)
{
    int number = 0;
    for (int bit = 0; bit < kBits; ++bit) {
        const int shade = frame.data[0][kBlock / 2 * frame.linesize[0] + bit * kBlock + kBlock / 2];
        if (shade > 60 && shade < 195)
            return -1;
        number |= (shade > 128) << bit;
    }
    return number;
}

/// The numbers that are seen in the frames.
std::vector<int> PlainNumbers(const std::string &path)
{
    std::vector<int> numbers;
    DecodePlainly(path, [&numbers](const AVFrame &frame) { numbers.push_back(NumberInLuma(frame)); });
    return numbers;
}

/// The packets of the frames.
std::vector<int> PlainOrder(const std::string &path)
{
    std::vector<int> packets;
    DecodePlainly(path, [&packets](const AVFrame &frame) { packets.push_back(PacketOf(frame)); });
    return packets;
}

/// A tone with noise, of one channel.
std::string CodedSound(const std::string &path, AVCodecID codec, int sampleRate)
{
    constexpr int kSeconds = 2;
    constexpr int kPart = 1024; // where the codec leaves it open
    marlet::tool::EncoderOutput output(path);
    const auto audio = output.NewEncoder(codec);
    audio->sample_fmt = audio->codec->sample_fmts[0];
    audio->sample_rate = sampleRate;
    audio->bit_rate = codec == AV_CODEC_ID_DTS ? 512'000 : 96'000;
    audio->strict_std_compliance = FF_COMPLIANCE_EXPERIMENTAL;
    audio->time_base = {1, sampleRate};
    av_channel_layout_default(&audio->ch_layout, 1);
    output.Check(avcodec_open2(audio.get(), nullptr, nullptr));
    const AVStream *stream = output.AddStream(*audio);
    output.WriteHeader();
    const marlet::tool::FramePtr sound(av_frame_alloc());
    sound->nb_samples = audio->frame_size > 0 ? audio->frame_size : kPart;
    sound->format = audio->sample_fmt;
    sound->ch_layout = audio->ch_layout;
    output.Check(av_frame_get_buffer(sound.get(), 0));
    for (int first = 0; first < kSeconds * sampleRate; first += sound->nb_samples) {
        output.Check(av_frame_make_writable(sound.get()));
        for (int i = 0; i < sound->nb_samples; ++i) {
            const double sample = 0.3 * std::sin((first + i) * 0.07) + 0.01 * ((first + i) * 7 % 11);
            if (av_get_packed_sample_fmt(audio->sample_fmt) == AV_SAMPLE_FMT_FLT)
                reinterpret_cast<float *>(sound->data[0])[i] = static_cast<float>(sample);
            else if (av_get_bytes_per_sample(audio->sample_fmt) == 4)
                reinterpret_cast<std::int32_t *>(sound->data[0])[i] = static_cast<std::int32_t>(sample * 2e9);
            else if (av_get_bytes_per_sample(audio->sample_fmt) == 2)
                reinterpret_cast<std::int16_t *>(sound->data[0])[i] = static_cast<std::int16_t>(sample * 3e4);
        }
        sound->pts = first;
        output.Encode(*audio, *stream, sound.get());
    }
    output.Encode(*audio, *stream, nullptr);
    output.Finish();
    return path;
}

/// What comes of the packets of a file with nothing but sound, with each of them decoded.
SoundIndex DecodedSound(const std::string &path)
{
    Demuxer demuxer(std::make_shared<FileSource>(path));
    demuxer.OpenStreams();
    SoundCounter counter(*demuxer.Stream(0).codecpar, SoundCounter::Decoding::All);
    const marlet::tool::PacketPtr packet(av_packet_alloc());
    while (demuxer.Read(*packet))
        counter.Add(*packet);
    return counter.Finish();
}

void ExpectPacketsToAgree(const std::string &path)
{
    const MediaContents byTables = ContentsOf(path);
    const MediaContents byPackets = ContentsOf(path, UseOfTables::Forbidden);
    ASSERT_EQ(byTables.video.has_value(), byPackets.video.has_value());
    EXPECT_TRUE(!byTables.video || byTables.video->facts == byPackets.video->facts);
    EXPECT_TRUE(!byTables.video || byTables.video->frames.Packets() == byPackets.video->frames.Packets());
    EXPECT_TRUE(!byTables.sound || byTables.sound->samples.Contents() == byPackets.sound->samples.Contents());
    EXPECT_TRUE(byTables == byPackets);
}

} // namespace

TEST(MediaContents, TheIndexOfAContainerSaysWhatItsPacketsDo)
{
    constexpr int kFrames = 300;
    struct {
        const char *name;
        AVCodecID codec;
        int bFrames;
    } const kClips[] = {{"plain.mp4", AV_CODEC_ID_MPEG4, 0},
                        {"predicted.mp4", AV_CODEC_ID_MPEG4, 2},
                        {"predicted.mov", AV_CODEC_ID_MPEG4, 3},
                        {"h264.mp4", AV_CODEC_ID_H264, 2},
                        {"pictures.mov", AV_CODEC_ID_MJPEG, 0}};
    for (const auto &clip : kClips) {
        SCOPED_TRACE(clip.name);
        if (!avcodec_find_encoder(clip.codec))
            continue;
        const Folder folder;
        const std::string path = CodedClip(folder.Path(clip.name), clip.codec, clip.bFrames, kFrames);
        ExpectPacketsToAgree(path);
        MediaContents contents;
        const std::size_t read = BytesReadBy([&] { contents = ContentsOf(path); });
        ASSERT_TRUE(contents.video && contents.sound);
        EXPECT_EQ(contents.video->facts.frameCount, kFrames);
        // Some buffers full, to see what streams begin with and that the index is true.
        EXPECT_LT(read, fs::file_size(path) / 3);
    }
}

TEST(MediaContents, HeadersTellTheOrderOfPicturesWhereTheContainerDoesNot)
{
    constexpr int kFrames = 40;
    struct {
        const char *name;
        AVCodecID codec;
        int bFrames;
    } const kClips[] = {{"one.avi", AV_CODEC_ID_MPEG4, 1},      {"three.avi", AV_CODEC_ID_MPEG4, 3},
                        {"two.avi", AV_CODEC_ID_MPEG2VIDEO, 2}, {"first.avi", AV_CODEC_ID_MPEG1VIDEO, 2},
                        {"advanced.avi", AV_CODEC_ID_H264, 2},  {"plain.avi", AV_CODEC_ID_H264, 0}};
    for (const auto &clip : kClips) {
        SCOPED_TRACE(clip.name);
        if (!avcodec_find_encoder(clip.codec))
            continue;
        const Folder folder;
        const std::string path = CodedClip(folder.Path(clip.name), clip.codec, clip.bFrames, kFrames);
        MediaContents contents;
        const std::size_t read = BytesReadBy([&] { contents = ContentsOf(path); });
        ASSERT_TRUE(contents.video);
        const std::vector<int> &frames = contents.video->frames.Frames();
        EXPECT_EQ(frames, PlainOrder(path));
        // The encoder of H.264 decides by itself.
        EXPECT_TRUE(clip.codec == AV_CODEC_ID_H264 || !std::ranges::is_sorted(frames));
        // Decoding all of it would be to read it twice.
        EXPECT_LT(read, fs::file_size(path) * 3 / 2);
    }
}

TEST(MediaContents, PacketsOfSoundTellWhatTheirDecodersGive)
{
    struct {
        const char *name;
        AVCodecID codec;
        int sampleRate;
    } const kSounds[] = {
        {"ms.wav", AV_CODEC_ID_ADPCM_MS, 22050},      {"ima.wav", AV_CODEC_ID_ADPCM_IMA_WAV, 22050},
        {"ima.mov", AV_CODEC_ID_ADPCM_IMA_QT, 22050}, {"g722.wav", AV_CODEC_ID_ADPCM_G722, 16000},
        {"music.mkv", AV_CODEC_ID_OPUS, 48000},       {"plus.mkv", AV_CODEC_ID_EAC3, 48000},
        {"theatre.mkv", AV_CODEC_ID_DTS, 48000},      {"lossless.mkv", AV_CODEC_ID_TTA, 44100},
        {"packed.mkv", AV_CODEC_ID_WAVPACK, 44100},   {"free.flac", AV_CODEC_ID_FLAC, 44100}};
    for (const auto &sound : kSounds) {
        SCOPED_TRACE(sound.name);
        if (!avcodec_find_encoder(sound.codec))
            continue;
        const Folder folder;
        const std::string path = CodedSound(folder.Path(sound.name), sound.codec, sound.sampleRate);
        EXPECT_EQ(ContentsOf(path).sound->samples, DecodedSound(path));
        // Such containers also hold a last packet that ends within a block.
        if (!path.ends_with(".wav"))
            continue;
        const std::string bytes = folder.Read(sound.name);
        const std::string cut = folder.Write("cut.wav", bytes.substr(0, bytes.size() * 2 / 3));
        EXPECT_EQ(ContentsOf(cut).sound->samples, DecodedSound(cut));
    }
}

TEST(MediaContents, AnIndexThatIsNotTrueIsNotBelieved)
{
    const Folder folder;
    const std::string path = CodedClip(folder.Path("clip.mp4"), AV_CODEC_ID_MPEG4, 2, 60);
    const std::string bytes = folder.Read("clip.mp4");
    // In the times of showing, in the sizes, in the key frames, and in the name of a box.
    for (const char *box : {"ctts", "stsz", "stss", "stco", "stts", "elst", "tkhd", "stsd"})
        for (const int place : {4, 11, 15, 23}) {
            SCOPED_TRACE(std::string(box) + " at " + std::to_string(place));
            std::string damaged = bytes;
            char &byte = damaged[damaged.find(box) + 4 + static_cast<std::size_t>(place)];
            byte = static_cast<char>(byte ^ 1);
            folder.Write("damaged.mp4", damaged);
            if (Media(folder.Path("damaged.mp4")).code == kSuccess)
                ExpectPacketsToAgree(folder.Path("damaged.mp4"));
        }
}

TEST(MediaContents, OfAClipThatIsCutEveryFrameIsGivenThatAPlainDecoderGives)
{
    for (const char *name : {"clip.avi", "clip.mkv"})
        for (const int bFrames : {0, 1, 2}) {
            SCOPED_TRACE(std::string(name) + " of " + std::to_string(bFrames));
            const Folder folder;
            EncoderOptions options = SmallClip();
            options.bFrames = bFrames;
            options.groupSize = 9;
            MakeClip(folder.Path(name), options, 70);
            const std::string bytes = folder.Read(name);
            const std::string cut =
                folder.Write(std::string("cut-") + name, bytes.substr(0, bytes.size() / 2));
            const Media media(cut);
            ASSERT_EQ(media.code, kSuccess);
            std::vector<int> given;
            for (int i = 0; i < media.video->FrameCount(); ++i)
                given.push_back(NumberIn(media.Frame(i), 80));
            std::vector<int> plain = PlainNumbers(cut);
            std::erase(plain, -1);
            std::ranges::sort(plain);
            std::ranges::sort(given);
            ASSERT_GT(plain.size(), 25u);
            EXPECT_TRUE(std::includes(given.begin(), given.end(), plain.begin(), plain.end()))
                << testing::PrintToString(given) << testing::PrintToString(plain);
        }
}
