#include <marlet/history/TimelinePart.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/history/HeldSize.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

/// Objects that come to a track, in the order of their positions there.
using Arrivals = std::vector<const TimelineStand *>;

void InsertOneByOne(SequenceObjectList &objects, const Arrivals &arrivals)
{
    for (const TimelineStand *stand : arrivals)
        objects.InsertAt(stand->object, stand->startFrame, stand->position);
}

/// Builds the track anew: what stayed, with the arrivals at their positions.
void InsertInOneGo(SequenceObjectList &objects, const Arrivals &arrivals)
{
    SequenceObjectList::Objects stayed;
    objects.ForEach([&stayed](SequenceObjectList::Object object) { stayed.Add(object); });
    objects.Clear();
    auto next = stayed.begin();
    for (const TimelineStand *stand : arrivals) {
        for (; next != stayed.end() && objects.Count() < stand->position; ++next)
            objects.Insert(*next, (*next)->StartFrame());
        objects.Insert(stand->object, stand->startFrame);
    }
    for (; next != stayed.end(); ++next)
        objects.Insert(*next, (*next)->StartFrame());
}

/// Takes all objects out that are to leave a track.
void RemoveInOneGo(SequenceObjectList &objects, const std::unordered_set<const void *> &leaving)
{
    SequenceObjectList::Objects stayed;
    objects.ForEach([&](SequenceObjectList::Object object) {
        if (!leaving.contains(object.get()))
            stayed.Add(object);
    });
    objects.Clear();
    for (const SequenceObjectList::Object &object : stayed)
        objects.Insert(object, object->StartFrame());
}

} // namespace

TimelineStand::TimelineStand(const std::shared_ptr<AbstractSequenceTrack> &onTrack,
                             const std::shared_ptr<AbstractSequenceObject> &ofObject)
    : track(onTrack),
      object(ofObject),
      position(std::as_const(*track).Objects().IndexOf(object)),
      startFrame(object->StartFrame()),
      endFrame(object->EndFrame()),
      isThere(position < std::as_const(*track).Objects().Count())
{
}

bool TimelinePlaces::Knows(const Track &track, const Object &object) const
{
    return known_.contains({track.get(), object.get()});
}

void TimelinePlaces::Append(TimelineStand stand)
{
    known_.insert({stand.track.get(), stand.object.get()});
    tracks_[stand.track.get()].stands.push_back(stands_.size());
    stands_.push_back(std::move(stand));
}

void TimelinePlaces::Add(const Track &track, const Object &object)
{
    if (Knows(track, object))
        return;
    TimelineStand stand(track, object);
    if (stand.isThere && tracks_[track.get()].stands.size() >= kMany)
        AddWhole(track);
    if (Knows(track, object))
        return;
    stand.position = FormerPosition(stand);
    Append(std::move(stand));
}

/// The positions of those that were there, in order.
std::vector<unsigned int> TimelinePlaces::FormerPositions(const OfTrack &known) const
{
    std::vector<unsigned int> positions;
    for (const std::size_t index : known.stands)
        if (stands_[index].isThere)
            positions.push_back(stands_[index].position);
    std::ranges::sort(positions);
    return positions;
}

/// As if those that were announced before, and may have moved since, stood where they stood then.
unsigned int TimelinePlaces::FormerPosition(const TimelineStand &stand) const
{
    const auto known = tracks_.find(stand.track.get());
    if (known == tracks_.end())
        return stand.position;
    unsigned int position = stand.position;
    for (const std::size_t index : known->second.stands) {
        const TimelineStand live(stand.track, stands_[index].object);
        if (live.isThere && live.position < stand.position)
            --position;
    }
    for (const unsigned int former : FormerPositions(known->second))
        if (former <= position)
            ++position;
    return position;
}

