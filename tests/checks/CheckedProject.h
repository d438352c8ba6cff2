#pragma once

#include <tests/support/TestPlugins.h>

#include <marlet/checks/Finding.h>
#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/layers/Abstract3DEffectFactory.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/LoadOptions.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

#include <algorithm>

namespace marlet::test
{

const kytl::KyID kNowhere{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};

inline std::vector<FindingKind> KindsOf(const std::vector<Finding> &findings)
{
    std::vector<FindingKind> kinds;
    for (const Finding &finding : findings)
        kinds.push_back(finding.kind);
    std::ranges::sort(kinds);
    return kinds;
}

inline std::string Lines(const std::vector<Finding> &findings)
{
    std::string lines;
    for (const Finding &finding : findings)
        lines += finding.place + ": " + finding.what + "\n";
    return lines;
}

/// A project with one of everything, in which nothing is to be found: in the folder two compositions and a
/// solid, in the first composition the solid with an effect, a mask and a tracker, a text and a null point,
/// on the timeline two pictures of the second composition with a transition between them, and the sound of
/// the first.
struct CheckedProject {
    std::shared_ptr<TestPluginManager> plugins = std::make_shared<TestPluginManager>();
    std::shared_ptr<Project> project;
    std::shared_ptr<CompositionAsset> composition = NewComposition(u"Main");
    std::shared_ptr<CompositionAsset> inner = NewComposition(u"Inner");
    std::shared_ptr<SolidAsset> solid = SolidAsset::Create(u"Red", {1, 0, 0, 1}, 64, 32, PAR::Square);
    std::shared_ptr<AssetLayer> layer;
    std::shared_ptr<EffectInstance> effect;
    std::shared_ptr<Mask> mask = Mask::Create(u"Mask");
    std::shared_ptr<Tracker> tracker = Tracker::Create(u"Tracker", {}, {}, 10, 20);
    std::shared_ptr<TextLayer> text = TextLayer::Create(u"Title", 100, 50);
    std::shared_ptr<PointLayer> point = PointLayer::Create(u"Point");
    std::shared_ptr<EditorSequence> sequence =
        EditorSequence::Create(AudioVideoSettings::Preset::Hd720At25, 100);
    std::shared_ptr<VisualObject> first;
    std::shared_ptr<VisualObject> second;
    std::shared_ptr<AudioObject> sound;
    std::shared_ptr<Transition> transition;

    CheckedProject()
    {
        plugins->plugins.push_back(std::make_shared<TestPlugin>());
        project = Project::Create(plugins);
        AddAsset(composition);
        AddAsset(inner);
        AddAsset(solid);
        FillComposition();
        FillSequence();
        solid->Instances().Add(layer);
    }

    BinFolder &Root() const { return project->Assets().Bin(); }

    template <class Asset> std::shared_ptr<Asset> AddAsset(const std::shared_ptr<Asset> &asset) const
    {
        project->Assets().All().Add(asset);
        Root().Assets().Add(asset);
        asset->SetParentFolderID(Root().ID());
        return asset;
    }

    std::shared_ptr<AssetLayer> Show(const std::shared_ptr<AbstractAsset> &asset,
                                     const std::shared_ptr<CompositionAsset> &where) const
    {
        const auto shown = AssetLayer::Create(asset);
        AddLayer(shown, where);
        return shown;
    }
    std::shared_ptr<AssetLayer> Show(const std::shared_ptr<AbstractAsset> &asset) const
    {
        return Show(asset, composition);
    }

    std::shared_ptr<Project> Reload(const WideString &xml, const LoadOptions &options = {}) const
    {
        struct NoEffects : Abstract3DEffectFactory {
            std::shared_ptr<Abstract3DEffect> Create(void *, ProjectTextureImageCache &) const override
            {
                return nullptr;
            }
        };
        return Project::CreateFromXml(xml, u"", plugins, NoEffects(), options);
    }

private:
    static std::shared_ptr<CompositionAsset> NewComposition(const WideString &name)
    {
        return CompositionAsset::Create(name, AudioVideoSettings::Preset::Hd720At25, 100);
    }

    static void AddLayer(const std::shared_ptr<AbstractLayer> &added,
                         const std::shared_ptr<CompositionAsset> &where)
    {
        added->SetEndFrame(100);
        added->SetParentComposition(where);
        where->Layers().Add(added);
    }

    void FillComposition()
    {
        AddLayer(point, composition);
        AddLayer(text, composition);
        const auto format = text->TextFormat(u"Family", u"Bold", 12, {}, {}, 1, 0, 0);
        text->Text().Append(TextLayer::CreateCharToken(u'A', format, {}));

        layer = Show(solid);
        layer->SetName(u"Picture");
        effect = EffectInstance::Create(plugins->plugins[0]);
        effect->SetParent(layer->ID(), composition->ID());
        effect->Properties().StaticValue("layer") = text->ID();
        layer->Effects().Add(effect);
        for (const float x : {0.f, 1.f, 2.f})
            mask->Path().Points().Add(PathPoint::Create(x, x * x, mask->Path().ID()));
        mask->SetParentLayerID(layer->ID());
        layer->Masks().Add(mask);
        tracker->SetParentLayerID(layer->ID());
        tracker->SetDestinationLayerID(point->ID());
        layer->Trackers().Add(tracker);
    }

    template <class Object, class Track>
    std::shared_ptr<Object> Put(Track &track, int start, int end, int assetStart) const
    {
        const auto object = Object::Create(inner, sequence);
        object->SetParentTrackID(track.ID());
        object->SetAssetInstanceStart(assetStart);
        object->SetEndFrame(end);
        track.Objects().Insert(object, start);
        return object;
    }

    void FillSequence()
    {
        project->SetSequence(sequence);
        first = Put<VisualObject>(*sequence->VideoTracks()[0], 0, 40, 0);
        second = Put<VisualObject>(*sequence->VideoTracks()[0], 40, 100, 40);
        sound = Put<AudioObject>(*sequence->AudioTracks()[0], 0, 40, 0);
        first->SetLinkedObjectID(sound->ID());
        sound->SetLinkedObjectID(first->ID());
        transition = Transition::Create(plugins->plugins[0]);
        transition->SetLength(10);
        transition->SetFromObject(first->ID());
        transition->SetToObject(second->ID());
        first->SetOutgoingTransition(transition);
        second->SetIncomingTransition(transition);
    }
};

} // namespace marlet::test
