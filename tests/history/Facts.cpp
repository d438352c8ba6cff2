#include "Facts.h"

#include <tests/support/TestPlugins.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/CompositionRenderSettings.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectMetadata.h>
#include <marlet/project/ProjectSettings.h>
#include <marlet/project/SolidAsset.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

#include <sstream>

namespace marlet::test
{

namespace
{

/// Walks a project and notes what each object says of itself, by the aspect under which a notice names that.
class Facts
{
public:
    explicit Facts(const Project &project)
    {
        Begin(ObjectKind::Project, project.ID(), &project, "");
        Say(Aspect::Name, project.Name());
        Say(Aspect::Settings, int(project.Settings().ColorBitDepth()));
        for (unsigned int i = 0; i < 4; ++i)
            if (project.Metadata().HasIntegerValue(project.ID(), i))
                Say(Aspect::Settings, i, project.Metadata().IntegerValue(project.ID(), i));
        const std::string root = key_;
        SayIDs(Aspect::Members, project.Assets().All());
        const std::shared_ptr<const EditorSequence> sequence = project.Sequence();
        if (sequence)
            Say(Aspect::Members, sequence->ID());
        Add(project.Assets().Bin(), root);
        for (const auto &asset : project.Assets().All())
            Add(*asset, root);
        if (sequence)
            Add(*sequence, root);
    }

    FactsByKey facts;

private:
    void Begin(ObjectKind kind, const kytl::KyID &id, const void *address, const std::string &holder)
    {
        key_ = KeyOf(kind, id);
        facts[key_] = {address, holder, {}, {}};
    }

    void SayOne(std::string &text, const kytl::KyID &id) { text += id.ToNarrowString() + ' '; }
    void SayOne(std::string &text, const WideString &words) { text += ToUtf8(words) + ' '; }
    void SayOne(std::string &text, const std::string &words) { text += words + ' '; }
    template <class T> void SayOne(std::string &text, const T &number)
    {
        std::ostringstream stream;
        stream.precision(17);
        stream << number << ' ';
        text += stream.str();
    }
    template <class... T> void Say(Aspect aspect, const T &...values)
    {
        (SayOne(facts[key_].texts[aspect], values), ...);
    }

    template <class List> void SayIDs(Aspect aspect, const List &list)
    {
        Say(aspect, std::string("["));
        for (const auto &entry : list)
            Say(aspect, entry->ID());
        Say(aspect, std::string("]"));
    }
    template <class List> void SayWeakIDs(Aspect aspect, const List &list)
    {
        Say(aspect, std::string("["));
        for (const auto &entry : list)
            if (const auto object = entry.lock())
                Say(aspect, object->ID());
        Say(aspect, std::string("]"));
    }

    /// The elements of the properties in what the manager writes: each begins in the second column.
    void SayProperties(const PropertyManager &properties)
    {
        std::istringstream lines(ToUtf8(properties.Serialize()));
        std::string name;
        for (std::string line; std::getline(lines, line);) {
            const bool begins = line.size() > 2 && line[0] == ' ' && line[1] == '<' && line[2] != '/';
            if (begins)
                name = line.substr(2, line.find_first_of(" >/", 2) - 2);
            if (!name.empty() && line.starts_with(' '))
                facts[key_].properties[name].text += line + '\n';
        }
        for (auto &[property, kept] : facts[key_].properties)
            if (boost::get<float>(&properties.StaticValue(property.c_str())) != nullptr)
                Sample(properties, property, kept);
    }

    static void Sample(const PropertyManager &properties, const std::string &name, PropertyFacts &kept)
    {
        for (int time = -100; time <= 700; time += 50)
            kept.values[time] = boost::get<float>(properties.ValueAtTime(name.c_str(), time));
    }

    void Add(const BinFolder &folder, const std::string &holder)
    {
        Begin(ObjectKind::Folder, folder.ID(), &folder, holder);
        const std::string key = key_;
        Say(Aspect::Name, folder.Name());
        Say(Aspect::View, folder.IsExpanded());
        Say(Aspect::Links, folder.ParentFolderID());
        SayWeakIDs(Aspect::Members, folder.Assets());
        SayIDs(Aspect::Members, folder.Folders());
        for (const auto &inner : folder.Folders())
            Add(*inner, key);
    }

