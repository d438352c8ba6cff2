#pragma once

#include <marlet/editor/SequenceObjectList.h>

#include <vector>

namespace marlet::project
{

/// The objects of a list in slots, and in order of time a flat array of their start frames with the numbers
/// of their slots. A search by frame touches no object, and an insertion moves none. The list alone sets
/// start frames; objects tell it of their end frames.
struct SequenceObjectList_Impl : std::enable_shared_from_this<SequenceObjectList_Impl> {
    using Object = SequenceObjectList::Object;

    struct Entry {
        int startFrame = 0;
        std::uint32_t slot = 0;
    };

    struct Slot {
        Object object;
        int endFrame = 0;
    };

    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    EditorSequence *sequence = nullptr;
    kytl::KyID trackID;
    bool (*holds)(const AbstractSequenceObject &object) = nullptr;
    std::vector<Entry> entries;
    std::vector<Slot> slots;
    std::vector<std::uint32_t> freeSlots;
    // The positions from the first to before the last may hold other objects than the list put there, or
    // none: somebody was given a reference.
    std::size_t firstLent = 0;
    std::size_t endLent = 0;
    bool mayHaveNullIDs = false;
    /// Some object may be on another list too, which has set its start frame and is told of its end frame.
    bool mayShareObjects = false;
    /// The objects' new end frames are those that the list sets itself.
    bool isShifting = false;

    std::size_t Count() const { return entries.size(); }
    const Object &At(std::size_t position) const { return slots[entries[position].slot].object; }
    int StartFrame(std::size_t position) const { return entries[position].startFrame; }
    bool IsLent(std::size_t position) const { return position >= firstLent && position < endLent; }
    int EndFrame(std::size_t position) const;
    bool IsExcluded(std::size_t position, const kytl::KyID &id) const;

    std::size_t LowerBound(int frame) const;
    std::size_t UpperBound(int frame) const;
    std::size_t FindStarting(int frame, std::size_t lowerBound) const;
    std::size_t FindLastBefore(std::size_t position) const;
    std::size_t FindOnFrame(int frame, std::size_t lowerBound) const;
    std::size_t FindBefore(int frame, std::size_t lowerBound, const kytl::KyID &excluded) const;
    std::size_t FindAfter(int frame, std::size_t lowerBound, const kytl::KyID &excluded) const;
    std::size_t FindEntry(const Object &object) const;
    std::size_t RequireEntry(const Object &object) const;

    void TakeEndFrame(const AbstractSequenceObject &object);
    void Lend(std::size_t position);
    void TakeBack();
    void Insert(const Object &object, std::size_t position);
    void Erase(std::size_t position);
    /// Leaves the list empty.
    SequenceObjectList::Objects TakeAll();
    void MoveEntries(const Object &object, int startFrame);
    /// Takes an entry to another position; those between move up.
    void Shift(std::size_t from, std::size_t to);
    /// @throws std::invalid_argument
    void ShiftFrom(std::size_t first, int frames);

private:
    void Adopt(AbstractSequenceObject &object);
    void AdoptIfFree(AbstractSequenceObject &object);
    void DropEmptyPlaces(std::size_t first, std::size_t end);
    bool IsToldBy(const AbstractSequenceObject &object) const;
    void Release(AbstractSequenceObject &object) const;
    std::uint32_t TakeSlot(const Object &object);
    void Refresh(std::size_t position);
    void SortAgain();
};

} // namespace marlet::project
