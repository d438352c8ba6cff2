#pragma once

#include <marlet/foundation/KyColorRGBA.h>
#include <marlet/foundation/Strings.h>
#include <marlet/foundation/ValuePtr.h>

namespace marlet::project
{

class XmlCursor;
class XmlWriter;
struct CompositionRenderSettings_Impl;

/// The fog and the motion blur of a composition. Distances in pixels, shutter values in degrees. A plain
/// value.
class MARLET_EXPORT CompositionRenderSettings
{
public:
    /// The host names the curves.
    enum class FalloffType : int {};

    CompositionRenderSettings();
    /// @throws XmlParseException, InvalidProjectVersionException, boost::bad_lexical_cast
    explicit CompositionRenderSettings(const WideString &xml);
    CompositionRenderSettings(const CompositionRenderSettings &other);
    CompositionRenderSettings &operator=(CompositionRenderSettings other);
    ~CompositionRenderSettings();

    WideString Serialize() const;
    /// @throws as the constructor; what was read until then stays.
    void Deserialize(const WideString &xml);

    bool FogEnabled() const;
    void SetFogEnabled(bool enabled);
    float FogNearDistance() const;
    void SetFogNearDistance(float distance);
    float FogFarDistance() const;
    void SetFogFarDistance(float distance);
    float FogDensity() const;
    void SetFogDensity(float density);
    const kytl::KyColorRGBA_32f &FogColor() const;
    void SetFogColor(const kytl::KyColorRGBA_32f &color);
    FalloffType FogFalloff() const;
    void SetFogFalloff(FalloffType falloff);
    bool MotionBlurEnabled() const;
    void SetMotionBlurEnabled(bool enabled);
    float ShutterAngle() const;
    void SetShutterAngle(float degrees);
    float ShutterPhase() const;
    void SetShutterPhase(float degrees);

private:
    friend class CompositionAsset;

    explicit CompositionRenderSettings(const XmlCursor &element);
    void Serialize(XmlWriter &writer) const;
    void Deserialize(const XmlCursor &element);

    ValuePtr<CompositionRenderSettings_Impl> impl_;
};

} // namespace marlet::project
