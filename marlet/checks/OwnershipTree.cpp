#include <marlet/checks/OwnershipTree.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>
#include <marlet/tracking/Tracker.h>

#include <initializer_list>
#include <unordered_set>
#include <utility>

namespace marlet::project
{

namespace
{

/// The names are those of the values from 0 up.
template <class Enum> std::string KindOf(Enum value, std::initializer_list<const char *> names)
{
    const auto number = static_cast<std::size_t>(value);
    return number < names.size() ? names.begin()[number] : "kind " + std::to_string(static_cast<int>(value));
}

class TreeBuilder
{
public:
    explicit TreeBuilder(const NamedBy3DEffect &namedBy3DEffect) : namedBy3DEffect_(namedBy3DEffect) {}

    void AddProject(const Project &project)
    {
        const Level level = Add("project", project.Name(), project.ID());
        AddFolder(project.Assets().Bin());
        for (const std::shared_ptr<AbstractAsset> &asset : project.Assets().All())
            if (asset)
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
        // A folder that holds itself stands there once.
        if (!folders_.insert(&folder).second)
            return;
        const Level level = Add("folder", folder.Name(), folder.ID());
        for (const std::shared_ptr<BinFolder> &inner : folder.Folders())
            if (inner)
                AddFolder(*inner);
    }

    void AddAsset(const AbstractAsset &asset)
    {
        const Level level =
            Add(KindOf(asset.Type(), {"media", "image", "solid", "composition"}), asset.Name(), asset.ID());
        Refer(level, "folder", asset.ParentFolderID());
        if (const auto *composition = dynamic_cast<const CompositionAsset *>(&asset))
            for (const std::shared_ptr<AbstractLayer> &layer : composition->Layers())
                if (layer)
                    AddLayer(*layer);
    }

    void AddLayer(const AbstractLayer &layer)
    {
        const std::string kind =
            KindOf(layer.Type(), {"asset", "effect3d", "camera", "light", "grade", "point", "text"});
        const Level level = Add(kind + " layer", layer.Name(), layer.ID());
        const auto *shown = dynamic_cast<const AssetLayer *>(&layer);
        if (shown)
            Refer(level, "asset", shown->AssetID());
        Refer(level, "parent", layer.ParentLayerID());
        if (namedBy3DEffect_)
            for (const kytl::KyID &target : namedBy3DEffect_(layer))
                Refer(level, "layer", target);
        if (shown)
            AddOwned(*shown);
        else if (const auto *text = dynamic_cast<const TextLayer *>(&layer))
            AddOwned(*text);
        else if (const auto *grade = dynamic_cast<const GradeLayer *>(&layer))
            AddOwned(*grade);
        if (shown)
            for (const std::shared_ptr<Tracker> &tracker : shown->Trackers())
                if (tracker)
                    Refer(Add("tracker", tracker->Name(), tracker->ID()), "layer",
                          tracker->DestinationLayerID());
    }

    template <class Layer> void AddOwned(const Layer &layer)
    {
        AddEffects(layer.Effects());
        for (const std::shared_ptr<Mask> &mask : layer.Masks())
            if (mask)
                Add("mask", mask->Name(), mask->ID());
    }

    template <class Effects> void AddEffects(const Effects &effects)
    {
        for (const std::shared_ptr<EffectInstance> &effect : effects) {
            if (!effect)
                continue;
            const Level level = Add("effect", effect->Name(), effect->ID());
            // A layer picker holds an ID, unless a file brought another type.
            for (const NarrowString &property : effect->LayerPickerProperties())
                if (const auto *target = boost::get<kytl::KyID>(
                        &std::as_const(*effect).Properties().StaticValue(property.c_str())))
                    Refer(level, "layer", *target);
        }
    }

    void AddSequence(const EditorSequence &sequence)
    {
        const Level level = Add("sequence", sequence.Name(), sequence.ID());
        for (const std::shared_ptr<VideoTrack> &track : sequence.VideoTracks())
            if (track)
                AddTrack("video track", *track);
        for (const std::shared_ptr<AudioTrack> &track : sequence.AudioTracks())
            if (track)
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
        AddEffects(object.Effects());
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

    const NamedBy3DEffect &namedBy3DEffect_;
    OwnershipTree tree_;
    std::unordered_set<const BinFolder *> folders_;
    std::size_t depth_ = 0;
};

} // namespace

OwnershipTree OwnershipOf(const Project &project, const NamedBy3DEffect &namedBy3DEffect)
{
    TreeBuilder builder(namedBy3DEffect);
    builder.AddProject(project);
    return builder.Take();
}

} // namespace marlet::project
