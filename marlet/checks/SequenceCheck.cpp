#include <marlet/animation/PropertyManager.h>
#include <marlet/checks/CheckScope.h>
#include <marlet/checks/EffectCheck.h>
#include <marlet/checks/PropertyCheck.h>
#include <marlet/checks/TransitionCheck.h>
#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/project/AbstractAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <utility>

namespace marlet::project
{

namespace
{

using ObjectPointer = std::shared_ptr<AbstractSequenceObject>;

class SequenceChecker
{
public:
    SequenceChecker(CheckScope &scope, std::shared_ptr<EditorSequence> sequence)
        : scope_(scope), holder_(std::move(sequence)), sequence_(*holder_)
    {
    }

    void Run()
    {
        ForEachTrack([this](const AbstractSequenceTrack &track) {
            tracks_.insert(track.ID());
            for (unsigned int i = 0; i < track.Objects().Count(); ++i)
                if (const ObjectPointer &object = track.Objects()[i])
                    objects_[object->ID()] = object;
        });
        objects_.erase(kytl::KyID());
        CheckFormat(scope_.findings, Place("sequence", sequence_.Name(), sequence_.ID()),
                    sequence_.Settings());
        ForEachTrack([this](const AbstractSequenceTrack &track) { CheckTrack(track); });
    }

private:
    static constexpr auto kWarning = Finding::Severity::Warning;
    static constexpr const char *kNowhere = "does not exist";

    template <class Function> void ForEachTrack(Function function) const
    {
        for (const auto &track : sequence_.VideoTracks())
            if (track)
                function(std::as_const(*track));
        for (const auto &track : sequence_.AudioTracks())
            if (track)
                function(std::as_const(*track));
    }

    void CheckTrack(const AbstractSequenceTrack &track)
    {
        const Place place("track", track.Name(), track.ID());
        scope_.findings.CheckID(place, track.ID(), ids_);
        std::int64_t covered = 0;
        for (unsigned int i = 0; i < track.Objects().Count(); ++i) {
            const ObjectPointer &object = track.Objects()[i];
            if (!object)
                continue;
            const Place objectPlace("object", object->Name(), object->ID(), &place, Place::Join::Of);
            if (!visited_.insert(object.get()).second) {
                scope_.findings.Error(FindingKind::Twice, objectPlace, "it is on the tracks a second time");
                continue;
            }
            scope_.findings.CheckID(objectPlace, object->ID(), ids_);
            CheckFrames(*object, covered, objectPlace);
            covered = std::max<std::int64_t>(covered, object->EndFrame());
            CheckOwners(object, track, objectPlace);
            CheckLink(object, objectPlace);
            CheckTransitions(scope_, objectPlace, object, objects_);
            CheckContent(object, objectPlace);
        }
    }

    void CheckFrames(const AbstractSequenceObject &object, std::int64_t covered, const Place &place)
    {
        const NarrowString start = std::to_string(object.StartFrame());
        const auto warn = [&](const NarrowString &what) {
            scope_.findings.Warn(FindingKind::Frames, place, what);
        };
        if (object.EndFrame() <= object.StartFrame())
            warn("it ends on " + std::to_string(object.EndFrame()) + " and starts on " + start);
        if (object.StartFrame() < 0)
            warn("it starts on " + start + ", before the sequence");
        else if (object.StartFrame() < covered)
            warn("it starts on " + start + ", where there is another object up to " +
                 std::to_string(covered));
    }

    void CheckOwners(const ObjectPointer &object, const AbstractSequenceTrack &track, const Place &place)
    {
        const kytl::KyID &trackID = object->ParentTrackID();
        if (trackID != track.ID())
            scope_.findings.AddDangling(
                kWarning, place, "the track", trackID,
                tracks_.contains(trackID) ? "that it names is another one" : kNowhere,
                {"names its track", [object, id = track.ID()](Project &) { object->SetParentTrackID(id); }});
        if (object->ParentSequenceID() != sequence_.ID())
            scope_.findings.AddDangling(kWarning, place, "the sequence", object->ParentSequenceID(),
                                        kNowhere);
        AbstractAsset *const asset = scope_.FindAsset(object->AssetID());
        if (!asset) {
            scope_.findings.AddDangling(Finding::Severity::Error, place, "the asset", object->AssetID(),
                                        kNowhere);
            return;
        }
        scope_.uses[asset].push_back(object);
        if (scope_.offline.contains(asset))
            scope_.findings.Note(FindingKind::OfflineUse, place,
                                 "it shows the asset \"" + ToUtf8(asset->Name()) + "\", which is offline");
        CheckAssetFrames(*object, *asset, place);
    }

