#include <marlet/operations/layers/LayerReferences.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/history/Edit.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/operations/layers/LayerContent.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>
#include <marlet/tracking/Tracker.h>

namespace marlet::project
{

namespace
{

using LayerPointer = std::shared_ptr<AbstractLayer>;

bool IsInvalid(const kytl::KyID &id, const ValidLayers &valid)
{
    return !id.IsNull() && !valid.contains(id.ToNarrowString());
}

void TouchEffect(Edit &edit, const std::shared_ptr<EffectInstance> &effect, const ValidLayers &valid)
{
    const PropertyManager &properties = effect->Animation();
    for (const NarrowString &name : effect->LayerPickerProperties()) {
        const auto *id = boost::get<kytl::KyID>(&properties.StaticValue(name.c_str()));
        if (id && IsInvalid(*id, valid))
            edit.Touch(std::shared_ptr<PluginInstance>(effect), name.c_str());
    }
}

void Clear3DEffect(Edit &edit, const std::shared_ptr<Effect3DLayer> &layer, const ValidLayers &valid)
{
    const ProjectTextureImageCache &textures = edit.Document()->TextureImageCache();
    const auto clone = std::static_pointer_cast<Effect3DLayer>(layer->Clone(layer->ParentCompositionID()));
    clone->RemoveParentLayer();
    const WideString before = clone->Serialize(textures);
    clone->ClearInvalidLayerReferences(valid);
    if (clone->Serialize(textures) == before)
        return;
    edit.Touch(layer);
    layer->SetEffect(clone->Effect());
}

} // namespace

ValidLayers LayersOf(const CompositionAsset &composition, const Project &project)
{
    ValidLayers valid;
    for (const kytl::KyID &kept : project.KeptIDs())
        valid.emplace(kept.ToNarrowString(), true);
    for (const LayerPointer &layer : composition.Layers())
        if (layer)
            valid.emplace(layer->ID().ToNarrowString(), true);
    return valid;
}

void ClearInvalidReferences(Edit &edit, const LayerPointer &layer, const ValidLayers &valid)
{
    if (IsInvalid(layer->ParentLayerID(), valid)) {
        edit.Touch(layer);
        layer->RemoveParentLayer();
    }
    if (const auto layer3D = std::dynamic_pointer_cast<Effect3DLayer>(layer))
        return Clear3DEffect(edit, layer3D, valid);
    if (const auto *trackers = TrackersOf(*layer))
        for (const std::shared_ptr<Tracker> &tracker : *trackers)
            if (tracker && IsInvalid(tracker->DestinationLayerID(), valid))
                edit.Touch(tracker);
    if (const auto *effects = EffectsOf(*layer))
        for (const std::shared_ptr<EffectInstance> &effect : *effects)
            if (effect)
                TouchEffect(edit, effect, valid);
    layer->ClearInvalidLayerReferences(valid);
}

} // namespace marlet::project
