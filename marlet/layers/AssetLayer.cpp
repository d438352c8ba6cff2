#include <marlet/layers/AssetLayer.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/layers/Alignment.h>
#include <marlet/layers/AssetLayerImpl.h>
#include <marlet/layers/LayerChain.h>
#include <marlet/layers/LayerHelper.h>
#include <marlet/layers/LayerMaker.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/AssetPicture.h>
#include <marlet/tracking/Tracker.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>

namespace marlet::project
{

namespace
{

AssetLayer::TrackerList CopyTrackers(const AssetLayer::TrackerList &trackers, const kytl::KyID &layerID)
{
    AssetLayer::TrackerList copies;
    for (const std::shared_ptr<Tracker> &tracker : trackers) {
        if (!tracker)
            continue;
        const std::shared_ptr<Tracker> copy = Tracker::Copy(tracker);
        copy->SetParentLayerID(layerID);
        copies.Add(copy);
    }
    return copies;
}

WideString NameOf(const std::shared_ptr<AbstractAsset> &asset)
{
    Require(asset, "asset");
    return asset->Name();
}

} // namespace

AssetLayer::AssetLayer() = default;

AssetLayer::AssetLayer(const std::shared_ptr<AbstractAsset> &asset) : AbstractLayer(NameOf(asset))
{
    SetAsset(asset);
    CreateProperties(Animation(), AssetLayerProperties());
}

AssetLayer::AssetLayer(const AssetLayer &other) = default;

AssetLayer::~AssetLayer() = default;

std::shared_ptr<AssetLayer> AssetLayer::Create(std::shared_ptr<AbstractAsset> asset)
{
    return LayerMaker::Make<AssetLayer>(asset);
}

std::shared_ptr<AbstractLayer> AssetLayer::Clone(const kytl::KyID &compositionID) const
{
    const std::shared_ptr<AssetLayer> clone = LayerMaker::Copy(*this);
    clone->impl_->trackers = CopyTrackers(Trackers(), clone->ID());
    LayerHelper::CopyEffectsAndMasks(*this, *clone, compositionID);
    return clone;
}

const kytl::KyID &AssetLayer::ID() const
{
    return AbstractLayer::ID();
}

const WideString &AssetLayer::Name() const
{
    return AbstractLayer::Name();
}

void AssetLayer::SetName(const WideString &name)
{
    AbstractLayer::SetName(name);
}

LayerType AssetLayer::Type() const
{
    return LayerType::Asset;
}

bool AssetLayer::HasAudio() const
{
    if (const AbstractAsset *asset = impl_->FoundAsset())
        impl_->assetHasAudio.Store(asset->HasAudio());
    return impl_->assetHasAudio.Load();
}

bool AssetLayer::HasVideo() const
{
    if (const AbstractAsset *asset = impl_->FoundAsset())
        impl_->assetHasVideo.Store(asset->HasVideo());
    return impl_->assetHasVideo.Load();
}

LayerDimensions AssetLayer::Dimensions() const
{
    return impl_->dimensions;
}

void AssetLayer::SetDimensions(LayerDimensions dimensions)
{
    // Nothing but a composition has content in space.
    if (dimensions != LayerDimensions::ThreeDContent || impl_->assetType.Load() == AssetType::Composition)
        impl_->dimensions = dimensions;
}

void AssetLayer::SetAsset(const std::shared_ptr<AbstractAsset> &asset)
{
    Require(asset, "asset");
    impl_->assetID = asset->ID();
    impl_->Remember(asset);
    impl_->assetHadVideo = impl_->assetHasVideo.Load();
    impl_->assetHadAudio = impl_->assetHasAudio.Load();
}

AssetUse AssetLayer::Use() const
{
    return {impl_->assetID,
            impl_->assetType.Load(),
            impl_->assetHasVideo.Load(),
            impl_->assetHasAudio.Load(),
            impl_->assetHadVideo,
            impl_->assetHadAudio};
}

void AssetLayer::SetUse(const AssetUse &use)
{
    impl_->assetID = use.assetID;
    impl_->assetType.Store(use.type);
    impl_->assetHasVideo.Store(use.hasVideo);
    impl_->assetHasAudio.Store(use.hasAudio);
    impl_->assetHadVideo = use.hadVideo;
    impl_->assetHadAudio = use.hadAudio;
}

const kytl::KyID &AssetLayer::AssetID() const
{
    return impl_->assetID;
}

AssetType AssetLayer::AssetType() const
{
    const AbstractAsset *asset = impl_->FoundAsset();
    return asset ? asset->Type() : impl_->assetType.Load();
}

AbstractAssetInstance::Type AssetLayer::AssetInstanceType() const
{
    return AbstractAssetInstance::Type::AssetLayer;
}

int AssetLayer::AssetInstanceStart() const
{
    return impl_->assetInstanceStart;
}

void AssetLayer::SetAssetInstanceStart(int frame)
{
    impl_->assetInstanceStart = frame;
}

int AssetLayer::AssetInstanceEnd() const
{
    return Saturate(std::int64_t{EndFrame()} - StartFrame() - 1 + impl_->assetInstanceStart);
}

std::shared_ptr<AbstractAsset> AssetLayer::Asset(const AssetList &assets) const
{
    if (auto asset = impl_->asset.Lock(impl_->assetID))
        return asset;
    auto asset = assets.GetByID(impl_->assetID);
    // A miss is not remembered: the asset may be added later.
    if (asset)
        impl_->Remember(asset);
    return asset;
}

const AbstractAsset &AssetLayer::RequireAsset(const AssetList &assets) const
{
    if (const AbstractAsset *asset = impl_->FoundAsset())
        return *asset;
    // The list keeps what it finds.
    if (const auto asset = Asset(assets))
        return *asset;
    throw std::logic_error("Layer " + Describe(*this) +
                           " shows an asset that is not in its project: " + impl_->assetID.ToNarrowString());
}

bool AssetLayer::AssetHadVideo() const
{
    return impl_->assetHadVideo;
}

bool AssetLayer::AssetHadAudio() const
{
    return impl_->assetHadAudio;
}

AutoOrient AssetLayer::AutoOrientation() const
{
    return impl_->autoOrientation;
}

void AssetLayer::SetAutoOrientation(AutoOrient mode)
{
    if (mode != AutoOrient::TowardsTarget)
        impl_->autoOrientation = mode;
}

void AssetLayer::RestoreAutoOrientation(AutoOrient mode)
{
    impl_->autoOrientation = mode;
}

AbstractLayer::Matrix AssetLayer::AutoOrientAtTime(int time) const
{
    return TurnTowardsTarget(impl_->autoOrientation, Animation(), time);
}

bool AssetLayer::PromoteLights() const
{
    return impl_->promoteLights;
}

void AssetLayer::SetPromoteLights(bool promote)
{
    if (impl_->dimensions == LayerDimensions::ThreeDContent || AssetType() == AssetType::Composition)
        impl_->promoteLights = promote;
}

AssetLayer::EffectList &AssetLayer::Effects()
{
    return impl_->effects;
}

const AssetLayer::EffectList &AssetLayer::Effects() const
{
    return impl_->effects;
}

AssetLayer::MaskList &AssetLayer::Masks()
{
    return impl_->masks;
}

const AssetLayer::MaskList &AssetLayer::Masks() const
{
    return impl_->masks;
}

AssetLayer::TrackerList &AssetLayer::Trackers()
{
    return impl_->trackers;
}

const AssetLayer::TrackerList &AssetLayer::Trackers() const
{
    return impl_->trackers;
}

double AssetLayer::AudioFrameRate(const AssetList &assets) const
{
    return AudioFrameRateOf(RequireAsset(assets));
}

std::vector<ObjectPropertyList> AssetLayer::ChildLayerReferencePropertyNames() const
{
    return LayerHelper::LayerReferencePropertyNames(impl_->effects);
}

void AssetLayer::ClearChildInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs)
{
    for (const std::shared_ptr<Tracker> &tracker : impl_->trackers)
        if (tracker && !validIDs.contains(tracker->DestinationLayerID().ToNarrowString()))
            tracker->ClearDestinationLayerID();
    LayerHelper::ClearInvalidLayerReferences(impl_->effects, validIDs);
}

void AssetLayer::ChangeChildLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes)
{
    for (const std::shared_ptr<Tracker> &tracker : impl_->trackers) {
        if (!tracker)
            continue;
        const auto change = changes.find(tracker->DestinationLayerID().ToNarrowString());
        if (change != changes.end())
            tracker->SetDestinationLayerID(kytl::KyID::FromString(change->second));
    }
    LayerHelper::ChangeLayerReferences(impl_->effects, changes);
}

bool AssetLayer::IsChildLayerReferenced(const std::shared_ptr<CompositionAsset> &,
                                        const kytl::KyID &layerID) const
{
    const bool isDestination =
        std::ranges::any_of(impl_->trackers, [&layerID](const std::shared_ptr<Tracker> &tracker) {
            return tracker && tracker->DestinationLayerID() == layerID;
        });
    return isDestination || LayerHelper::IsLayerReferenced(impl_->effects, layerID);
}

} // namespace marlet::project
