#include "Blur.h"
#include "FilterInput.h"
#include "Values.h"
#include "plugins/Displacement.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

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

/// How far a map moves a pixel: levels below the middle move it one way, those above the other.
class DisplacementMap
{
public:
    DisplacementMap(const Surface &surface, const FilterInput &input)
        : horizontalChannel_(input.Value<int>("horizontalChannel")),
          verticalChannel_(input.Value<int>("verticalChannel")),
          horizontal_(input.Number("horizontal")),
          vertical_(input.Number("vertical")),
          corner_(surface.corner)
    {
        const QImage map = input.layers ? input.layers(input.Value<kytl::KyID>("map")) : QImage();
        if (!map.isNull() && !surface.content.isEmpty())
            map_ = map.scaled(surface.content).convertToFormat(QImage::Format_ARGB32);
        for (std::size_t level = 0; level < response_.size(); ++level)
            response_[level] = static_cast<unsigned char>(level);
        const auto &plugin = dynamic_cast<const PrivateDataOwner &>(*input.effect.Plugin());
        const std::vector<unsigned char> drawn = plugin.PrivateBytes(input.effect);
        if (drawn.size() == response_.size())
            std::copy(drawn.begin(), drawn.end(), response_.begin());
    }

    bool IsEmpty() const { return map_.isNull(); }

    QPointF At(int x, int y) const
    {
        const QPoint place = QPoint(x, y) - corner_;
        if (!map_.valid(place))
            return {};
        const QRgb pixel = map_.pixel(place);
        return {horizontal_ * Amount(pixel, horizontalChannel_), vertical_ * Amount(pixel, verticalChannel_)};
    }

private:
    /// From -1 to 1.
    double Amount(QRgb pixel, int channel) const
    {
        const std::array<int, 5> levels{qRed(pixel), qGreen(pixel), qBlue(pixel), qAlpha(pixel),
                                        qGray(pixel)};
        const int level = levels[static_cast<std::size_t>(std::clamp(channel, 0, 4))];
        return (response_[static_cast<std::size_t>(level)] - 127.5) / 127.5;
    }

    QImage map_;
    Displacement::Response response_{};
    int horizontalChannel_;
    int verticalChannel_;
    double horizontal_;
    double vertical_;
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
    QImage shadow(surface.picture.size(), QImage::Format_ARGB32_Premultiplied);
    shadow.fill(Qt::transparent);
    {
        QPainter painter(&shadow);
        painter.setOpacity(std::clamp(input.Number("opacity") / 100, 0.f, 1.f));
        painter.drawImage(ShadowOffset(surface, input), surface.picture);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.setOpacity(1);
        painter.fillRect(shadow.rect(), ToQColor(input.Value<kytl::KyColorRGBA_32f>("color")));
    }
    const int softness = static_cast<int>(std::clamp(input.Number("softness"), 0.f, 500.f));
    shadow = Blurred(shadow, {softness, softness});
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
    for (int y = 0; y < source.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(surface.picture.scanLine(y));
        for (int x = 0; x < source.width(); ++x) {
            const QPoint moved = map.At(x, y).toPoint();
            const int fromX = OnLine(x - moved.x(), source.width(), edges);
            const int fromY = OnLine(y - moved.y(), source.height(), edges);
            row[x] = fromX < 0 || fromY < 0
                         ? 0
                         : reinterpret_cast<const QRgb *>(source.constScanLine(fromY))[fromX];
        }
    }
}

} // namespace marlet::tool
