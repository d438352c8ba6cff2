#include <marlet/editor/SequenceObjectList_Impl.h>

#include <marlet/editor/AbstractSequenceObject.h>

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

namespace marlet::project
{

/// An entry that this list may know nothing of is asked itself.
int SequenceObjectList_Impl::EndFrame(std::size_t position) const
{
    const bool isKnown = !mayShareObjects && !IsLent(position);
    return isKnown || !At(position) ? slots[entries[position].slot].endFrame : At(position)->EndFrame();
}

/// An empty place, or the object with the ID. Asks no object whether it has the null ID unless one may have
/// it.
bool SequenceObjectList_Impl::IsExcluded(std::size_t position, const kytl::KyID &id) const
{
    if (id.IsNull() && !mayHaveNullIDs && !IsLent(position))
        return false;
    return !At(position) || At(position)->ID() == id;
}

/// The first position that starts at the frame or later.
std::size_t SequenceObjectList_Impl::LowerBound(int frame) const
{
    const auto bound = std::ranges::lower_bound(entries, frame, {}, &Entry::startFrame);
    return static_cast<std::size_t>(bound - entries.begin());
}

/// Behind all that start at the frame or earlier. What comes in order of time needs no search.
std::size_t SequenceObjectList_Impl::UpperBound(int frame) const
{
    if (entries.empty() || entries.back().startFrame <= frame)
        return Count();
    const auto bound = std::ranges::upper_bound(entries, frame, {}, &Entry::startFrame);
    return static_cast<std::size_t>(bound - entries.begin());
}

std::size_t SequenceObjectList_Impl::FindStarting(int frame, std::size_t lowerBound) const
{
    for (std::size_t i = lowerBound; i < Count() && StartFrame(i) == frame; ++i)
        if (At(i))
            return i;
    return kNone;
}

/// The position itself if there is no object before it.
std::size_t SequenceObjectList_Impl::FindLastBefore(std::size_t position) const
{
    for (std::size_t before = position; before > 0; --before)
        if (At(before - 1))
            return before - 1;
    return position;
}

std::size_t SequenceObjectList_Impl::FindOnFrame(int frame, std::size_t lowerBound) const
{
    if (const std::size_t starting = FindStarting(frame, lowerBound); starting != kNone)
        return starting;
    const std::size_t before = FindLastBefore(lowerBound);
    return before < lowerBound && frame < EndFrame(before) ? before : kNone;
}

/// The object at the lower bound counts too: it may end before it starts.
std::size_t SequenceObjectList_Impl::FindBefore(int frame, std::size_t lowerBound,
                                                const kytl::KyID &excluded) const
{
    for (std::size_t end = std::min(lowerBound + 1, Count()); end > 0; --end)
        if (EndFrame(end - 1) <= frame && !IsExcluded(end - 1, excluded))
            return end - 1;
    return kNone;
}

std::size_t SequenceObjectList_Impl::FindAfter(int frame, std::size_t lowerBound,
                                               const kytl::KyID &excluded) const
{
    for (std::size_t position = lowerBound; position < Count(); ++position)
        if (StartFrame(position) > frame && !IsExcluded(position, excluded))
            return position;
    return kNone;
}

std::size_t SequenceObjectList_Impl::FindEntry(const Object &object) const
{
    const int startFrame = object->StartFrame();
    for (std::size_t i = LowerBound(startFrame); i < Count() && StartFrame(i) == startFrame; ++i)
        if (At(i) == object)
            return i;
    return kNone;
}

std::size_t SequenceObjectList_Impl::RequireEntry(const Object &object) const
{
    const std::size_t position = object ? FindEntry(object) : kNone;
    if (position == kNone)
        throw std::logic_error("The object is not on the track");
    return position;
}

void SequenceObjectList_Impl::TakeEndFrame(const AbstractSequenceObject &object)
{
    if (isShifting)
        return;
    const int startFrame = object.StartFrame();
    for (std::size_t i = LowerBound(startFrame); i < Count() && StartFrame(i) == startFrame; ++i)
        if (At(i).get() == &object)
            slots[entries[i].slot].endFrame = object.EndFrame();
}

void SequenceObjectList_Impl::Lend(std::size_t position)
{
    const bool isFirst = firstLent == endLent;
    firstLent = isFirst ? position : std::min(firstLent, position);
    endLent = isFirst ? position + 1 : std::max(endLent, position + 1);
}

/// Before every change: references hold no longer than to the next one, and what other lists did to shared
/// objects counts from then on.
void SequenceObjectList_Impl::TakeBack()
{
    bool isMoved = false;
    const std::size_t first = std::exchange(firstLent, 0);
    const std::size_t end = std::exchange(endLent, 0);
    DropEmptyPlaces(first, end);
    for (std::size_t i = first; i < std::min(end, Count()); ++i) {
        AdoptIfFree(*At(i));
        mayShareObjects = mayShareObjects || !IsToldBy(*At(i));
        const int former = StartFrame(i);
        Refresh(i);
        isMoved = isMoved || StartFrame(i) != former;
    }
    if (mayShareObjects || isMoved)
        SortAgain();
}

/// Takes over what the object of an entry says.
void SequenceObjectList_Impl::Refresh(std::size_t position)
{
    const AbstractSequenceObject &object = *At(position);
    entries[position].startFrame = object.StartFrame();
    slots[entries[position].slot].endFrame = object.EndFrame();
    mayHaveNullIDs = mayHaveNullIDs || object.ID().IsNull();
}

void SequenceObjectList_Impl::SortAgain()
{
    mayShareObjects = false;
    for (std::size_t i = 0; i < Count(); ++i) {
        AdoptIfFree(*At(i));
        mayShareObjects = mayShareObjects || !IsToldBy(*At(i));
        Refresh(i);
    }
    std::ranges::stable_sort(entries, {}, &Entry::startFrame);
}

bool SequenceObjectList_Impl::IsToldBy(const AbstractSequenceObject &object) const
{
    return object.list_->lock().get() == this;
}

/// An object that is on another list stays with that.
void SequenceObjectList_Impl::Release(AbstractSequenceObject &object) const
{
    if (IsToldBy(object))
        object.list_->reset();
}

/// From now on this list is told of the object's end frame; one that was so far has to ask.
void SequenceObjectList_Impl::Adopt(AbstractSequenceObject &object)
{
    if (const std::shared_ptr<SequenceObjectList_Impl> former = object.list_->lock())
        former->mayShareObjects = former->mayShareObjects || former.get() != this;
    *object.list_ = weak_from_this();
}

/// An object that no list is told by any more, since the one that it came to later has let go of it or is
/// gone itself, is this one's again.
void SequenceObjectList_Impl::AdoptIfFree(AbstractSequenceObject &object)
{
    if (object.list_->expired())
        *object.list_ = weak_from_this();
}

void SequenceObjectList_Impl::DropEmptyPlaces(std::size_t first, std::size_t end)
{
    for (std::size_t i = end; i > first; --i) {
        if (At(i - 1))
            continue;
        freeSlots.push_back(entries[i - 1].slot);
        entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(i - 1));
    }
}

