#include <tests/project/ImageFiles.h>

#include <marlet/platform/images/ImageFile.h>

#include <QDirIterator>
#include <QImageReader>
#include <QtEndian>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <malloc.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace marlet::project::platform
{

namespace
{

using testing::ElementsAre;
using Bytes = std::vector<unsigned char>;

constexpr int kNoLimit = 1 << 20;

// One or two pixels each, a transparent one among them.
constexpr char kTransparentGif[] =
    "474946383961010001008000000000ff00ffff21f90401000001002c00000000010001000002024c"
    "01003b";
constexpr char kOpaqueGif[] = "474946383961010001008000000000ff00ffff2c00000000010001000002024c01003b";
constexpr char kTransparentGrayPng[] = "89504e470d0a1a0a0000000d4948445200000002000000010800000000d1492056000"
                                       "0000274524e530040004f8ca80000000b4944415478"
                                       "da637070040000c400824bacf0280000000049454e44ae426082";
constexpr char kTransparentBilevelPng[] = "89504e470d0a1a0a0000000d4948445200000002000000010100000000dc594227"
                                          "0000000274524e5300010194fdae0000000a4944415478"
                                          "da637000000042004184bf8e620000000049454e44ae426082";
/// 12 34 56 78 9a bc, which is the transparent colour, and ff ff 80 00 01 01.
constexpr char kTransparentDeepPng[] =
    "89504e470d0a1a0a0000000d49484452000000020000000110020000002bd0349e0000000674524e53123456789abc89e44ee600"
    "00001549"
    "44415478da63103209ab98b5e7ffff060646460021a104eb6c7cbe900000000049454e44ae426082";

QByteArray FromHex(const char *hex)
{
    return QByteArray::fromHex(hex);
}

/// New memory holds the opposite of the byte.
class FilledMemory
{
public:
    explicit FilledMemory(int byte) { mallopt(M_PERTURB, byte); }
    FilledMemory(const FilledMemory &) = delete;
    FilledMemory &operator=(const FilledMemory &) = delete;
    ~FilledMemory() { mallopt(M_PERTURB, 0); }
};

/// All that can be asked of a file: width, height and alpha of its header, the same of its pixels, the
/// pixels. What padding of rows holds does not count.
struct Answers {
    explicit Answers(const WideString &path)
    {
        const auto known = ReadImageHeader(path);
        if (!known)
            return;
        header = {known->width, known->height, known->hasAlpha};
        if (static_cast<long long>(known->width) * known->height > 1 << 22)
            return;
        const auto read = ReadImagePixels(path, kNoLimit, kNoLimit, known->hasAlpha);
        if (!read)
            return;
        const int bytesOfRow = read->width * (known->hasAlpha ? 4 : 3);
        for (int row = 0; row < read->height; ++row) {
            const unsigned char *first = read->bytes.get() + row * ((bytesOfRow + 3) / 4 * 4);
            pixels.insert(pixels.end(), first, first + bytesOfRow);
        }
    }
    bool operator==(const Answers &other) const = default;

    std::vector<int> header;
    Bytes pixels;
};

/// The answers, which are the same whatever was in the memory before.
Answers AnswersOf(const WideString &path)
{
    const auto ask = [&](int byte) {
        const FilledMemory filled(byte);
        return Answers(path);
    };
    const Answers answers = ask(1);
    EXPECT_TRUE(answers == ask(91));
    return answers;
}

QImage Colourful(QImage::Format format)
{
    QImage image(12, 7, QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgba(20 * x, 30 * y, 5 * x * y % 256, 255 - 20 * y));
    }
    return image.convertToFormat(format);
}

QImage Palette(int alpha = 0)
{
    QImage image(3, 1, QImage::Format_Indexed8);
    image.setColorTable({qRgba(10, 20, 30, alpha), qRgba(40, 50, 60, 255)});
    image.fill(1);
    image.setPixel(1, 0, 0);
    return image;
}

/// A file of each format that the machine writes, and some that it only reads.
std::map<std::string, QByteArray> FilesOfAllFormats(const ImageFiles &files)
{
    std::map<std::string, QByteArray> all = {{"gif", FromHex(kTransparentGif)},
                                             {"deep", FromHex(kTransparentDeepPng)}};
    for (const QByteArray &format : QImageWriter::supportedImageFormats()) {
        const QByteArray name = "whole." + format;
        files.Write(name.constData(), Colourful(QImage::Format_ARGB32));
        all.emplace(format.toStdString(), files.Read(name.constData()));
    }
    return all;
}

/// TIFF of 3 x 2 pixels with 16 bits a channel, of which each has a plane of its own.
class PlanarTiff
{
public:
    static constexpr int kWidth = 3;
    static constexpr int kHeight = 2;

    explicit PlanarTiff(int planes)
    {
        constexpr int kShort = 3, kLong = 4;
        const int sizeOfPlane = kWidth * kHeight * 2;
        // Planes, one value for each plane in two lists, then the directory.
        const int bits = 8 + planes * sizeOfPlane, places = bits + 2 * planes, sizes = places + 4 * planes;
        Append(QByteArray("II*\0", 4));
        Append32(sizes + 4 * planes);
        for (int i = 0; i < planes * kWidth * kHeight; ++i)
            Append16(Level(i));
        for (int i = 0; i < planes; ++i)
            Append16(16);
        for (int i = 0; i < planes; ++i)
            Append32(8 + i * sizeOfPlane);
        for (int i = 0; i < planes; ++i)
            Append32(sizeOfPlane);
        std::vector<std::array<int, 4>> entries = {{256, kShort, 1, kWidth},    {257, kShort, 1, kHeight},
                                                   {258, kShort, planes, bits}, {259, kShort, 1, 1},
                                                   {262, kShort, 1, 2},         {273, kLong, planes, places},
                                                   {277, kShort, 1, planes},    {278, kShort, 1, kHeight},
                                                   {279, kLong, planes, sizes}, {284, kShort, 1, 2}};
        if (planes == 4)
            entries.push_back({338, kShort, 1, 2}); // the fourth is alpha
        Append16(static_cast<int>(entries.size()));
        for (const auto &entry : entries) {
            Append16(entry[0]);
            Append16(entry[1]);
            Append32(entry[2]);
            Append32(entry[3]);
        }
        Append32(0);
    }
    const QByteArray &Bytes() const { return bytes_; }
    /// Of a place in all the planes.
    static int Level(int place) { return (place * 3571 + 200) % 65536; }

private:
    void Append(const QByteArray &more) { bytes_ += more; }
    void Append16(int value)
    {
        const quint16 little = qToLittleEndian(static_cast<quint16>(value));
        Append(QByteArray(reinterpret_cast<const char *>(&little), 2));
    }
    void Append32(int value)
    {
        const quint32 little = qToLittleEndian(static_cast<quint32>(value));
        Append(QByteArray(reinterpret_cast<const char *>(&little), 4));
    }

    QByteArray bytes_;
};

} // namespace

