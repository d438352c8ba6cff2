#include "AssetPictures.h"

#include "Values.h"
#include "output/QuietStandardError.h"

#include <marlet/platform/media/KyMedia.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/project/SolidAsset.h>

#include <boost/smart_ptr/shared_array.hpp>

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace marlet::tool
{

using namespace project;

namespace
{

constexpr int kLongestSide = 8192;

QString ToQString(const WideString &text)
{
    return QString::fromStdU16String(text);
}

QString FileNameOf(const WideString &path)
{
    return ToQString(path).section(u'/', -1);
}

} // namespace

QImage AssetPictures::Placeholder(const std::string &label, QSize size)
{
    if (size.isEmpty())
        size = {ImageAsset::OfflineWidth(), ImageAsset::OfflineHeight()};
    const int width = std::min(size.width(), kLongestSide);
    const int height = std::min(size.height(), kLongestSide);
    QImage box(width, height, QImage::Format_ARGB32_Premultiplied);
    box.fill(QColor(96, 28, 28));
    QPainter painter(&box);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(220, 120, 120), 2));
    painter.drawRect(1, 1, width - 2, height - 2);
    painter.drawLine(0, 0, width, height);
    painter.drawLine(0, height, width, 0);
    QFont font;
    font.setPixelSize(20);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(box.rect().adjusted(10, 10, -10, -10), Qt::AlignCenter | Qt::TextWrapAnywhere,
                     QString::fromStdString(label));
    return box;
}

QImage AssetPictures::FrameOf(MediaAsset &media, double frameRate, int frame)
{
    const std::shared_ptr<MediaVideoStream> stream = media.VideoStream();
    if (media.IsOffline() || !stream)
        return Placeholder("offline: " + FileNameOf(media.Filename()).toStdString());
    QImage picture(stream->Width(), stream->Height(), QImage::Format_ARGB32);
    const int size = stream->FrameBufferSize(kyh::media::KyImageChannels::Four);
    if (picture.isNull() || picture.sizeInBytes() < size)
        return {};
    const int code = stream->GetFrame(frameRate, frame, kyh::media::KyImageChannels::Four, picture.bits(),
                                      size, nullptr, 0);
    if (code == kyh::media::kOutOfRange)
        return {};
    if (code != kyh::media::kSuccess)
        return Placeholder("damaged: " + FileNameOf(media.Filename()).toStdString(), picture.size());
    return picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QImage AssetPictures::PictureOf(ImageAsset &image)
{
    const std::lock_guard lock(mutex_);
    const auto [known, isNew] = stills_.try_emplace(&image);
    if (!isNew)
        return known->second;
    const QuietStandardError quiet;
    boost::shared_array<unsigned char> pixels;
    int width = 0;
    int height = 0;
    if (image.ReadPixelData(kLongestSide, kLongestSide, pixels, &width, &height) != 0) {
        known->second = Placeholder("offline: " + FileNameOf(image.Filename()).toStdString(),
                                    {image.Width(), image.Height()});
    } else {
        const bool hasAlpha = image.PixelBitCount() == 32;
        const int rowBytes = (width * (hasAlpha ? 4 : 3) + 3) / 4 * 4;
        const QImage seen(pixels.get(), width, height, rowBytes,
                          hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB888);
        known->second =
            seen.convertToFormat(QImage::Format_ARGB32_Premultiplied).scaled(image.Width(), image.Height());
    }
    return known->second;
}

QImage AssetPictures::PictureOf(const SolidAsset &solid)
{
    QImage picture(std::clamp(solid.Width(), 0, kLongestSide), std::clamp(solid.Height(), 0, kLongestSide),
                   QImage::Format_ARGB32_Premultiplied);
    if (picture.isNull())
        return picture;
    picture.fill(ToQColor(solid.Color()));
    return picture;
}

} // namespace marlet::tool
