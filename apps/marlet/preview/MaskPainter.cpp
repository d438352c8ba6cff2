#include "MaskPainter.h"

#include "Blur.h"
#include "Values.h"

#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace marlet::tool
{

using namespace project;

namespace
{

using Point = kytl::matl::KyPoint<2, float>;
using Vector = kytl::matl::KyVector<2, float>;

float LengthOr0(const PropertyManager &properties, const char *name, int time)
{
    constexpr float kMost = 4096;
    return std::clamp(NumberOr(properties, name, time, 0), -kMost, kMost);
}

struct OutlinePoint {
    QPointF position;
    QPointF left; ///< where the handles end
    QPointF right;
};

/// Y turns round: pictures count downwards.
OutlinePoint PointAtTime(const PathPoint &point, int time)
{
    const PropertyManager &properties = point.Animation();
    const Point position = ValueOr(properties, "position", time, Point{});
    const Vector left = ValueOr(properties, "leftHandle", time, Vector{});
    const Vector right = ValueOr(properties, "rightHandle", time, Vector{});
    const QPointF place(position.X, -position.Y);
    return {place, place + QPointF(left.X, -left.Y), place + QPointF(right.X, -right.Y)};
}

QPainterPath Outline(const MotionPath &path, int time)
{
    QPainterPath outline;
    std::vector<OutlinePoint> points;
    for (const std::shared_ptr<PathPoint> &point : path.Points())
        points.push_back(PointAtTime(*point, time));
    if (points.empty())
        return outline;
    outline.moveTo(points.front().position);
    for (std::size_t i = 1; i < points.size(); ++i)
        outline.cubicTo(points[i - 1].right, points[i].left, points[i].position);
    if (path.IsClosed())
        outline.cubicTo(points.back().right, points.front().left, points.front().position);
    return outline;
}

/// How much of each pixel lies inside.
MaskCoverage Coverage(const Mask &mask, const Surface &surface, int time)
{
    QImage inside(surface.picture.size(), QImage::Format_Alpha8);
    inside.fill(Qt::transparent);
    const QPainterPath outline = Outline(mask.Path(), time);
    if (mask.Path().IsClosed()) {
        QPainter painter(&inside);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(QPointF(surface.corner) + QRectF(QPointF(), surface.content).center());
        painter.fillPath(outline, Qt::white);
        // Growing draws along the edge as well; shrinking takes that away again.
        if (const float expansion = LengthOr0(mask.Animation(), "expansion", time); expansion != 0) {
            if (expansion < 0)
                painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
            painter.strokePath(outline, QPen(Qt::white, 2 * std::abs(static_cast<double>(expansion)),
                                             Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        }
    }
    MaskCoverage coverage = BytesOf(inside);
    const int feather = static_cast<int>(LengthOr0(mask.Animation(), "feather", time));
    BlurBytes(coverage, inside.size(), {feather, feather});
    return coverage;
}

int Joined(int below, int mask, MaskMode mode)
{
    switch (mode) {
    case MaskMode::Subtract:
        return below * (255 - mask) / 255;
    case MaskMode::Intersect:
        return below * mask / 255;
    case MaskMode::Difference:
        return std::abs(below - mask);
    default:
        return below + mask - below * mask / 255;
    }
}

void Join(MaskCoverage &coverage, const MaskCoverage &of, const Mask &mask, MaskMode mode, int time)
{
    const float percent = std::clamp(NumberOr(mask.Animation(), "opacity", time, 100), 0.f, 100.f);
    const int opacity = static_cast<int>(percent * 2.55f);
    const bool inverted = ValueOr(mask.Animation(), "inverted", time, false);
    for (std::size_t i = 0; i < of.size(); ++i) {
        const int inside = inverted ? 255 - of[i] : of[i];
        coverage[i] = static_cast<unsigned char>(Joined(coverage[i], inside * opacity / 255, mode));
    }
}

MaskMode ModeOf(const Mask &mask, int time)
{
    return MaskMode{ValueOr(mask.Animation(), "blendMode", time, static_cast<int>(MaskMode::Add))};
}

} // namespace

MaskCoverage CoverageOfMasks(const kytl::KyList<std::shared_ptr<Mask>, std::vector> &masks,
                             const Surface &surface, int time)
{
    std::vector<const Mask *> used;
    for (const std::shared_ptr<Mask> &mask : masks)
        if (mask->IsVisible() && ModeOf(*mask, time) != MaskMode::None)
            used.push_back(mask.get());
    if (used.empty() || surface.picture.isNull())
        return {};

    // What takes away takes away from everything, what adds adds to nothing.
    const MaskMode first = ModeOf(*used.front(), time);
    const bool fromAll = first == MaskMode::Subtract || first == MaskMode::Intersect;
    const QSize size = surface.picture.size();
    MaskCoverage coverage(static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height()),
                          fromAll ? 255 : 0);
    for (const Mask *mask : used)
        Join(coverage, Coverage(*mask, surface, time), *mask, ModeOf(*mask, time), time);
    return coverage;
}

void Cut(QImage &picture, const MaskCoverage &coverage)
{
    const int width = picture.width();
    auto pixel = coverage.begin();
    for (int y = 0; y < picture.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(picture.scanLine(y));
        for (QRgb *of = row; of != row + width; ++of, ++pixel) {
            const int left = *pixel;
            const auto share = [&](int level) { return level * left / 255; };
            if (left < 255)
                *of = qRgba(share(qRed(*of)), share(qGreen(*of)), share(qBlue(*of)), share(qAlpha(*of)));
        }
    }
}

} // namespace marlet::tool
