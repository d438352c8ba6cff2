#include "View.h"

#include "Values.h"

#include <marlet/layers/CameraLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace marlet::tool
{

using namespace project;

namespace
{

double DefaultZoom(const AudioVideoSettings &settings)
{
    return CameraLayer::CalculateLensZoom(CameraLayer::HorizontalFieldOfView(CameraLayer::Lens::Focal50),
                                          settings.Width(), settings.PixelAspectRatioValue());
}

/// The part of a closed polygon whose points are at least that deep, by the clipping of Sutherland and
/// Hodgman against one plane: depth grows evenly along an edge.
QPolygonF InFront(const QPolygonF &polygon, const QTransform &transform, double nearest)
{
    const auto beyond = [&](const QPointF &point) {
        return transform.m13() * point.x() + transform.m23() * point.y() + transform.m33() - nearest;
    };
    QPolygonF visible;
    for (qsizetype i = 0; i + 1 < polygon.size(); ++i) {
        const double depth = beyond(polygon[i]);
        const double next = beyond(polygon[i + 1]);
        if (depth >= 0)
            visible << polygon[i];
        if ((depth >= 0) != (next >= 0))
            visible << polygon[i] + (polygon[i + 1] - polygon[i]) * (depth / (depth - next));
    }
    return visible;
}

} // namespace

View::View(const ProjectPointer &project, const CompositionAsset &composition,
           const std::shared_ptr<const CameraLayer> &camera, int frame, QSize picture)
    : picture_(picture)
{
    zoom_ = DefaultZoom(composition.Settings());
    fromCamera_ = Matrix::Translation(0, 0, static_cast<float>(-zoom_));
    if (!camera)
        return;
    const int time = camera->GlobalFrameToRelativeTime(frame, std::as_const(*project).Assets());
    if (const float zoom = NumberOr(camera->Animation(), "zoom", time, 0); zoom > 0)
        zoom_ = zoom;
    nearest_ = std::max(static_cast<double>(camera->NearClip()), 1e-3);
    Matrix placement = camera->WorldTransformationAtTime(time, project, true);
    try {
        placement.Invert();
        fromCamera_ = placement;
    } catch (const std::runtime_error &) {
        // A camera in a parent without any extent sees nothing as it should; the view from the front will do.
        fromCamera_ = Matrix::Translation(0, 0, static_cast<float>(-zoom_));
    }
}

View::Matrix View::ToView(const Matrix &world, bool inSpace) const
{
    return inSpace ? fromCamera_ * world : world;
}

View::Projected View::Project(const Matrix &toView, bool inSpace, double x, double y, double z,
                              double w) const
{
    const auto row = [&](int index) {
        return static_cast<double>(toView(index, 0)) * x + static_cast<double>(toView(index, 1)) * y +
               static_cast<double>(toView(index, 2)) * z + static_cast<double>(toView(index, 3)) * w;
    };
    const double depth = inSpace ? -row(2) : w;
    const double size = inSpace ? zoom_ : 1;
    return {picture_.width() / 2.0 * depth + size * row(0), picture_.height() / 2.0 * depth - size * row(1),
            depth};
}

std::optional<View::Placement> View::OfPlane(const Matrix &world, bool inSpace, const Surface &surface) const
{
    const Matrix toView = ToView(world, inSpace);
    const Projected right = Project(toView, inSpace, 1, 0, 0, 0);
    const Projected up = Project(toView, inSpace, 0, 1, 0, 0);
    const Projected corner = Project(toView, inSpace, 0, 0, 0, 1);
    const QTransform ofContent(right.x, right.y, right.w, up.x, up.y, up.w, corner.x, corner.y, corner.w);
    // Rows of a picture run downwards from the upper left corner of the content.
    const QTransform ofPicture(1, 0, 0, -1, surface.origin.x() - surface.corner.x(),
                               surface.origin.y() + surface.content.height() + surface.corner.y());
    const QTransform whole = ofPicture * ofContent;

    if (!whole.isInvertible())
        return std::nullopt;
    const QPolygonF visible =
        InFront(QPolygonF(QRectF(surface.picture.rect())), whole, inSpace ? nearest_ : 0);
    if (visible.size() < 3)
        return std::nullopt;
    return Placement{whole, visible};
}

std::optional<QPointF> View::OfPoint(const Matrix &world, bool inSpace,
                                     const kytl::matl::KyPoint<3, float> &point) const
{
    const Projected place = Project(ToView(world, inSpace), inSpace, point.X, point.Y, point.Z, 1);
    if (!(place.w >= (inSpace ? nearest_ : 1)))
        return std::nullopt;
    return QPointF(place.x / place.w, place.y / place.w);
}

} // namespace marlet::tool
