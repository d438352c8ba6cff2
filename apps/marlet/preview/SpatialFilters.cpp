#include "Blur.h"
#include "FilterInput.h"
#include "Values.h"
#include "plugins/Displacement.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <vector>

namespace marlet::tool
{

using namespace project;

namespace
{

constexpr double kRadians = 3.14159265358979323846 / 180;

/// The way that a shadow falls, in pixels to the right and down.
QPointF ShadowOffset(const Surface &surface, const FilterInput &input)
{
    const double distance = input.Number("distance");
    if (!input.Value<bool>("pointLight")) {
        const double angle = input.Number("angle") * kRadians;
        return {distance * std::sin(angle), -distance * std::cos(angle)};
    }
    const auto light = input.Value<kytl::matl::KyPoint<2, float>>("light");
    const QPointF away(surface.content.width() * (0.5 - light.X / 100.0),
                       surface.content.height() * (0.5 - light.Y / 100.0));
    const double length = std::hypot(away.x(), away.y());
    return length > 0 && std::isfinite(length) ? away * (distance / length) : QPointF();
}

/// A picture of one colour, as dense as the bytes say.
QImage Coloured(const std::vector<unsigned char> &alpha, QSize size, const QColor &color)
{
    std::array<QRgb, 256> shades;
    for (int level = 0; level < 256; ++level)
        shades[static_cast<std::size_t>(level)] = qPremultiply(
            qRgba(color.red(), color.green(), color.blue(), (level * color.alpha() + 127) / 255));
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    auto pixel = alpha.begin();
    for (int y = 0; y < size.height(); ++y, pixel += size.width())
        std::transform(pixel, pixel + size.width(), reinterpret_cast<QRgb *>(picture.scanLine(y)),
                       [&](unsigned char level) { return shades[level]; });
    return picture;
}

/// How far a map moves a pixel: levels below the middle move it one way, those above the other.
class DisplacementMap
{
public:
    DisplacementMap(const Surface &surface, const FilterInput &input)
        : horizontalChannel_(std::clamp(input.Value<int>("horizontalChannel"), 0, 4)),
          verticalChannel_(std::clamp(input.Value<int>("verticalChannel"), 0, 4)),
          corner_(surface.corner)
    {
        const QImage map = input.layers ? input.layers(input.Value<kytl::KyID>("map")) : QImage();
        if (!map.isNull() && !surface.content.isEmpty())
            map_ = map.scaled(surface.content).convertToFormat(QImage::Format_ARGB32);
        Displacement::Response response{};
        std::iota(response.begin(), response.end(), static_cast<unsigned char>(0));
        const auto &plugin = dynamic_cast<const PrivateDataOwner &>(*input.effect.Plugin());
        const std::vector<unsigned char> drawn = plugin.PrivateBytes(input.effect);
        if (drawn.size() == response.size())
            std::copy(drawn.begin(), drawn.end(), response.begin());
        across_ = MovesOf(response, input.Number("horizontal"));
        down_ = MovesOf(response, input.Number("vertical"));
    }

    bool IsEmpty() const { return map_.isNull(); }

    /// For the pixels of a row, to the right and down.
    void ReadRow(int y, std::vector<QPoint> &moves) const
    {
        std::fill(moves.begin(), moves.end(), QPoint());
        if (y < corner_.y() || y - corner_.y() >= map_.height())
            return;
        const auto *row = reinterpret_cast<const QRgb *>(map_.constScanLine(y - corner_.y()));
        const int end = std::min(static_cast<int>(moves.size()) - corner_.x(), map_.width());
        for (int x = std::max(0, -corner_.x()); x < end; ++x)
            moves[static_cast<std::size_t>(corner_.x() + x)] = {across_[Level(row[x], horizontalChannel_)],
                                                                down_[Level(row[x], verticalChannel_)]};
    }

private:
    using Moves = std::array<int, 256>;

