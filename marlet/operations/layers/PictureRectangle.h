#pragma once

#include <marlet/foundation/KyPoint.h>

namespace marlet::project
{

/// In pixels from the middle of a picture, with Y up.
struct PictureRectangle {
    kytl::matl::KyPoint<2, float> centre;
    float width = 0;
    float height = 0;
};

} // namespace marlet::project
