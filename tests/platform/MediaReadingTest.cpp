// Frames in any order and at any budget are those of a bare decoder that begins at the start of the file, and
// cost no more of the file than they have to.

#include "MediaClips.h"
#include "PlainDecoding.h"

#include <encode/EncoderOutput.h>

#include <marlet/platform/media/MediaFailure.h>
#include <marlet/platform/media/MediaResources.h>
#include <marlet/platform/media/decoding/ClipFrames.h>
#include <marlet/platform/media/decoding/FrameConverter.h>

#include <algorithm>
#include <functional>
#include <random>

using namespace clips;
namespace fs = std::filesystem;

namespace
{

constexpr int kWidth = 176;
constexpr int kHeight = 144;
constexpr std::size_t kFrameBytes = kWidth * kHeight * 3 / 2;
constexpr std::size_t kBesideFrames = 1 << 20; ///< that a decoder is charged

struct Codec {
    AVCodecID id;
    const char *ending;
    int groupSize;
    int bFrames;
    AVPixelFormat format = AV_PIX_FMT_YUV420P;
};

constexpr Codec kCodecs[] = {
    {AV_CODEC_ID_H264, ".mp4", 30, 2},
    {AV_CODEC_ID_H264, ".mkv", 7, 3},
    {AV_CODEC_ID_MPEG4, ".avi", 12, 0},
    {AV_CODEC_ID_MPEG2VIDEO, ".mkv", 12, 2},
    {AV_CODEC_ID_MJPEG, ".mov", 1, 0, AV_PIX_FMT_YUVJ420P},
    {AV_CODEC_ID_FFV1, ".mkv", 1, 0},
    {AV_CODEC_ID_VP8, ".mkv", 20, 0},
    {AV_CODEC_ID_VP9, ".mkv", 20, 0},
};

/// Shades that move on with the frames.
void Paint(AVFrame &frame, int number)
{
    for (int plane = 0; plane < 3; ++plane)
        for (int y = 0; y < (plane ? kHeight / 2 : kHeight); ++y)
            for (int x = 0; x < (plane ? kWidth / 2 : kWidth); ++x)
                frame.data[plane][y * frame.linesize[plane] + x] =
                    static_cast<unsigned char>((x * 3 + y * (plane + 2) + number * 5) % 220 + 16);
}

/// False if there is no such encoder.
bool MakeClipOf(const Codec &codec, const std::string &path, int frames)
{
    if (!avcodec_find_encoder(codec.id))
        return false;
    marlet::tool::EncoderOutput output(path);
    const marlet::tool::CodecPtr encoder = output.NewEncoder(codec.id);
    encoder->width = kWidth;
    encoder->height = kHeight;
    encoder->pix_fmt = codec.format;
    encoder->time_base = {1, 25};
    encoder->framerate = {25, 1};
    encoder->gop_size = codec.groupSize;
    encoder->max_b_frames = codec.bFrames;
    encoder->bit_rate = 400'000;
    output.Check(avcodec_open2(encoder.get(), nullptr, nullptr));
    AVStream *stream = output.AddStream(*encoder);
    output.WriteHeader();
    const marlet::tool::FramePtr frame(av_frame_alloc());
    frame->width = kWidth;
    frame->height = kHeight;
    frame->format = codec.format;
    output.Check(av_frame_get_buffer(frame.get(), 0));
    for (int i = 0; i < frames; ++i) {
        output.Check(av_frame_make_writable(frame.get()));
        Paint(*frame, i);
        frame->pts = i;
        output.Encode(*encoder, *stream, frame.get());
    }
    output.Encode(*encoder, *stream, nullptr);
    output.Finish();
    return true;
}

/// What a bare decoder gives of the first stream of a file: by the number of the packet, and in their order.
std::vector<std::pair<int, Bytes>> DecodeBare(const std::string &path)
{
    std::vector<std::pair<int, Bytes>> pictures;
    FrameCache memory;
    Scalers scalers;
    DecodePlainly(path, [&](const AVFrame &frame) {
        VideoFacts facts;
        facts.width = frame.width;
        facts.height = frame.height;
        Bytes bytes(static_cast<std::size_t>(facts.width * facts.height * 4));
        FrameConverter(facts, memory, scalers).Convert(frame, KyImageChannels::Four, bytes.data());
        pictures.emplace_back(PacketOf(frame), std::move(bytes));
    });
    return pictures;
}

std::vector<Bytes> BareFrames(const std::string &path)
{
    std::vector<Bytes> frames;
    for (auto &[packet, bytes] : DecodeBare(path))
        frames.push_back(std::move(bytes));
    return frames;
}

/// Forwards, the same again, backwards, jumps to and fro, and at random.
std::vector<int> OddOrder(int count)
{
    std::vector<int> order;
    for (int i = 0; i < count; ++i)
        order.insert(order.end(), i % 5 == 0 ? 3 : 1, i);
    for (int i = count - 1; i >= 0; --i)
        order.push_back(i);
    for (int i = 0; i < count; i += 3)
        order.insert(order.end(), {i, count - 1 - i});
    std::mt19937 random(11);
    std::generate_n(std::back_inserter(order), 60, [&] { return static_cast<int>(random() % count); });
    return order;
}

/// The index of a clip as its packets tell it.
FrameIndex IndexOf(const std::string &path)
{
    Demuxer demuxer(std::make_shared<FileSource>(path));
    demuxer.OpenStreams();
    FrameIndex index(demuxer.Stream(0).codecpar->codec_id);
    const PacketPtr packet = NewPacket();
    while (demuxer.Read(*packet))
        index.Add(*packet, nullptr);
    EXPECT_TRUE(index.OrderByTimes());
    return index;
}

} // namespace

