#pragma once

#include <marlet/animation/KeyFrameList.h>
#include <marlet/animation/LateKeyFrames.h>
#include <marlet/animation/SortedTimes.h>
#include <marlet/foundation/KyCriticalSection.h>

#include <atomic>
#include <optional>
#include <unordered_map>

namespace marlet::project
{

/// The key frames in nodes that stay where they are, their places in the order of time, and those times once
/// more in a flat array for searching.
///
/// Positions are indices into that order. Piece i goes from key frame i to key frame i + 1, whose times
/// differ.
///
/// A key frame that is added before the last one is late: it waits beside the order until somebody asks for
/// one. So many of them come in at the cost of one pass through the list. Whoever uses positions asks InOrder
/// first.
struct KeyFrameList_Impl {
    using SpatialDataType = KeyFrameList::SpatialDataType;
    using IDIndex = std::unordered_map<kytl::KyID, int>;

    KeyFrameList_Impl() = default;
    KeyFrameList_Impl(const KeyFrameList_Impl &other);
    KeyFrameList_Impl &operator=(const KeyFrameList_Impl &) = delete;
    ~KeyFrameList_Impl();

    /// The list once nothing is late any more.
    KeyFrameList_Impl &InOrder()
    {
        std::as_const(*this).InOrder();
        return *this;
    }
    const KeyFrameList_Impl &InOrder() const
    {
        if (hasLate_.load(std::memory_order_acquire))
            TakeInLate();
        return *this;
    }

    /// These need no order.
    std::size_t Count() const;
    void Add(const KeyFrame &key);
    /// The first key frame at a time, or null.
    KeyFrame *FirstAt(int time) const;

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

    void Remove(std::size_t first, std::size_t last);
    void Move(std::size_t position, int newTime);
    void ChangeID(std::size_t position, const kytl::KyID &id);
    /// Gives every key frame an ID of its own.
    void GenerateIDs();
    void ClearCurveCaches();
    /// After this nothing stands in the list. The nodes stay for the walks.
    void LetGoOfKeyFrames();

    bool IsSpatial() const { return spatialType != SpatialDataType::NotSpatial; }

    /// The value at a time; there is at least one key frame.
    PropertyValue ValueAt(int time, bool isSpatialProperty) const;
    double ParamTforSpatialCurveLength(int firstTime, int secondTime, double fraction) const;

    mutable std::vector<int> times;
    mutable std::vector<KeyFramePlace> places;
    SpatialDataType spatialType = SpatialDataType::NotSpatial;

private:
    friend class KeyFrameWalk;

    /// A table that was replaced, while another thread may still be reading it.
    struct Retired {
        std::unique_ptr<const CurveTable> table;
        std::uint64_t when;
    };

    void AddLate(const KeyFrame &key);
    void TakeInLate() const;
    void MarkAdded(const KeyFrame &added, const KeyFrame *before, const KeyFrame *after) const;
    void EnterInIndex(const KeyFrame &key);
    void DestroyRemoved() const;
    const IDIndex &Index() const;

    PropertyValue PieceValueAt(std::size_t piece, int time, bool isSpatialProperty) const;
    const TemporalTable &TemporalCurve(std::size_t piece) const;
    const TemporalTable &CreateTemporalCurveCache(std::size_t piece, const TemporalInputs &inputs) const;
    const SpatialTable &SpatialCurve(std::size_t piece) const;
    const SpatialTable &CreateSpatialCurveCache(std::size_t piece, const SpatialInputs &inputs) const;
    bool Counts(const SpatialTable *table, const SpatialInputs &inputs) const;
    std::optional<SpatialInputs> InputsOfPath(std::size_t piece) const;
    template <class Table>
    const Table &Replace(AtomicPointer<const Table> &place, std::unique_ptr<Table> table) const;

    mutable std::atomic<bool> hasLate_ = false;
    /// Begins anew when all curves are dropped, which so costs nothing. Tables that were built until then
    /// stay where they are, but a spatial one counts no more.
    std::uint32_t epoch_ = KeyFrame::kFirstEpoch;
    std::uint64_t builtBefore_ = 0;

    mutable KeyFrameNodePool pool_;
    /// Guards the building of everything below and the cache state of the key frames.
    mutable kytl::thread::KyCriticalSection lock_;
    mutable LateKeyFrames late_;
    mutable AtomicOwner<IDIndex> index_;
    mutable std::vector<Retired> retired_;
    mutable std::uint64_t built_ = 0;
    /// What was removed while callbacks were being handed key frames: they may be holding it.
    mutable std::vector<KeyFrameNode *> removed_;
    mutable int walks_ = 0;
    /// Itself, once its list has ended while callbacks were being handed key frames.
    mutable std::unique_ptr<const KeyFrameList_Impl> self_;
};

} // namespace marlet::project
