#pragma once

#include <cstddef>
#include <string>

class QImage;

namespace marlet::tool
{

/// A picture as ImageAsset::ReadPixelData hands it out: rows of B, G, R, A or of R, G, B, each padded to a
/// multiple of four bytes.
struct Picture {
    const unsigned char *pixels;
    std::size_t width;
    std::size_t height;
    bool hasAlpha;

    std::size_t BytesPerPixel() const { return hasAlpha ? 4 : 3; }
    std::size_t BytesPerRow() const { return (width * BytesPerPixel() + 3) / 4 * 4; }
};

/// The content of a PNG file with the picture in it. @throws Failure
std::string EncodePng(const Picture &picture);
std::string EncodePng(const QImage &picture);
/// The content of a JPEG file, for pictures that are looked at and no more: on dark gray where it is
/// transparent. @throws Failure
std::string EncodeJpeg(const QImage &picture);

} // namespace marlet::tool
