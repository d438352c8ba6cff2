#include <marlet/animation/KeyFrameList_Impl.h>

#include <algorithm>
#include <stdexcept>

namespace marlet::project
{

namespace
{

/// Makes sure that the next insertion cannot fail.
template <class T> void MakeRoom(std::vector<T> &vector)
{
    if (vector.size() == vector.capacity())
        vector.reserve(std::max<std::size_t>(1, 2 * vector.size()));
}

} // namespace

KeyFrameList_Impl::KeyFrameList_Impl(const KeyFrameList_Impl &other)
    : times(other.times), spatialType(other.spatialType)
{
    places.reserve(other.places.size());
    for (const KeyFramePlace &place : other.places) {
        places.push_back({pool_.Make(place.node->key)});
        // Unlike a temporal table, this one can be asked for before an evaluation would build it again.
        if (const SpatialTable *table = place.node->spatial.Load()) {
            auto copy = std::make_unique<SpatialTable>(*table);
            copy->built = 0;
            places.back().node->spatial.Reset(copy.release());
        }
    }
}

KeyFrameList_Impl::~KeyFrameList_Impl()
{
    for (const KeyFramePlace &place : places)
        pool_.Destroy(place.node);
    for (KeyFrameNode *node : removed_)
        pool_.Destroy(node);
}

std::size_t KeyFrameList_Impl::FirstFrom(int time) const
{
    return static_cast<std::size_t>(std::ranges::lower_bound(times, time) - times.begin());
}

std::size_t KeyFrameList_Impl::FirstAfter(int time) const
{
    return static_cast<std::size_t>(std::ranges::upper_bound(times, time) - times.begin());
}

std::size_t KeyFrameList_Impl::Find(int time) const
{
    const std::size_t position = FirstFrom(time);
    if (position == Size() || times[position] != time)
        throw std::out_of_range("There is no key frame at the time " + std::to_string(time));
    return position;
}

std::size_t KeyFrameList_Impl::Find(const kytl::KyID &id) const
{
    const std::optional<std::size_t> position = TryFind(id);
    if (!position)
        throw std::out_of_range("There is no key frame with the ID " + id.ToNarrowString());
    return *position;
}

std::optional<std::size_t> KeyFrameList_Impl::TryFind(const kytl::KyID &id) const
{
    const IDIndex &index = Index();
    const auto found = index.find(id);
    if (found == index.end())
        return std::nullopt;
    for (std::size_t i = FirstFrom(found->second); i < Size() && times[i] == found->second; ++i)
        if (Key(i).ID() == id)
            return i;
    return std::nullopt;
}

const KeyFrame *KeyFrameList_Impl::Before(std::size_t position) const
{
    if (position > 0 && times[position - 1] == times[position])
        position = FirstFrom(times[position]);
    return position == 0 ? nullptr : &Key(position - 1);
}

const KeyFrame *KeyFrameList_Impl::After(std::size_t position) const
{
    ++position;
    if (position < Size() && times[position] == times[position - 1])
        position = FirstAfter(times[position]);
    return position == Size() ? nullptr : &Key(position);
}

/// Loading makes no index: it is built by the first question for an ID and kept up to date from then on.
const KeyFrameList_Impl::IDIndex &KeyFrameList_Impl::Index() const
{
    if (const IDIndex *index = index_.Load())
        return *index;
    const kytl::thread::KyScopedLock lock(lock_);
    if (const IDIndex *index = index_.Load())
        return *index;
    auto index = std::make_unique<IDIndex>(Size());
    for (std::size_t i = 0; i < Size(); ++i)
        (*index)[Key(i).ID()] = times[i];
    index_.Exchange(std::move(index));
    return *index_.Load();
}

void KeyFrameList_Impl::Add(const KeyFrame &key)
{
    MakeRoom(times);
    MakeRoom(places);
    Insert({pool_.Make(key)}, key.time_);
}

void KeyFrameList_Impl::Insert(KeyFramePlace place, int time)
{
    // Most come in the order of time.
    const std::size_t position = times.empty() || times.back() <= time ? Size() : FirstAfter(time);
    times.insert(times.begin() + static_cast<std::ptrdiff_t>(position), time);
    const KeyFrame &key = place.node->key;
    places.insert(places.begin() + static_cast<std::ptrdiff_t>(position), std::move(place));
    MarkAdded(key, Before(position), After(position));
    if (IDIndex *index = index_.Load())
        (*index)[key.ID()] = time;
}

void KeyFrameList_Impl::MarkAdded(const KeyFrame &added, const KeyFrame *before, const KeyFrame *after) const
{
    const bool curved = added.type_ != KeyFrameType::Linear;
    if (curved || (before != nullptr && before->type_ != KeyFrameType::Linear))
        added.incomingCurveDirty_.Store(true);
    if (curved || (after != nullptr && after->type_ != KeyFrameType::Linear))
        added.outgoingCurveDirty_.Store(true);
    if (!IsSpatial())
        return;
    for (const KeyFrame *key : {before, &added, after})
        if (key != nullptr)
            key->spatialCurveDirty_.Store(true);
}

void KeyFrameList_Impl::Remove(std::size_t first, std::size_t last)
{
    ClearCurveCaches();
    removed_.reserve(removed_.size() + last - first);
    IDIndex *index = index_.Load();
    for (std::size_t i = first; i < last; ++i) {
        if (index != nullptr)
            index->erase(Key(i).ID());
        places[i].node->isRemoved = true;
        removed_.push_back(places[i].node);
    }
    times.erase(times.begin() + static_cast<std::ptrdiff_t>(first),
                times.begin() + static_cast<std::ptrdiff_t>(last));
    places.erase(places.begin() + static_cast<std::ptrdiff_t>(first),
                 places.begin() + static_cast<std::ptrdiff_t>(last));
    if (walks_ == 0)
        DestroyRemoved();
}

void KeyFrameList_Impl::DestroyRemoved()
{
    for (KeyFrameNode *node : removed_)
        pool_.Destroy(node);
    removed_.clear();
}

/// The same as removing the key frame and adding a copy at the new time, but for its address.
void KeyFrameList_Impl::Move(std::size_t position, int newTime)
{
    KeyFramePlace place = {places[position].node};
    const KeyFrame key = place.node->key;
    ClearCurveCaches();
    times.erase(times.begin() + static_cast<std::ptrdiff_t>(position));
    places.erase(places.begin() + static_cast<std::ptrdiff_t>(position));
    place.node->key = key; // with the flags from before
    place.node->key.time_ = newTime;
    Insert(std::move(place), newTime);
}

void KeyFrameList_Impl::ChangeID(std::size_t position, const kytl::KyID &id)
{
    KeyFrame &key = Key(position);
    if (IDIndex *index = index_.Load()) {
        index->erase(key.ID());
        (*index)[id] = times[position];
    }
    key.id_ = id;
}

void KeyFrameList_Impl::GenerateIDs()
{
    index_.Reset();
    for (const KeyFramePlace &place : places)
        place.node->key.id_ = kytl::KyID::Generate();
}

void KeyFrameList_Impl::ClearCurveCaches()
{
    for (KeyFramePlace &place : places) {
        place.node->key.incomingCurveDirty_.Store(true);
        place.node->key.outgoingCurveDirty_.Store(true);
        place.node->key.spatialCurveDirty_.Store(true);
        place.node->spatial.Reset();
        place.temporal.Reset();
    }
    retired_.clear();
}

void KeyFrameLoader::Add(const KeyFrame &key)
{
    const int time = key.Time();
    if (order_.empty()) {
        if (list_.times.empty() || list_.times.back() <= time) {
            list_.Add(key);
            return;
        }
        list_.index_.Reset();
        for (std::size_t i = 0; i < list_.Size(); ++i)
            order_.emplace_hint(order_.end(), list_.times[i], list_.places[i].node);
    }
    MakeRoom(list_.times);
    MakeRoom(list_.places);
    KeyFrameNode *node = list_.pool_.Make(key);
    const auto from = order_.lower_bound(time);
    const auto after = order_.upper_bound(time);
    list_.MarkAdded(node->key, from == order_.begin() ? nullptr : &std::prev(from)->second->key,
                    after == order_.end() ? nullptr : &after->second->key);
    order_.emplace_hint(after, time, node);
    list_.times.push_back(time);
    list_.places.push_back({node});
}

KeyFrameLoader::~KeyFrameLoader()
{
    std::size_t position = 0;
    for (const auto &[time, node] : order_) {
        list_.times[position] = time;
        list_.places[position].node = node;
        ++position;
    }
}

KeyFrameWalk::KeyFrameWalk(KeyFrameList_Impl &list) : list_(list)
{
    for (const KeyFramePlace &place : list.places)
        nodes_.push_back(place.node);
    ++list_.walks_;
}

KeyFrameWalk::~KeyFrameWalk()
{
    if (--list_.walks_ == 0)
        list_.DestroyRemoved();
}

} // namespace marlet::project
