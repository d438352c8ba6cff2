#include <marlet/layers/CameraLayer.h>

#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/layers/Alignment.h>
#include <marlet/layers/LayerMaker.h>
#include <marlet/layers/LayerProperties.h>
#include <marlet/layers/LayerValues.h>

#include <cmath>

namespace marlet::project
{

struct CameraLayer_Impl {
    LayerDimensions dimensions = LayerDimensions::ThreeD;
    bool hasDepthOfField = false;
    AutoOrient autoOrientation = AutoOrient::Off;
    float nearClip = 0.1f;
    float farClip = 100000;
};

namespace
{

constexpr char kTag[] = "CameraLayer";
constexpr unsigned int kVersion = 0;

LayerProperties Properties(float aperture, float zoom, float focusDistance, float blurDoF)
{
    const LayerProperties place = {PathProperty("position", {0, 0, zoom}), PathProperty("target", {})};
    const LayerProperties lens = {
        {"aperture", aperture}, {"zoom", zoom}, {"focusDistance", focusDistance}, {"blurDoF", blurDoF}};
    return place + RotationProperties({}) + lens;
}

template <class Xml, class Data> void CameraLayerFields(Xml &xml, Data &data)
{
    xml.Child("Dimensions", data.dimensions);
    xml.Child("HasDoF", data.hasDepthOfField);
    xml.Child("AutoOrient", data.autoOrientation);
    xml.Child("NearClip", data.nearClip);
    xml.Child("FarClip", data.farClip);
}

} // namespace

CameraLayer::CameraLayer() = default;

CameraLayer::CameraLayer(const WideString &name, float aperture, float zoom, float focusDistance,
                         float blurDoF)
    : AbstractLayer(name)
{
    CreateProperties(Animation(), Properties(aperture, zoom, focusDistance, blurDoF));
}

CameraLayer::CameraLayer(const XmlCursor &element) : CameraLayer()
{
    static const LayerProperties required = Properties(0, 0, 0, 0);
    const unsigned int version = element.RequireHeader(kTag, kVersion);
    CameraLayerFields(element, *impl_);
    Deserialize(element.Find("LayerBase"));
    RequireProperties(element, Animation(), required, version);
    Keep(element);
}

CameraLayer::CameraLayer(const CameraLayer &other) = default;

CameraLayer::~CameraLayer() = default;

std::shared_ptr<CameraLayer> CameraLayer::Create(const WideString &name, float aperture, float zoom,
                                                 float focusDistance, float blurDoF)
{
    return LayerMaker::Make<CameraLayer>(name, aperture, zoom, focusDistance, blurDoF);
}

std::shared_ptr<CameraLayer> CameraLayer::CreateFromXml(const WideString &xml)
{
    return LayerMaker::FromText<CameraLayer>(xml);
}

void CameraLayer::Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const
{
    const XmlElement element(writer, kTag, kVersion, Kept());
    CameraLayerFields(writer, *impl_);
    AbstractLayer::Serialize(writer, textures);
}

double CameraLayer::HorizontalFieldOfView(Lens lens)
{
    switch (lens) {
    case Lens::Focal24:
        return 73.7398;
    case Lens::Focal28:
        return 65.4705;
    case Lens::Focal35:
        return 54.4322;
    case Lens::Focal50:
        return 39.5978;
    case Lens::Focal80:
        return 25.3608;
    }
    return 0;
}

float CameraLayer::CalculateLensZoom(double fieldOfView, int width, double aspect)
{
    constexpr double kRadiansPerDegree = 0.017453292519943295;
    return static_cast<float>((width * aspect) / (2 * std::tan(fieldOfView * kRadiansPerDegree * 0.5)));
}

std::shared_ptr<AbstractLayer> CameraLayer::Clone(const kytl::KyID &) const
{
    return LayerMaker::Copy(*this);
}

LayerType CameraLayer::Type() const
{
    return LayerType::Camera;
}

bool CameraLayer::HasAudio() const
{
    return false;
}

bool CameraLayer::HasVideo() const
{
    return false;
}

LayerDimensions CameraLayer::Dimensions() const
{
    return impl_->dimensions;
}

void CameraLayer::SetDimensions(LayerDimensions)
{
}

AbstractLayer::Matrix CameraLayer::TransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                                        bool) const
{
    return AimedMatrix(*this, AutoOrientAtTime(time), time, project);
}

AbstractLayer::Matrix CameraLayer::OriginAtTime(int, const std::shared_ptr<Project> &) const
{
    return {};
}

AbstractLayer::Matrix CameraLayer::AlignToMotion(const Matrix &world, int time,
                                                 const std::shared_ptr<Project> &project,
                                                 bool avoidZeroScale) const
{
    if (impl_->autoOrientation != AutoOrient::AlongPath)
        return {};
    return Alignment({}, world,
                     WorldTransformationAtTimeHelper(LookAheadTime(time), project, avoidZeroScale));
}

bool CameraLayer::HasDepthOfField() const
{
    return impl_->hasDepthOfField;
}

void CameraLayer::SetDepthOfField(bool enabled)
{
    impl_->hasDepthOfField = enabled;
}

float CameraLayer::NearClip() const
{
    return impl_->nearClip;
}

void CameraLayer::SetNearClip(float distance)
{
    impl_->nearClip = distance;
}

float CameraLayer::FarClip() const
{
    return impl_->farClip;
}

void CameraLayer::SetFarClip(float distance)
{
    impl_->farClip = distance;
}

AutoOrient CameraLayer::AutoOrientation() const
{
    return impl_->autoOrientation;
}

void CameraLayer::SetAutoOrientation(AutoOrient mode)
{
    if (CanTurnByItself(mode))
        impl_->autoOrientation = mode;
}

void CameraLayer::RestoreAutoOrientation(AutoOrient mode)
{
    impl_->autoOrientation = mode;
}

AbstractLayer::Matrix CameraLayer::AutoOrientAtTime(int time) const
{
    return TurnTowardsTarget(impl_->autoOrientation, Animation(), time);
}

} // namespace marlet::project