std::uint32_t SequenceObjectList_Impl::TakeSlot(const Object &object)
{
    if (freeSlots.empty()) {
        slots.push_back({object});
        return static_cast<std::uint32_t>(slots.size() - 1);
    }
    const std::uint32_t slot = freeSlots.back();
    freeSlots.pop_back();
    slots[slot].object = object;
    return slot;
}

void SequenceObjectList_Impl::Insert(const Object &object, std::size_t position)
{
    const auto offset = static_cast<std::ptrdiff_t>(position);
    entries.insert(entries.begin() + offset, Entry{0, TakeSlot(object)});
    Refresh(position);
}

void SequenceObjectList_Impl::Erase(std::size_t position)
{
    const auto offset = static_cast<std::ptrdiff_t>(position);
    const std::uint32_t slot = entries[position].slot;
    const Object object = std::exchange(slots[slot].object, nullptr);
    freeSlots.push_back(slot);
    entries.erase(entries.begin() + offset);
    if (FindEntry(object) == kNone)
        Release(*object);
}

SequenceObjectList::Objects SequenceObjectList_Impl::TakeAll()
{
    SequenceObjectList::Objects taken;
    for (std::size_t i = 0; i < Count(); ++i) {
        Release(*At(i));
        taken.Add(At(i));
    }
    entries.clear();
    slots.clear();
    freeSlots.clear();
    mayHaveNullIDs = false;
    mayShareObjects = false;
    return taken;
}

void SequenceObjectList_Impl::Shift(std::size_t from, std::size_t to)
{
    const auto at = [this](std::size_t i) { return entries.begin() + static_cast<std::ptrdiff_t>(i); };
    if (from < to)
        std::rotate(at(from), at(from + 1), at(to + 1));
    else
        std::rotate(at(to), at(from), at(from + 1));
}

void SequenceObjectList_Impl::ShiftFrom(std::size_t first, int frames)
{
    if (first >= Count())
        return;
    const std::int64_t start = std::int64_t{StartFrame(first)} + frames;
    if (first > 0 && start < StartFrame(first - 1))
        throw std::invalid_argument("The objects would pass the one that starts on frame " +
                                    std::to_string(StartFrame(first - 1)));
    std::int64_t least = start;
    std::int64_t greatest = start;
    for (std::size_t i = first; i < Count(); ++i) {
        least = std::min(least, std::int64_t{EndFrame(i)} + frames);
        greatest =
            std::max({greatest, std::int64_t{StartFrame(i)} + frames, std::int64_t{EndFrame(i)} + frames});
    }
    if (least < std::numeric_limits<int>::min() || greatest > std::numeric_limits<int>::max())
        throw std::invalid_argument("The objects would leave the range of frames");

    // Objects lie anywhere in memory, and fetching them is most of the work.
    constexpr std::size_t kAhead = 16;
    isShifting = true;
    for (std::size_t i = first; i < Count(); ++i) {
        if (i + kAhead < Count())
            __builtin_prefetch(slots[entries[i + kAhead].slot].object.get());
        Slot &slot = slots[entries[i].slot];
        entries[i].startFrame += frames;
        slot.endFrame = slot.object->EndFrame() + frames;
        slot.object->SetStartFrame(entries[i].startFrame);
        slot.object->SetEndFrame(slot.endFrame);
    }
    isShifting = false;
}

/// Sets the object's start frame, and takes its entries, of which there may be none or several, behind what
/// starts there.
void SequenceObjectList_Impl::MoveEntries(const Object &object, int startFrame)
{
    Adopt(*object);
    const int former = object->StartFrame();
    if (former == startFrame)
        return;
    object->SetStartFrame(startFrame);
    std::size_t position = LowerBound(former);
    while (position < Count() && StartFrame(position) == former) {
        if (At(position) != object) {
            ++position;
            continue;
        }
        const std::size_t behind = UpperBound(startFrame);
        entries[position].startFrame = startFrame;
        Shift(position, position < behind ? behind - 1 : behind);
        if (startFrame < former)
            ++position;
    }
}

} // namespace marlet::project