TEST(Stills, CutAndDamagedCopiesOfEveryFormatAreRefusedOrReadAlikeEachTime)
{
    const ImageFiles files;
    std::mt19937 random(17);
    for (const auto &[format, whole] : FilesOfAllFormats(files)) {
        SCOPED_TRACE(format);
        const qsizetype step = std::max<qsizetype>(whole.size() / 60, 1);
        for (qsizetype size = 0; size < whole.size(); size += step) {
            SCOPED_TRACE(size);
            AnswersOf(files.Write("cut", whole.left(size)));
        }
        for (int i = 0; i < 40; ++i) {
            QByteArray damaged = whole;
            for (int change = 0; change <= i % 3; ++change)
                damaged[static_cast<qsizetype>(random() % damaged.size())] = static_cast<char>(random());
            AnswersOf(files.Write("damaged", damaged));
        }
    }
}

TEST(Stills, HaveAnAlphaChannelWhereTheirPictureHasOne)
{
    const ImageFiles files;
    const QImage plain = Colourful(QImage::Format_RGB888), clear = Colourful(QImage::Format_ARGB32);
    struct {
        const char *name;
        WideString path;
        bool hasAlpha;
    } const cases[] = {
        {"palette", files.Write("p.png", Palette()), true},
        {"opaque palette", files.Write("o.png", Palette(255)), false},
        {"gray", files.Write("g.png", FromHex(kTransparentGrayPng)), true},
        {"opaque gray", files.Write("h.png", plain.convertToFormat(QImage::Format_Grayscale8)), false},
        {"bilevel", files.Write("b.png", FromHex(kTransparentBilevelPng)), true},
        {"gif", files.Write("a.gif", FromHex(kTransparentGif)), true},
        {"opaque gif", files.Write("b.gif", FromHex(kOpaqueGif)), false},
        {"gray jpeg", files.Write("g.jpg", plain.convertToFormat(QImage::Format_Grayscale8)), false},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.name);
        const Answers answers = AnswersOf(row.path);
        ASSERT_EQ(answers.header.size(), 3u);
        EXPECT_EQ(answers.header[2], row.hasAlpha);
        ASSERT_FALSE(answers.pixels.empty());
        if (row.hasAlpha) {
            bool isTransparent = false;
            for (std::size_t i = 3; i < answers.pixels.size(); i += 4)
                isTransparent |= answers.pixels[i] < 255;
            EXPECT_TRUE(isTransparent);
        }
    }
    if (QImageReader::supportedImageFormats().contains("webp")) {
        EXPECT_TRUE(AnswersOf(files.Write("c.webp", clear)).header[2]);
        EXPECT_FALSE(AnswersOf(files.Write("p.webp", plain)).header[2]);
    }
}

