#include <marlet/platform/images/ImageFile.h>

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QPixelFormat>

#include <algorithm>
#include <new>

namespace marlet::project::platform
{

namespace
{

/// By UTF-16 units: a byte order mark is part of a name like any other character.
QString ToQString(const WideString &text)
{
    return QStringView(text).toString();
}

/// Qt refuses pictures of more than 128 MB, which a scan or a stitched panorama easily is. The limit is one
/// for the whole process, so it is left alone where the host has set its own.
void RaiseAllocationLimit()
{
    constexpr int kLimitOfQt = 128;
    constexpr int kLimitInMegabytes = 1024;
    [[maybe_unused]] static const bool raised = [] {
        if (QImageReader::allocationLimit() == kLimitOfQt)
            QImageReader::setAllocationLimit(kLimitInMegabytes);
        return true;
    }();
}

/// An image file opened for reading. Reading from a device rather than by name keeps the reader from trying
/// other names with an extension behind a name that does not exist.
class ImageFile
{
public:
    explicit ImageFile(const WideString &path) : file_(ToQString(path))
    {
        RaiseAllocationLimit();
        // Opening a pipe would wait for somebody to write into it.
        if (QFileInfo(file_).isFile() && file_.open(QIODevice::ReadOnly))
            reader_.setDevice(&file_);
    }

    bool CanRead() const { return reader_.device() && reader_.canRead(); }
    QImageReader &Reader() { return reader_; }

private:
    QFile file_;
    QImageReader reader_;
};

bool HasAlpha(QImage::Format format)
{
    return format != QImage::Format_Invalid &&
           QImage::toPixelFormat(format).alphaUsage() == QPixelFormat::UsesAlpha;
}

QImage ScaledToFit(const QImage &image, const QSize &limit)
{
    if (image.width() <= limit.width() && image.height() <= limit.height())
        return image;
    const QSize size = image.size().scaled(limit, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    return image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

bool FileExists(const WideString &path)
{
    return QFile::exists(ToQString(path));
}

WideString FileName(const WideString &path)
{
    return QFileInfo(ToQString(path)).fileName().toStdU16String();
}

std::optional<ImageHeader> ReadImageHeader(const WideString &path)
{
    ImageFile file(path);
    if (!file.CanRead())
        return std::nullopt;
    const bool hasAlpha = HasAlpha(file.Reader().imageFormat());
    QSize size = file.Reader().size();
    if (!size.isValid())
        size = file.Reader().read().size();
    if (size.isEmpty())
        return std::nullopt;
    return ImageHeader{.width = size.width(), .height = size.height(), .hasAlpha = hasAlpha};
}

std::optional<ImagePixels> ReadImagePixels(const WideString &path, int maxWidth, int maxHeight,
                                           bool withAlpha)
{
    if (maxWidth <= 0 || maxHeight <= 0)
        return std::nullopt;
    ImageFile file(path);
    if (!file.CanRead())
        return std::nullopt;
    QImage image = file.Reader().read();
    if (image.isNull())
        return std::nullopt;
    image = ScaledToFit(image, QSize(maxWidth, maxHeight));
    image = std::move(image).convertToFormat(withAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB888);

    // Too little memory for a copy, as for the picture itself, is a picture that cannot be decoded.
    const qsizetype byteCount = image.sizeInBytes();
    auto *bytes = byteCount > 0 ? new (std::nothrow) unsigned char[byteCount] : nullptr;
    if (!bytes)
        return std::nullopt;
    std::copy_n(image.constBits(), byteCount, bytes);
    return ImagePixels{
        .bytes = boost::shared_array<unsigned char>(bytes), .width = image.width(), .height = image.height()};
}

} // namespace marlet::project::platform
