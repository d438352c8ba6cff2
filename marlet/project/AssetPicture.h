#pragma once

namespace marlet::project
{

class AbstractAsset;

/// What a layer or sequence object has to know of its asset's picture to place it. Internal.
struct AssetPicture {
    int width = 0;
    int height = 0;
    double pixelAspect = 1;
    /// The file of an image or media asset cannot be used: the size is the one that a host shows then.
    bool isOffline = false;
};

AssetPicture PictureOf(const AbstractAsset &asset);

/// The rate by which sound of an asset counts its frames: that of a composition or of a file's video, 30 for
/// sound alone, 0 for what has none.
double AudioFrameRateOf(const AbstractAsset &asset);

} // namespace marlet::project
