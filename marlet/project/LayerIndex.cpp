#include <marlet/project/LayerIndex.h>

#include <marlet/layers/AbstractLayer.h>

#include <algorithm>
#include <vector>

namespace marlet::project
{

namespace
{

/// An element of the list, which need not live any more. That it is the same one shows without looking at it.
struct Place {
    std::weak_ptr<AbstractLayer> layer;
    const AbstractLayer *address;

    bool Holds(const std::shared_ptr<AbstractLayer> &other) const
    {
        return address == other.get() && !layer.owner_before(other) && !other.owner_before(layer);
    }
};

} // namespace

struct LayerIndex::Entry {
    explicit Entry(const LayerList &layers)
    {
        places.reserve(layers.size());
        placesByID.reserve(layers.size());
        for (const std::shared_ptr<AbstractLayer> &layer : layers) {
            if (layer)
                placesByID.try_emplace(layer->ID(), places.size());
            places.push_back({layer, layer.get()});
        }
    }

    /// Among so many places from the first on.
    std::shared_ptr<AbstractLayer> Find(const kytl::KyID &id, std::size_t among) const
    {
        const auto found = placesByID.find(id);
        auto layer = found == placesByID.end() || found->second >= among ? nullptr
                                                                         : places[found->second].layer.lock();
        return layer && layer->ID() == id ? layer : nullptr;
    }
    std::shared_ptr<AbstractLayer> Find(const kytl::KyID &id) const { return Find(id, places.size()); }

    bool HasTheEndsOf(const LayerList &layers) const
    {
        return places.size() == layers.size() && (places.empty() || (places.front().Holds(layers.front()) &&
                                                                     places.back().Holds(layers.back())));
    }

    /// The first place, and the first layer of the list, that differ.
    auto Difference(const LayerList &layers) const
    {
        return std::ranges::mismatch(
            places, layers, [](const Place &place, const auto &layer) { return place.Holds(layer); });
    }

    bool Describes(const LayerList &layers) const
    {
        return places.size() == layers.size() && Difference(layers).in1 == places.end();
    }

    std::vector<Place> places;
    std::unordered_map<kytl::KyID, std::size_t> placesByID;
    std::unique_ptr<Entry> older;
};

LayerIndex::LayerIndex() = default;

LayerIndex::~LayerIndex()
{
    delete newest_.load(std::memory_order_relaxed);
}

std::shared_ptr<AbstractLayer> LayerIndex::Find(const LayerList &layers, const kytl::KyID &id) const
{
    const Entry *entry = newest_.load(std::memory_order_acquire);
    if (entry && !changesExpected_.load(std::memory_order_acquire) && entry->HasTheEndsOf(layers))
        if (auto layer = entry->Find(id))
            return layer;
    if (!entry || entry->Describes(layers))
        return Current(layers).Find(id);
    const auto [place, behind] = entry->Difference(layers);
    const auto known = static_cast<std::size_t>(place - entry->places.begin());
    if (auto layer = entry->Find(id, known))
        return layer;
    if (IsWorthMaking(layers.size() - known, layers.size()))
        return Current(layers).Find(id);
    const auto found =
        std::find_if(behind, layers.end(), [&id](const auto &layer) { return layer && layer->ID() == id; });
    return found == layers.end() ? nullptr : *found;
}

/// Where changes and searches take turns, an index that is made for each would be of use only once. So layers
/// that the last one does not know are looked through until that has cost as much as an index does.
bool LayerIndex::IsWorthMaking(std::size_t unknown, std::size_t all) const
{
    constexpr std::size_t kLooksPerLayer = 64;
    return lookedThrough_.fetch_add(unknown, std::memory_order_relaxed) + unknown > kLooksPerLayer * all;
}

const LayerIndex::Entry &LayerIndex::Current(const LayerList &layers) const
{
    Entry *entry = newest_.load(std::memory_order_acquire);
    while (!entry || !entry->Describes(layers)) {
        auto made = std::make_unique<Entry>(layers);
        // Another thread may have been faster; what it made is then looked at.
        if (!newest_.compare_exchange_strong(entry, made.get(), std::memory_order_acq_rel))
            continue;
        // Threads that search may still look at the entry that is replaced. The one before that was replaced
        // before the list changed last, when nobody searched.
        if (entry)
            entry->older.reset();
        made->older.reset(entry);
        entry = made.release();
        lookedThrough_.store(0, std::memory_order_relaxed);
    }
    changesExpected_.store(false, std::memory_order_release);
    return *entry;
}

} // namespace marlet::project