    void Add(const AbstractAsset &asset, const std::string &holder)
    {
        Begin(ObjectKind::Asset, asset.ID(), &asset, holder);
        Say(Aspect::Name, asset.Name());
        Say(Aspect::Links, asset.ParentFolderID());
        // Lists of instances forget what dies, as a history does when it lets go of a step.
        if (const auto *solid = dynamic_cast<const SolidAsset *>(&asset)) {
            Say(Aspect::Settings, solid->Width(), solid->Height(), solid->Color().R, solid->Color().G,
                int(solid->PixelAspectRatio()));
        } else if (const auto *image = dynamic_cast<const ImageAsset *>(&asset)) {
            Say(Aspect::File, image->Filename());
            Say(Aspect::Settings, int(image->PixelAspectRatio()));
        } else if (const auto *media = dynamic_cast<const MediaAsset *>(&asset)) {
            Say(Aspect::File, media->Filename(), media->IsImageSequence());
            Say(Aspect::Settings, media->Override().overrideFrameRate, media->Override().frameRate);
            Say(Aspect::View, media->TrimmerInPoint(), media->TrimmerOutPoint());
        } else if (const auto *composition = dynamic_cast<const CompositionAsset *>(&asset)) {
            AddComposition(*composition);
        }
    }

    void AddComposition(const CompositionAsset &composition)
    {
        const std::string key = key_;
        Say(Aspect::Settings, composition.Settings().Serialize(), composition.RenderSettings().Serialize());
        Say(Aspect::View, composition.InPoint(), composition.OutPoint(), composition.TimelineZoom(),
            composition.CurrentTimeIndicator());
        SayIDs(Aspect::Members, composition.Layers());
        for (const auto &layer : composition.Layers())
            Add(*layer, key);
    }

    void Add(const AbstractLayer &layer, const std::string &holder)
    {
        Begin(ObjectKind::Layer, layer.ID(), &layer, holder);
        const std::string key = key_;
        Say(Aspect::Name, layer.Name());
        Say(Aspect::Frames, layer.StartFrame(), layer.EndFrame());
        Say(Aspect::Settings, int(layer.BlendMode()), layer.IsVisible(), layer.IsMuted(), layer.IsLocked(),
            layer.IsMotionBlurEnabled(), int(layer.Dimensions()));
        Say(Aspect::View, layer.IsSelected());
        Say(Aspect::Links, layer.ParentCompositionID(), layer.ParentLayerID());
        SayProperties(layer.Animation());
        if (const auto *shown = dynamic_cast<const AssetLayer *>(&layer)) {
            Say(Aspect::Links, shown->AssetID(), int(shown->Use().type), shown->Use().hadAudio);
            Say(Aspect::Frames, shown->AssetInstanceStart());
            Say(Aspect::Settings, int(shown->AutoOrientation()), shown->PromoteLights());
            SayIDs(Aspect::Members, shown->Trackers());
            AddOwned(*shown, key);
            for (const auto &tracker : shown->Trackers())
                Add(*tracker, key);
        } else if (const auto *text = dynamic_cast<const TextLayer *>(&layer)) {
            Say(Aspect::Settings, text->MinX(), text->MaxX(), text->MinY(), text->MaxY());
            for (const TextLayer::Token *token = text->Text().first.get(); token; token = token->next.get())
                Say(Aspect::Text, token->id, token->type, token->character,
                    token->format ? token->format->size : -1);
            AddOwned(*text, key);
        } else {
            AddOther(layer, key);
        }
    }

    void AddOther(const AbstractLayer &layer, const std::string &key)
    {
        if (const auto *grade = dynamic_cast<const GradeLayer *>(&layer)) {
            Say(Aspect::Settings, grade->Width(), grade->Height());
            AddOwned(*grade, key);
        } else if (const auto *camera = dynamic_cast<const CameraLayer *>(&layer)) {
            Say(Aspect::Settings, camera->HasDepthOfField(), camera->NearClip(), camera->FarClip(),
                int(camera->AutoOrientation()));
        } else if (const auto *light = dynamic_cast<const LightLayer *>(&layer)) {
            Say(Aspect::Settings, int(light->LightSourceType()), int(light->AutoOrientation()));
        } else if (const auto *effect = dynamic_cast<const Effect3DLayer *>(&layer)) {
            Say(Aspect::Settings, static_cast<const void *>(effect->Effect().get()));
        }
    }

    template <class Layer> void AddOwned(const Layer &layer, const std::string &holder)
    {
        SayIDs(Aspect::Members, layer.Effects());
        SayIDs(Aspect::Members, layer.Masks());
        for (const auto &effect : layer.Effects())
            Add(*effect, holder);
        for (const auto &mask : layer.Masks())
            Add(*mask, holder);
    }

    void AddInstance(const PluginInstance &instance)
    {
        Say(Aspect::View, instance.PropertyUIState("amount").visible);
        const auto bytes = instance.PrivateBytes();
        Say(Aspect::PrivateData, bytes ? std::string(bytes->begin(), bytes->end()) : std::string("-"));
        SayProperties(instance.Properties());
    }

    void Add(const EffectInstance &effect, const std::string &holder)
    {
        Begin(ObjectKind::Effect, effect.ID(), &effect, holder);
        Say(Aspect::Name, effect.Name());
        Say(Aspect::Settings, effect.Enabled());
        Say(Aspect::Links, effect.ParentID(), effect.ParentTimelineID());
        AddInstance(effect);
    }

