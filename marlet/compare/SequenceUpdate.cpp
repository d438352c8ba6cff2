#include <marlet/compare/Update.h>

#include <marlet/compare/ElementNames.h>
#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/history/Edit.h>
#include <marlet/history/Parts.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/PanelRenderState.h>
#include <marlet/project/Project.h>

#include <unordered_set>

namespace marlet::project
{

namespace
{

using Object = SequenceObjectList::Object;

class SequenceUpdate
{
public:
    SequenceUpdate(const Update &update, const ElementPair &elements)
        : update_(update),
          elements_(elements),
          sequence_(update.project->Sequence()),
          fresh_(update.fresh.Sequence())
    {
    }

    void Run()
    {
        update_.edit.Touch(sequence_);
        TakeOver(*sequence_, *fresh_);
        UpdatePanels();
        FindElements("Video");
        FindElements("Audio");
        FindTransitions();
        UpdateTracks("Video", sequence_->VideoTracks(), fresh_->VideoTracks());
        UpdateTracks("Audio", sequence_->AudioTracks(), fresh_->AudioTracks());
        RemoveObjects();
        for (const auto &[track, fresh, elements] : tracks_)
            UpdateObjects(*fresh, track);
    }

private:
    using Track = AbstractSequenceTrack;

    struct TrackPair {
        std::shared_ptr<Track> track;
        std::shared_ptr<Track> fresh;
        ElementPair elements;
    };

    void UpdatePanels()
    {
        if (elements_.Child("ViewerState").IsSame())
            return;
        update_.edit.TouchPanels(sequence_);
        sequence_->ViewerPanelState().Swap(fresh_->ViewerPanelState());
    }

    /// Objects are known across tracks, so that one that moves to another stays itself.
    void FindElements(const char *tracks)
    {
        for (const TextElement &track : elements_.before.Child(tracks).Children())
            for (const TextElement &object : track.Child("Objects").Children())
                elementsBefore_.emplace(kytl::KyID::FromString(object.ChildText("ID")), object);
        for (const TextElement &track : elements_.after.Child(tracks).Children())
            for (const TextElement &object : track.Child("Objects").Children())
                elementsAfter_.emplace(kytl::KyID::FromString(object.ChildText("ID")), object);
    }

    void FindTransitions()
    {
        for (const auto &[id, element] : elementsBefore_) {
            const Object object = sequence_->FindObjectByID(id);
            if (!object)
                continue;
            objects_.emplace(id, object);
            for (const auto &transition : {object->IncomingTransition(), object->OutgoingTransition()})
                if (transition)
                    transitions_.emplace(transition->ID(), transition);
        }
    }

    template <class List> void UpdateTracks(const char *tag, List &list, const List &fresh)
    {
        const ElementPair elements = elements_.Child(tag);
        for (const auto &[id, pair] : ObjectsIn(elements))
            if (const auto other = FindByID(fresh, id); other && !FindByID(list, id))
                added_.emplace(id, Added(*other));
        List result;
        for (const auto &[id, pair] : ObjectsIn(elements)) {
            const auto other = FindByID(fresh, id);
            auto track = FindByID(list, id);
            if (!track)
                track = std::dynamic_pointer_cast<typename List::value_type::element_type>(added_[id]);
            if (!track || !other)
                continue;
            if (!pair.IsSame()) {
                update_.edit.Touch(std::static_pointer_cast<Track>(track));
                TakeOver(static_cast<Track &>(*track), *other);
            }
            result.Add(track);
            tracks_.push_back({track, other, pair});
        }
        for (const auto &track : list)
            if (track)
                former_.push_back(track);
        if (list != result)
            list = result;
    }

    /// A track belongs to one sequence to its end, so that the fresh one cannot come over.
    std::shared_ptr<Track> Added(const Track &fresh) const
    {
        if (fresh.Type() == TrackType::Video)
            return VideoTrack::Create(sequence_, fresh.Name(), fresh.ID());
        return AudioTrack::Create(sequence_, fresh.Name(), fresh.ID());
    }

    /// What is on another track than it is to be, or on none.
    void RemoveObjects()
    {
        for (const std::shared_ptr<Track> &track : former_) {
            std::unordered_set<kytl::KyID> staying;
            for (const TrackPair &pair : tracks_)
                if (pair.track == track)
                    for (const TextElement &element : pair.elements.after.Child("Objects").Children())
                        staying.insert(kytl::KyID::FromString(element.ChildText("ID")));
            std::vector<Object> leaving;
            track->Objects().ForEach([&](const Object &object) {
                if (!staying.contains(object->ID()))
                    leaving.push_back(object);
            });
            for (const Object &object : leaving)
                Remove(track, object);
        }
    }

