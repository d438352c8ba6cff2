#pragma once

namespace kytl
{

/// A colour of four floats. Nothing clamps them.
struct KyColorRGBA_32f {
    float R = 0;
    float G = 0;
    float B = 0;
    float A = 0;

    bool operator==(const KyColorRGBA_32f &other) const = default;
};

} // namespace kytl
