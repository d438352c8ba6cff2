#include <marlet/animation/KeyFrame.h>

namespace marlet::project
{

KeyFrame::KeyFrame(int time, const PropertyValue &value)
    : value_(value), time_(time), id_(kytl::KyID::Generate())
{
}

void KeyFrame::SetValue(const PropertyValue &value)
{
    value_ = value;
    incomingCurveDirty_.Store(true);
    outgoingCurveDirty_.Store(true);
    spatialCurveDirty_.Store(true);
}

void KeyFrame::SetType(KeyFrameType type)
{
    type_ = type;
    incomingCurveDirty_.Store(true);
    outgoingCurveDirty_.Store(true);
}

void KeyFrame::SetIncomingPoint(const kytl::matl::KyVector<2, float> &point)
{
    incomingPoint_ = point;
    incomingCurveDirty_.Store(true);
    outgoingCurveDirty_.Store(true);
}

void KeyFrame::SetOutgoingPoint(const kytl::matl::KyVector<2, float> &point)
{
    outgoingPoint_ = point;
    incomingCurveDirty_.Store(true);
    outgoingCurveDirty_.Store(true);
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
    spatialCurveDirty_.Store(false);
}

} // namespace marlet::project
