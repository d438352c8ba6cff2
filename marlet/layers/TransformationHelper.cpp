#include <marlet/layers/TransformationHelper.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/Quaternion.h>
#include <marlet/layers/Alignment.h>
#include <marlet/layers/LayerChain.h>
#include <marlet/layers/LayerValues.h>

namespace marlet::project
{

namespace
{

constexpr float kRadiansPerDegree = 0.017453292f;
/// 0.00001 in single precision.
constexpr double kSmallestScale = 9.999999747378752e-06;

float ScaleFactor(double percent, bool avoidZero)
{
    const double factor = percent * 0.01;
    return static_cast<float>(avoidZero && factor == 0 ? kSmallestScale : factor);
}

} // namespace

TransformationHelper::Matrix TransformationHelper::Rotation(const AbstractLayer *layer,
                                                            const std::shared_ptr<Project> &project, int time)
{
    Require(layer, "layer");
    const PropertyManager &properties = PropertiesInComposition(*layer, project);
    Matrix result;
    if (layer->Dimensions() != LayerDimensions::TwoD) {
        result *=
            Quaternion::FromOrientation(ValueAt<Orientation3D>(properties, "orientation", time)).ToMatrix();
        const auto x = ValueAt<float>(properties, "rotationX", time);
        const auto y = ValueAt<float>(properties, "rotationY", time);
        result *= RotationAbout({1, 0, 0}, -(x * kRadiansPerDegree));
        result *= RotationAbout({0, 1, 0}, -(y * kRadiansPerDegree));
    }
    const auto z = ValueAt<float>(properties, "rotationZ", time);
    result *= RotationAbout({0, 0, 1}, (0 - z) * kRadiansPerDegree);
    return result;
}

TransformationHelper::Matrix TransformationHelper::WorldRotation(const AbstractLayer *layer,
                                                                 const std::shared_ptr<Project> &project,
                                                                 int time)
{
    Require(layer, "layer");
    const LayerChain chain(*layer, time, AssetsOf(project));
    Matrix result;
    for (std::size_t i = chain.Size(); i-- > 0;)
        result *= Rotation(chain[i].layer, project, chain[i].time);
    return result;
}

TransformationHelper::Matrix TransformationHelper::Scale(const AbstractLayer *layer,
                                                         const std::shared_ptr<Project> &project, int time,
                                                         bool avoidZeroScale)
{
    Require(layer, "layer");
    const auto scale = ValueAt<Scale3D>(PropertiesInComposition(*layer, project), "scale", time);
    return Matrix::Scaling(ScaleFactor(scale.X, avoidZeroScale), ScaleFactor(scale.Y, avoidZeroScale),
                           ScaleFactor(scale.Z, avoidZeroScale));
}

} // namespace marlet::project