TEST(MediaReading, InAnyOrderAndAtAnyBudgetAFrameIsThatOfABareDecoder)
{
    constexpr int kFrames = 70;
    for (const Codec &codec : kCodecs) {
        const Folder folder;
        const std::string path = folder.Path(std::string("clip") + codec.ending);
        if (!MakeClipOf(codec, path, kFrames))
            continue;
        const std::vector<Bytes> expected = BareFrames(path);
        ASSERT_EQ(expected.size(), static_cast<std::size_t>(kFrames));
        for (const std::size_t budget :
             {FrameCache::kUsualBudget, kBesideFrames + 25 * kFrameBytes, std::size_t{0}}) {
            SCOPED_TRACE(std::string(avcodec_get_name(codec.id)) + codec.ending + " with " +
                         std::to_string(budget));
            const auto resources = std::make_shared<MediaResources>();
            resources->Frames().SetBudget(budget);
            const Media media(path, std::nullopt, resources);
            ASSERT_EQ(media.code, kSuccess);
            ASSERT_EQ(media.video->FrameCount(), kFrames);
            for (const int number : OddOrder(kFrames))
                ASSERT_EQ(media.Frame(number), expected[static_cast<std::size_t>(number)]) << number;
        }
    }
}

TEST(MediaReading, CostsNoMoreOfTheFileThanItHasTo)
{
    constexpr int kGroup = 40;
    const Folder folder;
    const std::string path = folder.Path("clip.avi");
    ASSERT_TRUE(MakeClipOf({AV_CODEC_ID_MPEG4, ".avi", kGroup, 0}, path, 6 * kGroup));
    const auto resources = std::make_shared<MediaResources>();
    const Media media(path, std::nullopt, resources);
    const auto group = static_cast<std::size_t>(fs::file_size(path) / 6);
    const std::size_t noise = group / 4 + 70'000; // what a container reads ahead
    const auto frame = [&](int number) { return [&media, number] { media.Frame(number); }; };
    ASSERT_GT(BytesReadBy(frame(5 * kGroup + 20)), 0u);
    media.Frame(2 * kGroup - 1);
    // Backwards and at random in a group that is kept, nothing.
    EXPECT_EQ(BytesReadBy([&] {
                  for (int i = 2 * kGroup - 1; i >= kGroup; --i)
                      media.Frame(i);
                  for (const int i : {7, 3, 3, 39, 12})
                      media.Frame(kGroup + i);
              }),
              0u);
    // The group before, once.
    EXPECT_LE(BytesReadBy([&] {
                  for (int i = kGroup - 1; i >= 0; --i)
                      media.Frame(i);
              }),
              group + noise);
    // A short jump reads on.
    media.Frame(3 * kGroup);
    EXPECT_LE(BytesReadBy(frame(3 * kGroup + 4)), noise);

    // What sleeps keeps nothing, nor is anything kept without a budget, and what is beyond it goes.
    EXPECT_GT(resources->Frames().Used(), 100 * kFrameBytes);
    for (const auto &end : std::initializer_list<std::function<void()>>{[&] { media.file->Sleep(); },
                                                                        [&] { resources->SetBudget(0); }}) {
        resources->SetBudget(kBesideFrames + 30 * kFrameBytes);
        EXPECT_LE(resources->Frames().Used(), kBesideFrames + 30 * kFrameBytes);
        media.file->Wake();
        media.Frame(3 * kGroup);
        EXPECT_GT(resources->Frames().Used(), kBesideFrames);
        end();
        EXPECT_EQ(resources->Frames().Used(), 0u);
    }
}