    static std::size_t Level(QRgb pixel, int channel)
    {
        switch (channel) {
        case 0:
            return static_cast<std::size_t>(qRed(pixel));
        case 1:
            return static_cast<std::size_t>(qGreen(pixel));
        case 2:
            return static_cast<std::size_t>(qBlue(pixel));
        case 3:
            return static_cast<std::size_t>(qAlpha(pixel));
        default:
            return static_cast<std::size_t>(qGray(pixel));
        }
    }

    /// The response runs from -1 to 1.
    static Moves MovesOf(const Displacement::Response &response, double distance)
    {
        Moves moves;
        std::transform(response.begin(), response.end(), moves.begin(), [&](unsigned char level) {
            return QPointF((level - 127.5) / 127.5 * distance, 0).toPoint().x();
        });
        return moves;
    }

    QImage map_;
    int horizontalChannel_;
    int verticalChannel_;
    Moves across_{};
    Moves down_{};
    QPoint corner_;
};

/// A place on a line of pixels, or -1 for none.
int OnLine(int place, int length, int edges)
{
    enum Edges { kTransparent, kRepeat, kWrap };
    if (place >= 0 && place < length)
        return place;
    if (edges == kRepeat)
        return std::clamp(place, 0, length - 1);
    return edges == kWrap ? (place % length + length) % length : -1;
}

} // namespace

void RenderBlur(Surface &surface, const FilterInput &input)
{
    enum Direction { kBoth, kHorizontal, kVertical };
    const int radius = static_cast<int>(std::clamp(input.Number("radius"), 0.f, 500.f));
    const int direction = input.Value<int>("direction");
    surface.picture =
        Blurred(surface.picture, {direction == kVertical ? 0 : radius, direction == kHorizontal ? 0 : radius,
                                  input.Value<int>("passes"), input.Value<bool>("repeatEdges")});
}

void RenderDropShadow(Surface &surface, const FilterInput &input)
{
    QImage fallen(surface.picture.size(), QImage::Format_Alpha8);
    fallen.fill(Qt::transparent);
    {
        QPainter painter(&fallen);
        painter.setOpacity(std::clamp(input.Number("opacity") / 100, 0.f, 1.f));
        painter.drawImage(ShadowOffset(surface, input), surface.picture);
    }
    const int softness = static_cast<int>(std::clamp(input.Number("softness"), 0.f, 500.f));
    std::vector<unsigned char> dark = BytesOf(fallen);
    BlurBytes(dark, fallen.size(), {softness, softness});
    QImage shadow = Coloured(dark, fallen.size(), ToQColor(input.Value<kytl::KyColorRGBA_32f>("color")));
    if (!input.Value<bool>("shadowOnly"))
        QPainter(&shadow).drawImage(0, 0, surface.picture);
    surface.picture = std::move(shadow);
}

void RenderDisplacement(Surface &surface, const FilterInput &input)
{
    const DisplacementMap map(surface, input);
    if (map.IsEmpty())
        return;
    const int edges = input.Value<int>("edges");
    const QImage source = surface.picture;
    const int width = source.width();
    const int height = source.height();
    const uchar *const pixels = source.constBits();
    const qsizetype rowBytes = source.bytesPerLine();
    std::vector<QPoint> moves(static_cast<std::size_t>(width));
    for (int y = 0; y < height; ++y) {
        map.ReadRow(y, moves);
        auto *row = reinterpret_cast<QRgb *>(surface.picture.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const QPoint moved = moves[static_cast<std::size_t>(x)];
            if (moved.isNull())
                continue;
            const int fromX = OnLine(x - moved.x(), width, edges);
            const int fromY = OnLine(y - moved.y(), height, edges);
            row[x] =
                fromX < 0 || fromY < 0 ? 0 : reinterpret_cast<const QRgb *>(pixels + fromY * rowBytes)[fromX];
        }
    }
}

} // namespace marlet::tool
