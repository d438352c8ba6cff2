#pragma once

#include "Owners.h"

#include <marlet/animation/KeyFrame.h>

#include <optional>

namespace marlet::python
{

using PropertyPointer = std::shared_ptr<const PropertyHandle>;

/// The key frames of a property, as a sequence in the order of their times.
struct KeyFramesHandle {
    PropertyPointer property;

    /// @throws Failure ClosedError, GoneError
    std::shared_ptr<PropertyManager> Properties() const { return property->Properties(); }
    const DocumentPointer &Owner() const { return property->owner->Owner(); }
};

/// One key frame, known by its ID.
class KeyFrameHandle
{
public:
    KeyFrameHandle(PropertyPointer property, const kytl::KyID &id) : property_(std::move(property)), id_(id)
    {
    }
    /// One that was just read, so that walks over many key frames look none of them up.
    KeyFrameHandle(PropertyPointer property, const KeyFrame &read)
        : property_(std::move(property)),
          id_(read.ID()),
          read_(read),
          generation_(property_->owner->Owner()->Generation())
    {
    }

    const PropertyHandle &Property() const { return *property_; }
    const kytl::KyID &ID() const { return id_; }
    /// As it is until the next change of the project. @throws Failure ClosedError, GoneError
    const KeyFrame &Get() const;

    bool operator==(const KeyFrameHandle &other) const
    {
        return id_ == other.id_ && property_->owner->Owner() == other.property_->owner->Owner();
    }

private:
    PropertyPointer property_;
    kytl::KyID id_;
    mutable std::optional<KeyFrame> read_;
    mutable std::uint64_t generation_ = 0;
};

} // namespace marlet::python
