#pragma once

#include <QImage>
#include <QPoint>
#include <QSize>

namespace marlet::tool
{

/// A layer's content in the making. Rows count downwards; premultiplied 32 bit pixels.
struct Surface {
    QImage picture;
    /// Where the corner of the content itself lies in the picture, which effects may have made larger.
    QPoint corner;
    QSize content;
};

} // namespace marlet::tool
