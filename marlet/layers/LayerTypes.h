#pragma once

namespace marlet::project
{

enum class LayerType : int { Asset, Effect3D, Camera, Light, Grade, Point, Text };

enum class LayerDimensions : int {
    TwoD,          ///< a flat layer: "rotationZ" alone turns it
    ThreeD,        ///< a plane in space: "orientation" and all three rotations turn it
    ThreeDContent, ///< content that is three-dimensional itself; turns like ThreeD
};

/// How a layer is composited with what lies below it. The host names the modes; the library stores the
/// number.
enum class Blend : int {};

enum class AutoOrient : int {
    Off,
    AlongPath,         ///< turned along the direction of motion
    TowardsTarget = 4, ///< a camera or light, turned towards its "target"
};

} // namespace marlet::project
