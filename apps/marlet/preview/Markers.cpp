#include "Markers.h"

#include "Values.h"
#include "plugins/Ribbon.h"

#include <marlet/layers/AbstractLayer.h>
#include <marlet/layers/Effect3DLayer.h>

#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace marlet::tool
{

using namespace project;

namespace
{

using Point = kytl::matl::KyPoint<3, float>;

constexpr double kTurn = 6.28318530717958647692;

QColor ColorOf(const PropertyManager &properties, int time)
{
    return ToQColor(ValueOr(properties, "color", time, kytl::KyColorRGBA_32f{1, 1, 1, 1}));
}

void PaintCross(QPainter &painter, const Placing &place)
{
    constexpr float kArm = 20;
    painter.setPen(QPen(QColor(255, 80, 80), 2));
    for (const auto &[from, to] :
         {std::pair(Point{-kArm, 0, 0}, Point{kArm, 0, 0}), std::pair(Point{0, -kArm, 0}, Point{0, kArm, 0})})
        if (const auto start = place(from), end = place(to); start && end)
            painter.drawLine(*start, *end);
}

/// As large everywhere: it faces whoever looks.
void PaintSun(QPainter &painter, const QColor &color, const QPointF &centre)
{
    constexpr double kRadius = 8;
    constexpr int kRays = 8;
    painter.setPen(QPen(color, 2));
    painter.drawEllipse(centre, kRadius, kRadius);
    for (int ray = 0; ray < kRays; ++ray) {
        const QPointF way(std::cos(kTurn * ray / kRays), std::sin(kTurn * ray / kRays));
        painter.drawLine(centre + way * (kRadius + 4), centre + way * (kRadius + 10));
    }
}

void PaintRibbon(QPainter &painter, const PropertyManager &properties, int time, const Placing &place)
{
    constexpr int kSteps = 48;
    const double radius = NumberOr(properties, "radius", time, 0);
    const double height = NumberOr(properties, "height", time, 0);
    const double turns = std::clamp(static_cast<double>(NumberOr(properties, "turns", time, 0)), -50.0, 50.0);
    const int steps = static_cast<int>(std::ceil(std::abs(turns) * kSteps)) + 1;
    QPolygonF line;
    for (int step = 0; step <= steps; ++step) {
        const double way = static_cast<double>(step) / steps;
        const double angle = kTurn * turns * way;
        const Point point{static_cast<float>(radius * std::cos(angle)),
                          static_cast<float>(height * (way - 0.5)),
                          static_cast<float>(radius * std::sin(angle))};
        if (const auto at = place(point))
            line << *at;
    }
    painter.setPen(QPen(ColorOf(properties, time), 3));
    painter.drawPolyline(line);
}

} // namespace

void PaintMarker(QPainter &painter, const AbstractLayer &layer, int time, const Placing &place)
{
    switch (layer.Type()) {
    case LayerType::Point:
        return PaintCross(painter, place);
    case LayerType::Light:
        if (const auto centre = place({}))
            PaintSun(painter, ColorOf(layer.Animation(), time), *centre);
        return;
    case LayerType::Effect3D:
        if (const auto ribbon =
                std::dynamic_pointer_cast<Ribbon>(dynamic_cast<const Effect3DLayer &>(layer).Effect()))
            PaintRibbon(painter, std::as_const(*ribbon).Properties(), time, place);
        return;
    default:
        return;
    }
}

} // namespace marlet::tool
