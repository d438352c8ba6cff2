#include <marlet/animation/KeyFrame.h>

#include <algorithm>

namespace marlet::project
{

KeyFrame::KeyFrame(int time, const PropertyValue &value)
    : value_(value), time_(time), id_(kytl::KyID::Generate())
{
}

KeyFrame::KeyFrame(const KeyFrame &other)
    : value_(other.value_),
      incomingPoint_(other.incomingPoint_),
      outgoingPoint_(other.outgoingPoint_),
      type_(other.type_),
      time_(other.time_),
      id_(other.id_)
{
    CopyCacheState(other);
}

KeyFrame &KeyFrame::operator=(const KeyFrame &other)
{
    value_ = other.value_;
    incomingPoint_ = other.incomingPoint_;
    outgoingPoint_ = other.outgoingPoint_;
    type_ = other.type_;
    if (StandsInList()) {
        SetAllFlags();
        return *this;
    }
    time_ = other.time_;
    id_ = other.id_;
    CopyCacheState(other);
    return *this;
}

void KeyFrame::SetValue(const PropertyValue &value)
{
    value_ = value;
    SetAllFlags();
}

void KeyFrame::SetType(KeyFrameType type)
{
    type_ = type;
    SetTemporalFlags();
}

void KeyFrame::SetIncomingPoint(const kytl::matl::KyVector<2, float> &point)
{
    incomingPoint_ = point;
    SetTemporalFlags();
}

void KeyFrame::SetOutgoingPoint(const kytl::matl::KyVector<2, float> &point)
{
    outgoingPoint_ = point;
    SetTemporalFlags();
}

void KeyFrame::SetTemporalFlags()
{
    incomingCurve_.Store(kDirty);
    outgoingCurve_.Store(kDirty);
}

void KeyFrame::SetAllFlags()
{
    SetTemporalFlags();
    spatialCurve_.Store(kDirty);
}

void KeyFrame::CopyCacheState(const KeyFrame &other)
{
    const auto copy = [&](const Mark &from) { return other.IsDirty(from) ? kDirty : Epoch(); };
    incomingCurve_.Store(copy(other.incomingCurve_));
    outgoingCurve_.Store(copy(other.outgoingCurve_));
    spatialCurve_.Store(copy(other.spatialCurve_));
    std::ranges::copy(other.spatialIncoming_, spatialIncoming_);
    std::ranges::copy(other.spatialOutgoing_, spatialOutgoing_);
}

void KeyFrame::StandIn(const std::uint32_t *epoch)
{
    const std::uint32_t cleared = epoch != nullptr ? *epoch : kFirstEpoch;
    for (Mark *mark : {&incomingCurve_, &outgoingCurve_, &spatialCurve_})
        mark->Store(IsDirty(*mark) ? kDirty : cleared);
    epoch_ = epoch;
}

void KeyFrame::StoreTangents(const kytl::matl::KyVector<3, float> &incoming,
                             const kytl::matl::KyVector<3, float> &outgoing) const
{
    spatialIncoming_[0].Store(incoming.X);
    spatialIncoming_[1].Store(incoming.Y);
    spatialIncoming_[2].Store(incoming.Z);
    spatialOutgoing_[0].Store(outgoing.X);
    spatialOutgoing_[1].Store(outgoing.Y);
    spatialOutgoing_[2].Store(outgoing.Z);
    spatialCurve_.Store(Epoch());
}

} // namespace marlet::project
