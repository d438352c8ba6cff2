#include <marlet/layers/LayerProperties.h>

#include <marlet/foundation/Exceptions.h>

namespace marlet::project
{

namespace
{

void Create(PropertyManager &manager, const LayerProperty &property)
{
    const int status =
        property.spatial
            ? manager.CreateSpatialProperty(property.name, property.value, property.type, nullptr)
            : manager.CreateProperty(property.name, property.value, property.type, nullptr);
    if (status != PropertyManager::kCreated)
        throw ProjectException(status, {});
}

void Require(const PropertyManager &manager, const LayerProperty &property)
{
    if (!manager.HasProperty(property.name))
        throw ProjectException(ProjectException::kMissingProperty, property.name);
}

} // namespace

LayerProperties operator+(LayerProperties first, const LayerProperties &second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

LayerProperty PathProperty(const char *name, const kytl::matl::KyPoint<3, float> &point)
{
    return {.name = name, .value = point, .spatial = true};
}

LayerProperty FixedProperty(const char *name, const PropertyValue &value)
{
    return {.name = name, .value = value, .type = PropertyManager::Type::NotAnimatable};
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

void CreateProperties(PropertyManager &manager, const LayerProperties &properties)
{
    for (const LayerProperty &property : properties)
        Create(manager, property);
}

void RequireProperties(PropertyManager &manager, const LayerProperties &properties, unsigned int version)
{
    for (const LayerProperty &property : properties)
        if (property.since == 0)
            Require(manager, property);
    for (const LayerProperty &property : properties)
        if (property.since > version)
            Create(manager, property);
    for (const LayerProperty &property : properties)
        if (property.since > 0)
            Require(manager, property);
}

} // namespace marlet::project
