#include <marlet/layers/LayerHelper.h>

#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/masks/Mask.h>
#include <marlet/plugins/EffectInstance.h>

#include <algorithm>

namespace marlet::project
{

void LayerHelper::SerializeMasks(XmlWriter &writer, const Masks &masks)
{
    const XmlElement element(writer, "Masks");
    for (const std::shared_ptr<Mask> &mask : masks)
        if (mask)
            mask->Serialize(writer);
}

void LayerHelper::DeserializeMasks(const XmlCursor &parent, Masks &masks)
{
    masks.Clear();
    for (XmlCursor mask = parent.Find("Masks").Find("Mask"); !mask.IsNull(); mask = mask.Next("Mask"))
        masks.Add(std::shared_ptr<Mask>(new Mask(mask, Deserializer())));
}

LayerHelper::Effects LayerHelper::CopyEffects(const Effects &effects, const kytl::KyID &layerID,
                                              const kytl::KyID &compositionID)
{
    Effects copies;
    for (const std::shared_ptr<EffectInstance> &effect : effects) {
        if (const auto copy = effect ? EffectInstance::Copy(effect) : nullptr) {
            copy->SetParent(layerID, compositionID);
            copies.Add(copy);
        }
    }
    return copies;
}

LayerHelper::Masks LayerHelper::CopyMasks(const Masks &masks, const kytl::KyID &layerID)
{
    Masks copies;
    for (const std::shared_ptr<Mask> &mask : masks) {
        if (!mask)
            continue;
        const std::shared_ptr<Mask> copy = Mask::Copy(mask);
        copy->SetParentLayerID(layerID);
        copies.Add(copy);
    }
    return copies;
}

std::vector<ObjectPropertyList> LayerHelper::LayerReferencePropertyNames(const Effects &effects)
{
    std::vector<ObjectPropertyList> names;
    for (const std::shared_ptr<EffectInstance> &effect : effects)
        if (effect)
            names.push_back({effect->ID(), effect->LayerPickerProperties()});
    return names;
}

bool LayerHelper::IsLayerReferenced(const Effects &effects, const kytl::KyID &layerID)
{
    return std::ranges::any_of(effects, [&layerID](const std::shared_ptr<EffectInstance> &effect) {
        return effect && effect->IsLayerReferenced(layerID);
    });
}

void LayerHelper::ClearInvalidLayerReferences(const Effects &effects,
                                              const std::unordered_map<NarrowString, bool> &validIDs)
{
    for (const std::shared_ptr<EffectInstance> &effect : effects)
        if (effect)
            effect->ClearInvalidLayerReferences(validIDs);
}

void LayerHelper::ChangeLayerReferences(const Effects &effects,
                                        const std::unordered_map<NarrowString, NarrowString> &changes)
{
    for (const std::shared_ptr<EffectInstance> &effect : effects)
        if (effect)
            effect->ChangeLayerReferences(changes);
}

} // namespace marlet::project
