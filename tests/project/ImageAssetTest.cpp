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

/// A BMP whose header claims 100,000 pixels each way.
QByteArray Bomb(QByteArray bmp)
{
    static constexpr char kSize[] = "\xa0\x86\1\0";
    return bmp.replace(18, 4, kSize, 4).replace(22, 4, kSize, 4);
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
}

TEST(ImageAsset, TellsWhatIsInItsFile)
{
    using Status = ImageAsset::FileStatus;
    const ImageFiles files;
    const WideString pipe = files.Path("pipe.png");
    ASSERT_EQ(mkfifo(ToUtf8(pipe).c_str(), 0600), 0);

    struct {
        const char *name;
        WideString path;
        int bitCount;
        KyChannelOrder order;
        Status status;
    } const cases[] = {
        {"alpha", files.Write("a.png", files.Plain(5, 4, QImage::Format_ARGB32)), 32, KyChannelOrder::BGRA,
         Status::Usable},
        {"deep alpha", files.Write("d.png", files.Plain(5, 4, QImage::Format_RGBA64)), 32,
         KyChannelOrder::BGRA, Status::Usable},
        {"no alpha", files.Write("c.jpg", files.Plain(5, 4)), 24, KyChannelOrder::RGB, Status::Usable},
        {"text", files.Write("t.png", QByteArray("no picture")), 0, KyChannelOrder::None, Status::Unreadable},
        {"folder", files.Path(""), 0, KyChannelOrder::None, Status::Unreadable},
        {"pipe that nobody writes", pipe, 0, KyChannelOrder::None, Status::Unreadable},
        {"missing, but not with an extension", files.Path("a"), 0, KyChannelOrder::None, Status::Missing},
    };
    for (const auto &test : cases) {
        SCOPED_TRACE(test.name);
        const auto asset = ImageAsset::Create(test.path);
        EXPECT_EQ(asset->Width(), test.bitCount == 0 ? 0 : 5);
        EXPECT_EQ(asset->Height(), test.bitCount == 0 ? 0 : 4);
        EXPECT_EQ(asset->PixelBitCount(), test.bitCount);
        EXPECT_EQ(asset->PixelChannelOrder(), test.order);
        EXPECT_EQ(asset->Status(), test.status);
        EXPECT_EQ(asset->IsOffline(), test.status == Status::Missing);
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
    asset->SetFilename(files.Write("b.png", files.Plain(7, 4)));
    EXPECT_EQ(asset->Width(), 7);
    EXPECT_EQ(asset->PixelAspectRatio(), PAR::Square);

    ProjectTextureImageCache textures;
    clone->Deserialize(asset->Serialize(textures), nullptr, NoEffects(), textures);
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
    files.Write("good.bmp", files.Plain(200, 200));
    files.Write("bomb.bmp", Bomb(files.Read("good.bmp")));
    files.Write("cut.png", good.left(good.size() / 2));
    struct {
        const char *name;
        const char *file;
        int maxWidth, maxHeight;
    } const cases[] = {
        {"claims 40 GB", "bomb.bmp", 100, 100},
        {"cut off", "cut.png", 100, 100},
        {"no width", "good.png", 0, 100},
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
