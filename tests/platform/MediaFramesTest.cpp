// Clips whose frames carry their numbers: which picture is handed out for which number, and how.

#include "MediaClips.h"

#include <marlet/platform/media/KyAbstractCodecInfo.h>

#include <algorithm>
#include <random>

using namespace clips;

namespace
{

constexpr int kFrames = 60;

struct Layout {
    const char *ending;
    int bFrames;
    int groupSize;
};

constexpr Layout kLayouts[] = {{".mov", 0, 1},  {".mov", 2, 12}, {".avi", 0, 12},  {".avi", 2, 7},
                               {".mkv", 2, 12}, {".mp4", 3, 5},  {".mkv", 0, 250}, {".mov", 2, 250}};

std::string ClipOf(const Folder &folder, const Layout &layout)
{
    EncoderOptions options = SmallClip();
    options.bFrames = layout.bFrames;
    options.groupSize = layout.groupSize;
    return MakeClip(folder.Path(std::string("clip") + layout.ending), options, kFrames);
}

void ExpectNear(const Bytes &frame, std::size_t pixel, const Bytes &colour)
{
    for (std::size_t i = 0; i < colour.size(); ++i)
        EXPECT_NEAR(frame[pixel * colour.size() + i], colour[i], 4) << "channel " << i;
}

/// Upper left red, upper right green, lower left blue, lower right white; in B, G, R, A.
Bytes FourColours(int width, int height)
{
    const Bytes colours[] = {{0, 0, 200, 255}, {0, 200, 0, 255}, {200, 0, 0, 255}, {250, 250, 250, 255}};
    Bytes frame;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const Bytes &colour = colours[(y >= height / 2) * 2 + (x >= width / 2)];
            frame.insert(frame.end(), colour.begin(), colour.end());
        }
    return frame;
}

std::string ColourClip(const std::string &path, const EncoderOptions &options)
{
    marlet::tool::Encoder encoder(path, options);
    for (int i = 0; i < 3; ++i)
        encoder.AddFrame(FourColours(options.width, options.height).data(), options.width * 4);
    encoder.Finish();
    return path;
}

/// Writes the matrix of a track, as phones do, over the one that turns nothing.
void TurnClip(const Folder &folder, const std::string &name, const std::string &twoByTwo)
{
    constexpr std::size_t kMatrix = 44; // behind the name of the box
    std::string bytes = folder.Read(name);
    const std::size_t matrix = bytes.find("tkhd") + kMatrix;
    const auto put = [&](std::size_t entry, char sign) {
        bytes.replace(matrix + entry * 4, 4,
                      sign == '+'   ? std::string("\0\1\0\0", 4)
                      : sign == '-' ? std::string("\xFF\xFF\0\0", 4)
                                    : std::string(4, '\0'));
    };
    put(0, twoByTwo[0]);
    put(1, twoByTwo[1]);
    put(3, twoByTwo[2]);
    put(4, twoByTwo[3]);
    folder.Write(name, bytes);
}

} // namespace

TEST(MediaFrames, AFrameIsTheSamePictureInAnyOrderOfAsking)
{
    for (const Layout &layout : kLayouts) {
        SCOPED_TRACE(std::string(layout.ending) + " of " + std::to_string(layout.groupSize));
        const Folder folder;
        const Media media(ClipOf(folder, layout));
        ASSERT_EQ(media.code, kSuccess);
        ASSERT_EQ(media.video->FrameCount(), kFrames);
        EXPECT_DOUBLE_EQ(media.video->FrameRate(), 30);
        std::vector<Bytes> inOrder;
        for (int i = 0; i < kFrames; ++i) {
            inOrder.push_back(media.Frame(i));
            ASSERT_EQ(NumberIn(inOrder.back(), 80), i);
        }
        std::mt19937 random(7);
        for (int i = 0; i < 150; ++i) {
            const int number = i < kFrames ? kFrames - 1 - i : static_cast<int>(random() % kFrames);
            ASSERT_EQ(media.Frame(number), inOrder[static_cast<std::size_t>(number)]) << number;
        }
    }
}

TEST(MediaFrames, ComeInBothOrdersOfChannelsWithoutPadding)
{
    const Folder folder;
    for (const auto &[width, height] : {std::pair{64, 48}, std::pair{75, 37}, std::pair{6, 4}}) {
        SCOPED_TRACE(width);
        EncoderOptions options = SmallClip();
        options.width = width;
        options.height = height;
        const Media media(ColourClip(folder.Path("colours.mov"), options));
        ASSERT_EQ(media.code, kSuccess);
        const std::size_t pixels = static_cast<std::size_t>(width * height);
        ASSERT_EQ(media.video->FrameBufferSize(KyImageChannels::Three), static_cast<int>(pixels) * 3);
        constexpr unsigned char kUntouched = 0xA5;
        Bytes three(pixels * 3 + 1, kUntouched);
        Bytes four(pixels * 4 + 1, kUntouched);
        int written = 0;
        ASSERT_EQ(media.video->GetFrame(1, KyImageChannels::Three, three.data(), static_cast<int>(pixels * 3),
                                        &written, 0),
                  kSuccess);
        EXPECT_EQ(written, static_cast<int>(pixels * 3));
        ASSERT_EQ(media.video->GetFrame(1, KyImageChannels::Four, four.data(), static_cast<int>(pixels * 4),
                                        &written, 1),
                  kSuccess);
        EXPECT_EQ(written, static_cast<int>(pixels * 4));
        EXPECT_EQ(three.back(), kUntouched);
        EXPECT_EQ(four.back(), kUntouched);
        if (width < 64)
            continue;
        // Away from the edges, where colours are shared with the neighbours.
        const std::size_t upperLeft = static_cast<std::size_t>(8 * width + 8);
        const std::size_t lowerLeft = static_cast<std::size_t>((height - 8) * width + 8);
        ExpectNear(three, upperLeft, {200, 0, 0});
        ExpectNear(four, upperLeft, {0, 0, 200, 255});
        ExpectNear(four, lowerLeft, {200, 0, 0, 255});
    }
}

