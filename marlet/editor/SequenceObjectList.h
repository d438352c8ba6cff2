#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/KyList.h>

#include <functional>
#include <memory>
#include <optional>

namespace marlet::project
{

class AbstractSequenceObject;
class EditorSequence;
struct SequenceObjectList_Impl;

/// The objects of one track in order of their start frames; those that start on one frame stand in the order
/// in which they came. It shares its objects with whoever holds them, and must not outlive its sequence.
///
/// A pure model: nothing is trimmed, shifted, split or refused, objects may overlap and be of any length, and
/// transitions stay as they are. Frames are of the sequence; an end frame is exclusive. Belongs to the thread
/// that edits the project.
class MARLET_EXPORT SequenceObjectList
{
public:
    using Object = std::shared_ptr<AbstractSequenceObject>;
    using Objects = kytl::KyList<Object, std::vector>;

    SequenceObjectList(const SequenceObjectList &) = delete;
    SequenceObjectList &operator=(const SequenceObjectList &) = delete;
    ~SequenceObjectList();

    bool IsEmpty() const;
    unsigned int Count() const;
    /// @throws std::out_of_range
    const Object &operator[](unsigned int index) const;
    /// The reference holds until the list changes. An object that is put in the place of another takes its
    /// own place with that change; lookups by ID do not find it, and one of another class than the track's is
    /// not saved. A place that was emptied is passed over, and goes with that change.
    Object &operator[](unsigned int index);
    /// @throws std::logic_error if the list is empty
    const Object &FirstByTime() const;
    const Object &LastByTime() const;

    // Lookups give an empty pointer where nothing is found.

    /// The first object that starts on the frame.
    Object GetByStartFrame(int frame) const;
    /// An object whose parent track is this one, without a scan of the list.
    Object GetByID(const kytl::KyID &id) const;
    /// The object that starts on the frame, or else the last one that starts before it, if it reaches over
    /// it.
    Object FindOnFrame(int frame) const;
    /// What lies in the frames from `first` to before `last`, in whole or in part.
    Objects FindInRange(int first, int last) const;
    /// The nearest object that ends at or before the frame, and the nearest that starts after it; an output
    /// for which there is none stays as it was. The excluded object, which may be null, is passed over.
    void FindAdjacentObjects(int frame, Object &previous, Object &next, const Object &excluded) const;
    /// The function must not change the list.
    /// @throws std::bad_function_call if the function is empty and the list is not
    void ForEach(const std::function<void(Object)> &function);
    void ForEach(const std::function<void(std::shared_ptr<const AbstractSequenceObject>)> &function) const;

    /// Sets the object's start frame, not its end frame nor its parent track. On another list that has the
    /// object too, it keeps its place until that list changes, here as in Move.
    /// @throws std::invalid_argument for a null pointer, and for an object that is not of the track's class:
    /// a VisualObject on a VideoTrack, an AudioObject on an AudioTrack
    void Insert(const Object &object, int startFrame);
    /// Sets the start frame; the end frame goes with it if the length is kept.
    /// @throws std::invalid_argument for a null pointer; std::logic_error if the object is not in the list
    void Move(const Object &object, int startFrame, bool keepLength);
    /// @throws std::invalid_argument for a null pointer; std::logic_error if the object is not in the list
    void Remove(const Object &object);
    /// The position of an object, or the count if it is not in the list.
    unsigned int IndexOf(const Object &object) const;
    /// Insert for an object that is to stand at a position, as far as its start frame lets it: among those
    /// that start on one frame the position counts.
    void InsertAt(const Object &object, int startFrame, unsigned int index);
    /// Moves all objects from a position on by a number of frames, ends too, in one pass.
    /// @throws std::invalid_argument if they would pass one before them or leave the range of frames
    void ShiftFrom(unsigned int index, int frames);
    /// What GetByID finds is removed and returned.
    /// @throws std::logic_error if that says it is on this track and is not in the list
    Object Remove(const kytl::KyID &id);
    void Clear();

private:
    friend class EditorSequence;
    friend class SequenceTrack;
    friend struct SequenceTrack_Impl;

    /// Objects for which `holds` is false are none of the track's.
    SequenceObjectList(EditorSequence *sequence, const kytl::KyID &trackID,
                       bool (*holds)(const AbstractSequenceObject &object));
    void SetTrackID(const kytl::KyID &id);
    /// What the track offers as the edit before and after a frame, if anything.
    std::optional<int> FindPreviousEdit(int frame) const;
    std::optional<int> FindNextEdit(int frame) const;

    std::shared_ptr<SequenceObjectList_Impl> impl_;
};

} // namespace marlet::project
