// How a layer's own time and place follow from its composition and its parents.

#include <marlet/layers/AbstractLayer.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/layers/LayerChain.h>
#include <marlet/layers/LayerValues.h>
#include <marlet/project/CompositionAsset.h>

#include <cstdint>

namespace marlet::project
{

namespace
{

using Matrix = AbstractLayer::Matrix;

double MsPerFrame(const CompositionAsset &composition)
{
    return AudioVideoSettings::MsPerFrame(composition.Settings().FrameRate());
}

int TimeOfLayerFrame(int frame, const CompositionAsset &composition)
{
    return Truncate<int>(MsPerFrame(composition) * frame);
}

int TimeOfGlobalFrame(int frame, const AbstractLayer &layer, const CompositionAsset &composition)
{
    // In 64 bits, since a frame may lie as far from the start as integers reach.
    const std::int64_t framesFromStart = std::int64_t{frame} - layer.StartFrame();
    return Truncate<int>(static_cast<double>(framesFromStart) * MsPerFrame(composition));
}

/// The last factor of what a layer offers to its children: those of a picture hang on its anchor point,
/// whatever its size and its pixels are.
Matrix OriginForChildren(const AbstractLayer &layer, int time, const std::shared_ptr<Project> &project)
{
    const LayerType type = layer.Type();
    return type == LayerType::Asset || type == LayerType::Grade ? AnchorMatrix(layer, time, project)
                                                                : layer.OriginAtTime(time, project);
}

/// What the members of a chain from an index on up to the root offer to the layer below them.
Matrix Offered(const LayerChain &chain, std::size_t nearest, const std::shared_ptr<Project> &project,
               bool avoidZeroScale)
{
    Matrix result;
    for (std::size_t i = chain.Size(); i-- > nearest;) {
        const auto [layer, time] = chain[i];
        result *= layer->TransformationAtTime(time, project, avoidZeroScale);
        result *= OriginForChildren(*layer, time, project);
    }
    return result;
}

} // namespace

int AbstractLayer::GlobalFrameToRelativeTime(int frame,
                                             const std::shared_ptr<CompositionAsset> &composition) const
{
    Require(composition, "composition");
    return TimeOfGlobalFrame(frame, *this, *composition);
}

int AbstractLayer::GlobalFrameToRelativeTime(int frame, const AssetList &assets) const
{
    return TimeOfGlobalFrame(frame, *this, LayerChain::Composition(*this, assets));
}

int AbstractLayer::LayerFrameToRelativeTime(int frame,
                                            const std::shared_ptr<CompositionAsset> &composition) const
{
    Require(composition, "composition");
    return TimeOfLayerFrame(frame, *composition);
}

int AbstractLayer::LayerFrameToRelativeTime(int frame, const AssetList &assets) const
{
    return TimeOfLayerFrame(frame, LayerChain::Composition(*this, assets));
}

int AbstractLayer::StartTime(const AssetList &assets) const
{
    return LayerFrameToRelativeTime(StartFrame(), assets);
}

int AbstractLayer::PlayheadRelativeTime(const AssetList &assets) const
{
    const CompositionAsset &composition = LayerChain::Composition(*this, assets);
    return TimeOfGlobalFrame(composition.CurrentTimeIndicator(), *this, composition);
}

float AbstractLayer::RelativeTimeToGlobalFrameF(int time, const AssetList &assets) const
{
    const double msPerFrame = MsPerFrame(LayerChain::Composition(*this, assets));
    return static_cast<float>(static_cast<double>(StartFrame()) + time / msPerFrame);
}

int AbstractLayer::RelativeTimeToGlobalFrame(int time, const AssetList &assets) const
{
    return Truncate<int>(RelativeTimeToGlobalFrameF(time, assets));
}

int AbstractLayer::RelativeTimeToLayerRelativeTime(int time, const std::shared_ptr<AbstractLayer> &other,
                                                   const std::shared_ptr<Project> &project) const
{
    if (!other)
        return 0;
    const CompositionAsset &composition = LayerChain::Composition(*this, AssetsOf(project));
    return LayerChain::ConvertTime(*this, time, *other, MsPerFrame(composition));
}

Matrix AbstractLayer::ParentTransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                                 bool avoidZeroScale) const
{
    const LayerChain chain(*this, time, AssetsOf(project));
    return Offered(chain, 1, project, avoidZeroScale);
}

Matrix AbstractLayer::ParentingWorldTransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                                         bool avoidZeroScale) const
{
    const LayerChain chain(*this, time, AssetsOf(project));
    return Offered(chain, 0, project, avoidZeroScale);
}

Matrix AbstractLayer::WorldTransformationAtTimeHelper(int time, const std::shared_ptr<Project> &project,
                                                      bool avoidZeroScale) const
{
    Matrix result = ParentTransformationAtTime(time, project, avoidZeroScale);
    result *= TransformationAtTime(time, project, avoidZeroScale);
    result *= OriginAtTime(time, project);
    return result;
}

Matrix AbstractLayer::WorldTransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                                bool avoidZeroScale) const
{
    const Matrix world = WorldTransformationAtTimeHelper(time, project, avoidZeroScale);
    return AlignToMotion(world, time, project, avoidZeroScale) * world;
}

Matrix AbstractLayer::WorldTransformationAtTimeToSetParent(int time, const std::shared_ptr<Project> &project,
                                                           bool avoidZeroScale) const
{
    return WorldTransformationAtTime(time, project, avoidZeroScale);
}

} // namespace marlet::project
