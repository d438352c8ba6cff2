#include <marlet/layers/LayerValues.h>

#include <marlet/layers/LayerChain.h>
#include <marlet/layers/TransformationHelper.h>
#include <marlet/project/Project.h>

namespace marlet::project
{

using Matrix = AbstractLayer::Matrix;
using Point = kytl::matl::KyPoint<3, float>;

namespace
{

/// The translation to "position".
Matrix PositionMatrix(const AbstractLayer &layer, int time, const std::shared_ptr<Project> &project)
{
    const auto position = ValueAt<Point>(PropertiesInComposition(layer, project), "position", time);
    return Matrix::Translation(position.X, position.Y, position.Z);
}

} // namespace

const PropertyManager &PropertiesInComposition(const AbstractLayer &layer,
                                               const std::shared_ptr<Project> &project)
{
    LayerChain::Composition(layer, std::as_const(*project).Assets());
    return layer.Animation();
}

Matrix AnchorMatrix(const AbstractLayer &layer, int time, const std::shared_ptr<Project> &project)
{
    const auto anchor = ValueAt<Point>(PropertiesInComposition(layer, project), "anchorPoint", time);
    return Matrix::Translation(-anchor.X, -anchor.Y, anchor.Z);
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
