#pragma once

#include <marlet/foundation/KyMatrix.h>

#include <memory>

namespace marlet::project
{

class AbstractLayer;
class Project;

/// The rotations and the scale of a layer as matrices. Times are the layer's relative time in milliseconds.
/// @throws as the matrices of AbstractLayer
class MARLET_EXPORT TransformationHelper
{
public:
    using Matrix = kytl::matl::KyMatrix<4, 4, float>;

    /// Rx(-orientation.X) Ry(-orientation.Y) Rz(-orientation.Z) Rx(-rotationX) Ry(-rotationY) Rz(-rotationZ),
    /// of a flat layer Rz(-rotationZ) alone.
    static Matrix Rotation(const AbstractLayer *layer, const std::shared_ptr<Project> &project, int time);
    /// The same with the rotations of all parents before it.
    static Matrix WorldRotation(const AbstractLayer *layer, const std::shared_ptr<Project> &project,
                                int time);
    /// With avoidZeroScale a component of zero becomes 0.00001.
    static Matrix Scale(const AbstractLayer *layer, const std::shared_ptr<Project> &project, int time,
                        bool avoidZeroScale);
};

} // namespace marlet::project