TEST(Stills, TellTheirSizeWhereTheHeaderIsWholeAndThePixelsAreNot)
{
    const ImageFiles files;
    files.Write("a.png", Palette());
    const QByteArray whole = files.Read("a.png");
    const Answers answers = AnswersOf(files.Write("cut.png", whole.left(whole.indexOf("IDAT") + 8)));
    EXPECT_THAT(answers.header, ElementsAre(3, 1, 0));
    EXPECT_TRUE(answers.pixels.empty());
}

TEST(Stills, HaveAllPixelsOfDeepPicturesThatTheFirstReaderLeavesUnset)
{
    const ImageFiles files;
    EXPECT_THAT(AnswersOf(files.Write("deep.png", FromHex(kTransparentDeepPng))).pixels,
                ElementsAre(testing::_, testing::_, testing::_, 0, 1, 128, 255, 255));

    if (!QImageReader::supportedImageFormats().contains("tiff"))
        GTEST_SKIP() << "no reader of TIFF";
    constexpr int kPixels = PlanarTiff::kWidth * PlanarTiff::kHeight;
    for (const int planes : {3, 4}) {
        SCOPED_TRACE(planes);
        const Answers answers = AnswersOf(files.Write("planar.tif", PlanarTiff(planes).Bytes()));
        ASSERT_EQ(answers.pixels.size(), static_cast<std::size_t>(kPixels * planes));
        for (int pixel = 0; pixel < kPixels; ++pixel) {
            // Blue comes first where there is an alpha channel. Levels that lie between are spread.
            for (int plane = 0; plane < planes; ++plane) {
                const int place = planes == 4 && plane != 3 ? 2 - plane : plane;
                EXPECT_NEAR(answers.pixels[static_cast<std::size_t>(pixel * planes + place)],
                            PlanarTiff::Level(plane * kPixels + pixel) / 257., 1.5)
                    << pixel << ", plane " << plane;
            }
        }
    }
}

TEST(Stills, OfTheMaterialAreReadAlikeEachTime)
{
    const char *folder = std::getenv("MARLET_MATERIAL");
    if (!folder)
        GTEST_SKIP() << "MARLET_MATERIAL is not set";
    QDirIterator all(QString(folder) + "/images", QDir::Files, QDirIterator::Subdirectories);
    while (all.hasNext()) {
        const QString path = all.next();
        SCOPED_TRACE(path.toStdString());
        AnswersOf(path.toStdU16String());
    }
}

} // namespace marlet::project::platform
