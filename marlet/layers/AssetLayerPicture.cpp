// Where the picture of an asset layer stands, and how large its effects make it.

#include <marlet/layers/AssetLayer.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/layers/Alignment.h>
#include <marlet/layers/AssetLayerImpl.h>
#include <marlet/layers/LayerValues.h>
#include <marlet/plugins/AbstractPlugin2D.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/plugins/FilterSurface.h>
#include <marlet/project/AssetPicture.h>

#include <cstdint>

namespace marlet::project
{

using Matrix = AbstractLayer::Matrix;

namespace
{

/// The effect's plug-in if it works on flat frames, or null.
std::shared_ptr<AbstractPlugin2D> FilterOf(const EffectInstance &effect)
{
    const std::shared_ptr<AbstractPlugin> plugin = effect.Plugin();
    const bool isFilter = plugin && plugin->Kind() == AbstractPlugin::kFilter2D;
    return isFilter ? std::dynamic_pointer_cast<AbstractPlugin2D>(plugin) : nullptr;
}

/// Margins come from plug-ins: they may be any numbers.
int Enlarged(int size, int before, int after)
{
    return Saturate(std::int64_t{size} + before + after);
}

} // namespace

Matrix AssetLayer::TransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                        bool avoidZeroScale) const
{
    if (!RequireAsset(AssetsOf(project)).HasVideo())
        return {};
    return PlacementMatrix(*this, time, project, avoidZeroScale);
}

Matrix AssetLayer::OriginAtTime(int time, const std::shared_ptr<Project> &project) const
{
    const AbstractAsset &asset = RequireAsset(AssetsOf(project));
    if (!asset.HasVideo())
        return {};
    const AssetPicture picture = PictureOf(asset);
    // What a host shows for a file that it cannot use moves with the layer's position.
    Matrix origin =
        picture.isOffline ? PositionMatrix(*this, time, project) : AnchorMatrix(*this, time, project);
    origin *= Matrix::Scaling(static_cast<float>(picture.pixelAspect), 1, 1);
    origin *= MiddleMatrix(picture.width, picture.height);
    return origin;
}

Matrix AssetLayer::ParentingWorldTransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                                      bool avoidZeroScale) const
{
    // What the children of each class hang on stands with the chain of parents, which is walked in one loop.
    return AbstractLayer::ParentingWorldTransformationAtTime(time, project, avoidZeroScale);
}

Matrix AssetLayer::WorldTransformationAtTimeToSetParent(int time, const std::shared_ptr<Project> &project,
                                                        bool avoidZeroScale) const
{
    const AbstractAsset &asset = RequireAsset(AssetsOf(project));
    if (!asset.HasVideo())
        return {};
    const AssetPicture picture = PictureOf(asset);
    Matrix world = ParentTransformationAtTime(time, project, avoidZeroScale);
    world *= TransformationAtTime(time, project, avoidZeroScale);
    world *= AnchorMatrix(*this, time, project);
    world *= MiddleMatrix(picture.width, picture.height);
    return world;
}

Matrix AssetLayer::AlignToMotion(const Matrix &world, int time, const std::shared_ptr<Project> &project,
                                 bool avoidZeroScale) const
{
    if (impl_->autoOrientation != AutoOrient::AlongPath)
        return {};
    const AssetPicture picture = PictureOf(RequireAsset(AssetsOf(project)));
    const kytl::matl::KyPoint<3, float> middle{static_cast<float>(picture.width) * 0.5f,
                                               static_cast<float>(picture.height) * 0.5f, 0};
    return Alignment(middle, world,
                     WorldTransformationAtTimeHelper(LookAheadTime(time), project, avoidZeroScale));
}

void AssetLayer::ComputePostFilterDims(const std::shared_ptr<AbstractAsset> &asset, const EffectList &effects,
                                       int time, float aFloat, bool aBool,
                                       kytl::matl::KyPoint<2, float> &offset, int &width, int &height)
{
    Require(asset, "asset");
    width = asset->Width();
    height = asset->Height();
    offset = {};
    FilterSurface surface{.width = width, .height = height, .textureWidth = width, .textureHeight = height};
    for (const std::shared_ptr<EffectInstance> &effect : effects) {
        const auto filter = effect && effect->Enabled() ? FilterOf(*effect) : nullptr;
        if (!filter)
            continue;
        int left = 0;
        int right = 0;
        int top = 0;
        int bottom = 0;
        filter->FilterMargins(effect.get(), &surface, width, height, 1.f, aFloat, aBool, time, &left, &right,
                              &top, &bottom);
        width = Enlarged(width, left, right);
        height = Enlarged(height, bottom, top);
        offset.X += static_cast<float>(left);
        offset.Y += static_cast<float>(bottom);
        surface.width = surface.textureWidth = width;
        surface.height = surface.textureHeight = height;
    }
}

} // namespace marlet::project
