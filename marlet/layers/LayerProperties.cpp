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

LayerProperty OpacityProperty()
{
    return {.name = "opacity", .value = 100.f};
}

LayerProperties MaterialProperties()
{
    const kytl::KyColorRGBA_32f black = {0, 0, 0, 1};
    LayerProperty disabledCaster = FixedProperty("castShadowsIfLayerDisabled", false);
    disabledCaster.since = 1;
    return {FixedProperty("illuminated", true),
            FixedProperty("receiveShadows", true),
            {.name = "shadowColor", .value = black, .since = 1},
            FixedProperty("castShadows", false),
            disabledCaster,
            FixedProperty("billboardedShadows", false),
            FixedProperty("billboardedLights", false),
            {"matAmbient", 100.f},
            {"matDiffuse", 50.f},
            {"matSpecular", 50.f},
            {"matShininess", 100.f},
            {"matEmissiveColor", black}};
}

} // namespace marlet::project
