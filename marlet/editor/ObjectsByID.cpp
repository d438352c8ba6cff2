#include <marlet/editor/ObjectsByID.h>

#include <marlet/editor/AbstractSequenceObject.h>

#include <utility>

namespace marlet::project
{

/// Where a search for the ID begins. The multiplication spreads IDs that were counted up rather than drawn.
std::size_t ObjectsByID::Home(const kytl::KyID &id) const
{
    constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15;
    return static_cast<std::size_t>((id.Hash() * kSpread) >> 32) & (places_.size() - 1);
}

/// The place that has the ID, or the free one where it belongs.
std::size_t ObjectsByID::Search(const kytl::KyID &id) const
{
    std::size_t place = Home(id);
    while (places_[place].IsTaken() && places_[place].id != id)
        place = After(place);
    return place;
}

void ObjectsByID::Grow()
{
    constexpr std::size_t kFew = 16;
    std::vector<Place> former(places_.empty() ? kFew : 2 * places_.size());
    former.swap(places_);
    for (Place &place : former)
        if (place.IsTaken())
            places_[Search(place.id)] = std::move(place);
}

void ObjectsByID::Set(const std::shared_ptr<AbstractSequenceObject> &object)
{
    if (4 * (count_ + 1) > 3 * places_.size())
        Grow();
    const kytl::KyID &id = object->ID();
    Place &place = places_[Search(id)];
    if (!place.IsTaken())
        ++count_;
    place = {id, object};
}

void ObjectsByID::Erase(const kytl::KyID &id)
{
    if (places_.empty())
        return;
    std::size_t hole = Search(id);
    if (!places_[hole].IsTaken())
        return;
    --count_;
    // Those behind that a search would no longer reach move up.
    for (std::size_t next = After(hole); places_[next].IsTaken(); next = After(next))
        if (Distance(Home(places_[next].id), next) >= Distance(hole, next)) {
            places_[hole] = std::move(places_[next]);
            hole = next;
        }
    places_[hole] = {};
}

std::shared_ptr<AbstractSequenceObject> ObjectsByID::Find(const kytl::KyID &id) const
{
    return places_.empty() ? nullptr : places_[Search(id)].object.lock();
}

} // namespace marlet::project
