#pragma once

#include <marlet/foundation/KyID.h>

#include <memory>
#include <vector>

namespace marlet::project
{

class AbstractSequenceObject;

/// Finds objects by ID, of several with one ID the last that came, and keeps none alive. A flat table with
/// open addressing: a lookup is a wait for memory, and this way waits once where a map of nodes waits twice.
class ObjectsByID
{
public:
    void Set(const std::shared_ptr<AbstractSequenceObject> &object);
    /// Whichever object has the ID.
    void Erase(const kytl::KyID &id);
    /// An empty pointer if there is no such object, or it has gone.
    std::shared_ptr<AbstractSequenceObject> Find(const kytl::KyID &id) const;

private:
    /// Aligned so that none lies in two cache lines.
    struct alignas(32) Place {
        kytl::KyID id;
        std::weak_ptr<AbstractSequenceObject> object;

        /// Also by an object that has gone: it only points nowhere if it was never set.
        bool IsTaken() const { return std::weak_ptr<AbstractSequenceObject>().owner_before(object); }
    };

    std::size_t After(std::size_t place) const { return (place + 1) & (places_.size() - 1); }
    /// How far a place lies behind another, around the end of the table.
    std::size_t Distance(std::size_t from, std::size_t to) const
    {
        return (to - from) & (places_.size() - 1);
    }
    std::size_t Home(const kytl::KyID &id) const;
    std::size_t Search(const kytl::KyID &id) const;
    void MakeRoom();

    /// A power of two of them, a quarter free at least, so that every search comes to an end. Objects that go
    /// leave their places taken until room is made.
    std::vector<Place> places_;
    std::size_t count_ = 0;
};

} // namespace marlet::project
