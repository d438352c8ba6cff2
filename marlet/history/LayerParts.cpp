#include <marlet/history/Fields.h>
#include <marlet/history/Parts.h>
#include <marlet/history/StoredFields.h>
#include <marlet/layers/Abstract3DEffect.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AbstractAsset.h>
#include <marlet/tracking/Tracker.h>

namespace marlet::project
{

namespace
{

constexpr std::tuple kLayerFields(
    Setting(Aspect::Frames, &AbstractLayer::StartFrame, &AbstractLayer::SetStartFrame),
    Setting(Aspect::Frames, &AbstractLayer::EndFrame, &AbstractLayer::SetEndFrame),
    Setting(Aspect::Name, &AbstractLayer::Name, &AbstractLayer::SetName),
    Setting(Aspect::Settings, &AbstractLayer::BlendMode, &AbstractLayer::SetBlendMode),
    Setting(Aspect::Settings, &AbstractLayer::IsVisible, &AbstractLayer::SetVisible),
    Setting(Aspect::View, &AbstractLayer::IsSelected, &AbstractLayer::SetSelected),
    Setting(Aspect::Settings, &AbstractLayer::IsMuted, &AbstractLayer::SetMuted),
    Setting(Aspect::Settings, &AbstractLayer::IsLocked, &AbstractLayer::SetLocked),
    Setting(Aspect::Settings, &AbstractLayer::IsMotionBlurEnabled, &AbstractLayer::SetMotionBlur),
    Field{Aspect::Links, [](const AbstractLayer &layer) { return layer.ParentCompositionID(); },
          [](AbstractLayer &layer, const kytl::KyID &id) { layer.SetParentComposition(id); }},
    Field{Aspect::Links, [](const AbstractLayer &layer) { return layer.ParentLayerID(); },
          [](AbstractLayer &layer, const kytl::KyID &id) { layer.SetParentLayer(id); }});

/// What an asset layer takes of these depends on the kind of its asset, but what it has stays.
struct AssetLayerState {
    AssetUse use;
    LayerDimensions dimensions{};
    bool promotesLights = false;

    bool operator==(const AssetLayerState &other) const = default;
};

AssetLayerState StateOf(const AssetLayer &layer)
{
    return {layer.Use(), layer.Dimensions(), layer.PromoteLights()};
}

/// A composition is what takes everything.
void SetState(AssetLayer &layer, const AssetLayerState &state)
{
    AssetUse any;
    any.type = AssetType::Composition;
    layer.SetUse(any);
    layer.SetDimensions(state.dimensions);
    layer.SetPromoteLights(state.promotesLights);
    layer.SetUse(state.use);
}

void DescribeField(ObjectChange &change, Aspect, const AssetLayerState &live, const AssetLayerState &kept)
{
    if (!(live.use == kept.use))
        change.aspects |= Aspect::Links;
    if (live.dimensions != kept.dimensions || live.promotesLights != kept.promotesLights)
        change.aspects |= Aspect::Settings;
}

constexpr std::tuple kAssetLayerFields(Field{Aspect::Links, StateOf, SetState},
                                       Setting(Aspect::Frames, &AssetLayer::AssetInstanceStart,
                                               &AssetLayer::SetAssetInstanceStart),
                                       Setting(Aspect::Settings, &AssetLayer::AutoOrientation,
                                               StoredFields::SetAutoOrientation<AssetLayer>),
                                       Held(Aspect::Members, &AssetLayer::Effects, &AssetLayer::Effects),
                                       Held(Aspect::Members, &AssetLayer::Masks, &AssetLayer::Masks),
                                       Held(Aspect::Members, &AssetLayer::Trackers, &AssetLayer::Trackers));

constexpr std::tuple kCameraFields(
    Setting(Aspect::Settings, &CameraLayer::HasDepthOfField, &CameraLayer::SetDepthOfField),
    Setting(Aspect::Settings, &CameraLayer::NearClip, &CameraLayer::SetNearClip),
    Setting(Aspect::Settings, &CameraLayer::FarClip, &CameraLayer::SetFarClip),
    Setting(Aspect::Settings, &CameraLayer::AutoOrientation, StoredFields::SetAutoOrientation<CameraLayer>));

constexpr std::tuple kLightFields(Setting(Aspect::Settings, &LightLayer::LightSourceType,
                                          &LightLayer::SetLightSourceType),
                                  Setting(Aspect::Settings, &LightLayer::AutoOrientation,
                                          StoredFields::SetAutoOrientation<LightLayer>));

constexpr std::tuple kGradeFields(Setting(Aspect::Settings, &GradeLayer::Dimensions,
                                          StoredFields::SetDimensions<GradeLayer>),
                                  Setting(Aspect::Settings, &GradeLayer::Width, &GradeLayer::SetWidth),
                                  Setting(Aspect::Settings, &GradeLayer::Height, &GradeLayer::SetHeight),
                                  Held(Aspect::Members, &GradeLayer::Effects, &GradeLayer::Effects),
                                  Held(Aspect::Members, &GradeLayer::Masks, &GradeLayer::Masks));

constexpr std::tuple kEffect3DFields(Setting(Aspect::Settings, &Effect3DLayer::Effect,
                                             &Effect3DLayer::SetEffect));

constexpr std::tuple kPointFields(Setting(Aspect::Settings, &PointLayer::Dimensions,
                                          StoredFields::SetDimensions<PointLayer>));

constexpr std::tuple kTextLayerFields(Setting(Aspect::Settings, &TextLayer::Dimensions,
                                              StoredFields::SetDimensions<TextLayer>),
                                      Held(Aspect::Members, &TextLayer::Effects, &TextLayer::Effects),
                                      Held(Aspect::Members, &TextLayer::Masks, &TextLayer::Masks));

class LayerPart final : public FieldsPart<AbstractLayer, kLayerFields>
{
public:
    using FieldsPart::FieldsPart;

