#pragma once

#include <marlet/foundation/KyMatrix.h>
#include <marlet/layers/LayerTypes.h>

namespace marlet::project
{

class PropertyManager;

// How layers and particles turn by themselves. Angles are in radians.

/// The rotation about a unit axis.
kytl::matl::KyMatrix<4, 4, float> RotationAbout(const kytl::matl::KyVector<3, float> &axis, float angle);

/// No component is far enough from zero to tell a direction. NaN tells none either.
bool HasNoDirection(const kytl::matl::KyVector<3, float> &v);

/// The +Y axis as a matrix turns it, as a unit vector.
kytl::matl::KyVector<3, float> TurnedUp(const kytl::matl::KyMatrix<4, 4, float> &matrix);

/// The matrix that turns unit vector a onto unit vector b about a point. For opposite vectors it is the
/// reflection in the plane across them.
kytl::matl::KyMatrix<4, 4, float> Turning(const kytl::matl::KyPoint<3, float> &centre,
                                          const kytl::matl::KyVector<3, float> &a,
                                          const kytl::matl::KyVector<3, float> &b);

/// The matrix that turns +Y onto the way that a point of the layer's content goes from one world matrix to
/// the next; the identity where it stands still.
kytl::matl::KyMatrix<4, 4, float> Alignment(const kytl::matl::KyPoint<3, float> &point,
                                            const kytl::matl::KyMatrix<4, 4, float> &now,
                                            const kytl::matl::KyMatrix<4, 4, float> &ahead);

/// The rotation that carries a direction onto -Z and +Y onto +Y as nearly as it can. Where the direction runs
/// along +Y or -Y, -X takes its place.
kytl::matl::KyMatrix<4, 4, float> LookAt(const kytl::matl::KyVector<3, float> &direction);

/// Whether cameras and lights take the mode: two that have no name are for layers with pictures alone.
constexpr bool CanTurnByItself(AutoOrient mode)
{
    return mode != AutoOrient{2} && mode != AutoOrient{3};
}

/// The turn of a camera or light at "position" towards its "target"; the identity in any other mode.
kytl::matl::KyMatrix<4, 4, float> TurnTowardsTarget(AutoOrient mode, const PropertyManager &properties,
                                                    int time);

/// The moment that tells where a layer is moving.
int LookAheadTime(int time);

} // namespace marlet::project
