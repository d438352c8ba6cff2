#include <marlet/layers/ParentHelper.h>

#include <marlet/animation/KeyFrameList.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/Quaternion.h>
#include <marlet/foundation/Singularity.h>
#include <marlet/layers/Alignment.h>
#include <marlet/layers/LayerChain.h>
#include <marlet/layers/LayerValues.h>
#include <marlet/project/Project.h>

#include <stdexcept>

namespace marlet::project
{

using Matrix = AbstractLayer::Matrix;
using Point = kytl::matl::KyPoint<3, float>;
using Vector = kytl::matl::KyVector<3, float>;

namespace
{

/// 180 / pi in single precision.
constexpr float kDegreesPerRadian = 57.2957763671875f;

/// A layer at one time: where it stands, and the frame of reference that it shall stand in.
struct Situation {
    AbstractLayer &layer;
    const std::shared_ptr<Project> &project;
    int time;
    Matrix world;
    Matrix frame;
};

Vector Column(const Matrix &matrix, int index)
{
    return {matrix(0, index), matrix(1, index), matrix(2, index)};
}

/// The rotation in a matrix. A column that is all but zero becomes the unit vector of its axis.
Matrix RotationOf(const Matrix &matrix)
{
    Matrix result;
    for (int column = 0; column < 3; ++column) {
        const Vector v = Column(matrix, column);
        if (HasNoDirection(v))
            continue;
        const float length = Length(v);
        result(0, column) = v.X / length;
        result(1, column) = v.Y / length;
        result(2, column) = v.Z / length;
    }
    return result;
}

/// The angles of a rotation in the degrees of properties, which turn the other way round.
Orientation3D OrientationOf(const Matrix &rotation)
{
    const Vector e = Quaternion::FromMatrix(rotation).ToEuler();
    return {(0 - e.X) * kDegreesPerRadian, (0 - e.Y) * kDegreesPerRadian, (0 - e.Z) * kDegreesPerRadian};
}

float Shifted(float value, float from, float to)
{
    return value + (to - from);
}

template <class T> T Shifted(const T &value, const T &from, const T &to)
{
    return {Shifted(value.X, from.X, to.X), Shifted(value.Y, from.Y, to.Y), Shifted(value.Z, from.Z, to.Z)};
}

template <class T, class Change>
void ChangeKeyFrames(PropertyManager &properties, const char *name, Change &&change)
{
    properties.KeyFrames(name).ForEach(
        [&](KeyFrame &key) { key.SetValue(change(boost::get<T>(key.Value()))); });
}

/// Gives a property the value at the time; all key frames move by the same amount.
template <class T> void MoveTo(PropertyManager &properties, const char *name, int time, const T &target)
{
    if (properties.IsStatic(name)) {
        properties.StaticValue(name) = target;
        return;
    }
    const T present = ValueAt<T>(properties, name, time);
    ChangeKeyFrames<T>(properties, name, [&](const T &value) { return Shifted(value, present, target); });
}

/// False if there is no position at which the layer would stay where it is.
bool ChangePosition(const Situation &s)
{
    Matrix origin = s.layer.OriginAtTime(s.time, s.project);
    Matrix toFrame = s.frame;
    if (IsSingularProduct(origin) || IsSingularProduct(toFrame))
        return false;
    origin.Invert();
    toFrame.Invert();
    const Point anchor = origin.TransformPoint({});
    MoveTo(s.layer.Animation(), "position", s.time, toFrame.TransformPoint(s.world.TransformPoint(anchor)));
    return true;
}

float ScaleInFrame(const Situation &s, int axis)
{
    const float own = Length(Column(s.world, axis));
    const float frame = Length(Column(s.frame, axis));
    return frame == 0 ? own : own / frame;
}

void ChangeScale(const Situation &s)
{
    PropertyManager &properties = s.layer.Animation();
    const float x = ScaleInFrame(s, 0);
    const float y = ScaleInFrame(s, 1);
    const float z = ScaleInFrame(s, 2);
    if (properties.IsStatic("scale")) {
        properties.StaticValue("scale") = Scale3D{x * 100, y * 100, z * 100};
        return;
    }
    const auto present = ValueAt<Scale3D>(properties, "scale", s.time);
    const auto factor = [](float target, double percent) {
        return percent == 0 ? 100.0 : static_cast<double>(target) / (percent * 0.01);
    };
    const Scale3D factors{factor(x, present.X), factor(y, present.Y), factor(z, present.Z)};
    ChangeKeyFrames<Scale3D>(properties, "scale", [&](const Scale3D &value) {
        return Scale3D{value.X * factors.X, value.Y * factors.Y, value.Z * factors.Z};
    });
}

void TurnInPlane(const Situation &s)
{
    Matrix rotation = RotationOf(s.frame);
    if (IsSingularProduct(rotation))
        return;
    rotation.Invert();
    rotation *= RotationOf(s.world);
    MoveTo(s.layer.Animation(), "rotationZ", s.time, OrientationOf(rotation).Z);
}

/// Only the orientation takes up the change. The rotation of a parent that is left moves into it.
void TurnInSpace(const Situation &s, const std::shared_ptr<AbstractLayer> &parentToLeave)
{
    PropertyManager &properties = s.layer.Animation();
    const auto orientation = ValueAt<Orientation3D>(properties, "orientation", s.time);
    Matrix own = Quaternion::FromOrientation(orientation).ToMatrix();
    if (parentToLeave) {
        const int parentTime = s.layer.RelativeTimeToLayerRelativeTime(s.time, parentToLeave, s.project);
        own = RotationOf(parentToLeave->WorldTransformationAtTime(parentTime, s.project, false) * own);
    }
    Matrix rotation = RotationOf(s.frame);
    if (IsSingularProduct(rotation))
        return;
    rotation.Invert();
    rotation *= own;
    MoveTo(properties, "orientation", s.time, OrientationOf(rotation));
}

/// @throws std::logic_error if the layer has none
std::shared_ptr<AbstractLayer> ParentToLeave(const AbstractLayer &layer, const Project &project)
{
    std::shared_ptr<AbstractLayer> parent = layer.ParentLayer(project.Assets());
    if (!parent)
        throw std::logic_error("Layer " + Describe(layer) + " has no parent to leave");
    return parent;
}

} // namespace

void ParentHelper::Parent(const std::shared_ptr<Project> &project, int time,
                          const std::shared_ptr<AbstractLayer> &parent, std::shared_ptr<AbstractLayer> &layer)
{
    UpdatePosition(project, time, layer, parent);
    layer->SetParentLayer(parent);
}

void ParentHelper::RemoveParent(const std::shared_ptr<Project> &project, int time,
                                std::shared_ptr<AbstractLayer> &layer)
{
    UpdatePosition(project, time, layer, nullptr);
    layer->RemoveParentLayer();
}

void ParentHelper::UpdatePosition(const std::shared_ptr<Project> &project, int time,
                                  std::shared_ptr<AbstractLayer> &layer,
                                  const std::shared_ptr<AbstractLayer> &newParent)
{
    Require(layer, "layer");
    Require(project, "project");
    Situation s{*layer, project, time, layer->WorldTransformationAtTimeToSetParent(time, project, true), {}};
    if (newParent)
        s.frame = newParent->ParentingWorldTransformationAtTime(
            layer->RelativeTimeToLayerRelativeTime(time, newParent, project), project, true);

    const PropertyManager &properties = layer->Animation();
    const bool isFlat = layer->Dimensions() == LayerDimensions::TwoD;
    const bool turnsInSpace = !isFlat && properties.HasProperty("orientation");
    // Looked up before anything changes, since a parent may be missing.
    std::shared_ptr<AbstractLayer> parentToLeave;
    if (turnsInSpace && !newParent)
        parentToLeave = ParentToLeave(*layer, *project);

    if (properties.HasProperty("position") && !ChangePosition(s))
        return;
    if (properties.HasProperty("scale"))
        ChangeScale(s);
    if (turnsInSpace)
        TurnInSpace(s, parentToLeave);
    else if (isFlat && properties.HasProperty("rotationZ"))
        TurnInPlane(s);
}

} // namespace marlet::project