    void Describe(ChangeList &changes) const override
    {
        FieldsPart::Describe(changes);
        const int start = std::get<0>(Kept());
        const int end = std::get<1>(Kept());
        if (start != Live().StartFrame() || end != Live().EndFrame())
            changes.AddFormerFrames(Live().ParentCompositionID(), Live().ID(), start, end);
    }
};

template <const auto &fields, class Layer>
void MakeOwn(const std::shared_ptr<Layer> &layer, const PartSink &sink)
{
    if (layer)
        sink(std::make_unique<FieldsPart<Layer, fields>>(layer, ObjectKind::Layer, layer->ID()));
}

template <const auto &fields, class Layer> void TakeOverOwn(AbstractLayer &layer, const AbstractLayer &other)
{
    TakeOverFields<fields>(dynamic_cast<Layer &>(layer), dynamic_cast<const Layer &>(other));
}

} // namespace

void MakeParts(const std::shared_ptr<AbstractLayer> &layer, const PartSink &sink)
{
    sink(std::make_unique<LayerPart>(layer, ObjectKind::Layer, layer->ID()));
    switch (layer->Type()) {
    case LayerType::Asset:
        MakeOwn<kAssetLayerFields>(std::dynamic_pointer_cast<AssetLayer>(layer), sink);
        break;
    case LayerType::Camera:
        MakeOwn<kCameraFields>(std::dynamic_pointer_cast<CameraLayer>(layer), sink);
        break;
    case LayerType::Light:
        MakeOwn<kLightFields>(std::dynamic_pointer_cast<LightLayer>(layer), sink);
        break;
    case LayerType::Grade:
        MakeOwn<kGradeFields>(std::dynamic_pointer_cast<GradeLayer>(layer), sink);
        break;
    case LayerType::Text:
        MakeOwn<kTextLayerFields>(std::dynamic_pointer_cast<TextLayer>(layer), sink);
        break;
    case LayerType::Point:
        MakeOwn<kPointFields>(std::dynamic_pointer_cast<PointLayer>(layer), sink);
        break;
    case LayerType::Effect3D:
        MakeOwn<kEffect3DFields>(std::dynamic_pointer_cast<Effect3DLayer>(layer), sink);
        break;
    }
}

void TakeOver(AbstractLayer &layer, const AbstractLayer &other)
{
    const bool isSelected = layer.IsSelected();
    TakeOverFields<kLayerFields>(layer, other);
    layer.SetSelected(isSelected);
    switch (layer.Type()) {
    case LayerType::Asset:
        return TakeOverOwn<kAssetLayerFields, AssetLayer>(layer, other);
    case LayerType::Camera:
        return TakeOverOwn<kCameraFields, CameraLayer>(layer, other);
    case LayerType::Light:
        return TakeOverOwn<kLightFields, LightLayer>(layer, other);
    case LayerType::Grade:
        return TakeOverOwn<kGradeFields, GradeLayer>(layer, other);
    case LayerType::Text:
        return TakeOverOwn<kTextLayerFields, TextLayer>(layer, other);
    case LayerType::Point:
        return TakeOverOwn<kPointFields, PointLayer>(layer, other);
    case LayerType::Effect3D:
        return;
    }
}

} // namespace marlet::project
