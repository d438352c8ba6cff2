// Image sequences, and pictures as clips of one frame.

#include "MediaClips.h"

using namespace clips;

namespace
{

/// A grey picture.
std::string Pgm(int shade, int width = 6, int height = 4)
{
    return "P5\n" + std::to_string(width) + " " + std::to_string(height) + "\n255\n" +
           std::string(static_cast<std::size_t>(width * height), static_cast<char>(shade));
}

/// The shade of each frame, or -1 for one that is not handed out.
std::vector<int> ShadesOf(const Media &media, const std::vector<int> &frames)
{
    std::vector<int> shades;
    for (const int frame : frames) {
        const Bytes bytes = media.Frame(frame);
        shades.push_back(bytes.empty() ? -1 : bytes.front());
    }
    return shades;
}

} // namespace

TEST(MediaPictures, ASequenceRunsFromTheLowestNumberAndFillsItsGaps)
{
    const Folder folder;
    for (const int number : {8, 9, 10, 13})
        folder.Write("shot2.00" + std::string(number < 10 ? "0" : "") + std::to_string(number) + ".pgm",
                     Pgm(number * 10));
    // Neighbours that are no members.
    for (const char *name : {"shot2.011.pgm", "shot2.00011.pgm", "shot3.0011.pgm", "shot2.0011.png",
                             "shot2.0011.pgm~", "shot2.00x1.pgm"})
        folder.Write(name, Pgm(1));
    std::filesystem::create_directory(folder.Path("shot2.0014.pgm"));
    for (const char *named : {"shot2.0008.pgm", "shot2.0013.pgm"}) {
        const Media media(folder.Path(named), 12.5);
        ASSERT_EQ(media.code, kSuccess);
        EXPECT_EQ(media.video->FrameCount(), 6);
        EXPECT_DOUBLE_EQ(media.video->FrameRate(), 12.5);
        EXPECT_EQ(media.video->Codec(), KyVideoCodec::Still);
        EXPECT_EQ(ShadesOf(media, {5, 0, 1, 2, 3, 4, 5, 3}),
                  (std::vector<int>{130, 80, 90, 100, 100, 100, 130, 100}));
    }
    EXPECT_EQ(Media(folder.Path("shot2.0012.pgm"), 25).code, kNotFound);
}

TEST(MediaPictures, TheNumberIsTheLastBeforeTheEnding)
{
    struct {
        const char *name;
        const char *next;
        int count;
    } const kNames[] = {{"a1.7.pgm", "a1.8.pgm", 2}, {"b01", "b02", 2},      {"c.001", "c.002", 2},
                        {"d3_x.pgm", "d4_x.pgm", 2}, {"plain.pgm", "", 1},   {"e.p5", "e.p6", 1},
                        {"f99.pgm", "f100.pgm", 1},  {"-5.pgm", "-6.pgm", 2}};
    for (const auto &names : kNames) {
        SCOPED_TRACE(names.name);
        const Folder folder;
        folder.Write(names.name, Pgm(50));
        if (*names.next)
            folder.Write(names.next, Pgm(60));
        const Media media(folder.Path(names.name), 25);
        ASSERT_EQ(media.code, kSuccess);
        EXPECT_EQ(media.video->FrameCount(), names.count);
    }
}

TEST(MediaPictures, ADamagedMemberLeavesTheOthersAndAnotherSizeIsScaled)
{
    const Folder folder;
    folder.Write("p1.pgm", Pgm(40));
    folder.Write("p2.pgm", "P5\n6 4\n255\nshort");
    folder.Write("p3.pgm", Pgm(200, 40, 30));
    folder.Write("p4.pgm", Pgm(70));
    const Media media(folder.Path("p1.pgm"), 25);
    ASSERT_EQ(media.code, kSuccess);
    EXPECT_EQ(ShadesOf(media, {0, 1, 2, 3, 1, 0}), (std::vector<int>{40, -1, 200, 70, -1, 40}));
}

TEST(MediaPictures, APictureIsAClipOfOneFrameWithStraightAlpha)
{
    const Folder folder;
    const std::string header = "P7\nWIDTH 2\nHEIGHT 1\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n";
    const Media media(
        folder.Write("alpha.pam", header + "\x10\x20\x30\x40\xFF\x01\x02" + std::string(1, '\0')));
    ASSERT_EQ(media.code, kSuccess);
    EXPECT_EQ(media.video->FrameCount(), 1);
    EXPECT_EQ(media.video->FrameRate(), 0);
    EXPECT_EQ(media.video->PixelBitCount(), 32);
    EXPECT_EQ(media.video->PixelChannelOrder(), KyChannelOrder::BGRA);
    EXPECT_EQ(media.Frame(0), (Bytes{0x30, 0x20, 0x10, 0x40, 0x02, 0x01, 0xFF, 0x00}));
}

TEST(MediaPictures, OpenByAnyName)
{
    const std::string colour = "P6\n2 1\n255\n" + std::string(6, '\x40');
    const std::string bits = "P4\n8 1\n" + std::string(1, '\0');
    struct {
        const char *ending;
        std::string bytes;
        int shade;
    } const kPictures[] = {{".pgm", Pgm(0x40), 0x40}, {".ppm", colour, 0x40}, {".pbm", bits, 255}};
    for (const auto &picture : kPictures)
        for (const char *name :
             {"a*1", "a?1", "a{1", "a{x,y}1", "a%03d1", "a%1", "a b.c1", "*", "a[1]1", "a#:1"}) {
            SCOPED_TRACE(name + std::string(picture.ending));
            const Folder folder;
            const std::string path = folder.Write(name + std::string(picture.ending), picture.bytes);
            for (const std::optional<double> rate : {std::optional<double>(), std::optional<double>(25)}) {
                const Media media(path, rate);
                ASSERT_EQ(media.code, kSuccess);
                EXPECT_EQ(ShadesOf(media, {0}), std::vector<int>{picture.shade});
            }
        }
}
