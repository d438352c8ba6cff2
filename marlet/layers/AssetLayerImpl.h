#pragma once

#include <marlet/foundation/Relaxed.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/CachedLink.h>
#include <marlet/layers/LayerProperties.h>
#include <marlet/project/AbstractAsset.h>

namespace marlet::project
{

/// The ID is what is stored; the link beside it only saves looking the asset up. What stands here of the
/// asset answers for it where it cannot be reached, and follows it where it can.
struct AssetLayer_Impl {
    CachedLink<AbstractAsset> asset;
    kytl::KyID assetID;
    int assetInstanceStart = 0;
    mutable Relaxed<bool> assetHasVideo;
    mutable Relaxed<bool> assetHasAudio;
    bool assetHadVideo = false;
    bool assetHadAudio = false;
    mutable Relaxed<AssetType> assetType;
    LayerDimensions dimensions = LayerDimensions::TwoD;
    AutoOrient autoOrientation = AutoOrient::Off;
    bool promoteLights = false;
    AssetLayer::TrackerList trackers;
    AssetLayer::EffectList effects;
    AssetLayer::MaskList masks;

    /// The asset if it was found before and lives, or null.
    const AbstractAsset *FoundAsset() const { return asset.Find(assetID); }

    void Remember(const std::shared_ptr<AbstractAsset> &found) const
    {
        asset.Remember(found);
        assetHasVideo.Store(found->HasVideo());
        assetHasAudio.Store(found->HasAudio());
        assetType.Store(found->Type());
    }
};

/// What every asset layer has.
const LayerProperties &AssetLayerProperties();

} // namespace marlet::project
