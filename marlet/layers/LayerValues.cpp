#include <marlet/layers/LayerValues.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/layers/LayerChain.h>
#include <marlet/layers/TransformationHelper.h>
#include <marlet/project/Project.h>

#include <cstdint>
#include <utility>

namespace marlet::project
{

using Matrix = AbstractLayer::Matrix;
using Point = kytl::matl::KyPoint<3, float>;

namespace
{

/// In 64 bits, since the smallest integer has no counterpart.
float HalfBack(int size)
{
    return static_cast<float>(-std::int64_t{size}) * 0.5f;
}

} // namespace

const AssetList &AssetsOf(const std::shared_ptr<Project> &project)
{
    Require(project, "project");
    return std::as_const(*project).Assets();
}

const PropertyManager &PropertiesInComposition(const AbstractLayer &layer,
                                               const std::shared_ptr<Project> &project)
{
    LayerChain::Composition(layer, AssetsOf(project));
    return layer.Animation();
}

Matrix AnchorMatrix(const AbstractLayer &layer, int time, const std::shared_ptr<Project> &project)
{
    const auto anchor = ValueAt<Point>(PropertiesInComposition(layer, project), "anchorPoint", time);
    return Matrix::Translation(-anchor.X, -anchor.Y, anchor.Z);
}

Matrix PositionMatrix(const AbstractLayer &layer, int time, const std::shared_ptr<Project> &project)
{
    const auto position = ValueAt<Point>(PropertiesInComposition(layer, project), "position", time);
    return Matrix::Translation(position.X, position.Y, position.Z);
}

Matrix MiddleMatrix(int width, int height)
{
    return Matrix::Translation(HalfBack(width), HalfBack(height), 0);
}

Matrix PlacementMatrix(const AbstractLayer &layer, int time, const std::shared_ptr<Project> &project,
                       bool avoidZeroScale)
{
    Matrix result = PositionMatrix(layer, time, project);
    result *= TransformationHelper::Rotation(&layer, project, time);
    result *= TransformationHelper::Scale(&layer, project, time, avoidZeroScale);
    return result;
}

Matrix AimedMatrix(const AbstractLayer &layer, const Matrix &autoOrientation, int time,
                   const std::shared_ptr<Project> &project)
{
    Matrix result = PositionMatrix(layer, time, project);
    result *= autoOrientation;
    result *= TransformationHelper::Rotation(&layer, project, time);
    return result;
}

} // namespace marlet::project