    void Remove(const std::shared_ptr<Track> &track, const Object &object)
    {
        update_.edit.Touch(track, object);
        track->Objects().Remove(object);
    }

    void UpdateObjects(const Track &fresh, const std::shared_ptr<Track> &track)
    {
        std::vector<Object> wanted;
        fresh.Objects().ForEach([&](const std::shared_ptr<const AbstractSequenceObject> &object) {
            wanted.push_back(std::const_pointer_cast<AbstractSequenceObject>(object));
        });
        for (std::size_t i = 0; i < wanted.size(); ++i)
            Place(track, static_cast<unsigned int>(i), wanted[i]->StartFrame(), Updated(track, wanted[i]));
    }

    void Place(const std::shared_ptr<Track> &track, unsigned int index, int start, const Object &object)
    {
        SequenceObjectList &list = track->Objects();
        if (index < list.Count() && std::as_const(list)[index] == object && object->StartFrame() == start)
            return;
        update_.edit.Touch(track, object);
        if (list.IndexOf(object) < list.Count())
            list.Remove(object);
        list.InsertAt(object, start, index);
    }

    Object Updated(const std::shared_ptr<Track> &track, const Object &fresh)
    {
        const kytl::KyID &id = fresh->ID();
        const auto found = objects_.find(id);
        const Object own = found == objects_.end() ? nullptr : found->second;
        const auto before = elementsBefore_.find(id);
        const ElementPair pair{before == elementsBefore_.end() ? TextElement() : before->second,
                               elementsAfter_[id]};
        if (own && pair.IsSame())
            return own;
        if (!own || own->Type() != fresh->Type() || update_.Exchanges(pair)) {
            if (own && track->Objects().IndexOf(own) < track->Objects().Count())
                Remove(track, own);
            SetTransitions(*fresh, *fresh, pair);
            return fresh;
        }
        update_.edit.Touch(own);
        TakeOver(*own, *fresh);
        own->SetEndFrame(fresh->EndFrame());
        UpdateProperties(update_, pair, PropertiesOf(own), fresh->Properties(), ObjectKind::SequenceObject,
                         id);
        UpdateList(pair.Child("Effects"), own->Effects(), fresh->Effects(),
                   [&](const auto &effect, const auto &replacement, const ElementPair &elements) {
                       return UpdateEffect(update_, elements, effect, replacement);
                   });
        SetTransitions(*own, *fresh, pair);
        return own;
    }

    void SetTransitions(AbstractSequenceObject &object, const AbstractSequenceObject &fresh,
                        const ElementPair &elements)
    {
        object.SetIncomingTransition(Updated(fresh.IncomingTransition(), elements.Child("InTrans")));
        object.SetOutgoingTransition(Updated(fresh.OutgoingTransition(), elements.Child("OutTrans")));
    }

    /// The project's own transition of that ID, if there is one. Of two objects that share it, one has its
    /// element.
    std::shared_ptr<Transition> Updated(const std::shared_ptr<Transition> &fresh, const ElementPair &slot)
    {
        if (!fresh)
            return nullptr;
        const auto [own, isNew] = transitions_.try_emplace(fresh->ID(), fresh);
        const ElementPair elements = slot.Child("Transition");
        if (isNew || elements.after.IsNull() || elements.IsSame() || own->second == fresh)
            return own->second;
        if (own->second->PluginID() != fresh->PluginID() || update_.Exchanges(elements))
            own->second = fresh;
        else
            UpdateInstance(update_, elements, own->second, *fresh);
        return own->second;
    }

    const Update &update_;
    ElementPair elements_;
    std::shared_ptr<EditorSequence> sequence_;
    std::shared_ptr<EditorSequence> fresh_;
    std::unordered_map<kytl::KyID, TextElement> elementsBefore_;
    std::unordered_map<kytl::KyID, TextElement> elementsAfter_;
    std::unordered_map<kytl::KyID, Object> objects_;
    std::unordered_map<kytl::KyID, std::shared_ptr<Transition>> transitions_;
    std::unordered_map<kytl::KyID, std::shared_ptr<Track>> added_;
    std::vector<TrackPair> tracks_;
    std::vector<std::shared_ptr<Track>> former_;
};

} // namespace

void UpdateSequence(const Update &update, const ElementPair &elements)
{
    if (elements.IsSame())
        return;
    const bool isSameOne = !elements.before.IsNull() && !elements.after.IsNull() &&
                           elements.before.ChildText("ID") == elements.after.ChildText("ID");
    if (isSameOne && !update.Exchanges(elements))
        return SequenceUpdate(update, elements).Run();
    update.edit.TouchProject();
    update.project->SetSequence(update.fresh.Sequence());
}

} // namespace marlet::project
