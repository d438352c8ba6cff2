#include "Mirror.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectMetadata.h>
#include <marlet/project/ProjectSettings.h>
#include <marlet/project/SolidAsset.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

#include <set>
#include <sstream>

namespace marlet::test
{

namespace
{

/// Walks a project and notes what each object says of itself.
class Facts
{
public:
    explicit Facts(const Project &project)
    {
        Begin(ObjectKind::Project, project.ID(), &project, "");
        Say(project.Name(), int(project.Settings().ColorBitDepth()));
        for (unsigned int i = 0; i < 4; ++i)
            if (project.Metadata().HasIntegerValue(project.ID(), i))
                Say(i, project.Metadata().IntegerValue(project.ID(), i));
        const std::string root = key_;
        SayIDs(project.Assets().All());
        if (const std::shared_ptr<const EditorSequence> sequence = project.Sequence())
            Say(sequence->ID());
        Add(project.Assets().Bin(), root);
        for (const auto &asset : project.Assets().All())
            Add(*asset, root);
        if (const std::shared_ptr<const EditorSequence> sequence = project.Sequence())
            Add(*sequence, root);
    }

    FactsByKey facts;

private:
    void Begin(ObjectKind kind, const kytl::KyID &id, const void *address, const std::string &holder)
    {
        key_ = KeyOf(kind, id);
        facts[key_] = {address, "", holder};
    }

    void SayOne(const kytl::KyID &id) { facts[key_].text += id.ToNarrowString() + ' '; }
    void SayOne(const WideString &text) { facts[key_].text += ToUtf8(text) + ' '; }
    void SayOne(const std::string &text) { facts[key_].text += text + ' '; }
    template <class T> void SayOne(const T &number)
    {
        std::ostringstream text;
        text.precision(17);
        text << number << ' ';
        facts[key_].text += text.str();
    }
    template <class... T> void Say(const T &...values) { (SayOne(values), ...); }
    void SayProperties(const PropertyManager &properties) { Say(properties.Serialize()); }

    template <class List> void SayIDs(const List &list)
    {
        Say(std::string("["));
        for (const auto &entry : list)
            Say(entry->ID());
        Say(std::string("]"));
    }
    template <class List> void SayWeakIDs(const List &list)
    {
        Say(std::string("["));
        for (const auto &entry : list)
            if (const auto object = entry.lock())
                Say(object->ID());
        Say(std::string("]"));
    }

    void Add(const BinFolder &folder, const std::string &holder)
    {
        Begin(ObjectKind::Folder, folder.ID(), &folder, holder);
        const std::string key = key_;
        Say(folder.Name(), folder.IsExpanded(), folder.ParentFolderID());
        SayWeakIDs(folder.Assets());
        SayIDs(folder.Folders());
        for (const auto &inner : folder.Folders())
            Add(*inner, key);
    }

    void Add(const AbstractAsset &asset, const std::string &holder)
    {
        Begin(ObjectKind::Asset, asset.ID(), &asset, holder);
        const std::string key = key_;
        Say(asset.Name(), asset.ParentFolderID(), asset.Width(), asset.Height());
        SayWeakIDs(asset.Instances());
        if (const auto *solid = dynamic_cast<const SolidAsset *>(&asset))
            Say(solid->Color().R, solid->Color().G, int(solid->PixelAspectRatio()));
        if (const auto *composition = dynamic_cast<const CompositionAsset *>(&asset)) {
            Say(composition->Settings().Serialize(), composition->InPoint(), composition->OutPoint(),
                composition->TimelineZoom(), composition->CurrentTimeIndicator());
            SayIDs(composition->Layers());
            for (const auto &layer : composition->Layers())
                Add(*layer, key);
        }
    }

