// Any bytes either are a still image or are refused. What is known of one stays the same, and its picture is
// no larger than asked.

#include "support/FuzzInput.h"
#include "support/MemoryFile.h"

#include <marlet/platform/images/ImageFile.h>

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>

#include <string>
#include <vector>

using namespace marlet::project;

namespace
{

/// Pictures above this size only take time.
constexpr long long kMostPixels = 1 << 20;
constexpr int kMegabytes = 64;

constexpr char kGif[] =
    "474946383961010001008000000000ff00ffff21f90401000001002c00000000010001000002024c01003b";

std::string MakeStill(const QByteArray &format, QImage::Format pixels)
{
    QImage image(9, 6, QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgba(25 * x, 40 * y, 5 * x * y, 255 - 30 * y));
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter(&buffer, format).write(image.convertToFormat(pixels));
    return buffer.data().toStdString();
}

/// One of each format, and of those that keep their pixels in several ways one of each.
std::vector<std::string> MakeStills()
{
    std::vector<std::string> stills = {QByteArray::fromHex(kGif).toStdString()};
    for (const QByteArray &format : QImageWriter::supportedImageFormats()) {
        for (const auto pixels : {QImage::Format_ARGB32, QImage::Format_Indexed8, QImage::Format_RGBX64}) {
            std::string still = MakeStill(format, pixels);
            if (!still.empty())
                stills.push_back(std::move(still));
        }
    }
    return stills;
}

bool AreSame(const platform::ImageHeader &first, const platform::ImageHeader &second)
{
    return first.width == second.width && first.height == second.height && first.hasAlpha == second.hasAlpha;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    static const std::vector<std::string> stills = MakeStills();
    static MemoryFile memory;
    QImageReader::setAllocationLimit(kMegabytes);
    memory.Fill(FileOfInput(bytes, size, stills));

    const auto header = platform::ReadImageHeader(memory.Path());
    const auto again = platform::ReadImageHeader(memory.Path());
    if (header.has_value() != again.has_value() || (header && !AreSame(*header, *again)))
        Fail("what is known of a file is not what it was");
    if (header && (header->width <= 0 || header->height <= 0))
        Fail("an image without a size");
    if (header && static_cast<long long>(header->width) * header->height > kMostPixels)
        return 0;
    constexpr int kMostColumns = 5, kMostRows = 1000;
    const auto pixels =
        platform::ReadImagePixels(memory.Path(), kMostColumns, kMostRows, header && header->hasAlpha);
    if (pixels && !header)
        Fail("pixels of what is no image");
    if (pixels && (pixels->width > kMostColumns || pixels->height > kMostRows || !pixels->bytes))
        Fail("a picture is not as it was asked for");
    return 0;
}
