#include "PngFile.h"

#include "Failure.h"

#include <QBuffer>
#include <QImage>

namespace marlet::tool
{

std::string EncodePng(const QImage &picture)
{
    // Little is won by packing tighter, and much time lost.
    constexpr int kFast = 90;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!picture.save(&buffer, "PNG", kFast))
        throw Failure("The picture cannot be encoded");
    return bytes.toStdString();
}

std::string EncodePng(const Picture &picture)
{
    return EncodePng(QImage(picture.pixels, static_cast<int>(picture.width), static_cast<int>(picture.height),
                            static_cast<qsizetype>(picture.BytesPerRow()),
                            picture.hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB888));
}

} // namespace marlet::tool
