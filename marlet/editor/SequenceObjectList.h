#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/KyList.h>

#include <functional>
#include <memory>

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

    /// Sets the object's start frame, not its end frame nor its parent track.
    void Insert(const Object &object, int startFrame);
    /// Sets the start frame; the end frame goes with it if the length is kept.
    /// @throws std::logic_error if the object is not in the list
    void Move(const Object &object, int startFrame, bool keepLength);
    /// @throws std::logic_error if the object is not in the list
    void Remove(const Object &object);
    /// What GetByID finds is removed and returned.
    Object Remove(const kytl::KyID &id);
    void Clear();

private:
    friend class AudioTrack;
    friend class VideoTrack;
    friend struct AudioTrack_Impl;
    friend struct VideoTrack_Impl;

    SequenceObjectList(EditorSequence *sequence, const kytl::KyID &trackID);
    void SetTrackID(const kytl::KyID &id);

    std::unique_ptr<SequenceObjectList_Impl> impl_;
};

} // namespace marlet::project
