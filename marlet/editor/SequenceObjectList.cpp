#include <marlet/editor/SequenceObjectList.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/foundation/Numbers.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace marlet::project
{

struct SequenceObjectList_Impl {
    using Object = SequenceObjectList::Object;

    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    EditorSequence *sequence;
    kytl::KyID trackID;
    SequenceObjectList::Objects objects;
    /// Those of the objects, at the same positions, so that a search touches no object.
    std::vector<int> startFrames;

    std::size_t Count() const { return startFrames.size(); }
    int EndFrame(std::size_t position) const { return objects[position]->EndFrame(); }

    std::size_t LowerBound(int frame) const;
    std::size_t PositionToInsert(int startFrame) const;
    std::size_t FindOnFrame(int frame) const;
    std::size_t FindBefore(int frame, std::size_t lowerBound, const kytl::KyID &excluded) const;
    std::size_t FindAfter(int frame, std::size_t lowerBound, const kytl::KyID &excluded) const;
    std::size_t FindEntry(const Object &object) const;
    std::size_t RequireEntry(const Object &object);

    void Shift(std::size_t from, std::size_t to);
    void MoveEntries(const Object &object, int startFrame);
    void SortAgain();
};

/// The first position that starts at the frame or later.
std::size_t SequenceObjectList_Impl::LowerBound(int frame) const
{
    return static_cast<std::size_t>(std::lower_bound(startFrames.begin(), startFrames.end(), frame) -
                                    startFrames.begin());
}

/// Behind all that start there. What comes in order of time needs no search.
std::size_t SequenceObjectList_Impl::PositionToInsert(int startFrame) const
{
    if (startFrames.empty() || startFrames.back() <= startFrame)
        return Count();
    return static_cast<std::size_t>(std::upper_bound(startFrames.begin(), startFrames.end(), startFrame) -
                                    startFrames.begin());
}

std::size_t SequenceObjectList_Impl::FindOnFrame(int frame) const
{
    const std::size_t position = LowerBound(frame);
    if (position < Count() && startFrames[position] == frame)
        return position;
    return position > 0 && frame < EndFrame(position - 1) ? position - 1 : kNone;
}

/// The object at the lower bound counts too: it may end before it starts.
std::size_t SequenceObjectList_Impl::FindBefore(int frame, std::size_t lowerBound,
                                                const kytl::KyID &excluded) const
{
    for (std::size_t end = std::min(lowerBound + 1, Count()); end > 0; --end)
        if (EndFrame(end - 1) <= frame && objects[end - 1]->ID() != excluded)
            return end - 1;
    return kNone;
}

std::size_t SequenceObjectList_Impl::FindAfter(int frame, std::size_t lowerBound,
                                               const kytl::KyID &excluded) const
{
    for (std::size_t position = lowerBound; position < Count(); ++position)
        if (startFrames[position] > frame && objects[position]->ID() != excluded)
            return position;
    return kNone;
}

std::size_t SequenceObjectList_Impl::FindEntry(const Object &object) const
{
    const int startFrame = object->StartFrame();
    for (std::size_t i = LowerBound(startFrame); i < Count() && startFrames[i] == startFrame; ++i)
        if (objects[i] == object)
            return i;
    return kNone;
}

std::size_t SequenceObjectList_Impl::RequireEntry(const Object &object)
{
    if (!object || objects.IsEmpty())
        throw std::logic_error("The object is not on the track");
    std::size_t position = FindEntry(object);
    if (position != kNone)
        return position;
    // It came here in the place of another, or its start frame was set by another list.
    if (std::find(objects.begin(), objects.end(), object) == objects.end())
        throw std::logic_error("The object is not on the track");
    SortAgain();
    return FindEntry(object);
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
    rotate(objects.begin());
    rotate(startFrames.begin());
}

/// Sets the object's start frame, and takes its entries, of which there may be none or several, behind what
/// starts there.
void SequenceObjectList_Impl::MoveEntries(const Object &object, int startFrame)
{
    const int former = object->StartFrame();
    if (former == startFrame)
        return;
    object->SetStartFrame(startFrame);
    std::size_t position = LowerBound(former);
    while (position < Count() && startFrames[position] == former) {
        if (objects[position] != object) {
            ++position;
            continue;
        }
        const std::size_t behind = PositionToInsert(startFrame);
        startFrames[position] = startFrame;
        Shift(position, position < behind ? behind - 1 : behind);
        if (startFrame < former)
            ++position;
    }
}

void SequenceObjectList_Impl::SortAgain()
{
    std::stable_sort(objects.begin(), objects.end(),
                     [](const Object &a, const Object &b) { return a->StartFrame() < b->StartFrame(); });
    std::transform(objects.begin(), objects.end(), startFrames.begin(),
                   [](const Object &object) { return object->StartFrame(); });
}

SequenceObjectList::SequenceObjectList(EditorSequence *sequence, const kytl::KyID &trackID)
    : impl_(std::make_unique<SequenceObjectList_Impl>())
{
    impl_->sequence = sequence;
    impl_->trackID = trackID;
}

SequenceObjectList::~SequenceObjectList() = default;

void SequenceObjectList::SetTrackID(const kytl::KyID &id)
{
    impl_->trackID = id;
}

bool SequenceObjectList::IsEmpty() const
{
    return impl_->objects.IsEmpty();
}

unsigned int SequenceObjectList::Count() const
{
    return impl_->objects.Count();
}

const SequenceObjectList::Object &SequenceObjectList::operator[](unsigned int index) const
{
    return impl_->objects.at(index);
}

SequenceObjectList::Object &SequenceObjectList::operator[](unsigned int index)
{
    return impl_->objects.at(index);
}

const SequenceObjectList::Object &SequenceObjectList::FirstByTime() const
{
    if (IsEmpty())
        throw std::logic_error("The track has no first object");
    return impl_->objects.front();
}

const SequenceObjectList::Object &SequenceObjectList::LastByTime() const
{
    if (IsEmpty())
        throw std::logic_error("The track has no last object");
    return impl_->objects.back();
}

SequenceObjectList::Object SequenceObjectList::GetByStartFrame(int frame) const
{
    const std::size_t position = impl_->LowerBound(frame);
    if (position == impl_->Count() || impl_->startFrames[position] != frame)
        return nullptr;
    return impl_->objects[position];
}

SequenceObjectList::Object SequenceObjectList::GetByID(const kytl::KyID &id) const
{
    Object object = impl_->sequence->FindObjectByID(id);
    if (object && object->ParentTrackID() != impl_->trackID)
        object.reset();
    return object;
}

SequenceObjectList::Object SequenceObjectList::FindOnFrame(int frame) const
{
    const std::size_t position = impl_->FindOnFrame(frame);
    return position == SequenceObjectList_Impl::kNone ? nullptr : impl_->objects[position];
}

SequenceObjectList::Objects SequenceObjectList::FindInRange(int first, int last) const
{
    const SequenceObjectList_Impl &data = *impl_;
    last = std::max(first, last);
    Objects found;
    // To the end of the list, since an object that starts behind the range may end inside it.
    const std::size_t position = data.LowerBound(first);
    for (std::size_t i = position > 0 ? position - 1 : 0; i < data.Count(); ++i) {
        const int start = data.startFrames[i];
        const int end = data.EndFrame(i);
        const bool startsInside = first <= start && start < last;
        const bool endsInside = first < end && end <= last;
        const bool coversAll = start < first && last < end;
        if (startsInside || endsInside || coversAll)
            found.Add(data.objects[i]);
    }
    return found;
}

void SequenceObjectList::FindAdjacentObjects(int frame, Object &previous, Object &next,
                                             const Object &excluded) const
{
    const SequenceObjectList_Impl &data = *impl_;
    const kytl::KyID excludedID = excluded ? excluded->ID() : kytl::KyID();
    const std::size_t lowerBound = data.LowerBound(frame);
    const std::size_t before = data.FindBefore(frame, lowerBound, excludedID);
    const std::size_t after = data.FindAfter(frame, lowerBound, excludedID);
    if (before != data.kNone)
        previous = data.objects[before];
    if (after != data.kNone)
        next = data.objects[after];
}

std::optional<int> SequenceObjectList::FindPreviousEdit(int frame) const
{
    const SequenceObjectList_Impl &data = *impl_;
    const std::size_t lowerBound = data.LowerBound(frame);
    const std::size_t onFrame = data.FindOnFrame(frame);
    if (onFrame != data.kNone && data.startFrames[onFrame] != frame)
        return data.startFrames[onFrame];
    const std::size_t before = data.FindBefore(
        frame, lowerBound, onFrame == data.kNone ? kytl::KyID() : data.objects[onFrame]->ID());
    if (before == data.kNone)
        return std::nullopt;
    const int end = data.EndFrame(before);
    return end == frame ? data.startFrames[before] : end;
}

std::optional<int> SequenceObjectList::FindNextEdit(int frame) const
{
    const SequenceObjectList_Impl &data = *impl_;
    const std::size_t onFrame = data.FindOnFrame(frame);
    if (onFrame != data.kNone)
        return data.EndFrame(onFrame);
    const std::size_t after = data.FindAfter(frame, data.LowerBound(frame), {});
    return after == data.kNone ? std::nullopt : std::optional(data.startFrames[after]);
}

void SequenceObjectList::ForEach(const std::function<void(Object)> &function)
{
    for (const Object &object : impl_->objects)
        function(object);
}

void SequenceObjectList::ForEach(
    const std::function<void(std::shared_ptr<const AbstractSequenceObject>)> &function) const
{
    for (const Object &object : impl_->objects)
        function(object);
}

void SequenceObjectList::Insert(const Object &object, int startFrame)
{
    if (!object)
        throw std::invalid_argument("There is no object to insert");
    Object entry = object;
    impl_->MoveEntries(entry, startFrame);
    const auto position = static_cast<std::ptrdiff_t>(impl_->PositionToInsert(startFrame));
    impl_->startFrames.insert(impl_->startFrames.begin() + position, startFrame);
    const auto place = impl_->objects.insert(impl_->objects.begin() + position, std::move(entry));
    impl_->sequence->AddObjectToCache(*place);
}

void SequenceObjectList::Move(const Object &object, int startFrame, bool keepLength)
{
    const Object moved = object; // which may be an entry of the list itself
    impl_->RequireEntry(moved);
    const std::int64_t length = std::int64_t{moved->EndFrame()} - moved->StartFrame();
    impl_->MoveEntries(moved, startFrame);
    if (keepLength)
        moved->SetEndFrame(Saturate(startFrame + length));
}

void SequenceObjectList::Remove(const Object &object)
{
    // Kept to the end: what goes with an object may ask the list, which is whole by then.
    const Object removed = object;
    const auto position = static_cast<std::ptrdiff_t>(impl_->RequireEntry(removed));
    impl_->sequence->RemoveObjectFromCache(removed);
    impl_->startFrames.erase(impl_->startFrames.begin() + position);
    impl_->objects.erase(impl_->objects.begin() + position);
}

SequenceObjectList::Object SequenceObjectList::Remove(const kytl::KyID &id)
{
    Object object = GetByID(id);
    if (object)
        Remove(object);
    return object;
}

void SequenceObjectList::Clear()
{
    for (const Object &object : impl_->objects)
        impl_->sequence->RemoveObjectFromCache(object);
    impl_->startFrames.clear();
    const Objects removed = std::exchange(impl_->objects, {});
}

} // namespace marlet::project