void TimelinePlaces::AddWhole(const Track &track)
{
    OfTrack &known = tracks_[track.get()];
    if (known.isWhole)
        return;
    known.isWhole = true;
    const std::vector<unsigned int> taken = FormerPositions(known);
    auto next = taken.begin();
    unsigned int position = 0;
    std::as_const(*track).Objects().ForEach([&](std::shared_ptr<const AbstractSequenceObject> object) {
        const Object entry = std::const_pointer_cast<AbstractSequenceObject>(object);
        if (Knows(track, entry))
            return;
        for (; next != taken.end() && *next <= position; ++next)
            ++position;
        TimelineStand stand(track, entry);
        stand.position = position++;
        Append(std::move(stand));
    });
}

void TimelinePlaces::Exchange()
{
    std::vector<TimelineStand> live;
    live.reserve(stands_.size());
    for (const TimelineStand &stand : stands_)
        live.emplace_back(stand.track, stand.object);

    for (const auto &[track, known] : tracks_) {
        std::unordered_set<const void *> leaving;
        for (const std::size_t index : known.stands)
            if (live[index].isThere)
                leaving.insert(live[index].object.get());
        SequenceObjectList &objects = live[known.stands.front()].track->Objects();
        if (leaving.size() >= kMany)
            RemoveInOneGo(objects, leaving);
        else
            for (const std::size_t index : known.stands)
                if (live[index].isThere)
                    objects.Remove(live[index].object);
    }
    // The first to be announced tells the frames; with an object on no track it is the only one.
    for (auto stand = stands_.rbegin(); stand != stands_.rend(); ++stand)
        stand->object->SetEndFrame(stand->endFrame);
    for (const auto &[track, known] : tracks_) {
        Arrivals arrivals;
        for (const std::size_t index : known.stands)
            if (stands_[index].isThere)
                arrivals.push_back(&stands_[index]);
        std::ranges::sort(arrivals, {}, &TimelineStand::position);
        SequenceObjectList &objects = live[known.stands.front()].track->Objects();
        if (arrivals.size() >= kMany)
            InsertInOneGo(objects, arrivals);
        else
            InsertOneByOne(objects, arrivals);
    }
    stands_ = std::move(live);
}

TimelinePart::TimelinePart(const kytl::KyID &sequence)
    : EditedPart({nullptr, "timeline", {}}), sequence_(sequence)
{
}

TimelinePlaces &TimelinePart::Current()
{
    if (epochs_.empty() || !std::holds_alternative<TimelinePlaces>(epochs_.back()))
        epochs_.emplace_back(TimelinePlaces());
    return std::get<TimelinePlaces>(epochs_.back());
}

void TimelinePart::Touch(const Track &track, const Object &object)
{
    Current().Add(track, object);
}

void TimelinePart::ShiftFrom(const Track &track, unsigned int position, int frames)
{
    epochs_.reserve(epochs_.size() + 2);
    track->Objects().ShiftFrom(position, frames);
    NoteShift(track, position, frames);
}

void TimelinePart::NoteShift(const Track &track, unsigned int position, int frames)
{
    const SequenceObjectList &objects = std::as_const(*track).Objects();
    if (frames == 0 || position >= objects.Count())
        return;
    const int start = objects[position]->StartFrame();
    epochs_.reserve(epochs_.size() + 2);
    const TimelinePlaces *former = epochs_.empty() ? nullptr : std::get_if<TimelinePlaces>(&epochs_.back());
    epochs_.emplace_back(Shift{track, position, frames, std::min(start, start - frames)});
    if (!former)
        return;
    TimelinePlaces &again = Current();
    for (const TimelineStand &stand : former->Stands())
        again.Add(stand.track, stand.object);
}

bool TimelinePart::IsCoveredBy(const TimelinePart &other) const
{
    if (epochs_.size() != 1 || other.epochs_.size() != 1)
        return epochs_.empty();
    const auto *own = std::get_if<TimelinePlaces>(&epochs_.front());
    const auto *others = std::get_if<TimelinePlaces>(&other.epochs_.front());
    return own && others && std::ranges::all_of(own->Stands(), [others](const TimelineStand &stand) {
               return others->Knows(stand.track, stand.object);
           });
}