TEST(MediaFrames, AreRefusedOutsideTheClipAndForSmallBuffers)
{
    const Folder folder;
    const Media media(MakeClip(folder.Path("clip.avi"), SmallClip(), 5));
    ASSERT_EQ(media.code, kSuccess);
    Bytes bytes(static_cast<std::size_t>(media.video->FrameBufferSize(KyImageChannels::Four)));
    const int size = static_cast<int>(bytes.size());
    const auto get = [&](int frame, int channels, unsigned char *buffer, int bufferSize) {
        return media.video->GetFrame(frame, KyImageChannels{channels}, buffer, bufferSize, nullptr, 0);
    };
    EXPECT_EQ(get(-1, 1, bytes.data(), size), kOutOfRange);
    EXPECT_EQ(get(5, 1, bytes.data(), size), kOutOfRange);
    EXPECT_EQ(get(4, 1, bytes.data(), size - 1), kBufferTooSmall);
    EXPECT_EQ(get(4, 1, nullptr, size), kBufferTooSmall);
    EXPECT_EQ(get(4, 2, bytes.data(), size), kFailed);
    EXPECT_EQ(get(4, 1, bytes.data(), size), kSuccess);
}

TEST(MediaFrames, FactsAreThoseOfTheFile)
{
    const Folder folder;
    EncoderOptions options = SmallClip();
    options.frameRate = {30000, 1001};
    options.pixelAspect = {10, 11};
    options.fieldOrder = marlet::tool::FieldOrder::TopFirst;
    const Media media(MakeClip(folder.Path("clip.mov"), options, 40));
    ASSERT_EQ(media.code, kSuccess);
    EXPECT_EQ(media.audio, nullptr);
    EXPECT_DOUBLE_EQ(media.video->FrameRate(), 30000.0 / 1001);
    EXPECT_DOUBLE_EQ(media.video->PixelAspectRatio(), 10.0 / 11);
    EXPECT_EQ(media.video->FieldOrder(), 3);
    EXPECT_EQ(media.video->Codec(), KyVideoCodec::MPEG4);
    EXPECT_EQ(media.video->CodecInfo()->Name(), "mpeg4");
    EXPECT_EQ(media.video->CodecInfo()->LongName(), "MPEG-4 part 2");
    EXPECT_EQ(media.video->PixelBitCount(), 24);
    EXPECT_EQ(media.video->PixelChannelOrder(), KyChannelOrder::RGB);

    options.fieldOrder = marlet::tool::FieldOrder::BottomFirst;
    EXPECT_EQ(Media(MakeClip(folder.Path("bottom.avi"), options, 4)).video->FieldOrder(), 2);
}

TEST(MediaFrames, AreTurnedAsTheFileSays)
{
    // The matrix' two rows, and what then stands in the upper left and the upper right.
    struct {
        const char *matrix;
        Bytes upperLeft;
        Bytes upperRight;
        bool isTransposed;
    } const kTurns[] = {
        {"0+-0", {200, 0, 0, 255}, {0, 0, 200, 255}, true},      // clockwise
        {"-00-", {250, 250, 250, 255}, {200, 0, 0, 255}, false}, // upside down
        {"0-+0", {0, 200, 0, 255}, {250, 250, 250, 255}, true},  // counterclockwise
        {"-00+", {0, 200, 0, 255}, {0, 0, 200, 255}, false},     // mirrored
        {"0++0", {0, 0, 200, 255}, {200, 0, 0, 255}, true},      // along the diagonal
        {"++-+", {0, 0, 200, 255}, {0, 200, 0, 255}, false},     // no multiple of a right angle
    };
    const Folder folder;
    for (const auto &turn : kTurns) {
        SCOPED_TRACE(turn.matrix);
        EncoderOptions options = SmallClip();
        options.pixelAspect = {2, 1};
        ColourClip(folder.Path("turned.mov"), options);
        TurnClip(folder, "turned.mov", turn.matrix);
        const Media media(folder.Path("turned.mov"));
        ASSERT_EQ(media.code, kSuccess);
        const int width = turn.isTransposed ? 48 : 80;
        ASSERT_EQ(media.video->Width(), width);
        EXPECT_EQ(media.video->Height(), turn.isTransposed ? 80 : 48);
        EXPECT_DOUBLE_EQ(media.video->PixelAspectRatio(), turn.isTransposed ? 0.5 : 2);
        const Bytes frame = media.Frame(0);
        ExpectNear(frame, static_cast<std::size_t>(8 * width + 8), turn.upperLeft);
        ExpectNear(frame, static_cast<std::size_t>(8 * width + width - 8), turn.upperRight);
    }
}
