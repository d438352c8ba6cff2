// What is learnt of a file when it is opened: how much of it that takes, and what is kept for the next time.

#include "MediaClips.h"

#include <marlet/platform/media/contents/ContentsForm.h>
#include <marlet/platform/media/contents/IndexFolder.h>

#include <encode/EncoderOutput.h>

#include <algorithm>
#include <utility>

using namespace clips;
namespace fs = std::filesystem;

namespace
{

MediaContents ContentsOf(const std::string &path, UseOfTables use = UseOfTables::Allowed)
{
    const auto source = std::make_shared<FileSource>(path);
    return LearnContents(source, std::make_unique<Demuxer>(source), use);
}

/// Frames of noise, which are large, by a codec with sound in AAC.
std::string CodedClip(const std::string &path, AVCodecID codec, int bFrames, int frames)
{
    marlet::tool::EncoderOutput output(path);
    const auto video = output.NewEncoder(codec);
    const AVPixelFormat *formats = video->codec->pix_fmts;
    video->width = 192;
    video->height = 128;
    video->pix_fmt = formats ? formats[0] : AV_PIX_FMT_YUV420P;
    video->time_base = {1, 25};
    video->gop_size = 12;
    video->max_b_frames = bFrames;
    video->bit_rate = 8'000'000;
    output.Check(avcodec_open2(video.get(), nullptr, nullptr));
    const auto audio = output.NewEncoder(AV_CODEC_ID_AAC);
    audio->sample_fmt = AV_SAMPLE_FMT_FLTP;
    audio->sample_rate = 16000;
    audio->time_base = {1, 16000};
    av_channel_layout_default(&audio->ch_layout, 1);
    output.Check(avcodec_open2(audio.get(), nullptr, nullptr));
    const AVStream *videoStream = output.AddStream(*video);
    const AVStream *audioStream = output.AddStream(*audio);
    output.WriteHeader();
    const marlet::tool::FramePtr picture(av_frame_alloc());
    picture->width = video->width;
    picture->height = video->height;
    picture->format = video->pix_fmt;
    output.Check(av_frame_get_buffer(picture.get(), 0));
    const marlet::tool::FramePtr sound(av_frame_alloc());
    sound->nb_samples = audio->frame_size;
    sound->format = audio->sample_fmt;
    sound->ch_layout = audio->ch_layout;
    output.Check(av_frame_get_buffer(sound.get(), 0));
    unsigned int noise = 1;
    for (int i = 0; i < frames; ++i) {
        output.Check(av_frame_make_writable(picture.get()));
        for (int plane = 0; plane < 3; ++plane)
            for (int k = 0; k < picture->linesize[plane] * picture->height / (plane ? 2 : 1); ++k)
                picture->data[plane][k] =
                    static_cast<unsigned char>((noise = noise * 1664525 + 1013904223) >> 24);
        picture->pts = i;
        output.Encode(*video, *videoStream, picture.get());
        output.Check(av_frame_make_writable(sound.get()));
        std::fill_n(reinterpret_cast<float *>(sound->data[0]), sound->nb_samples,
                    0.25f * static_cast<float>(i % 3));
        sound->pts = i * sound->nb_samples;
        output.Encode(*audio, *audioStream, sound.get());
    }
    output.Encode(*video, *videoStream, nullptr);
    output.Encode(*audio, *audioStream, nullptr);
    output.Finish();
    return path;
}

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

/// The numbers in the frames as a decoder gives them that reads a clip from front to back.
std::vector<int> PlainNumbers(const std::string &path)
{
    AVFormatContext *format = nullptr;
    EXPECT_GE(avformat_open_input(&format, path.c_str(), nullptr, nullptr), 0);
    EXPECT_GE(avformat_find_stream_info(format, nullptr), 0);
    const AVCodecParameters &parameters = *format->streams[0]->codecpar;
    const marlet::tool::CodecPtr decoder(avcodec_alloc_context3(nullptr));
    avcodec_parameters_to_context(decoder.get(), &parameters);
    EXPECT_GE(avcodec_open2(decoder.get(), avcodec_find_decoder(parameters.codec_id), nullptr), 0);
    const marlet::tool::PacketPtr packet(av_packet_alloc());
    const marlet::tool::FramePtr frame(av_frame_alloc());
    std::vector<int> numbers;
    const auto send = [&](const AVPacket *next) {
        avcodec_send_packet(decoder.get(), next);
        while (avcodec_receive_frame(decoder.get(), frame.get()) >= 0)
            numbers.push_back(NumberInLuma(*frame));
    };
    while (av_read_frame(format, packet.get()) >= 0) {
        send(packet.get());
        av_packet_unref(packet.get());
    }
    send(nullptr);
    avformat_close_input(&format);
    return numbers;
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

TEST(MediaContents, AreKeptForTheSameFileAlone)
{
    const Folder folder;
    const std::string path = CodedClip(folder.Path("clip.mp4"), AV_CODEC_ID_MPEG4, 2, 40);
    const MediaContents contents = ContentsOf(path);
    const ContentsOrigin origin{path, FileSource(path).Identity()};
    const std::string bytes = ContentsToBytes(origin, contents);
    EXPECT_EQ(ContentsFromBytes(origin, bytes), contents);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        std::string damaged = bytes;
        damaged[i] = static_cast<char>(damaged[i] ^ 4);
        EXPECT_FALSE(ContentsFromBytes(origin, damaged)) << i;
        EXPECT_FALSE(ContentsFromBytes(origin, std::string_view(bytes).substr(0, i))) << i;
    }
    for (std::int64_t FileIdentity::*field :
         {&FileIdentity::size, &FileIdentity::writtenAt, &FileIdentity::changedAt}) {
        ContentsOrigin other = origin;
        other.identity.*field += 1;
        EXPECT_FALSE(ContentsFromBytes(other, bytes));
    }
    EXPECT_FALSE(ContentsFromBytes({path + "2", origin.identity}, bytes));
}

TEST(MediaContents, AFolderKeepsThemWhateverElseIsInIt)
{
    const Folder folder;
    const std::string path = CodedClip(folder.Path("clip.mp4"), AV_CODEC_ID_MPEG4, 1, 30);
    const FileIdentity identity = FileSource(path).Identity();
    const MediaContents contents = ContentsOf(path);
    IndexFolder index;
    index.Keep(path, identity, contents);
    EXPECT_FALSE(index.Find(path, identity));
    EXPECT_FALSE(index.Describe(path));
    index.SetPath(folder.Path("deep/kept"));
    EXPECT_FALSE(index.Find(path, identity));
    index.Keep(path, identity, contents);
    EXPECT_EQ(index.Find(path, identity), contents);
    const KeptIndex kept = *index.Describe(path);
    EXPECT_TRUE(kept.isKept);
    EXPECT_EQ(kept.bytes, fs::file_size(kept.place));
    EXPECT_EQ(kept.frames, 30);
    EXPECT_EQ(kept.sounds, static_cast<int>(contents.sound->samples.Packets().size()));

    std::ofstream(kept.place, std::ios::binary) << "rubbish";
    EXPECT_FALSE(index.Find(path, identity));
    index.Keep(path, identity, contents);
    EXPECT_TRUE(index.Find(path, identity));
    fs::remove(kept.place);
    fs::create_directories(kept.place + "/in the way");
    EXPECT_FALSE(index.Find(path, identity));
    index.Keep(path, identity, contents);
    EXPECT_EQ(fs::directory_iterator(kept.place)->path().filename(), "in the way");
    // A file is no folder.
    index.SetPath(path);
    index.Keep(path, identity, contents);
    EXPECT_FALSE(index.Find(path, identity));
}

TEST(MediaContents, ThatAreKeptOpenAFileAsItIs)
{
    const Folder folder;
    const auto resources = std::make_shared<MediaResources>();
    resources->Index().SetPath(folder.Path("kept"));
    for (const char *name : {"clip.mp4", "clip.avi", "clip.mkv"}) {
        SCOPED_TRACE(name);
        const std::string path = CodedClip(folder.Path(name), AV_CODEC_ID_MPEG4, 2, 60);
        const Media first(path, std::nullopt, resources);
        std::optional<Media> again;
        EXPECT_LT(BytesReadBy([&] { again.emplace(path, std::nullopt, resources); }), 20'000u);
        const Media &second = *again;
        ASSERT_EQ(second.code, kSuccess);
        for (const int number : {59, 0, 31})
            EXPECT_EQ(second.Frame(number), first.Frame(number));
        EXPECT_EQ(second.Samples<std::int32_t>(5000, 100), first.Samples<std::int32_t>(5000, 100));
        // Another file in its place is another.
        CodedClip(path, AV_CODEC_ID_MPEG4, 0, 20);
        EXPECT_EQ(Media(path, std::nullopt, resources).video->FrameCount(), 20);
    }
}

TEST(MediaContents, AreThrownAwayByAgeAndBySize)
{
    const Folder folder;
    IndexFolder index;
    index.SetPath(folder.Path(""));
    const auto now = fs::file_time_type::clock::now();
    for (int day = 0; day < 70; day += 10) {
        const std::string entry = folder.Write(std::to_string(day) + ".mix", std::string(1000, 'x'));
        fs::last_write_time(entry, now - std::chrono::hours(24 * day) - std::chrono::minutes(1));
    }
    const std::string other = folder.Write("other.txt", std::string(9000, 'x'));
    fs::last_write_time(other, now - std::chrono::hours(24 * 100));
    const auto left = [&folder] {
        std::vector<std::string> names;
        for (const auto &entry : fs::directory_iterator(folder.Path("")))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    };
    index.Prune();
    EXPECT_EQ(left(), (std::vector<std::string>{"0.mix", "10.mix", "20.mix", "30.mix", "40.mix", "50.mix",
                                                "other.txt"}));
    index.Prune(3500);
    EXPECT_EQ(left(), (std::vector<std::string>{"0.mix", "10.mix", "20.mix", "other.txt"}));
}
