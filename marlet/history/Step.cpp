#include <marlet/history/Step.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/history/TimelinePart.h>

#include <algorithm>
#include <utility>

namespace marlet::project
{

namespace
{

template <class Iterator> void ExchangeAll(Iterator begin, Iterator end)
{
    Iterator next = begin;
    try {
        for (; next != end; ++next)
            (*next)->Exchange();
    } catch (...) {
        while (next != begin)
            (*--next)->Exchange();
        throw;
    }
}

struct ObjectPlace {
    const void *track;
    const void *object;
    int startFrame;
    int endFrame;

    bool operator==(const ObjectPlace &other) const = default;
};

std::vector<ObjectPlace> PlacesOn(const std::vector<TimelinePart::Track> &tracks)
{
    std::vector<ObjectPlace> places;
    for (const TimelinePart::Track &track : tracks)
        std::as_const(*track).Objects().ForEach([&](std::shared_ptr<const AbstractSequenceObject> object) {
            places.push_back({track.get(), object.get(), object->StartFrame(), object->EndFrame()});
        });
    return places;
}

} // namespace

bool Step::Add(std::unique_ptr<EditedPart> part)
{
    if (part->At().object != nullptr && !places_.insert(part->At()).second)
        return false;
    parts_.push_back(std::move(part));
    return true;
}

bool Step::Meets(const Step &other) const
{
    const auto isKnown = [this](const EditedPart::Place &place) { return places_.contains(place); };
    return places_.empty() || other.places_.empty() || std::ranges::any_of(other.places_, isKnown);
}

std::vector<std::unique_ptr<EditedPart>> Step::TakeParts()
{
    places_.clear();
    return std::exchange(parts_, {});
}

bool Step::IsChange()
{
    TimelinePart::ShiftSums shifts;
    for (const std::unique_ptr<EditedPart> &part : parts_)
        if (const auto *timeline = dynamic_cast<const TimelinePart *>(part.get()))
            timeline->AddShifts(shifts);
    const bool isShifted = std::ranges::any_of(shifts, [](const auto &sum) { return sum.second != 0; });
    if (isShifted)
        return true;
    for (const std::unique_ptr<EditedPart> &part : parts_) {
        // Beside shifts, places mean something at their moment only.
        if (!shifts.empty() && dynamic_cast<const TimelinePart *>(part.get()))
            continue;
        ChangeList changes;
        part->Describe(changes);
        if (!changes.IsEmpty())
            return true;
    }
    return !shifts.empty() && MovesAnything();
}

/// Looks at the places before and after.
bool Step::MovesAnything()
{
    std::vector<TimelinePart::Track> tracks;
    for (const std::unique_ptr<EditedPart> &part : parts_)
        if (const auto *timeline = dynamic_cast<const TimelinePart *>(part.get()))
            timeline->AddTracks(tracks);
    std::ranges::sort(tracks);
    tracks.erase(std::unique(tracks.begin(), tracks.end()), tracks.end());
    const std::vector<ObjectPlace> after = PlacesOn(tracks);
    Undo();
    const std::vector<ObjectPlace> before = PlacesOn(tracks);
    Redo();
    return before != after;
}

void Step::Describe(ChangeList &changes) const
{
    for (const std::unique_ptr<EditedPart> &part : parts_)
        part->Describe(changes);
}

void Step::Undo()
{
    ExchangeAll(parts_.rbegin(), parts_.rend());
}

void Step::Redo()
{
    ExchangeAll(parts_.begin(), parts_.end());
}

std::size_t Step::Size() const
{
    std::size_t size = sizeof *this;
    for (const std::unique_ptr<EditedPart> &part : parts_)
        size += part->Size();
    return size;
}

} // namespace marlet::project
