#pragma once

#include <marlet/project/CompositionAsset.h>

#include <atomic>

namespace marlet::project
{

/// Finds the layers of a composition by ID without walking its list.
///
/// Hosts change that list as they like, so an answer is checked: the layer must be alive and still have the
/// ID, and the list must have the length and the ends that the index knows. Where that is not so, where the
/// list was handed out for changing, and before anything counts as missing, the whole list is compared with
/// the index. What lies behind the first difference is looked through, until making an index costs no more.
///
/// Any number of threads may search at once while nothing changes the list. Each index that is made stands
/// in an entry that never changes; the newest counts.
class LayerIndex
{
public:
    using LayerList = CompositionAsset::LayerList;

    LayerIndex();
    LayerIndex(const LayerIndex &) = delete;
    LayerIndex &operator=(const LayerIndex &) = delete;
    ~LayerIndex();

    /// The list goes to somebody who may change it.
    void ExpectChanges() const { changesExpected_.store(true, std::memory_order_relaxed); }
    /// The first layer of the list with that ID, or an empty pointer.
    std::shared_ptr<AbstractLayer> Find(const LayerList &layers, const kytl::KyID &id) const;

private:
    struct Entry;

    bool IsWorthMaking(std::size_t unknown, std::size_t all) const;
    const Entry &Current(const LayerList &layers) const;

    mutable std::atomic<Entry *> newest_ = nullptr;
    mutable std::atomic<bool> changesExpected_ = false;
    mutable std::atomic<std::size_t> lookedThrough_ = 0; ///< layers, since the newest was made
};

} // namespace marlet::project
