#include <marlet/editor/ObjectsByID.h>

#include <marlet/editor/AbstractSequenceObject.h>

#include <utility>

namespace marlet::project
{

/// Where a search for the hash begins. The multiplication spreads IDs that were counted up rather than drawn.
std::size_t ObjectsByID::Home(std::uint32_t hash) const
{
    constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15;
    return static_cast<std::size_t>((hash * kSpread) >> 32) & (places_.size() - 1);
}

/// The place that has the ID, or the free one where it belongs.
std::size_t ObjectsByID::Search(const kytl::KyID &id, std::uint32_t hash) const
{
    std::size_t place = Home(hash);
    while (places_[place].isTaken && places_[place].id != id)
        place = After(place);
    return place;
}

void ObjectsByID::Grow()
{
    constexpr std::size_t kFew = 16;
    std::vector<Place> former(places_.empty() ? kFew : 2 * places_.size());
    former.swap(places_);
    for (const Place &place : former)
        if (place.isTaken)
            places_[Search(place.id, place.hash)] = place;
}

void ObjectsByID::Set(const std::shared_ptr<AbstractSequenceObject> &object)
{
    if (4 * (count_ + 1) > 3 * places_.size())
        Grow();
    const kytl::KyID &id = object->ID();
    const std::uint32_t hash = id.Hash();
    Place &place = places_[Search(id, hash)];
    if (!place.isTaken)
        ++count_;
    place = {id, hash, true, object};
}

void ObjectsByID::Erase(const kytl::KyID &id)
{
    if (places_.empty())
        return;
    std::size_t hole = Search(id, id.Hash());
    if (!places_[hole].isTaken)
        return;
    --count_;
    // Those behind that a search would no longer reach move up.
    for (std::size_t next = After(hole); places_[next].isTaken; next = After(next))
        if (Distance(Home(places_[next].hash), next) >= Distance(hole, next)) {
            places_[hole] = std::move(places_[next]);
            hole = next;
        }
    places_[hole] = {};
}

std::shared_ptr<AbstractSequenceObject> ObjectsByID::Find(const kytl::KyID &id) const
{
    return places_.empty() ? nullptr : places_[Search(id, id.Hash())].object.lock();
}

} // namespace marlet::project
