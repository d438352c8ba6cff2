#pragma once

#include "AssetPictures.h"
#include "MaskPainter.h"
#include "ShownCache.h"
#include "Surface.h"

namespace marlet::tool
{

/// What renderers of one project share, so that the frames that they draw side by side have it once. For any
/// number of threads; the project stays as it is while there are pictures of it.
struct SharedPictures {
    AssetPictures assets;
    ShownCache<Surface> surfaces{std::size_t{192} << 20, [](const Surface &surface) {
                                     return static_cast<std::size_t>(surface.picture.sizeInBytes());
                                 }};
    ShownCache<MaskCoverage> coverages{std::size_t{64} << 20,
                                       [](const MaskCoverage &coverage) { return coverage.size(); }};
};

} // namespace marlet::tool
