#include "ImageFiles.h"
#include "Loading.h"

#include <marlet/project/ImageAsset.h>
#include <marlet/project/ProjectTextureImageCache.h>

#include <QImageReader>
#include <boost/smart_ptr/shared_array.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace marlet::project;
using testing::ElementsAre;

namespace
{

/// What ReadPixelData gives.
struct Pixels {
    Pixels(ImageAsset &asset, int maxWidth, int maxHeight)
        : status(asset.ReadPixelData(maxWidth, maxHeight, bytes, &width, &height))
    {
    }
    std::vector<int> First(std::size_t count) const { return {bytes.get(), bytes.get() + count}; }

    boost::shared_array<unsigned char> bytes;
    int width = -1;
    int height = -1;
    unsigned int status;
};

/// The check sum of a PNG chunk, bit by bit.
quint32 Crc(const QByteArray &bytes)
{
    quint32 crc = 0xffffffffu;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc & 1 ? crc >> 1 ^ 0xedb88320u : crc >> 1;
    }
    return ~crc;
}

void PutBigEndian(QByteArray &bytes, int offset, quint32 value)
{
    for (int i = 0; i < 4; ++i)
        bytes[offset + i] = static_cast<char>(value >> (24 - 8 * i));
}

/// A small PNG that claims a huge size: its header chunk is 13 bytes behind "IHDR" at 12.
QByteArray Bomb(QByteArray png)
{
    PutBigEndian(png, 16, 100'000);
    PutBigEndian(png, 20, 100'000);
    PutBigEndian(png, 29, Crc(png.mid(12, 17)));
    return png;
}

/// A JPEG with a camera's note that it is to be turned by 90 degrees: an EXIF segment with one entry.
QByteArray TurnedOnItsSide(QByteArray jpeg)
{
    static constexpr char kNote[] = "\xff\xe1\0\x22"
                                    "Exif\0\0"
                                    "MM\0*\0\0\0\x08"
                                    "\0\x01"
                                    "\x01\x12\0\x03\0\0\0\x01\0\x06\0\0"
                                    "\0\0\0\0";
    return jpeg.insert(2, QByteArray(kNote, sizeof kNote - 1));
}

} // namespace

TEST(ImageAsset, IsNamedLikeItsFile)
{
    EXPECT_EQ(ImageAsset::Create(u"/stills/sky.old.png")->Name(), u"sky.old.png");
    EXPECT_EQ(ImageAsset::Create(u"\xfeff"
                                 u"sky.png")
                  ->Name(),
              u"\xfeff"
              u"sky.png");
}

TEST(ImageAsset, TellsWhatIsInItsFile)
{
    using Status = ImageAsset::FileStatus;
    const ImageFiles files;
    QImage palette(5, 4, QImage::Format_Indexed8);
    palette.setColorTable({qRgb(1, 2, 3)});
    palette.fill(0);
    const WideString pipe = files.Path("pipe.png");
    ASSERT_EQ(mkfifo(ToUtf8(pipe).c_str(), 0600), 0);

    struct {
        const char *name;
        WideString path;
        Status status;
        bool isOffline;
        int width, height, bitCount;
        KyChannelOrder order;
    } const cases[] = {
        {"alpha", files.Write("a.png", files.Plain(5, 4, QImage::Format_ARGB32)), Status::Usable, false, 5, 4,
         32, KyChannelOrder::BGRA},
        {"deep alpha", files.Write("d.png", files.Plain(5, 4, QImage::Format_RGBA64)), Status::Usable, false,
         5, 4, 32, KyChannelOrder::BGRA},
        {"no alpha", files.Write("b.png", files.Plain(5, 4)), Status::Usable, false, 5, 4, 24,
         KyChannelOrder::RGB},
        {"palette", files.Write("p.png", palette), Status::Usable, false, 5, 4, 24, KyChannelOrder::RGB},
        {"JPEG", files.Write("c.jpg", files.Plain(5, 4)), Status::Usable, false, 5, 4, 24,
         KyChannelOrder::RGB},
        {"text", files.Write("t.png", QByteArray("no picture")), Status::Unreadable, false, 0, 0, 0,
         KyChannelOrder::None},
        {"empty file", files.Write("e.png", QByteArray()), Status::Unreadable, false, 0, 0, 0,
         KyChannelOrder::None},
        {"folder", files.Path(""), Status::Unreadable, false, 0, 0, 0, KyChannelOrder::None},
        {"pipe that nobody writes", pipe, Status::Unreadable, false, 0, 0, 0, KyChannelOrder::None},
        {"missing", files.Path("missing.png"), Status::Missing, true, 0, 0, 0, KyChannelOrder::None},
        {"missing, but not with an extension", files.Path("a"), Status::Missing, true, 0, 0, 0,
         KyChannelOrder::None},
        {"no name", u"", Status::Missing, true, 0, 0, 0, KyChannelOrder::None},
    };
    for (const auto &test : cases) {
        SCOPED_TRACE(test.name);
        const auto asset = ImageAsset::Create(test.path);
        EXPECT_EQ(asset->Width(), test.width);
        EXPECT_EQ(asset->Height(), test.height);
        EXPECT_EQ(asset->PixelBitCount(), test.bitCount);
        EXPECT_EQ(asset->PixelChannelOrder(), test.order);
        EXPECT_EQ(asset->Status(), test.status);
        EXPECT_EQ(asset->IsOffline(), test.isOffline);
        EXPECT_EQ(Pixels(*asset, 100, 100).status == 0, test.status == Status::Usable);
    }
}

TEST(ImageAsset, KeepsWhatItKnowsUntilItSleepsOrChangesItsFile)
{
    const ImageFiles files;
    const auto asset = ImageAsset::Create(files.Write("a.png", files.Plain(5, 4)));
    asset->SetPixelAspectRatio(PAR::Pal);
    asset->Wake();
    files.Write("a.png", files.Plain(6, 4));
    EXPECT_EQ(asset->Width(), 5);
    const auto clone = ImageAsset::Copy(asset);
    asset->Sleep();
    EXPECT_EQ(asset->Width(), 6);
    EXPECT_EQ(asset->PixelAspectRatio(), PAR::Pal);
    EXPECT_EQ(clone->Width(), 5);
    EXPECT_EQ(clone->Filename(), asset->Filename());
    EXPECT_NE(clone->ID(), asset->ID());

    asset->SetFilename(files.Write("b.png", files.Plain(7, 4)));
    EXPECT_EQ(asset->Width(), 7);
    EXPECT_EQ(asset->PixelAspectRatio(), PAR::Square);

    const ProjectTextureImageCache textures;
    ProjectTextureImageCache changeable;
    clone->Deserialize(asset->Serialize(textures), nullptr, NoEffects(), changeable);
    EXPECT_EQ(clone->Width(), 7);
}

TEST(ImageAsset, ReadsPixelsScaledDownToFit)
{
    const ImageFiles files;
    struct {
        const char *name;
        int width, height, maxWidth, maxHeight, expectedWidth, expectedHeight;
    } const cases[] = {
        {"both too large", 4000, 2000, 1000, 1000, 1000, 500},
        {"too high", 100, 400, 200, 200, 50, 200},
        {"smaller", 30, 20, 1000, 1000, 30, 20},
        {"exact", 30, 20, 30, 20, 30, 20},
        {"a line", 1000, 1, 10, 10, 10, 1},
        {"a column", 1, 1000, 10, 10, 1, 10},
    };
    for (const auto &test : cases) {
        SCOPED_TRACE(test.name);
        const auto asset = ImageAsset::Create(files.Write("a.png", files.Plain(test.width, test.height)));
        const Pixels pixels(*asset, test.maxWidth, test.maxHeight);
        EXPECT_EQ(pixels.status, 0u);
        EXPECT_EQ(pixels.width, test.expectedWidth);
        EXPECT_EQ(pixels.height, test.expectedHeight);
        EXPECT_THAT(pixels.First(3), ElementsAre(10, 20, 30));
    }
}

TEST(ImageAsset, ArrangesBytesByTheBitCount)
{
    const ImageFiles files;
    QImage image(3, 2, QImage::Format_ARGB32);
    image.fill(qRgba(200, 100, 50, 128));
    const auto withAlpha = ImageAsset::Create(files.Write("a.png", image));
    EXPECT_THAT(Pixels(*withAlpha, 9, 9).First(5), ElementsAre(50, 100, 200, 128, 50));

    // A row of 9 bytes is padded to 12.
    image.convertTo(QImage::Format_RGB888);
    image.setPixelColor(0, 1, QColor(1, 2, 3));
    const auto opaque = ImageAsset::Create(files.Write("b.png", image));
    const Pixels pixels(*opaque, 9, 9);
    EXPECT_THAT(pixels.First(3), ElementsAre(200, 100, 50));
    EXPECT_EQ(pixels.bytes[12], 1);
    EXPECT_EQ(pixels.bytes[14], 3);
}

TEST(ImageAsset, LeavesTheArgumentsAloneWhenItFails)
{
    const ImageFiles files;
    const QByteArray good = (files.Write("good.png", files.Plain(200, 200)), files.Read("good.png"));
    files.Write("bomb.png", Bomb(good));
    files.Write("cut.png", good.left(good.size() / 2));
    files.Write("header.png", good.left(20));
    struct {
        const char *name;
        const char *file;
        int maxWidth, maxHeight;
    } const cases[] = {
        {"claims 40 GB", "bomb.png", 100, 100},     {"cut off", "cut.png", 100, 100},
        {"header cut off", "header.png", 100, 100}, {"no width", "good.png", 0, 100},
        {"negative height", "good.png", 100, -1},
    };
    for (const auto &test : cases) {
        SCOPED_TRACE(test.name);
        const auto asset = ImageAsset::Create(files.Path(test.file));
        const Pixels pixels(*asset, test.maxWidth, test.maxHeight);
        EXPECT_NE(pixels.status, 0u);
        EXPECT_EQ(pixels.bytes, nullptr);
        EXPECT_EQ(pixels.width, -1);
    }
}

TEST(ImageAsset, ReadsStillsBeyondTheLimitOfTheDecoder)
{
    const ImageFiles files;
    // 134.6 MB once it is decoded.
    const auto asset = ImageAsset::Create(files.Write("large.png", files.Plain(5800, 5800)));
    const Pixels pixels(*asset, 58, 58);
    EXPECT_EQ(pixels.status, 0u);
    EXPECT_EQ(pixels.width, 58);
}

TEST(ImageAsset, DoesNotTurnPicturesByTheirOrientation)
{
    const ImageFiles files;
    files.Write("plain.jpg", files.Plain(40, 20));
    const WideString path = files.Write("turned.jpg", TurnedOnItsSide(files.Read("plain.jpg")));
    QImageReader turning(QString::fromStdU16String(path));
    turning.setAutoTransform(true);
    ASSERT_EQ(turning.read().width(), 20);

    const auto asset = ImageAsset::Create(path);
    EXPECT_EQ(asset->Width(), 40);
    EXPECT_EQ(Pixels(*asset, 100, 100).width, 40);
}
