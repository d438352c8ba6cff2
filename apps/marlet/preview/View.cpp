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

} // namespace

View::View(const ProjectPointer &project, const CompositionAsset &composition, int frame, QSize picture)
    : picture_(picture)
{
    zoom_ = DefaultZoom(composition.Settings());
    fromCamera_ = Matrix::Translation(0, 0, static_cast<float>(-zoom_));
    const auto camera = std::dynamic_pointer_cast<CameraLayer>(composition.ActiveCameraLayer(frame));
    if (!camera)
        return;
    const int time = camera->GlobalFrameToRelativeTime(frame, std::as_const(*project).Assets());
    if (const float zoom = NumberOr(std::as_const(*camera).Animation(), "zoom", time, 0); zoom > 0)
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

std::optional<QTransform> View::OfPlane(const Matrix &world, bool inSpace, const Surface &surface) const
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

    const QRect frame = surface.picture.rect();
    const auto depthAt = [&](int x, int y) { return whole.m13() * x + whole.m23() * y + whole.m33(); };
    const double depths[] = {depthAt(0, 0), depthAt(frame.width(), 0), depthAt(0, frame.height()),
                             depthAt(frame.width(), frame.height())};
    const bool isInFront = std::all_of(std::begin(depths), std::end(depths),
                                       [&](double depth) { return inSpace ? depth >= nearest_ : depth > 0; });
    if (!isInFront || !whole.isInvertible())
        return std::nullopt;
    return whole;
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