    void Add(const Transition &transition, const std::string &holder)
    {
        Begin(ObjectKind::Transition, transition.ID(), &transition, holder);
        Say(Aspect::Links, transition.FromObject(), transition.ToObject());
        Say(Aspect::Frames, transition.Length(), transition.RelativeStartFrame());
        AddInstance(transition);
    }

    void Add(const Mask &mask, const std::string &holder)
    {
        Begin(ObjectKind::Mask, mask.ID(), &mask, holder);
        const std::string key = key_;
        Say(Aspect::Name, mask.Name());
        Say(Aspect::Settings, mask.IsVisible(), mask.Path().WantsToBeClosed());
        Say(Aspect::Links, mask.ParentLayerID(), mask.Path().ParentID());
        SayIDs(Aspect::Members, mask.Path().Points());
        SayProperties(mask.Animation());
        for (const auto &point : mask.Path().Points()) {
            Begin(ObjectKind::PathPoint, point->ID(), point.get(), key);
            Say(Aspect::Settings, point->IsLinear(), point->IsLocked());
            Say(Aspect::Links, point->ParentPathID());
            SayProperties(std::as_const(*point).Animation());
        }
    }

    void Add(const Tracker &tracker, const std::string &holder)
    {
        Begin(ObjectKind::Tracker, tracker.ID(), &tracker, holder);
        const std::string key = key_;
        Say(Aspect::Name, tracker.Name());
        Say(Aspect::Settings, int(tracker.Type()), int(tracker.Method()), tracker.TransformationOptions());
        Say(Aspect::Links, tracker.DestinationLayerID(), tracker.ParentLayerID());
        for (const auto &point : {tracker.PrimaryTrackingPoint(), tracker.SecondaryTrackingPoint()}) {
            Begin(ObjectKind::TrackingPoint, point->ID(), point.get(), key);
            Say(Aspect::Settings, point->IsVisible());
            SayProperties(std::as_const(*point).Animation());
        }
    }

    void Add(const EditorSequence &sequence, const std::string &holder)
    {
        Begin(ObjectKind::Sequence, sequence.ID(), &sequence, holder);
        const std::string key = key_;
        Say(Aspect::Name, sequence.Name());
        Say(Aspect::Settings, sequence.Settings().Serialize());
        Say(Aspect::View, sequence.InPoint(), sequence.OutPoint());
        SayIDs(Aspect::Members, sequence.VideoTracks());
        SayIDs(Aspect::Members, sequence.AudioTracks());
        for (const auto &track : sequence.VideoTracks()) {
            Begin(ObjectKind::Track, track->ID(), track.get(), key);
            Say(Aspect::Name, track->Name());
            Say(Aspect::Settings, track->IsVisible());
            AddObjects(*track);
        }
        for (const auto &track : sequence.AudioTracks()) {
            Begin(ObjectKind::Track, track->ID(), track.get(), key);
            Say(Aspect::Name, track->Name());
            Say(Aspect::Settings, track->IsMuted(), track->Level());
            AddObjects(*track);
        }
    }

    void AddObjects(const AbstractSequenceTrack &track)
    {
        const std::string key = key_;
        track.Objects().ForEach([&](std::shared_ptr<const AbstractSequenceObject> object) {
            key_ = key;
            Say(Aspect::Members, object->ID());
            Add(*object, key);
        });
    }

    void Add(const AbstractSequenceObject &object, const std::string &holder)
    {
        Begin(ObjectKind::SequenceObject, object.ID(), &object, holder);
        const std::string key = key_;
        Say(Aspect::Name, object.Name());
        Say(Aspect::Frames, object.StartFrame(), object.EndFrame(), object.AssetInstanceStart());
        Say(Aspect::Links, object.AssetID(), object.ParentTrackID(), object.LinkedObjectID());
        if (const auto *sound = dynamic_cast<const AudioObject *>(&object))
            Say(Aspect::Settings, sound->IsMuted());
        SayProperties(object.Properties());
        SayIDs(Aspect::Members, object.Effects());
        for (const auto &transition : {object.IncomingTransition(), object.OutgoingTransition()})
            Say(Aspect::Links, transition ? transition->ID() : kytl::KyID());
        for (const auto &effect : object.Effects())
            Add(*effect, key);
        for (const auto &transition : {object.IncomingTransition(), object.OutgoingTransition()})
            if (transition)
                Add(*transition, key);
    }

    std::string key_;
};

} // namespace

std::string KeyOf(ObjectKind kind, const kytl::KyID &id)
{
    return std::to_string(static_cast<int>(kind)) + ' ' + id.ToNarrowString();
}

FactsByKey FactsOf(const Project &project)
{
    return Facts(project).facts;
}

} // namespace marlet::test
