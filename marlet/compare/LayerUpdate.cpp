#include <marlet/compare/Update.h>

#include <marlet/history/Edit.h>
#include <marlet/history/Parts.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

namespace marlet::project
{

namespace
{

std::shared_ptr<PathPoint> UpdatePoint(const Update &update, const ElementPair &elements,
                                       const std::shared_ptr<PathPoint> &point,
                                       const std::shared_ptr<PathPoint> &fresh)
{
    if (update.Exchanges(elements))
        return fresh;
    update.edit.Touch(point);
    TakeOver(*point, *fresh);
    UpdateProperties(update, elements, PropertiesOf(point), fresh->Animation(), ObjectKind::PathPoint,
                     point->ID());
    return point;
}

void UpdatePoint(const Update &update, const ElementPair &elements, std::shared_ptr<TrackingPoint> &point,
                 const std::shared_ptr<TrackingPoint> &fresh)
{
    if (elements.IsSame())
        return;
    if (!point || !fresh || point->ID() != fresh->ID() || update.Exchanges(elements)) {
        point = fresh;
        return;
    }
    update.edit.Touch(point);
    TakeOver(*point, *fresh);
    UpdateProperties(update, elements, PropertiesOf(point), fresh->Animation(), ObjectKind::TrackingPoint,
                     point->ID());
}

template <class Layer>
void UpdateEffectsAndMasks(const Update &update, const ElementPair &elements, AbstractLayer &layer,
                           AbstractLayer &fresh)
{
    auto &own = dynamic_cast<Layer &>(layer);
    auto &other = dynamic_cast<Layer &>(fresh);
    UpdateList(elements.Child("Effects"), own.Effects(), other.Effects(),
               [&](const auto &effect, const auto &replacement, const ElementPair &pair) {
                   return UpdateEffect(update, pair, effect, replacement);
               });
    UpdateList(elements.Child("Masks"), own.Masks(), other.Masks(),
               [&](const auto &mask, const auto &replacement, const ElementPair &pair) {
                   return UpdateMask(update, pair, mask, replacement);
               });
}

void UpdateOwned(const Update &update, const ElementPair &elements,
                 const std::shared_ptr<AbstractLayer> &layer, AbstractLayer &fresh)
{
    if (layer->Type() == LayerType::Grade)
        UpdateEffectsAndMasks<GradeLayer>(update, elements, *layer, fresh);
    if (const auto text = std::dynamic_pointer_cast<TextLayer>(layer)) {
        UpdateEffectsAndMasks<TextLayer>(update, elements, *layer, fresh);
        update.edit.TouchText(text);
        TakeOverText(*text, dynamic_cast<const TextLayer &>(fresh));
    }
    if (layer->Type() != LayerType::Asset)
        return;
    UpdateEffectsAndMasks<AssetLayer>(update, elements, *layer, fresh);
    UpdateList(elements.Child("Trackers"), dynamic_cast<AssetLayer &>(*layer).Trackers(),
               dynamic_cast<AssetLayer &>(fresh).Trackers(),
               [&](const auto &tracker, const auto &replacement, const ElementPair &pair) {
                   return UpdateTracker(update, pair, tracker, replacement);
               });
}

} // namespace

void UpdateInstance(const Update &update, const ElementPair &elements,
                    const std::shared_ptr<PluginInstance> &instance, PluginInstance &fresh)
{
    update.edit.Touch(instance);
    TakeOver(*instance, fresh);
    const bool isEffect = instance->Type() == AbstractPluginInstance::InstanceType::Effect;
    UpdateProperties(update, elements, PropertiesOf(instance), fresh.Properties(),
                     isEffect ? ObjectKind::Effect : ObjectKind::Transition, instance->ID());
}

std::shared_ptr<EffectInstance> UpdateEffect(const Update &update, const ElementPair &elements,
                                             const std::shared_ptr<EffectInstance> &effect,
                                             const std::shared_ptr<EffectInstance> &fresh)
{
    if (effect->PluginID() != fresh->PluginID() || update.Exchanges(elements))
        return fresh;
    UpdateInstance(update, elements, effect, *fresh);
    return effect;
}

std::shared_ptr<Mask> UpdateMask(const Update &update, const ElementPair &elements,
                                 const std::shared_ptr<Mask> &mask, const std::shared_ptr<Mask> &fresh)
{
    if (update.Exchanges(elements))
        return fresh;
    update.edit.Touch(mask);
    UpdateList(elements.Child("MotionPath").Child("Points"), mask->Path().Points(), fresh->Path().Points(),
               [&](const auto &point, const auto &replacement, const ElementPair &pair) {
                   return UpdatePoint(update, pair, point, replacement);
               });
    TakeOver(*mask, *fresh);
    UpdateProperties(update, elements, PropertiesOf(mask), fresh->Animation(), ObjectKind::Mask, mask->ID());
    return mask;
}

std::shared_ptr<Tracker> UpdateTracker(const Update &update, const ElementPair &elements,
                                       const std::shared_ptr<Tracker> &tracker,
                                       const std::shared_ptr<Tracker> &fresh)
{
    if (update.Exchanges(elements))
        return fresh;
    update.edit.Touch(tracker);
    TakeOver(*tracker, *fresh);
    UpdatePoint(update, elements.Child("Primary"), tracker->PrimaryTrackingPoint(),
                fresh->PrimaryTrackingPoint());
    UpdatePoint(update, elements.Child("Secondary"), tracker->SecondaryTrackingPoint(),
                fresh->SecondaryTrackingPoint());
    return tracker;
}

std::shared_ptr<AbstractLayer> UpdateLayer(const Update &update, const ElementPair &elements,
                                           const std::shared_ptr<AbstractLayer> &layer,
                                           const std::shared_ptr<AbstractLayer> &fresh)
{
    if (layer->Type() != fresh->Type() || update.Exchanges(elements))
        return fresh;
    update.edit.Touch(layer);
    TakeOver(*layer, *fresh);
    UpdateProperties(update, elements.Child("LayerBase"), PropertiesOf(layer), fresh->Animation(),
                     ObjectKind::Layer, layer->ID());
    UpdateOwned(update, elements, layer, *fresh);
    return layer;
}

} // namespace marlet::project
