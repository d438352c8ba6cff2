#include <marlet/editor/SequenceObjectList_Impl.h>

#include <marlet/editor/AbstractSequenceObject.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace marlet::project
{

/// An entry that this list may know nothing of is asked itself.
int SequenceObjectList_Impl::EndFrame(std::size_t position) const
{
    return mayShareObjects || IsLent(position) ? At(position)->EndFrame() : endFrames[slots[position]];
}

/// Asks no object whether it has the null ID unless one may have it.
bool SequenceObjectList_Impl::HasID(std::size_t position, const kytl::KyID &id) const
{
    if (id.IsNull() && !mayHaveNullIDs && !IsLent(position))
        return false;
    return At(position)->ID() == id;
}

/// The first position that starts at the frame or later.
std::size_t SequenceObjectList_Impl::LowerBound(int frame) const
{
    return static_cast<std::size_t>(std::lower_bound(startFrames.begin(), startFrames.end(), frame) -
                                    startFrames.begin());
}

/// Behind all that start at the frame or earlier. What comes in order of time needs no search.
std::size_t SequenceObjectList_Impl::UpperBound(int frame) const
{
    if (startFrames.empty() || startFrames.back() <= frame)
        return Count();
    return static_cast<std::size_t>(std::upper_bound(startFrames.begin(), startFrames.end(), frame) -
                                    startFrames.begin());
}

std::size_t SequenceObjectList_Impl::FindOnFrame(int frame, std::size_t lowerBound) const
{
    if (lowerBound < Count() && startFrames[lowerBound] == frame)
        return lowerBound;
    return lowerBound > 0 && frame < EndFrame(lowerBound - 1) ? lowerBound - 1 : kNone;
}

/// The object at the lower bound counts too: it may end before it starts.
std::size_t SequenceObjectList_Impl::FindBefore(int frame, std::size_t lowerBound,
                                                const kytl::KyID &excluded) const
{
    for (std::size_t end = std::min(lowerBound + 1, Count()); end > 0; --end)
        if (EndFrame(end - 1) <= frame && !HasID(end - 1, excluded))
            return end - 1;
    return kNone;
}

std::size_t SequenceObjectList_Impl::FindAfter(int frame, std::size_t lowerBound,
                                               const kytl::KyID &excluded) const
{
    for (std::size_t position = lowerBound; position < Count(); ++position)
        if (startFrames[position] > frame && !HasID(position, excluded))
            return position;
    return kNone;
}

std::size_t SequenceObjectList_Impl::FindEntry(const Object &object) const
{
    const int startFrame = object->StartFrame();
    for (std::size_t i = LowerBound(startFrame); i < Count() && startFrames[i] == startFrame; ++i)
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
    const int startFrame = object.StartFrame();
    for (std::size_t i = LowerBound(startFrame); i < Count() && startFrames[i] == startFrame; ++i)
        if (At(i).get() == &object)
            endFrames[slots[i]] = object.EndFrame();
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
    const std::size_t end = std::exchange(endLent, 0);
    for (std::size_t i = std::exchange(firstLent, 0); i < end; ++i) {
        if (At(i)->list_->expired())
            *At(i)->list_ = weak_from_this();
        mayShareObjects = mayShareObjects || !IsToldBy(*At(i));
        Refresh(i);
    }
    if (mayShareObjects || (end > 0 && !std::is_sorted(startFrames.begin(), startFrames.end())))
        SortAgain();
}

/// Takes over what the object of an entry says.
void SequenceObjectList_Impl::Refresh(std::size_t position)
{
    const AbstractSequenceObject &object = *At(position);
    startFrames[position] = object.StartFrame();
    endFrames[slots[position]] = object.EndFrame();
    mayHaveNullIDs = mayHaveNullIDs || object.ID().IsNull();
}

void SequenceObjectList_Impl::SortAgain()
{
    std::stable_sort(slots.begin(), slots.end(), [this](std::uint32_t a, std::uint32_t b) {
        return objects[a]->StartFrame() < objects[b]->StartFrame();
    });
    mayShareObjects = false;
    for (std::size_t i = 0; i < Count(); ++i) {
        mayShareObjects = mayShareObjects || !IsToldBy(*At(i));
        Refresh(i);
    }
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

std::uint32_t SequenceObjectList_Impl::TakeSlot(const Object &object)
{
    if (freeSlots.empty()) {
        objects.push_back(object);
        endFrames.push_back(0);
        return static_cast<std::uint32_t>(objects.size() - 1);
    }
    const std::uint32_t slot = freeSlots.back();
    freeSlots.pop_back();
    objects[slot] = object;
    return slot;
}

void SequenceObjectList_Impl::Insert(const Object &object, std::size_t position)
{
    const auto offset = static_cast<std::ptrdiff_t>(position);
    slots.insert(slots.begin() + offset, TakeSlot(object));
    startFrames.insert(startFrames.begin() + offset, 0);
    Refresh(position);
}

void SequenceObjectList_Impl::Erase(std::size_t position)
{
    const auto offset = static_cast<std::ptrdiff_t>(position);
    const Object object = std::exchange(objects[slots[position]], nullptr);
    freeSlots.push_back(slots[position]);
    slots.erase(slots.begin() + offset);
    startFrames.erase(startFrames.begin() + offset);
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
    startFrames.clear();
    slots.clear();
    objects.clear();
    endFrames.clear();
    freeSlots.clear();
    mayHaveNullIDs = false;
    mayShareObjects = false;
    return taken;
}

void SequenceObjectList_Impl::Adopt(AbstractSequenceObject &object)
{
    if (const std::shared_ptr<SequenceObjectList_Impl> former = object.list_->lock())
        former->mayShareObjects = former->mayShareObjects || former.get() != this;
    *object.list_ = weak_from_this();
}

/// Takes an entry to another position; those between move up.
void SequenceObjectList_Impl::Shift(std::size_t from, std::size_t to)
{
    const auto rotate = [from, to](auto begin) {
        const auto at = [begin](std::size_t i) { return begin + static_cast<std::ptrdiff_t>(i); };
        if (from < to)
            std::rotate(at(from), at(from + 1), at(to + 1));
        else
            std::rotate(at(to), at(from), at(from + 1));
    };
    rotate(startFrames.begin());
    rotate(slots.begin());
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
    while (position < Count() && startFrames[position] == former) {
        if (At(position) != object) {
            ++position;
            continue;
        }
        const std::size_t behind = UpperBound(startFrame);
        startFrames[position] = startFrame;
        Shift(position, position < behind ? behind - 1 : behind);
        if (startFrame < former)
            ++position;
    }
}

} // namespace marlet::project
