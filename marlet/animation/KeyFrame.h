#pragma once

#include <marlet/animation/PropertyValue.h>
#include <marlet/foundation/Export.h>
#include <marlet/foundation/Relaxed.h>

#include <cstdint>

namespace marlet::project
{

/// How the piece that starts at a key frame is evaluated.
enum class KeyFrameType : int {
    Bezier, ///< may be curved: handles are taken into account
    Linear, ///< the default; handles that are not zero count all the same
    Hold,   ///< the value stays until the next key frame
};

/// A value pinned to an integer time, with the handles of the curve pieces on both sides of it.
///
/// Times are milliseconds relative to the owner (a layer's start). Handles are relative to the key frame: X
/// an offset in time, Y an offset in value. Spatial tangents are relative to the key frame's point and are
/// worked out by the list; they and the three dirty flags are cache state, which a list changes through const
/// references. They are not part of the file.
///
/// A copy stands in no list, whatever it is a copy of.
class MARLET_EXPORT KeyFrame
{
public:
    /// A linear key frame with a new ID and no handles.
    KeyFrame(int time, const PropertyValue &value);
    KeyFrame(const KeyFrame &other);
    /// One that stands in a list keeps its time and ID, which are its place there, and sets all three dirty
    /// flags.
    KeyFrame &operator=(const KeyFrame &other);
    ~KeyFrame() = default;

    const kytl::KyID &ID() const { return id_; }
    int Time() const { return time_; }
    const PropertyValue &Value() const { return value_; }
    KeyFrameType Type() const { return type_; }
    const kytl::matl::KyVector<2, float> &IncomingPoint() const { return incomingPoint_; }
    const kytl::matl::KyVector<2, float> &OutgoingPoint() const { return outgoingPoint_; }

    /// Sets all three dirty flags: the pieces on both sides follow the new value.
    void SetValue(const PropertyValue &value);
    /// These three set the two temporal flags.
    void SetType(KeyFrameType type);
    void SetIncomingPoint(const kytl::matl::KyVector<2, float> &point);
    void SetOutgoingPoint(const kytl::matl::KyVector<2, float> &point);

    bool IsIncomingCurveDirty() const { return IsDirty(incomingCurve_); }
    bool IsOutgoingCurveDirty() const { return IsDirty(outgoingCurve_); }
    bool IsSpatialCurveDirty() const { return IsDirty(spatialCurve_); }
    /// As the last evaluation in the pieces of the key frame left them. Z is 0 for a point of two dimensions.
    kytl::matl::KyVector<3, float> SpatialIncomingTangent() const { return Tangent(spatialIncoming_); }
    kytl::matl::KyVector<3, float> SpatialOutgoingTangent() const { return Tangent(spatialOutgoing_); }

private:
    friend class KeyFrameList;
    friend struct KeyFrameList_Impl;
    friend struct KeyFrameNode;

    using RelaxedVector = Relaxed<float>[3];
    /// A dirty flag: the epoch in which it was cleared. A new epoch of the list sets those of all its key
    /// frames at once.
    using Mark = Relaxed<std::uint32_t>;
    static constexpr std::uint32_t kDirty = 0;
    static constexpr std::uint32_t kFirstEpoch = 1;

    static kytl::matl::KyVector<3, float> Tangent(const RelaxedVector &v)
    {
        return {v[0].Load(), v[1].Load(), v[2].Load()};
    }

    std::uint32_t Epoch() const { return epoch_ != nullptr ? *epoch_ : kFirstEpoch; }
    bool IsDirty(const Mark &mark) const { return mark.Load() != Epoch(); }
    void SetTemporalFlags();
    void SetAllFlags();
    bool StandsInList() const { return epoch_ != nullptr; }
    /// Goes into the list of that epoch, or out of its own if it is null. The flags stay.
    void StandIn(const std::uint32_t *epoch);
    void CopyCacheState(const KeyFrame &other);

    /// Also clears the spatial flag.
    void StoreTangents(const kytl::matl::KyVector<3, float> &incoming,
                       const kytl::matl::KyVector<3, float> &outgoing) const;

    // What evaluation reads stands together at the front.
    PropertyValue value_;
    kytl::matl::KyVector<2, float> incomingPoint_;
    kytl::matl::KyVector<2, float> outgoingPoint_;
    KeyFrameType type_ = KeyFrameType::Linear;
    mutable Mark incomingCurve_ = kFirstEpoch;
    mutable Mark outgoingCurve_ = kFirstEpoch;
    mutable Mark spatialCurve_ = kDirty;
    int time_;
    mutable RelaxedVector spatialIncoming_;
    mutable RelaxedVector spatialOutgoing_;
    kytl::KyID id_;
    /// That of the list in which it stands.
    const std::uint32_t *epoch_ = nullptr;
};

} // namespace marlet::project
