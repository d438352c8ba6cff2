// What is learnt of a file when it is opened: how much of it that takes, and what is kept for the next time.

#include "MediaClips.h"

#include <marlet/platform/media/contents/ContentsForm.h>
#include <marlet/platform/media/contents/IndexFolder.h>
#include <marlet/platform/media/contents/SoundCounter.h>

#include <encode/EncoderOutput.h>

#include <algorithm>
#include <csignal>
#include <utility>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

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

/// Visits the frames as a decoder gives them that reads the pictures of a clip, its first stream, from front
/// to back. The time of each is the number of its packet.
template <class Visit> void DecodePlainly(const std::string &path, Visit &&visit)
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
    const auto send = [&](const AVPacket *next) {
        avcodec_send_packet(decoder.get(), next);
        while (avcodec_receive_frame(decoder.get(), frame.get()) >= 0)
            visit(*frame);
    };
    for (int number = 0; av_read_frame(format, packet.get()) >= 0; av_packet_unref(packet.get())) {
        if (packet->stream_index != 0)
            continue;
        packet->pts = packet->dts = number++;
        send(packet.get());
    }
    send(nullptr);
    avformat_close_input(&format);
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

TEST(MediaContents, AreNotKeptInAFolderThatTakesNoMore)
{
    const Folder folder;
    const std::string path = CodedClip(folder.Path("clip.mp4"), AV_CODEC_ID_MPEG4, 1, 30);
    const FileIdentity identity = FileSource(path).Identity();
    const MediaContents contents = ContentsOf(path);
    IndexFolder index;
    index.SetPath("/proc/self/kept");
    index.Keep(path, identity, contents);
    EXPECT_FALSE(index.Find(path, identity));

    index.SetPath(folder.Path("kept"));
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit before {
    };
    ::getrlimit(RLIMIT_FSIZE, &before);
    const struct rlimit full = {100, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &full);
    index.Keep(path, identity, contents);
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(index.Find(path, identity));
    EXPECT_EQ(fs::directory_iterator(folder.Path("kept")), fs::directory_iterator());
    index.Keep(path, identity, contents);
    EXPECT_EQ(index.Find(path, identity), contents);
}

TEST(MediaContents, AreKeptWholeByTwoProcessesAtOnce)
{
    constexpr int kTimes = 200;
    const Folder folder;
    const std::string path = CodedClip(folder.Path("clip.mp4"), AV_CODEC_ID_MPEG4, 1, 30);
    const FileIdentity identity = FileSource(path).Identity();
    const MediaContents contents = ContentsOf(path);
    IndexFolder index;
    index.SetPath(folder.Path("kept"));
    index.Keep(path, identity, contents);
    const ::pid_t other = ::fork();
    for (int i = 0; i < kTimes; ++i) {
        index.Keep(path, identity, contents);
        if (other != 0) {
            EXPECT_EQ(index.Find(path, identity), contents) << i;
        }
    }
    if (other == 0)
        ::_exit(0);
    int status = -1;
    EXPECT_EQ(::waitpid(other, &status, 0), other);
    EXPECT_EQ(status, 0);
    // The entry, and the mark of the last pruning.
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path("kept")), {}), 2);
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
