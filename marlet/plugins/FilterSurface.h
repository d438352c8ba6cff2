#pragma once

namespace marlet::project
{

/// The frame that a chain of 2D filters works on; sizes in pixels. The format fields hold OpenGL constants.
struct FilterSurface {
    unsigned int texture = 0;
    unsigned int pixelType = 0x1401;   ///< GL_UNSIGNED_BYTE
    unsigned int pixelFormat = 0x1908; ///< GL_RGBA
    int width = 0;
    int height = 0;
    int textureWidth = 0;
    int textureHeight = 0;
    int originX = 0;
    int originY = 0;
    float scaleX = 1;
    float scaleY = 1;
};

} // namespace marlet::project
