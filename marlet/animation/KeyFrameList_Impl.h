#pragma once

#include <marlet/animation/KeyFrameList.h>
#include <marlet/animation/KeyFrameNode.h>
#include <marlet/animation/SortedTimes.h>
#include <marlet/foundation/KyCriticalSection.h>

#include <map>
#include <optional>
#include <unordered_map>

namespace marlet::project
{

/// The key frames in nodes that stay where they are, their places in the order of time, and those times once
/// more in a flat array for searching.
///
/// Positions are indices into that order. Piece i goes from key frame i to key frame i + 1, whose times
/// differ.
struct KeyFrameList_Impl {
    using SpatialDataType = KeyFrameList::SpatialDataType;
    using IDIndex = std::unordered_map<kytl::KyID, int>;

    KeyFrameList_Impl() = default;
    KeyFrameList_Impl(const KeyFrameList_Impl &other);
    KeyFrameList_Impl &operator=(const KeyFrameList_Impl &) = delete;
    ~KeyFrameList_Impl();

    std::size_t Size() const { return places.size(); }
    KeyFrame &Key(std::size_t position) { return places[position].node->key; }
    const KeyFrame &Key(std::size_t position) const { return places[position].node->key; }
    /// The position of the first key frame at or after, or after, a time.
    std::size_t FirstFrom(int time) const;
    std::size_t FirstAfter(int time) const;
    /// @throws std::out_of_range
    std::size_t Find(int time) const;
    std::size_t Find(const kytl::KyID &id) const;
    std::optional<std::size_t> TryFind(const kytl::KyID &id) const;
    /// The last key frame before, and the first one after, the time of the one at a position, or null.
    const KeyFrame *Before(std::size_t position) const;
    const KeyFrame *After(std::size_t position) const;

    void Add(const KeyFrame &key);
    void Remove(std::size_t first, std::size_t last);
    void Move(std::size_t position, int newTime);
    void ChangeID(std::size_t position, const kytl::KyID &id);
    /// Gives every key frame an ID of its own.
    void GenerateIDs();
    void ClearCurveCaches();

    bool IsSpatial() const { return spatialType != SpatialDataType::NotSpatial; }

    /// The value at a time; there is at least one key frame.
    PropertyValue ValueAt(int time, bool isSpatialProperty) const;
    double ParamTforSpatialCurveLength(int firstTime, int secondTime, double fraction) const;

    std::vector<int> times;
    std::vector<KeyFramePlace> places;
    SpatialDataType spatialType = SpatialDataType::NotSpatial;

private:
    friend class KeyFrameLoader;
    friend class KeyFrameWalk;

    /// A table that was replaced, while another thread may still be reading it.
    struct Retired {
        std::unique_ptr<const CurveTable> table;
        std::uint64_t when;
    };

    void MarkAdded(const KeyFrame &added, const KeyFrame *before, const KeyFrame *after) const;
    void Insert(KeyFramePlace place, int time);
    void DestroyRemoved();
    const IDIndex &Index() const;

    PropertyValue PieceValueAt(std::size_t piece, int time, bool isSpatialProperty) const;
    const TemporalTable &TemporalCurve(std::size_t piece) const;
    const TemporalTable &CreateTemporalCurveCache(std::size_t piece, const TemporalInputs &inputs) const;
    const SpatialTable &SpatialCurve(std::size_t piece) const;
    const SpatialTable &CreateSpatialCurveCache(std::size_t piece, const SpatialInputs &inputs) const;
    std::optional<SpatialInputs> InputsOfPath(std::size_t piece) const;
    template <class Table>
    const Table &Replace(AtomicOwner<const Table> &place, std::unique_ptr<Table> table) const;

    KeyFrameNodePool pool_;
    /// Guards the building of everything below and the cache state of the key frames.
    mutable kytl::thread::KyCriticalSection lock_;
    mutable AtomicOwner<IDIndex> index_;
    mutable std::vector<Retired> retired_;
    mutable std::uint64_t built_ = 0;
    /// What was removed while callbacks were being handed key frames: they may be holding it.
    std::vector<KeyFrameNode *> removed_;
    int walks_ = 0;
};

/// Adds key frames in whatever order they come at the cost of those that come in the order of time. The list
/// is in order again when the loader is gone.
class KeyFrameLoader
{
public:
    explicit KeyFrameLoader(KeyFrameList_Impl &list) : list_(list) {}
    KeyFrameLoader(const KeyFrameLoader &) = delete;
    KeyFrameLoader &operator=(const KeyFrameLoader &) = delete;
    ~KeyFrameLoader();

    void Add(const KeyFrame &key);

private:
    KeyFrameList_Impl &list_;
    /// The order of the key frames, once the list's own has been given up.
    std::multimap<int, KeyFrameNode *> order_;
};

/// While it lives, key frames that are removed are kept for callbacks that may be holding them.
class KeyFrameWalk
{
public:
    explicit KeyFrameWalk(KeyFrameList_Impl &list);
    KeyFrameWalk(const KeyFrameWalk &) = delete;
    KeyFrameWalk &operator=(const KeyFrameWalk &) = delete;
    ~KeyFrameWalk();

    /// The nodes as they were in the beginning.
    const std::vector<KeyFrameNode *> &Nodes() const { return nodes_; }

private:
    KeyFrameList_Impl &list_;
    std::vector<KeyFrameNode *> nodes_;
};

} // namespace marlet::project
