#pragma once

namespace marlet::project::platform
{

/// A rectangle of 8 bit pixels somewhere in a frame. Not owned.
struct PixelRegion {
    const unsigned char *pixels = nullptr; ///< the corner at the top left
    int width = 0;
    int height = 0;
    int bytesPerRow = 0; ///< of the whole frame
    int bytesPerPixel = 1;

    const unsigned char *At(int column, int row) const
    {
        return pixels + static_cast<long long>(row) * bytesPerRow + column * bytesPerPixel;
    }
    /// Another rectangle of the same frame, in which it must lie; it may reach beyond the region.
    PixelRegion Crop(int column, int row, int partWidth, int partHeight) const
    {
        return {At(column, row), partWidth, partHeight, bytesPerRow, bytesPerPixel};
    }
};

} // namespace marlet::project::platform
