#pragma once

#include "Surface.h"
#include "document/Document.h"

#include <marlet/foundation/KyMatrix.h>

#include <QPointF>
#include <QPolygonF>
#include <QTransform>

#include <optional>

namespace marlet::project
{
class CameraLayer;
}

namespace marlet::tool
{

/// From a composition's space to the pixels of a picture of it: the origin in the middle, Y up, and for
/// layers in space the perspective of a camera, in which what is as far away as the camera's zoom appears at
/// its own size.
class View
{
public:
    using Matrix = kytl::matl::KyMatrix<4, 4, float>;

    /// The camera's view at a frame, or that of a lens of 50 mm in front of the middle if there is none.
    /// @throws as the camera's matrices do
    View(const ProjectPointer &project, const project::CompositionAsset &composition,
         const std::shared_ptr<const project::CameraLayer> &camera, int frame, QSize picture);

    /// Where the picture of a flat layer goes.
    struct Placement {
        QTransform toPicture; ///< from pixels of the layer's picture
        QPolygonF visible;    ///< what of the layer's picture is in front of the camera
    };

    /// Nothing for a layer behind the camera or edge-on.
    std::optional<Placement> OfPlane(const Matrix &world, bool inSpace, const Surface &surface) const;
    /// Where a point of a layer goes, and nothing for one behind the camera.
    std::optional<QPointF> OfPoint(const Matrix &world, bool inSpace,
                                   const kytl::matl::KyPoint<3, float> &point) const;

private:
    struct Projected {
        double x = 0;
        double y = 0;
        double w = 1;
    };

    /// A column of the matrix, or with w = 1 a point.
    Projected Project(const Matrix &toView, bool inSpace, double x, double y, double z, double w) const;
    Matrix ToView(const Matrix &world, bool inSpace) const;

    Matrix fromCamera_; ///< the inverse of the camera's placement
    double zoom_ = 1;
    double nearest_ = 0.1;
    QSize picture_;
};

} // namespace marlet::tool
