#include <marlet/history/ProjectUses.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObject.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/layers/Abstract3DEffect.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>

namespace marlet::project
{

ProjectUses::ProjectUses(const Project &project)
{
    for (const std::shared_ptr<AbstractAsset> &asset : project.Assets().All())
        if (auto composition = std::dynamic_pointer_cast<CompositionAsset>(asset))
            Add(composition);
    AddSequence(project);
}

const ProjectUses::IDs &ProjectUses::At(const Table &table, const kytl::KyID &id)
{
    static const IDs none;
    const auto found = table.find(id);
    return found == table.end() ? none : found->second;
}

ProjectUses::Frames ProjectUses::FramesOf(const kytl::KyID &timeline) const
{
    if (timeline == sequence_ && !timeline.IsNull())
        return sequenceFrames_;
    const auto found = compositions_.find(timeline);
    return found == compositions_.end() ? Frames() : Frames{0, found->second->Settings().FrameCount()};
}

const ProjectUses::LayerUse *ProjectUses::Layer(const kytl::KyID &id) const
{
    const auto found = layers_.find(id);
    return found == layers_.end() ? nullptr : &found->second;
}

const kytl::KyID *ProjectUses::OwningLayer(const kytl::KyID &id) const
{
    const auto found = owningLayer_.find(id);
    return found == owningLayer_.end() ? nullptr : &found->second;
}

void ProjectUses::Add(const std::shared_ptr<CompositionAsset> &composition)
{
    compositions_.emplace(composition->ID(), composition);
    const CompositionAsset &constComposition = *composition;
    for (const std::shared_ptr<AbstractLayer> &layer : constComposition.Layers()) {
        if (!layer)
            continue;
        layers_.try_emplace(layer->ID(), LayerUse{layer, composition});
        Add(layer);
    }
    // The host's own objects say for themselves to which layers they refer.
    for (const std::shared_ptr<AbstractLayer> &layer : constComposition.Layers())
        if (const auto *shown = dynamic_cast<const Effect3DLayer *>(layer.get()))
            for (const std::shared_ptr<AbstractLayer> &other : constComposition.Layers())
                if (other && other != layer && shown->IsLayerReferenced(composition, other->ID()))
                    dependents_[other->ID()].push_back(layer->ID());
}

void ProjectUses::Add(const std::shared_ptr<AbstractLayer> &layer)
{
    if (layer->HasParentLayer())
        dependents_[layer->ParentLayerID()].push_back(layer->ID());
    if (const auto *asset = dynamic_cast<const AssetLayer *>(layer.get())) {
        layersOf_[asset->AssetID()].push_back(layer->ID());
        AddEffects(asset->Effects(), layer->ID());
        AddMasks(asset->Masks(), layer->ID());
    } else if (const auto *grade = dynamic_cast<const GradeLayer *>(layer.get())) {
        AddEffects(grade->Effects(), layer->ID());
        AddMasks(grade->Masks(), layer->ID());
    } else if (const auto *text = dynamic_cast<const TextLayer *>(layer.get())) {
        AddEffects(text->Effects(), layer->ID());
        AddMasks(text->Masks(), layer->ID());
    }
}

template <class Effects> void ProjectUses::AddEffects(const Effects &effects, const kytl::KyID &layer)
{
    for (const auto &effect : effects) {
        if (!effect)
            continue;
        owningLayer_.emplace(effect->ID(), layer);
        for (const NarrowString &name : effect->LayerPickerProperties()) {
            const PropertyManager &properties = effect->Animation();
            if (const auto *id = boost::get<kytl::KyID>(&properties.StaticValue(name.c_str())))
                dependents_[*id].push_back(layer);
        }
    }
}

template <class Masks> void ProjectUses::AddMasks(const Masks &masks, const kytl::KyID &layer)
{
    for (const auto &mask : masks) {
        if (!mask)
            continue;
        owningLayer_.emplace(mask->ID(), layer);
        for (const std::shared_ptr<PathPoint> &point : std::as_const(*mask).Path().Points())
            if (point)
                owningLayer_.emplace(point->ID(), layer);
    }
}

void ProjectUses::AddSequence(const Project &project)
{
    const std::shared_ptr<const EditorSequence> sequence = project.Sequence();
    if (!sequence)
        return;
    sequence_ = sequence->ID();
    sequenceFrames_ = {0, sequence->Settings().FrameCount()};
    const auto addObject = [this](const std::shared_ptr<const AbstractSequenceObject> &object) {
        sequenceFrames_.end = std::max(sequenceFrames_.end, object->EndFrame());
        objectsOf_[object->AssetID()].push_back(object->ID());
        for (const std::shared_ptr<EffectInstance> &effect : object->Effects())
            if (effect)
                owningObjects_[effect->ID()].push_back(object->ID());
        for (const auto &transition : {object->IncomingTransition(), object->OutgoingTransition()})
            if (transition)
                owningObjects_[transition->ID()].push_back(object->ID());
    };
    for (const std::shared_ptr<VideoTrack> &track : sequence->VideoTracks())
        if (track)
            std::as_const(*track).Objects().ForEach(addObject);
    for (const std::shared_ptr<AudioTrack> &track : sequence->AudioTracks())
        if (track)
            std::as_const(*track).Objects().ForEach(addObject);
}

} // namespace marlet::project
