#pragma once

#include <marlet/animation/PropertyValue.h>
#include <marlet/foundation/Export.h>
#include <marlet/foundation/Relaxed.h>

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
class MARLET_EXPORT KeyFrame
{
public:
    /// A linear key frame with a new ID and no handles.
    KeyFrame(int time, const PropertyValue &value);

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

    bool IsIncomingCurveDirty() const { return incomingCurveDirty_.Load(); }
    bool IsOutgoingCurveDirty() const { return outgoingCurveDirty_.Load(); }
    bool IsSpatialCurveDirty() const { return spatialCurveDirty_.Load(); }
    /// As the last evaluation in the pieces of the key frame left them. Z is 0 for a point of two dimensions.
    kytl::matl::KyVector<3, float> SpatialIncomingTangent() const { return Tangent(spatialIncoming_); }
    kytl::matl::KyVector<3, float> SpatialOutgoingTangent() const { return Tangent(spatialOutgoing_); }

private:
    friend class KeyFrameList;
    friend struct KeyFrameList_Impl;

    using RelaxedVector = Relaxed<float>[3];

    static kytl::matl::KyVector<3, float> Tangent(const RelaxedVector &v)
    {
        return {v[0].Load(), v[1].Load(), v[2].Load()};
    }

    /// Also clears the spatial flag.
    void StoreTangents(const kytl::matl::KyVector<3, float> &incoming,
                       const kytl::matl::KyVector<3, float> &outgoing) const;

    // What evaluation reads stands together at the front.
    PropertyValue value_;
    kytl::matl::KyVector<2, float> incomingPoint_;
    kytl::matl::KyVector<2, float> outgoingPoint_;
    KeyFrameType type_ = KeyFrameType::Linear;
    mutable Relaxed<bool> incomingCurveDirty_ = false;
    mutable Relaxed<bool> outgoingCurveDirty_ = false;
    mutable Relaxed<bool> spatialCurveDirty_ = true;
    int time_;
    mutable RelaxedVector spatialIncoming_;
    mutable RelaxedVector spatialOutgoing_;
    kytl::KyID id_;
};

} // namespace marlet::project