TEST(MediaReading, AFrameThatDoesNotDecodeCostsItsGroupOnce)
{
    constexpr int kGroup = 20;
    constexpr int kFrames = 12 * kGroup;
    const Folder folder;
    for (const int groupSize : {kGroup, 1}) {
        const std::string path = folder.Path("clip.avi");
        ASSERT_TRUE(MakeClipOf({AV_CODEC_ID_MPEG4, ".avi", groupSize, 0}, path, kFrames));
        // Their start codes are overwritten: the first, in a group, a key frame, and the last.
        const std::vector<int> damaged = {0, 1, 205, 206, 9 * kGroup, kFrames - 1};
        const FrameIndex index = IndexOf(path);
        std::string bytes = folder.Read("clip.avi");
        for (const int number : damaged) {
            const PacketMark &packet = index.Packets()[static_cast<std::size_t>(number)];
            const std::size_t start =
                bytes.find(std::string("\0\0\1\xB6", 4), static_cast<std::size_t>(packet.position));
            bytes.replace(start, 4, "junk");
        }
        folder.Write("clip.avi", bytes);
        std::vector<Bytes> expected(kFrames);
        for (auto &[packet, picture] : DecodeBare(path))
            expected[static_cast<std::size_t>(packet)] = std::move(picture);

        for (const bool isBackwards : {false, true}) {
            SCOPED_TRACE(std::to_string(groupSize) + (isBackwards ? " backwards" : " forwards"));
            const auto resources = std::make_shared<MediaResources>();
            VideoFacts facts;
            facts.width = kWidth;
            facts.height = kHeight;
            const FrameConverter converter(facts, resources->Frames(), resources->Scalers());
            ClipFrames frames(std::make_shared<FileSource>(path), 0, index, resources);
            const auto expectFrame = [&](int number) {
                int shown = number;
                while (shown >= 0 && expected[static_cast<std::size_t>(shown)].empty())
                    --shown;
                Bytes picture(kWidth * kHeight * 4);
                const int code = CodeOf(
                    [&] { converter.Convert(*frames.Frame(number), KyImageChannels::Four, picture.data()); });
                ASSERT_EQ(code, shown < 0 ? kDamaged : kSuccess) << number;
                if (shown < 0)
                    return;
                ASSERT_EQ(picture, expected[static_cast<std::size_t>(shown)]) << number;
            };
            for (const int number : {206, 205, 9 * kGroup, 0, kFrames - 1})
                expectFrame(number);
            // Known by now.
            EXPECT_EQ(BytesReadBy([&] { CodeOf([&] { frames.Frame(0); }); }), 0u);
            for (int i = 0; i < kFrames; ++i)
                expectFrame(isBackwards ? kFrames - 1 - i : i);
        }
        const auto resources = std::make_shared<MediaResources>();
        ClipFrames frames(std::make_shared<FileSource>(path), 0, index, resources);
        frames.Frame(100);
        const std::size_t group = fs::file_size(path) / 12;
        EXPECT_LE(BytesReadBy([&] { frames.Frame(206); }), 2 * group + 70'000);
    }
}

TEST(MediaReading, ScalersAreKeptWithinTheirBytes)
{
    Scalers scalers;
    std::size_t most = 0;
    for (int side = 64; side <= 16384; side *= 2) {
        Scalers::Form form = {.width = side, .height = side, .format = AV_PIX_FMT_YUV420P};
        form.outWidth = form.outHeight = side;
        scalers.Keep(form, scalers.Take(form));
        most = std::max(most, scalers.Bytes());
        // It is taken out as often as it is put in.
        scalers.Keep(form, scalers.Take(form));
        EXPECT_LE(scalers.Bytes(), most);
    }
    EXPECT_GT(most, Scalers::kMostBytes / 2);
    EXPECT_LE(most, Scalers::kMostBytes);
}
