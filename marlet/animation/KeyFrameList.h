#pragma once

#include <marlet/animation/KeyFrame.h>
#include <marlet/foundation/Strings.h>
#include <marlet/foundation/ValuePtr.h>

#include <functional>
#include <vector>

namespace marlet::project
{

class XmlCursor;
class XmlWriter;
struct KeyFrameList_Impl;

/// The key frames of one property in time order; those at one time stay in the order in which they were
/// added.
///
/// It owns its key frames. A key frame's address stays as long as the key frame is in the list. Times are
/// milliseconds relative to the owner.
///
/// Copying is deep, IDs included. Const operations may be called from any number of threads at once; a change
/// needs the list for itself alone.
class MARLET_EXPORT KeyFrameList
{
public:
    /// Whether the values are points that move along a path in space.
    enum class SpatialDataType : int { NotSpatial, Spatial2D, Spatial3D };

    KeyFrameList();
    KeyFrameList(const KeyFrameList &other);
    KeyFrameList &operator=(KeyFrameList other);
    ~KeyFrameList();
    /// Exchanges everything, so that the key frames keep their addresses.
    void Swap(KeyFrameList &other) noexcept;

    bool IsEmpty() const;
    unsigned int Count() const;
    unsigned int CountAt(int time) const;
    bool Exists(int time) const;
    /// Stores the time of the key frame with that ID if the pointer is not null.
    bool Exists(const kytl::KyID &id, int *time) const;
    std::vector<kytl::KyID> Identifiers() const;
    std::vector<kytl::KyID> IdentifiersAt(int time) const;
    /// The time of every key frame: one that two share stands twice.
    std::vector<int> Locations() const;

    /// The first key frame at that time. @throws std::out_of_range if there is none.
    KeyFrame &At(int time);
    const KeyFrame &At(int time) const;
    /// @throws std::out_of_range if there is none with that ID.
    KeyFrame &GetByID(const kytl::KyID &id);
    const KeyFrame &GetByID(const kytl::KyID &id) const;
    /// @throws std::out_of_range if the list is empty.
    const KeyFrame &FirstByTime() const;
    const KeyFrame &LastByTime() const;
    /// The nearest key frame; the earlier one of two that are equally near.
    /// @throws std::out_of_range if the list is empty.
    const KeyFrame &NearestToTime(int time) const;
    /// The last key frame strictly before that time and the first one strictly after it, or null. Those at
    /// that very time are neither. @throws std::invalid_argument if a pointer to store to is null.
    void AdjacentKeyFrames(int time, const KeyFrame **before, const KeyFrame **after) const;
    /// Stores the time of the first key frame that the predicate accepts.
    bool Find(int &time, const std::function<bool(KeyFrame)> &predicate) const;

    /// The const forms hand out copies, the others the key frames themselves, to be changed in place.
    ///
    /// A callback, and a predicate too, may do anything to the list, even end it, and it may hold on to what
    /// it was handed until it returns. Key frames that it adds are not passed, those that it removes are
    /// passed over.
    void ForEach(const std::function<void(const KeyFrame &)> &callback) const;
    void ForEachReverse(const std::function<void(const KeyFrame &)> &callback) const;
    void ForEach(const std::function<void(KeyFrame &)> &callback);
    void ForEachReverse(const std::function<void(KeyFrame &)> &callback);

    /// Adds a copy behind the key frames at its time. Its ID should not be in the list yet.
    void Add(const KeyFrame &key);
    /// Gives the first key frame at that time the value, or adds one.
    void Set(int time, PropertyValue value);
    /// Keeps ID, type, handles and value. @throws std::out_of_range if there is none with that ID.
    void Move(const kytl::KyID &id, int newTime);
    /// @throws std::out_of_range if there is none with that ID.
    void Remove(const kytl::KyID &id);
    /// Removes all key frames at that time.
    void Remove(int time);
    /// An unknown old ID is no error.
    void ChangeKeyFrameID(const kytl::KyID &oldID, const kytl::KyID &newID);
    /// Removes everything but the spatial type.
    void Clear();

    bool IsSpatial() const;
    SpatialDataType SpatialType() const;
    void SetSpatialType(SpatialDataType type);

    /// The parameter of the spatial curve from first to second at a fraction (0 to 1) of its length, from the
    /// table that the last evaluation in that piece left. Builds nothing.
    /// @throws std::runtime_error if no table stands for the two key frames as they are now, or their points
    /// coincide.
    double ParamTforSpatialCurveLength(const KeyFrame &first, const KeyFrame &second, double fraction) const;

    /// One key frame as a stand-alone text. Its ID and cache state are not in it.
    static WideString SerializeKeyFrame(const KeyFrame &key);
    /// @throws XmlParseException, std::runtime_error, boost::bad_lexical_cast
    static KeyFrame DeserializeKeyFrame(const WideString &text);

private:
    friend class PropertyManager;

    static void SerializeKeyFrame(const KeyFrame &key, XmlWriter &writer);
    static KeyFrame DeserializeKeyFrame(const XmlCursor &element);

    ValuePtr<KeyFrameList_Impl> impl_;
};

} // namespace marlet::project