    /// At another speed than 1 an asset lasts shorter or longer, which objects leave to the host's player.
    void CheckAssetFrames(const AbstractSequenceObject &object, const AbstractAsset &asset,
                          const Place &place)
    {
        const PropertyManager &properties = object.Properties();
        const auto *speed =
            properties.HasProperty("speed") ? boost::get<double>(&properties.StaticValue("speed")) : nullptr;
        if (!speed || *speed != 1 || object.EndFrame() <= object.StartFrame())
            return;
        const std::int64_t start = object.AssetInstanceStart();
        const std::int64_t end = start + object.EndFrame() - object.StartFrame();
        CheckShownFrames(scope_, place, asset, sequence_.Settings().FrameRate(), start, end);
    }

    void CheckLink(const ObjectPointer &object, const Place &place)
    {
        const kytl::KyID &link = object->LinkedObjectID();
        if (link.IsNull())
            return;
        const Remedy clear{"clears the link", [object](Project &) { object->ClearLinkedObject(); }};
        const auto found = objects_.find(link);
        if (found == objects_.end())
            scope_.findings.AddDangling(kWarning, place, "the linked object", link, kNowhere, clear);
        else if (found->second == object)
            scope_.findings.Warn(FindingKind::OneSidedLink, place, "it is linked to itself", clear);
        else if (found->second->LinkedObjectID() != object->ID())
            scope_.findings.Warn(
                FindingKind::OneSidedLink, place,
                "the linked object \"" + ToUtf8(found->second->Name()) + "\" is not linked to it",
                objects_.contains(found->second->LinkedObjectID()) ? clear : LinkBack(object, found->second));
    }

    /// One object gets the partner, if several want it.
    static Remedy LinkBack(const ObjectPointer &object, const ObjectPointer &partner)
    {
        const kytl::KyID before = partner->LinkedObjectID();
        return {"links the other one back, unless that has got a partner",
                [object, partner, before](Project &) {
                    const kytl::KyID &link = partner->LinkedObjectID();
                    if (link.IsNull() || link == before)
                        partner->SetLinkedObjectID(object->ID());
                    else
                        object->ClearLinkedObject();
                }};
    }

    void CheckContent(const ObjectPointer &object, const Place &place)
    {
        CheckProperties(scope_.findings, place, std::as_const(*object).Properties(),
                        {scope_.models.OfObject(object->Type()), scope_.hasExpressionEngine},
                        [object]() -> PropertyManager & { return object->Properties(); });
        CheckEffects(scope_, place, std::as_const(*object).Effects(), {object->ID(), sequence_.ID()});
        for (const std::shared_ptr<Transition> &transition :
             {object->IncomingTransition(), object->OutgoingTransition()}) {
            // One that two objects share is looked at with the first of them.
            if (!transition || !transitions_.insert(transition.get()).second)
                continue;
            const NarrowString name = TransitionName(*transition);
            CheckPlugin(scope_, Place("transition", name, &place, &transition->ID()), transition);
        }
    }

    CheckScope &scope_;
    std::shared_ptr<EditorSequence> holder_;
    const EditorSequence &sequence_;
    ObjectMap objects_;
    Findings::IDSet tracks_;
    Findings::IDSet ids_;
    std::unordered_set<const AbstractSequenceObject *> visited_;
    std::unordered_set<const Transition *> transitions_;
};

} // namespace

void CheckSequence(CheckScope &scope)
{
    if (auto sequence = scope.project.Sequence())
        SequenceChecker(scope, std::move(sequence)).Run();
}

} // namespace marlet::project