    void Add(const AbstractLayer &layer, const std::string &holder)
    {
        Begin(ObjectKind::Layer, layer.ID(), &layer, holder);
        const std::string key = key_;
        Say(layer.Name(), layer.StartFrame(), layer.EndFrame(), int(layer.BlendMode()), layer.IsVisible(),
            layer.IsSelected(), layer.IsMuted(), layer.IsLocked(), layer.IsMotionBlurEnabled(),
            layer.ParentCompositionID(), layer.ParentLayerID(), int(layer.Dimensions()));
        SayProperties(layer.Animation());
        if (const auto *shown = dynamic_cast<const AssetLayer *>(&layer)) {
            Say(shown->AssetID(), shown->AssetInstanceStart(), int(shown->AutoOrientation()),
                shown->PromoteLights());
            SayIDs(shown->Trackers());
            AddOwned(*shown, key);
            for (const auto &tracker : shown->Trackers())
                Add(*tracker, key);
        } else if (const auto *text = dynamic_cast<const TextLayer *>(&layer)) {
            Say(text->MinX(), text->MaxX(), text->MinY(), text->MaxY());
            for (const TextLayer::Token *token = text->Text().first.get(); token; token = token->next.get())
                Say(token->id, token->type, token->character, token->format ? token->format->size : -1);
            AddOwned(*text, key);
        }
    }

    template <class Layer> void AddOwned(const Layer &layer, const std::string &holder)
    {
        SayIDs(layer.Effects());
        SayIDs(layer.Masks());
        for (const auto &effect : layer.Effects())
            Add(*effect, holder);
        for (const auto &mask : layer.Masks())
            Add(*mask, holder);
    }

    void Add(const EffectInstance &effect, const std::string &holder)
    {
        Begin(ObjectKind::Effect, effect.ID(), &effect, holder);
        Say(effect.Name(), effect.Enabled(), effect.ParentID(), effect.ParentTimelineID(),
            effect.PropertyUIState("amount").visible);
        const auto bytes = effect.PrivateBytes();
        Say(bytes ? std::string(bytes->begin(), bytes->end()) : std::string("-"));
        SayProperties(effect.Animation());
    }

    void Add(const Transition &transition, const std::string &holder)
    {
        Begin(ObjectKind::Transition, transition.ID(), &transition, holder);
        Say(transition.FromObject(), transition.ToObject(), transition.Length(),
            transition.RelativeStartFrame());
        SayProperties(transition.Animation());
    }

    void Add(const Mask &mask, const std::string &holder)
    {
        Begin(ObjectKind::Mask, mask.ID(), &mask, holder);
        const std::string key = key_;
        Say(mask.Name(), mask.IsVisible(), mask.ParentLayerID(), mask.Path().IsClosed());
        SayIDs(mask.Path().Points());
        SayProperties(mask.Animation());
        for (const auto &point : mask.Path().Points()) {
            Begin(ObjectKind::PathPoint, point->ID(), point.get(), key);
            Say(point->IsLinear(), point->IsLocked(), point->ParentPathID());
            SayProperties(std::as_const(*point).Animation());
        }
    }

    void Add(const Tracker &tracker, const std::string &holder)
    {
        Begin(ObjectKind::Tracker, tracker.ID(), &tracker, holder);
        const std::string key = key_;
        Say(tracker.Name(), int(tracker.Type()), int(tracker.Method()), tracker.DestinationLayerID());
        for (const auto &point : {tracker.PrimaryTrackingPoint(), tracker.SecondaryTrackingPoint()}) {
            Begin(ObjectKind::TrackingPoint, point->ID(), point.get(), key);
            Say(point->IsVisible());
            SayProperties(std::as_const(*point).Animation());
        }
    }

    void Add(const EditorSequence &sequence, const std::string &holder)
    {
        Begin(ObjectKind::Sequence, sequence.ID(), &sequence, holder);
        const std::string key = key_;
        Say(sequence.Name(), sequence.Settings().Serialize(), sequence.InPoint(), sequence.OutPoint());
        SayIDs(sequence.VideoTracks());
        SayIDs(sequence.AudioTracks());
        for (const auto &track : sequence.VideoTracks()) {
            Begin(ObjectKind::Track, track->ID(), track.get(), key);
            Say(track->Name(), track->IsVisible());
            AddObjects(*track);
        }
        for (const auto &track : sequence.AudioTracks()) {
            Begin(ObjectKind::Track, track->ID(), track.get(), key);
            Say(track->Name(), track->IsMuted(), track->Level());
            AddObjects(*track);
        }
    }

