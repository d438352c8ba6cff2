#include <marlet/layers/LayerProperties.h>

namespace marlet::project
{

LayerProperty PathProperty(const char *name, const kytl::matl::KyPoint<3, float> &point)
{
    return {.name = name, .value = point, .spatial = true};
}

LayerProperties RotationProperties(const Orientation3D &orientation)
{
    return {{"orientation", orientation}, {"rotationX", 0.f}, {"rotationY", 0.f}, {"rotationZ", 0.f}};
}

LayerProperties TransformationProperties()
{
    const LayerProperties place = {PathProperty("anchorPoint", {}),
                                   PathProperty("position", {}),
                                   {"scale", Scale3D{}},
                                   FixedProperty("scaleLinked", true)};
    return place + RotationProperties({});
}

} // namespace marlet::project
