#include <marlet/platform/images/ImageFile.h>

#include <marlet/platform/media/KyAbstractMediaFile.h>
#include <marlet/platform/media/KyAbstractVideoStream.h>
#include <marlet/platform/media/KyMedia.h>

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QPixelFormat>
#include <QtEndian>

#include <algorithm>
#include <memory>
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

// A block of an ICNS begins with four letters and its length, and so does the file.
constexpr int kIcnsHead = 8;
constexpr int kIcnsLetters = 4;

/// The length that a head gives, 0 if it cannot be read or does not fit before the end.
qint64 IcnsLength(const QByteArray &head, qint64 room)
{
    if (head.size() < kIcnsHead)
        return 0;
    const qint64 length = qFromBigEndian<quint32>(head.constData() + kIcnsLetters);
    return length >= kIcnsHead && length <= room ? length : 0;
}

QByteArray ReadAt(QFile &file, qint64 place, qint64 size)
{
    return file.seek(place) ? file.read(size) : QByteArray();
}

/// Whether the file is no ICNS, or one whose blocks lie in it, also by its table of contents. Qt's reader
/// asks for as much memory as is said there, which may be 4 GB in a file of a few bytes.
bool AreIcnsBlocksInside(QFile &file)
{
    if (!file.peek(kIcnsHead).startsWith("icns"))
        return true;
    const qint64 size = file.size();
    bool areInside = true;
    for (qint64 place = kIcnsHead; areInside && place < size;) {
        const QByteArray head = ReadAt(file, place, kIcnsHead);
        const qint64 length = IcnsLength(head, size - place);
        areInside = length > 0;
        if (head.startsWith("TOC "))
            for (qint64 entry = kIcnsHead; areInside && entry < length; entry += kIcnsHead)
                areInside = IcnsLength(ReadAt(file, place + entry, kIcnsHead), size) > 0;
        place += length;
    }
    return file.seek(0) && areInside;
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
        if (QFileInfo(file_).isFile() && file_.open(QIODevice::ReadOnly) && AreIcnsBlocksInside(file_))
            reader_.setDevice(&file_);
    }

    bool CanRead() const { return reader_.device() && reader_.canRead(); }
    QImageReader &Reader() { return reader_; }

private:
    QFile file_;
    QImageReader reader_;
};

/// Nothing where the number of a format does not tell: each entry of a colour table has an alpha of its own,
/// many readers do not say a format, and one that fails may say a number that is none.
std::optional<bool> AlphaByFormat(int number)
{
    if (number <= QImage::Format_Invalid || number >= QImage::NImageFormats)
        return std::nullopt;
    const QPixelFormat format = QImage::toPixelFormat(static_cast<QImage::Format>(number));
    if (format.colorModel() == QPixelFormat::Indexed)
        return std::nullopt;
    return format.alphaUsage() == QPixelFormat::UsesAlpha;
}

/// Of more than 8 bits a channel, in more than one channel.
bool IsDeep(const QImage &image)
{
    return image.depth() > 32;
}

/// Qt's readers leave parts of some pictures as the memory was: of deep PNG and TIFF, and what is missing of
/// a BMP.
bool MayBeReadInPart(const QImage &image, const QByteArray &fileFormat)
{
    return IsDeep(image) || fileFormat == "bmp";
}

/// A second picture is read over the opposite of the first: what is alike in both was read.
bool IsReadWhole(const WideString &path, const QImage &image)
{
    QImage second = image.copy();
    std::transform(second.constBits(), second.constBits() + second.sizeInBytes(), second.bits(),
                   [](unsigned char byte) { return static_cast<unsigned char>(~byte); });
    return !second.isNull() && ImageFile(path).Reader().read(&second) && second == image;
}

/// The same picture by the decoders of media. Null if they know it as none, or as one of another size.
QImage ReadByMedia(const WideString &path, const QSize &size)
{
    namespace media = kyh::media;
    media::KyAbstractMediaFile *opened = nullptr;
    if (media::KyMediaFileCreate(path.c_str(), &opened) != media::kSuccess)
        return {};
    const std::unique_ptr<media::KyAbstractMediaFile, int (*)(media::KyAbstractMediaFile *)> file(
        opened, media::KyMediaFileRelease);
    const auto video =
        std::static_pointer_cast<media::KyAbstractVideoStream>(file->Stream(media::kVideoStream));
    if (!video || QSize(video->Width(), video->Height()) != size)
        return {};
    // Rows of four bytes a pixel have no padding in either.
    QImage image(size, QImage::Format_ARGB32);
    const int code = image.isNull() ? media::kFailed
                                    : video->GetFrame(0, media::KyImageChannels::Four, image.bits(),
                                                      static_cast<int>(image.sizeInBytes()), nullptr, 0);
    return code == media::kSuccess ? image : QImage();
}

/// Null if it cannot be decoded.
QImage ReadPicture(const WideString &path)
{
    ImageFile file(path);
    if (!file.CanRead())
        return {};
    // Asked before the reader is at the end of its file, where it has none.
    const QByteArray format = file.Reader().format();
    const QImage image = file.Reader().read();
    if (!MayBeReadInPart(image, format) || IsReadWhole(path, image))
        return image;
    return IsDeep(image) ? ReadByMedia(path, image.size()) : QImage();
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
    // The size first: asked for it, a reader looks at the header, without which its format is any number.
    QSize size = file.Reader().size();
    std::optional<bool> hasAlpha;
    if (!size.isEmpty())
        hasAlpha = AlphaByFormat(file.Reader().imageFormat());
    if (!hasAlpha) {
        const QImage image = file.Reader().read();
        hasAlpha = image.hasAlphaChannel();
        if (size.isEmpty())
            size = image.size();
    }
    if (size.isEmpty())
        return std::nullopt;
    return ImageHeader{.width = size.width(), .height = size.height(), .hasAlpha = *hasAlpha};
}

std::optional<ImagePixels> ReadImagePixels(const WideString &path, int maxWidth, int maxHeight,
                                           bool withAlpha)
{
    if (maxWidth <= 0 || maxHeight <= 0)
        return std::nullopt;
    QImage image = ReadPicture(path);
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
