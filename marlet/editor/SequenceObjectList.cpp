#include <marlet/editor/SequenceObjectList.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList_Impl.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/Numbers.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace marlet::project
{

SequenceObjectList::SequenceObjectList(EditorSequence *sequence, const kytl::KyID &trackID,
                                       bool (*holds)(const AbstractSequenceObject &object))
    : impl_(std::make_shared<SequenceObjectList_Impl>())
{
    impl_->sequence = sequence;
    impl_->trackID = trackID;
    impl_->holds = holds;
}

SequenceObjectList::~SequenceObjectList() = default;

void SequenceObjectList::SetTrackID(const kytl::KyID &id)
{
    impl_->trackID = id;
}

bool SequenceObjectList::IsEmpty() const
{
    return impl_->entries.empty();
}

unsigned int SequenceObjectList::Count() const
{
    return static_cast<unsigned int>(impl_->Count());
}

const SequenceObjectList::Object &SequenceObjectList::operator[](unsigned int index) const
{
    return impl_->slots[impl_->entries.at(index).slot].object;
}

SequenceObjectList::Object &SequenceObjectList::operator[](unsigned int index)
{
    Object &entry = impl_->slots[impl_->entries.at(index).slot].object;
    impl_->Lend(index);
    return entry;
}

const SequenceObjectList::Object &SequenceObjectList::FirstByTime() const
{
    for (std::size_t i = 0; i < impl_->Count(); ++i)
        if (const Object &object = impl_->At(i))
            return object;
    throw std::logic_error("The track has no first object");
}

const SequenceObjectList::Object &SequenceObjectList::LastByTime() const
{
    for (std::size_t i = impl_->Count(); i > 0; --i)
        if (const Object &object = impl_->At(i - 1))
            return object;
    throw std::logic_error("The track has no last object");
}

SequenceObjectList::Object SequenceObjectList::GetByStartFrame(int frame) const
{
    const std::size_t position = impl_->FindStarting(frame, impl_->LowerBound(frame));
    return position == SequenceObjectList_Impl::kNone ? nullptr : impl_->At(position);
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
    const std::size_t position = impl_->FindOnFrame(frame, impl_->LowerBound(frame));
    return position == SequenceObjectList_Impl::kNone ? nullptr : impl_->At(position);
}

SequenceObjectList::Objects SequenceObjectList::FindInRange(int first, int last) const
{
    const SequenceObjectList_Impl &data = *impl_;
    last = std::max(first, last);
    Objects found;
    // To the end of the list, since an object that starts behind the range may end inside it.
    for (std::size_t i = data.FindLastBefore(data.LowerBound(first)); i < data.Count(); ++i) {
        if (!data.At(i))
            continue;
        const int start = data.StartFrame(i);
        const int end = data.EndFrame(i);
        const bool startsInside = first <= start && start < last;
        const bool endsInside = first < end && end <= last;
        const bool coversAll = start < first && last < end;
        if (startsInside || endsInside || coversAll)
            found.Add(data.At(i));
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
        previous = data.At(before);
    if (after != data.kNone)
        next = data.At(after);
}

std::optional<int> SequenceObjectList::FindPreviousEdit(int frame) const
{
    const SequenceObjectList_Impl &data = *impl_;
    const std::size_t lowerBound = data.LowerBound(frame);
    const std::size_t onFrame = data.FindOnFrame(frame, lowerBound);
    if (onFrame != data.kNone && data.StartFrame(onFrame) != frame)
        return data.StartFrame(onFrame);
    const std::size_t before =
        data.FindBefore(frame, lowerBound, onFrame == data.kNone ? kytl::KyID() : data.At(onFrame)->ID());
    if (before == data.kNone)
        return std::nullopt;
    const int end = data.EndFrame(before);
    return end == frame ? data.StartFrame(before) : end;
}

std::optional<int> SequenceObjectList::FindNextEdit(int frame) const
{
    const SequenceObjectList_Impl &data = *impl_;
    const std::size_t lowerBound = data.LowerBound(frame);
    const std::size_t onFrame = data.FindOnFrame(frame, lowerBound);
    if (onFrame != data.kNone)
        return data.EndFrame(onFrame);
    const std::size_t after = data.FindAfter(frame, lowerBound, {});
    return after == data.kNone ? std::nullopt : std::optional(data.StartFrame(after));
}

void SequenceObjectList::ForEach(const std::function<void(Object)> &function)
{
    for (std::size_t i = 0; i < impl_->Count(); ++i)
        if (impl_->At(i))
            function(impl_->At(i));
}

void SequenceObjectList::ForEach(
    const std::function<void(std::shared_ptr<const AbstractSequenceObject>)> &function) const
{
    for (std::size_t i = 0; i < impl_->Count(); ++i)
        if (impl_->At(i))
            function(impl_->At(i));
}

void SequenceObjectList::Insert(const Object &object, int startFrame)
{
    Require(object, "object");
    if (!impl_->holds(*object))
        throw std::invalid_argument("The object \"" + ToUtf8(object->Name()) +
                                    "\" is not of the track's class");
    const Object inserted = object; // which may be an entry of the list itself
    impl_->TakeBack();
    impl_->MoveEntries(inserted, startFrame);
    impl_->Insert(inserted, impl_->UpperBound(startFrame));
    impl_->sequence->AddObjectToCache(inserted);
}

unsigned int SequenceObjectList::IndexOf(const Object &object) const
{
    Require(object, "object");
    const std::size_t position = impl_->FindEntry(object);
    return position == SequenceObjectList_Impl::kNone ? Count() : static_cast<unsigned int>(position);
}

void SequenceObjectList::InsertAt(const Object &object, int startFrame, unsigned int index)
{
    const Object inserted = object;
    Insert(inserted, startFrame);
    const std::size_t first = impl_->LowerBound(startFrame);
    const std::size_t last = impl_->UpperBound(startFrame) - 1;
    if (index < last)
        impl_->Shift(last, std::max<std::size_t>(first, index));
}

void SequenceObjectList::ShiftFrom(unsigned int index, int frames)
{
    impl_->TakeBack();
    impl_->ShiftFrom(index, frames);
}

void SequenceObjectList::Move(const Object &object, int startFrame, bool keepLength)
{
    const Object moved = object;
    Require(moved, "object");
    impl_->TakeBack();
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
    Require(removed, "object");
    impl_->TakeBack();
    const std::size_t position = impl_->RequireEntry(removed);
    impl_->sequence->RemoveObjectFromCache(removed);
    impl_->Erase(position);
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
    impl_->TakeBack();
    const Objects removed = impl_->TakeAll();
    for (const Object &object : removed)
        impl_->sequence->RemoveObjectFromCache(object);
}

} // namespace marlet::project
