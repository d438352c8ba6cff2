#include <marlet/layers/LightLayer.h>

#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/layers/Alignment.h>
#include <marlet/layers/LayerMaker.h>
#include <marlet/layers/LayerProperties.h>
#include <marlet/layers/LayerValues.h>

namespace marlet::project
{

struct LightLayer_Impl {
    LightLayer::LightType type = {};
    AutoOrient autoOrientation = AutoOrient::Off;
};

namespace
{

constexpr char kTag[] = "LightLayer";
constexpr unsigned int kVersion = 0;
constexpr LightLayer::LightType kTurnedType{3};

LayerProperties Properties(LightLayer::LightType type)
{
    const Orientation3D orientation{type == kTurnedType ? 90.f : 0.f, 0, 0};
    const LayerProperties place = {PathProperty("position", {0, 400, 0}), PathProperty("target", {})};
    const LayerProperties light = {
        {"color", kytl::KyColorRGBA_32f{1, 1, 1, 1}},
        {"intensity", 100.f},
        FixedProperty("castShadows", false),
        FixedProperty("falloff", 1),
        {"reach", 1000.f},
        {"spotlightAngle", 15.f},
        {"spotlightFeather", 50.f},
        {"shadowOpacity", 50.f},
        {"shadowDiffusion", 0.f},
    };
    return place + RotationProperties(orientation) + light;
}

template <class Xml, class Data> void LightLayerFields(Xml &xml, Data &data)
{
    xml.Child("LightType", data.type);
    xml.Child("AutoOrient", data.autoOrientation);
}

} // namespace

LightLayer::LightLayer() = default;

LightLayer::LightLayer(const WideString &name, LightType type) : AbstractLayer(name)
{
    impl_->type = type;
    CreateProperties(Animation(), Properties(type));
}

LightLayer::LightLayer(const XmlCursor &element) : LightLayer()
{
    static const LayerProperties required = Properties({});
    const unsigned int version = element.RequireHeader(kTag, kVersion);
    LightLayerFields(element, *impl_);
    Deserialize(element.Find("LayerBase"));
    RequireProperties(element, Animation(), required, version);
    Keep(element);
}

LightLayer::LightLayer(const LightLayer &other) = default;

LightLayer::~LightLayer() = default;

std::shared_ptr<LightLayer> LightLayer::Create(const WideString &name, LightType type)
{
    return LayerMaker::Make<LightLayer>(name, type);
}

std::shared_ptr<LightLayer> LightLayer::CreateFromXml(const WideString &xml)
{
    return LayerMaker::FromText<LightLayer>(xml);
}

void LightLayer::Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const
{
    const XmlElement element(writer, kTag, kVersion, Kept());
    LightLayerFields(writer, *impl_);
    AbstractLayer::Serialize(writer, textures);
}

std::shared_ptr<AbstractLayer> LightLayer::Clone(const kytl::KyID &) const
{
    return LayerMaker::Copy(*this);
}

LayerType LightLayer::Type() const
{
    return LayerType::Light;
}

bool LightLayer::HasAudio() const
{
    return false;
}

bool LightLayer::HasVideo() const
{
    return true;
}

LayerDimensions LightLayer::Dimensions() const
{
    return LayerDimensions::ThreeDContent;
}

void LightLayer::SetDimensions(LayerDimensions)
{
}

AbstractLayer::Matrix LightLayer::TransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                                       bool) const
{
    return AimedMatrix(*this, AutoOrientAtTime(time), time, project);
}

AbstractLayer::Matrix LightLayer::OriginAtTime(int, const std::shared_ptr<Project> &) const
{
    return {};
}

AbstractLayer::Matrix LightLayer::AlignToMotion(const Matrix &world, int time,
                                                const std::shared_ptr<Project> &project,
                                                bool avoidZeroScale) const
{
    if (impl_->autoOrientation != AutoOrient::AlongPath)
        return {};
    return Alignment({}, world,
                     WorldTransformationAtTimeHelper(LookAheadTime(time), project, avoidZeroScale));
}

LightLayer::LightType LightLayer::LightSourceType() const
{
    return impl_->type;
}

void LightLayer::SetLightSourceType(LightType type)
{
    impl_->type = type;
}

AutoOrient LightLayer::AutoOrientation() const
{
    return impl_->autoOrientation;
}

void LightLayer::SetAutoOrientation(AutoOrient mode)
{
    if (CanTurnByItself(mode))
        impl_->autoOrientation = mode;
}

void LightLayer::RestoreAutoOrientation(AutoOrient mode)
{
    impl_->autoOrientation = mode;
}

AbstractLayer::Matrix LightLayer::AutoOrientAtTime(int time) const
{
    return TurnTowardsTarget(impl_->autoOrientation, Animation(), time);
}

} // namespace marlet::project
