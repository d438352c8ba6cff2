#pragma once

#include <marlet/platform/flow/PixelRegion.h>

#include <opencv2/core.hpp>

namespace marlet::project::platform
{

/// A header on the region's own bytes, which must not be written through it.
inline cv::Mat MatOfRegion(const PixelRegion &region)
{
    return cv::Mat(region.height, region.width, CV_8UC(region.bytesPerPixel),
                   const_cast<unsigned char *>(region.pixels), static_cast<std::size_t>(region.bytesPerRow));
}

} // namespace marlet::project::platform
