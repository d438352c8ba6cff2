#include <marlet/animation/KeyFrameList_Impl.h>

#include <algorithm>
#include <stdexcept>

namespace marlet::project
{

namespace
{

/// Makes sure that the vector can grow beyond a size without failing.
template <class T> void MakeRoom(std::vector<T> &vector, std::size_t size)
{
    if (vector.capacity() <= size)
        vector.reserve(std::max<std::size_t>(1, 2 * size));
}

/// Takes an element out and puts it in at another place, which is counted without it.
template <class T> void Shift(std::vector<T> &vector, std::size_t from, std::size_t to)
{
    const T element = vector[from];
    T *const data = vector.data();
    if (from < to)
        std::copy(data + from + 1, data + to + 1, data + from);
    else
        std::copy_backward(data + to, data + from, data + from + 1);
    vector[to] = element;
}

/// Moves what stands from first to last so far back that it ends at end.
template <class T> void MoveBack(std::vector<T> &vector, std::size_t first, std::size_t last, std::size_t end)
{
    T *const data = vector.data();
    std::copy_backward(data + first, data + last, data + end);
}

template <class T> void Erase(std::vector<T> &vector, std::size_t first, std::size_t last)
{
    vector.erase(vector.begin() + static_cast<std::ptrdiff_t>(first),
                 vector.begin() + static_cast<std::ptrdiff_t>(last));
}

} // namespace

KeyFrameList_Impl::KeyFrameList_Impl(const KeyFrameList_Impl &other)
    : times(other.InOrder().times), spatialType(other.spatialType)
{
    places.reserve(other.places.size());
    for (const KeyFramePlace &place : other.places) {
        places.push_back({pool_.Make(place.node->key, epoch_)});
        // Unlike a temporal table, this one can be asked for before an evaluation would build it again.
        const SpatialTable *table = place.node->spatial.Load();
        if (table != nullptr && table->built > other.builtBefore_) {
            auto copy = std::make_unique<SpatialTable>(*table);
            copy->built = ++built_;
            places.back().node->spatial.Reset(copy.release());
        }
    }
}

KeyFrameList_Impl::~KeyFrameList_Impl()
{
    for (const KeyFramePlace &place : places) {
        place.temporal.Reset();
        pool_.Destroy(place.node);
    }
    late_.ForEachReverse([this](KeyFrameNode *node, int) { pool_.Destroy(node); });
    DestroyRemoved();
}

std::size_t KeyFrameList_Impl::Count() const
{
    if (!hasLate_.load(std::memory_order_acquire))
        return Size();
    const kytl::thread::KyScopedLock lock(lock_);
    return Size() + late_.Count();
}

KeyFrame *KeyFrameList_Impl::FirstAt(int time) const
{
    std::optional<kytl::thread::KyScopedLock> lock;
    if (hasLate_.load(std::memory_order_acquire))
        lock.emplace(lock_);
    const std::size_t position = FirstFrom(time);
    if (position < Size() && times[position] == time)
        return &places[position].node->key;
    KeyFrameNode *late = late_.FirstAt(time);
    return late != nullptr ? &late->key : nullptr;
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
    const std::size_t count = Size() + late_.Count();
    MakeRoom(times, count);
    MakeRoom(places, count);
    const bool isLate = !times.empty() && times.back() > key.time_;
    if (isLate || late_.Count() > 0) {
        AddLate(key);
        return;
    }
    places.push_back({pool_.Make(key, epoch_)});
    times.push_back(key.time_);
    const KeyFrame &added = Key(count);
    MarkAdded(added, Before(count), nullptr);
    EnterInIndex(added);
}

void KeyFrameList_Impl::AddLate(const KeyFrame &key)
{
    const int time = key.time_;
    // Of two neighbours at one time, the late one stands behind the other.
    const std::size_t from = FirstFrom(time);
    const KeyFrame *previous = from == 0 ? nullptr : &Key(from - 1);
    const KeyFrameNode *lateBefore = late_.LastBefore(time);
    if (lateBefore != nullptr && (previous == nullptr || previous->time_ <= lateBefore->key.time_))
        previous = &lateBefore->key;
    const std::size_t after = FirstAfter(time);
    const KeyFrame *next = after == Size() ? nullptr : &Key(after);
    const KeyFrameNode *lateAfter = late_.FirstAfter(time);
    if (lateAfter != nullptr && (next == nullptr || lateAfter->key.time_ < next->time_))
        next = &lateAfter->key;

    KeyFrameNode *node = pool_.Make(key, epoch_);
    try {
        late_.Insert(node, time);
    } catch (...) {
        pool_.Destroy(node);
        throw;
    }
    hasLate_.store(true, std::memory_order_relaxed);
    MarkAdded(node->key, previous, next);
    EnterInIndex(node->key);
}

/// From the end, where there is room: each moves once, and nothing can fail.
void KeyFrameList_Impl::TakeInLate() const
{
    const kytl::thread::KyScopedLock lock(lock_);
    if (late_.Count() == 0)
        return; // another thread came first
    std::size_t last = Size();
    std::size_t end = last + late_.Count();
    times.resize(end);
    places.resize(end);
    late_.ForEachReverse([&](KeyFrameNode *node, int time) {
        const auto sorted = times.begin() + static_cast<std::ptrdiff_t>(last);
        const auto first =
            static_cast<std::size_t>(std::upper_bound(times.begin(), sorted, time) - times.begin());
        MoveBack(times, first, last, end);
        MoveBack(places, first, last, end);
        end -= last - first + 1;
        last = first;
        times[end] = time;
        places[end] = {node};
    });
    late_.Clear();
    hasLate_.store(false, std::memory_order_release);
}

void KeyFrameList_Impl::EnterInIndex(const KeyFrame &key)
{
    if (IDIndex *index = index_.Load())
        (*index)[key.ID()] = key.time_;
}

void KeyFrameList_Impl::MarkAdded(const KeyFrame &added, const KeyFrame *before, const KeyFrame *after) const
{
    const bool curved = added.type_ != KeyFrameType::Linear;
    if (curved || (before != nullptr && before->type_ != KeyFrameType::Linear))
        added.incomingCurve_.Store(KeyFrame::kDirty);
    if (curved || (after != nullptr && after->type_ != KeyFrameType::Linear))
        added.outgoingCurve_.Store(KeyFrame::kDirty);
    if (!IsSpatial())
        return;
    for (const KeyFrame *key : {before, &added, after})
        if (key != nullptr)
            key->spatialCurve_.Store(KeyFrame::kDirty);
}

void KeyFrameList_Impl::Remove(std::size_t first, std::size_t last)
{
    ClearCurveCaches();
    removed_.reserve(removed_.size() + last - first);
    IDIndex *index = index_.Load();
    for (std::size_t i = first; i < last; ++i) {
        if (index != nullptr)
            index->erase(Key(i).ID());
        Key(i).StandIn(nullptr);
        places[i].temporal.Reset();
        removed_.push_back(places[i].node);
    }
    Erase(times, first, last);
    Erase(places, first, last);
    if (walks_ == 0)
        DestroyRemoved();
}

void KeyFrameList_Impl::DestroyRemoved() const
{
    for (KeyFrameNode *node : removed_)
        pool_.Destroy(node);
    removed_.clear();
}

/// The same as removing the key frame and adding a copy at the new time, but for its address.
void KeyFrameList_Impl::Move(std::size_t position, int newTime)
{
    KeyFrame &key = Key(position);
    key.StandIn(nullptr); // with its flags from before
    ClearCurveCaches();
    key.StandIn(&epoch_);
    key.time_ = newTime;
    const std::size_t after = FirstAfter(newTime);
    const std::size_t to = after > position ? after - 1 : after;
    Shift(times, position, to);
    Shift(places, position, to);
    times[to] = newTime;
    MarkAdded(key, Before(to), After(to));
    EnterInIndex(key);
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
    if (++epoch_ == KeyFrame::kDirty)
        epoch_ = KeyFrame::kFirstEpoch;
    builtBefore_ = built_;
    retired_.clear();
}

void KeyFrameList_Impl::LetGoOfKeyFrames()
{
    for (const KeyFramePlace &place : places)
        place.node->key.StandIn(nullptr);
}

} // namespace marlet::project
