#include "ImageFile.h"

#include "Failure.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>

namespace marlet::tool
{

namespace
{

std::string Encoded(const QImage &picture, const char *format, int quality)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!picture.save(&buffer, format, quality))
        throw Failure("The picture cannot be encoded");
    return bytes.toStdString();
}

} // namespace

std::string EncodePng(const QImage &picture)
{
    // Packed by the least that the codec offers: little is won by packing tighter, and much time lost. Above
    // this, Qt packs nothing at all.
    constexpr int kFast = 89;
    return Encoded(picture, "PNG", kFast);
}

std::string EncodeJpeg(const QImage &picture)
{
    constexpr int kGood = 80;
    QImage opaque(picture.size(), QImage::Format_RGB32);
    opaque.fill(QColor(34, 34, 34));
    QPainter(&opaque).drawImage(0, 0, picture);
    return Encoded(opaque, "JPEG", kGood);
}

std::string EncodePng(const Picture &picture)
{
    return EncodePng(QImage(picture.pixels, static_cast<int>(picture.width), static_cast<int>(picture.height),
                            static_cast<qsizetype>(picture.BytesPerRow()),
                            picture.hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB888));
}

} // namespace marlet::tool
