#pragma once

#include <marlet/foundation/KyPoint.h>

#include <QPointF>

#include <functional>
#include <optional>

class QPainter;

namespace marlet::project
{
class AbstractLayer;
}

namespace marlet::tool
{

/// Where a point of a layer's own space is in the picture, if it is.
using Placing = std::function<std::optional<QPointF>(const kytl::matl::KyPoint<3, float> &)>;

/// What stands for a layer without a picture: a cross for a null point, a sun for a light, a line for a
/// ribbon; nothing for a camera.
void PaintMarker(QPainter &painter, const project::AbstractLayer &layer, int time, const Placing &place);

} // namespace marlet::tool
