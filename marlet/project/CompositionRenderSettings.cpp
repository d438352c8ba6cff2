#include <marlet/project/CompositionRenderSettings.h>

#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

namespace marlet::project
{

struct CompositionRenderSettings_Impl {
    bool fogEnabled = false;
    float fogNearDistance = 900.0f;
    float fogFarDistance = 2000.0f;
    float fogDensity = 1.0f;
    kytl::KyColorRGBA_32f fogColor{0, 0, 0, 1};
    CompositionRenderSettings::FalloffType fogFalloff{0};
    bool motionBlurEnabled = true;
    float shutterAngle = 180.0f;
    float shutterPhase = -90.0f;
};

namespace
{

template <class Xml, class Self> void RenderSettingsFields(Xml &xml, Self &self)
{
    xml.Child("FogEnabled", self.fogEnabled);
    xml.Child("FogNearDistance", self.fogNearDistance);
    xml.Child("FogFarDistance", self.fogFarDistance);
    xml.Child("FogDensity", self.fogDensity);
    xml.Child("FogColor", self.fogColor);
    xml.Child("FogFalloff", self.fogFalloff);
    xml.Child("MotionBlurEnabled", self.motionBlurEnabled);
    xml.Child("ShutterAngle", self.shutterAngle);
    xml.Child("ShutterPhase", self.shutterPhase);
}

} // namespace

CompositionRenderSettings::CompositionRenderSettings() = default;

CompositionRenderSettings::CompositionRenderSettings(const WideString &xml) : CompositionRenderSettings()
{
    Deserialize(xml);
}

CompositionRenderSettings::CompositionRenderSettings(const XmlCursor &element) : CompositionRenderSettings()
{
    Deserialize(element);
}

CompositionRenderSettings::CompositionRenderSettings(const CompositionRenderSettings &other) = default;

CompositionRenderSettings &CompositionRenderSettings::operator=(CompositionRenderSettings other)
{
    impl_.Swap(other.impl_);
    return *this;
}

CompositionRenderSettings::~CompositionRenderSettings() = default;

WideString CompositionRenderSettings::Serialize() const
{
    return XmlText([this](XmlWriter &writer) { Serialize(writer); });
}

void CompositionRenderSettings::Serialize(XmlWriter &writer) const
{
    const XmlElement element(writer, "RenderSettings", 0);
    RenderSettingsFields(writer, *impl_);
}

void CompositionRenderSettings::Deserialize(const WideString &xml)
{
    const XmlDocument document(xml);
    Deserialize(document.Root());
}

void CompositionRenderSettings::Deserialize(const XmlCursor &element)
{
    element.RequireHeader("RenderSettings", 0);
    RenderSettingsFields(element, *impl_);
}

bool CompositionRenderSettings::FogEnabled() const
{
    return impl_->fogEnabled;
}

void CompositionRenderSettings::SetFogEnabled(bool enabled)
{
    impl_->fogEnabled = enabled;
}

float CompositionRenderSettings::FogNearDistance() const
{
    return impl_->fogNearDistance;
}

void CompositionRenderSettings::SetFogNearDistance(float distance)
{
    impl_->fogNearDistance = distance;
}

float CompositionRenderSettings::FogFarDistance() const
{
    return impl_->fogFarDistance;
}

void CompositionRenderSettings::SetFogFarDistance(float distance)
{
    impl_->fogFarDistance = distance;
}

float CompositionRenderSettings::FogDensity() const
{
    return impl_->fogDensity;
}

void CompositionRenderSettings::SetFogDensity(float density)
{
    impl_->fogDensity = density;
}

const kytl::KyColorRGBA_32f &CompositionRenderSettings::FogColor() const
{
    return impl_->fogColor;
}

void CompositionRenderSettings::SetFogColor(const kytl::KyColorRGBA_32f &color)
{
    impl_->fogColor = color;
}

CompositionRenderSettings::FalloffType CompositionRenderSettings::FogFalloff() const
{
    return impl_->fogFalloff;
}

void CompositionRenderSettings::SetFogFalloff(FalloffType falloff)
{
    impl_->fogFalloff = falloff;
}

bool CompositionRenderSettings::MotionBlurEnabled() const
{
    return impl_->motionBlurEnabled;
}

void CompositionRenderSettings::SetMotionBlurEnabled(bool enabled)
{
    impl_->motionBlurEnabled = enabled;
}

float CompositionRenderSettings::ShutterAngle() const
{
    return impl_->shutterAngle;
}

void CompositionRenderSettings::SetShutterAngle(float degrees)
{
    impl_->shutterAngle = degrees;
}

float CompositionRenderSettings::ShutterPhase() const
{
    return impl_->shutterPhase;
}

void CompositionRenderSettings::SetShutterPhase(float degrees)
{
    impl_->shutterPhase = degrees;
}

} // namespace marlet::project
