#include <marlet/editor/VisualObject.h>

#include <marlet/editor/SequenceObject_Impl.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/layers/Alignment.h>
#include <marlet/project/AssetPicture.h>
#include <marlet/project/Project.h>

#include <utility>

namespace marlet::project
{

namespace
{

using Point = kytl::matl::KyPoint<2, float>;

constexpr float kDegreesPerRadian = 57.295776f;
constexpr float kRadiansPerDegree = 0.017453292f;

const SequenceObjectKind &Kind()
{
    static const SequenceObjectKind kind{
        .tag = "VisualObject",
        .canBeMuted = false,
        .properties = {{.name = "opacity", .value = 100.f},
                       {.name = "anchorPoint", .value = Point{}},
                       {.name = "position", .value = Point{}},
                       {.name = "scale", .value = Scale3D{100, 100, 100}},
                       FixedProperty("scaleLinked", true),
                       {.name = "rotationZ", .value = 0.f},
                       {.name = "speed", .value = 1.0}},
    };
    return kind;
}

} // namespace

VisualObject::VisualObject(const std::shared_ptr<AbstractAsset> &asset,
                           const std::shared_ptr<EditorSequence> &sequence)
    : SequenceObject(Kind(), asset, sequence)
{
}

VisualObject::VisualObject(const XmlCursor &element,
                           const std::shared_ptr<AbstractPluginManager> &pluginManager,
                           const SequenceObjectList *objects)
    : SequenceObject(Kind(), element, pluginManager, objects)
{
}

VisualObject::VisualObject(const VisualObject &other) = default;

VisualObject &VisualObject::operator=(const VisualObject &other) = default;

VisualObject::~VisualObject() = default;

std::shared_ptr<VisualObject> VisualObject::Create(std::shared_ptr<AbstractAsset> asset,
                                                   const std::shared_ptr<EditorSequence> &sequence)
{
    return std::shared_ptr<VisualObject>(new VisualObject(asset, sequence));
}

std::shared_ptr<VisualObject>
VisualObject::CreateFromXml(const WideString &xml,
                            const std::shared_ptr<AbstractPluginManager> &pluginManager)
{
    const XmlDocument document(xml);
    return std::shared_ptr<VisualObject>(new VisualObject(document.Root(), pluginManager, nullptr));
}

std::shared_ptr<VisualObject> VisualObject::Copy(const std::shared_ptr<VisualObject> &other,
                                                 bool copyTransitions)
{
    Require(other, "object");
    std::shared_ptr<VisualObject> copy(new VisualObject(*other));
    copy->PartFromSource(copyTransitions);
    return copy;
}

AbstractAssetInstance::Type VisualObject::AssetInstanceType() const
{
    return AbstractAssetInstance::Type::VisualObject;
}

ObjectType VisualObject::Type() const
{
    return ObjectType::Visual;
}

float VisualObject::Opacity() const
{
    return StaticValueOf<float>(Properties(), "opacity");
}

void VisualObject::SetOpacity(float opacity)
{
    Properties().StaticValue("opacity") = opacity;
}

Point VisualObject::AnchorPoint() const
{
    return StaticValueOf<Point>(Properties(), "anchorPoint");
}

void VisualObject::SetAnchorPoint(const Point &point)
{
    Properties().StaticValue("anchorPoint") = point;
}

Point VisualObject::Position() const
{
    return StaticValueOf<Point>(Properties(), "position");
}

void VisualObject::SetPosition(const Point &position)
{
    Properties().StaticValue("position") = position;
}

bool VisualObject::IsScaleLinked() const
{
    return StaticValueOf<bool>(Properties(), "scaleLinked");
}

void VisualObject::SetScaleLinked(bool linked)
{
    Properties().StaticValue("scaleLinked") = linked;
}

double VisualObject::ScaleX() const
{
    return StaticValueOf<Scale3D>(Properties(), "scale").X;
}

double VisualObject::ScaleY() const
{
    return StaticValueOf<Scale3D>(Properties(), "scale").Y;
}

void VisualObject::SetScaleX(double percent)
{
    boost::get<Scale3D>(Properties().StaticValue("scale")).X = percent;
}

void VisualObject::SetScaleY(double percent)
{
    boost::get<Scale3D>(Properties().StaticValue("scale")).Y = percent;
}

float VisualObject::Rotation() const
{
    return StaticValueOf<float>(Properties(), "rotationZ");
}

void VisualObject::SetRotation(float radians)
{
    Properties().StaticValue("rotationZ") = radians * kDegreesPerRadian;
}

void VisualObject::SetRotation(unsigned int turns, float degrees)
{
    Properties().StaticValue("rotationZ") = static_cast<float>(turns * 360.0 + degrees);
}

VisualObject::Matrix VisualObject::WorldTransformation(const std::shared_ptr<Project> &project) const
{
    return Transformation(project) * OriginTransformation(project);
}

VisualObject::Matrix VisualObject::OriginTransformation(const std::shared_ptr<Project> &project) const
{
    Require(project, "project");
    const AssetPicture picture = PictureOf(*RequireAsset(std::as_const(*project).Assets()));
    // What stands in for a file that is offline hangs on the position instead of the anchor point, as on
    // layers.
    const Point place = picture.isOffline ? Position() : Point{-AnchorPoint().X, -AnchorPoint().Y};
    return Matrix::Translation(place.X, place.Y, 0) *
           Matrix::Scaling(static_cast<float>(picture.pixelAspect), 1, 1) *
           Matrix::Translation(-0.5f * static_cast<float>(picture.width),
                               -0.5f * static_cast<float>(picture.height), 0);
}

VisualObject::Matrix VisualObject::Transformation(const std::shared_ptr<Project> &) const
{
    const Point position = Position();
    return Matrix::Translation(position.X, position.Y, 0) *
           RotationAbout({0, 0, 1}, (0 - Rotation()) * kRadiansPerDegree) *
           Matrix::Scaling(static_cast<float>(ScaleX() / 100), static_cast<float>(ScaleY() / 100), 1);
}

} // namespace marlet::project
