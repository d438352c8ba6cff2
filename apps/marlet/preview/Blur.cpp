#include "Blur.h"

#include <algorithm>
#include <array>
#include <vector>

namespace marlet::tool
{

namespace
{

using Pixel = std::array<float, 4>;
using Line = std::vector<Pixel>;

/// Three means in a row make a bell curve: the quadratic B-spline.
constexpr int kBoxesPerPass = 3;

/// Each pixel becomes the mean of those up to a radius away.
void Average(const Line &from, Line &to, int radius, bool repeatEdges)
{
    const int count = static_cast<int>(from.size());
    const auto at = [&](int index) {
        if (index >= 0 && index < count)
            return from[static_cast<std::size_t>(index)];
        return repeatEdges ? from[static_cast<std::size_t>(std::clamp(index, 0, count - 1))] : Pixel{};
    };
    std::array<double, 4> sum{};
    const auto add = [&sum](const Pixel &pixel, double sign) {
        for (std::size_t channel = 0; channel < 4; ++channel)
            sum[channel] += sign * static_cast<double>(pixel[channel]);
    };
    for (int index = -radius; index <= radius; ++index)
        add(at(index), 1);
    const double share = 1.0 / (2.0 * radius + 1);
    for (int index = 0; index < count; ++index) {
        for (std::size_t channel = 0; channel < 4; ++channel)
            to[static_cast<std::size_t>(index)][channel] = static_cast<float>(sum[channel] * share);
        add(at(index - radius), -1);
        add(at(index + radius + 1), 1);
    }
}

/// The radii of the means, which add up to that of the curve.
std::vector<int> Radii(int radius, int passes)
{
    const int boxes = kBoxesPerPass * std::clamp(passes, 1, 5);
    std::vector<int> radii;
    for (int box = 0; box < boxes; ++box)
        if (const int share = radius / boxes + (box < radius % boxes ? 1 : 0); share > 0)
            radii.push_back(share);
    return radii;
}

unsigned char Byte(float level)
{
    return static_cast<unsigned char>(std::clamp(level + 0.5f, 0.f, 255.f));
}

/// Blurs a picture's rows, and hands out their results as columns, so that the second time round the picture
/// is upright again.
QImage BlurredAcross(const QImage &picture, int radius, const BlurOptions &options)
{
    const std::vector<int> radii = Radii(radius, options.passes);
    QImage turned(picture.height(), picture.width(), picture.format());
    Line line(static_cast<std::size_t>(picture.width()));
    Line next(line.size());
    for (int y = 0; y < picture.height(); ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(picture.constScanLine(y));
        std::transform(row, row + picture.width(), line.begin(), [](QRgb pixel) {
            return Pixel{static_cast<float>(qRed(pixel)), static_cast<float>(qGreen(pixel)),
                         static_cast<float>(qBlue(pixel)), static_cast<float>(qAlpha(pixel))};
        });
        for (const int share : radii) {
            Average(line, next, share, options.repeatEdges);
            line.swap(next);
        }
        for (int x = 0; x < picture.width(); ++x) {
            const Pixel &pixel = line[static_cast<std::size_t>(x)];
            reinterpret_cast<QRgb *>(turned.scanLine(x))[y] =
                qRgba(Byte(pixel[0]), Byte(pixel[1]), Byte(pixel[2]), Byte(pixel[3]));
        }
    }
    return turned;
}

} // namespace

QImage Blurred(const QImage &picture, const BlurOptions &options)
{
    if (picture.isNull() || (options.horizontal <= 0 && options.vertical <= 0))
        return picture;
    const QImage columns = BlurredAcross(picture, std::max(options.horizontal, 0), options);
    return BlurredAcross(columns, std::max(options.vertical, 0), options);
}

} // namespace marlet::tool
