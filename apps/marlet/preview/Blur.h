#pragma once

#include <QImage>

#include <vector>

namespace marlet::tool
{

struct BlurOptions {
    int horizontal = 0; ///< pixels at which the bell curve ends
    int vertical = 0;
    int passes = 1; ///< more passes gather more of the weight in the middle
    bool repeatEdges = false;
};

/// Spreads every pixel of a premultiplied picture by a bell curve, in time that does not grow with its
/// radius. The size stays; what lies outside of it is transparent, or repeats the pixels at the edges.
QImage Blurred(const QImage &picture, const BlurOptions &options);

/// The bytes of a picture that has one a pixel, row behind row without gaps.
std::vector<unsigned char> BytesOf(const QImage &alpha);

/// Blurs such bytes in place.
void BlurBytes(std::vector<unsigned char> &bytes, QSize size, const BlurOptions &options);

} // namespace marlet::tool
