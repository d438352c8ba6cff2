#pragma once

#include <marlet/animation/PropertyTable.h>

namespace marlet::project
{

using LayerProperty = PropertyRow;
using LayerProperties = PropertyTable;

/// "position" or another point that moves along a path.
LayerProperty PathProperty(const char *name, const kytl::matl::KyPoint<3, float> &point);
/// "orientation" and the three rotations.
LayerProperties RotationProperties(const Orientation3D &orientation);
/// From "anchorPoint" to "rotationZ": what places a layer that has a size.
LayerProperties TransformationProperties();
/// "opacity", in percent.
LayerProperty OpacityProperty();
/// From "illuminated" to "matEmissiveColor": what a layer and the lights of its composition do to each other.
LayerProperties MaterialProperties();

} // namespace marlet::project
