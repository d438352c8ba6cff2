#include <marlet/editor/ObjectsByID.h>

#include <marlet/editor/AbstractSequenceObject.h>

#include <algorithm>
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

/// Drops the places of objects that have gone, and leaves at most three eighths taken, so that as many again
/// have to come before it is called anew.
void ObjectsByID::MakeRoom()
{
    std::vector<Place> former = std::move(places_);
    std::erase_if(former, [](const Place &place) { return place.object.expired(); });
    count_ = former.size();
    std::size_t size = 16;
    while (8 * count_ > 3 * size)
        size *= 2;
    places_ = std::vector<Place>(size);
    for (Place &place : former)
        places_[Search(place.id)] = std::move(place);
}

void ObjectsByID::Set(const std::shared_ptr<AbstractSequenceObject> &object)
{
    if (4 * (count_ + 1) > 3 * places_.size())
        MakeRoom();
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