void TimelinePart::Exchange()
{
    const auto exchange = [](Epoch &epoch) {
        if (auto *places = std::get_if<TimelinePlaces>(&epoch)) {
            places->Exchange();
            return;
        }
        Shift &shift = std::get<Shift>(epoch);
        shift.frames = -shift.frames;
        shift.track->Objects().ShiftFrom(shift.position, shift.frames);
    };
    if (isUndone_)
        std::for_each(epochs_.begin(), epochs_.end(), exchange);
    else
        std::for_each(epochs_.rbegin(), epochs_.rend(), exchange);
    isUndone_ = !isUndone_;
}

void TimelinePart::Describe(ChangeList &changes) const
{
    const auto describe = [&](const Epoch &epoch) {
        if (const auto *shift = std::get_if<Shift>(&epoch))
            Describe(changes, *shift);
        else
            for (const TimelineStand &stand : std::get<TimelinePlaces>(epoch).Stands())
                Describe(changes, stand);
    };
    std::ranges::for_each(epochs_, describe);
}

void TimelinePart::Describe(ChangeList &changes, const TimelineStand &kept) const
{
    const TimelineStand live(kept.track, kept.object);
    if (live.isThere != kept.isThere) {
        ObjectChange &track = changes.Of(ObjectKind::Track, kept.track->ID());
        track.aspects |= Aspect::Members;
        std::vector<kytl::KyID> &list = live.isThere ? track.added : track.removed;
        if (std::ranges::find(list, kept.object->ID()) == list.end())
            list.push_back(kept.object->ID());
    } else if (live.isThere && live.position != kept.position) {
        changes.Of(ObjectKind::Track, kept.track->ID()).aspects |= Aspect::Members;
    }
    if (live.startFrame != kept.startFrame || live.endFrame != kept.endFrame)
        changes.Of(ObjectKind::SequenceObject, kept.object->ID()).aspects |= Aspect::Frames;
    if (kept.isThere)
        changes.AddFormerFrames(sequence_, kept.object->ID(), kept.startFrame, kept.endFrame);
}

void TimelinePart::Describe(ChangeList &changes, const Shift &shift) const
{
    changes.Of(ObjectKind::Track, shift.track->ID()).aspects |= Aspect::Frames;
    changes.AddFormerFrames(sequence_, shift.track->ID(), shift.firstFrame, std::numeric_limits<int>::max());
}

void TimelinePart::AddShifts(ShiftSums &sums) const
{
    for (const Epoch &epoch : epochs_)
        if (const auto *shift = std::get_if<Shift>(&epoch))
            sums[shift->track] += shift->frames;
}

void TimelinePart::AddTracks(std::vector<Track> &tracks) const
{
    for (const Epoch &epoch : epochs_) {
        if (const auto *shift = std::get_if<Shift>(&epoch))
            tracks.push_back(shift->track);
        else
            for (const TimelineStand &stand : std::get<TimelinePlaces>(epoch).Stands())
                tracks.push_back(stand.track);
    }
}

/// An object that left one track for another is alive there.
std::size_t TimelinePart::Size() const
{
    std::size_t size = sizeof *this;
    std::unordered_set<const AbstractSequenceObject *> missing;
    for (const Epoch &epoch : epochs_) {
        size += sizeof epoch;
        const auto *places = std::get_if<TimelinePlaces>(&epoch);
        if (!places)
            continue;
        size += places->Stands().size() * 2 * sizeof(TimelineStand);
        for (const TimelineStand &kept : places->Stands())
            if (kept.isThere && !TimelineStand(kept.track, kept.object).isThere)
                missing.insert(kept.object.get());
        for (const TimelineStand &kept : places->Stands())
            if (!missing.empty() && !kept.isThere && TimelineStand(kept.track, kept.object).isThere)
                missing.erase(kept.object.get());
    }
    for (const AbstractSequenceObject *object : missing)
        size += HeldSize(*object);
    return size;
}

} // namespace marlet::project