    void AddObjects(const AbstractSequenceTrack &track)
    {
        const std::string key = key_;
        track.Objects().ForEach([&](std::shared_ptr<const AbstractSequenceObject> object) {
            key_ = key;
            Say(object->ID());
            Add(*object, key);
        });
    }

    void Add(const AbstractSequenceObject &object, const std::string &holder)
    {
        Begin(ObjectKind::SequenceObject, object.ID(), &object, holder);
        const std::string key = key_;
        Say(object.Name(), object.StartFrame(), object.EndFrame(), object.AssetID(),
            object.AssetInstanceStart(), object.ParentTrackID(), object.LinkedObjectID());
        SayProperties(object.Properties());
        SayIDs(object.Effects());
        for (const auto &transition : {object.IncomingTransition(), object.OutgoingTransition()})
            Say(transition ? transition->ID() : kytl::KyID());
        for (const auto &effect : object.Effects())
            Add(*effect, key);
        for (const auto &transition : {object.IncomingTransition(), object.OutgoingTransition()})
            if (transition)
                Add(*transition, key);
    }

    std::string key_;
};

bool IsInside(const FactsByKey &facts, std::string key, const std::set<std::string> &ids)
{
    while (!key.empty()) {
        if (ids.contains(key.substr(key.find(' ') + 1)))
            return true;
        const auto found = facts.find(key);
        key = found == facts.end() ? "" : found->second.holder;
    }
    return false;
}

} // namespace

std::string KeyOf(ObjectKind kind, const kytl::KyID &id)
{
    return std::to_string(static_cast<int>(kind)) + ' ' + id.ToNarrowString();
}

FactsByKey FactsOf(const Project &project)
{
    return Facts(project).facts;
}

/// What is named is read again; what came is taken with all that it holds, and what went goes with that.
/// Transitions have no list of their own: an object tells that its links are others. A track tells of the
/// frames of all its objects.
void Mirror::Take(const Project &project, const ChangeNotice &notice)
{
    const FactsByKey live = FactsOf(project);
    const FactsByKey before = facts_;
    const auto read = [&](const std::string &key) {
        facts_.erase(key);
        if (const auto found = live.find(key); found != live.end())
            facts_.insert(*found);
    };
    std::set<std::string> moved;
    std::set<std::string> holders;
    for (const ObjectChange &change : notice.Changes()) {
        for (const std::vector<kytl::KyID> *ids : {&change.added, &change.removed})
            for (const kytl::KyID &id : *ids)
                moved.insert(id.ToNarrowString());
        const std::string key = KeyOf(change.kind, change.id);
        read(key);
        if ((change.kind == ObjectKind::SequenceObject && change.aspects.Has(Aspect::Links)) ||
            (change.kind == ObjectKind::Track && change.aspects.Has(Aspect::Frames)))
            holders.insert(key);
    }
    for (const auto &[key, facts] : before)
        if (!live.contains(key) && (holders.contains(facts.holder) || IsInside(before, key, moved)))
            facts_.erase(key);
    for (const auto &[key, facts] : live)
        if (holders.contains(facts.holder) || IsInside(live, key, moved))
            read(key);
    // Two objects hold a transition: it goes with the last of them.
    for (auto &[key, facts] : facts_)
        if (const auto found = live.find(key); found != live.end())
            facts.holder = found->second.holder;
}

std::string Mirror::DifferenceTo(const Project &project) const
{
    const FactsByKey live = FactsOf(project);
    for (const auto &[key, facts] : live) {
        const auto known = facts_.find(key);
        if (known == facts_.end())
            return "not told that it came: " + key;
        if (known->second.text != facts.text)
            return "not told of: " + key + "\n" + known->second.text + "\n" + facts.text;
    }
    for (const auto &[key, facts] : facts_)
        if (!live.contains(key))
            return "not told that it went: " + key;
    return {};
}

} // namespace marlet::test
