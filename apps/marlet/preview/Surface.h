#pragma once

#include <QImage>
#include <QPoint>
#include <QPointF>
#include <QSize>

namespace marlet::tool
{

/// A layer's content in the making. Rows count downwards; premultiplied 32 bit pixels.
struct Surface {
    QImage picture;
    /// Where the corner of the content itself lies in the picture, which effects may have made larger.
    QPoint corner;
    QSize content;
    /// Where the lower left corner of the content lies in the layer's coordinates.
    QPointF origin = {};
};

} // namespace marlet::tool
