#include "OwnershipTree.h"

#include "Document.h"
#include "LayerContent.h"
#include "output/Names.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>
#include <marlet/tracking/Tracker.h>

namespace marlet::tool
{

using namespace project;

namespace
{

class TreeBuilder
{
public:
    void AddProject(const Project &project)
    {
        const Level level = Add("project", project.Name(), project.ID());
        AddFolder(project.Assets().Bin());
        for (const std::shared_ptr<AbstractAsset> &asset : project.Assets().All())
            AddAsset(*asset);
        if (const std::shared_ptr<const EditorSequence> sequence = project.Sequence())
            AddSequence(*sequence);
    }

    OwnershipTree Take() { return std::move(tree_); }

private:
    /// What is added while it lives is owned by what was added with it.
    class Level
    {
    public:
        Level(std::size_t &depth, std::size_t place) : depth_(depth), place_(place) { ++depth_; }
        Level(const Level &) = delete;
        Level &operator=(const Level &) = delete;
        ~Level() { --depth_; }

        std::size_t Place() const { return place_; }

    private:
        std::size_t &depth_;
        std::size_t place_;
    };

    Level Add(const std::string &kind, const WideString &name, const kytl::KyID &id)
    {
        tree_.objects.push_back({depth_, kind, ToUtf8(name), id});
        return Level(depth_, tree_.objects.size() - 1);
    }

    void Refer(const Level &from, const std::string &role, const kytl::KyID &target)
    {
        if (!target.IsNull())
            tree_.references.push_back({from.Place(), role, target});
    }

    void AddFolder(const BinFolder &folder)
    {
        const Level level = Add("folder", folder.Name(), folder.ID());
        for (const std::shared_ptr<BinFolder> &inner : folder.Folders())
            AddFolder(*inner);
    }

    void AddAsset(const AbstractAsset &asset)
    {
        const Level level = Add(AssetTypeName(asset.Type()), asset.Name(), asset.ID());
        Refer(level, "folder", asset.ParentFolderID());
        if (const auto *composition = dynamic_cast<const CompositionAsset *>(&asset))
            for (const LayerPointer &layer : composition->Layers())
                AddLayer(*layer);
    }

    void AddLayer(const AbstractLayer &layer)
    {
        const Level level = Add(LayerTypeName(layer.Type()) + " layer", layer.Name(), layer.ID());
        const auto *shown = dynamic_cast<const AssetLayer *>(&layer);
        if (shown)
            Refer(level, "asset", shown->AssetID());
        for (const LayerReference &reference : LayerReferences(layer))
            if (reference.holder != LayerReference::Holder::Effect)
                Refer(level, reference.holder == LayerReference::Holder::ParentLink ? "parent" : "layer",
                      reference.target);
        AddEffects(EffectsOf(layer), LayerReferences(layer));
        for (const std::shared_ptr<Mask> &mask : MasksOf(layer))
            Add("mask", mask->Name(), mask->ID());
        if (shown)
            for (const std::shared_ptr<Tracker> &tracker : shown->Trackers())
                Refer(Add("tracker", tracker->Name(), tracker->ID()), "layer", tracker->DestinationLayerID());
    }

    void AddEffects(const EffectList &effects, const std::vector<LayerReference> &references)
    {
        for (const std::shared_ptr<EffectInstance> &effect : effects) {
            const Level level = Add("effect", effect->Name(), effect->ID());
            for (const LayerReference &reference : references)
                if (reference.holder == LayerReference::Holder::Effect && reference.object == effect->ID())
                    Refer(level, "layer", reference.target);
        }
    }

    void AddSequence(const EditorSequence &sequence)
    {
        const Level level = Add("sequence", sequence.Name(), sequence.ID());
        for (const std::shared_ptr<VideoTrack> &track : sequence.VideoTracks())
            AddTrack("video track", *track);
        for (const std::shared_ptr<AudioTrack> &track : sequence.AudioTracks())
            AddTrack("audio track", *track);
    }

    void AddTrack(const std::string &kind, const AbstractSequenceTrack &track)
    {
        const Level level = Add(kind, track.Name(), track.ID());
        track.Objects().ForEach(
            [this](std::shared_ptr<const AbstractSequenceObject> object) { AddObject(*object); });
    }

    void AddObject(const AbstractSequenceObject &object)
    {
        const Level level =
            Add(object.Type() == ObjectType::Visual ? "picture" : "sound", object.Name(), object.ID());
        Refer(level, "asset", object.AssetID());
        Refer(level, "partner", object.LinkedObjectID());
        AddEffects(object.Effects(), {});
        // A transition that two objects share stands with the first of them.
        for (const auto &transition : {object.IncomingTransition(), object.OutgoingTransition()}) {
            if (!transition)
                continue;
            const bool isShared =
                transition == object.IncomingTransition() && !transition->FromObject().IsNull();
            if (isShared) {
                Refer(level, "transition", transition->ID());
                continue;
            }
            const std::shared_ptr<AbstractPlugin> plugin = transition->Plugin();
            Add("transition", plugin ? plugin->Name() : WideString(), transition->ID());
        }
    }

    OwnershipTree tree_;
    std::size_t depth_ = 0;
};

} // namespace

OwnershipTree OwnershipOf(const Project &project)
{
    TreeBuilder builder;
    builder.AddProject(project);
    return builder.Take();
}

} // namespace marlet::tool
