#pragma once

#include <marlet/exchange/StraightLines.h>
#include <marlet/exchange/gltf/GltfBuffer.h>
#include <marlet/foundation/KyMatrix.h>

namespace marlet::project
{

/// Metres to a pixel.
inline constexpr double kGltfUnit = 0.01;

/// How a node moves: what its matrix is made of, frame by frame from the first one of the composition on.
class GltfMotion
{
public:
    using Matrix = kytl::matl::KyMatrix<4, 4, float>;

    /// The matrix of the next frame, in pixels.
    void Add(const Matrix &world);
    /// Whether some matrix was not made of a place, a turn and sizes alone.
    bool IsSkewed() const { return isSkewed_; }

    /// Where the node is at first.
    void WriteTo(Json &node) const;
    /// How it goes on, if it moves at all.
    void WriteTo(Json &animation, std::size_t node, double frameRate, GltfBuffer &buffer) const;

private:
    template <std::size_t N>
    void AddChannel(Json &animation, std::size_t node, const char *path, const FrameSamples<N> &samples,
                    const std::vector<std::size_t> &kept, double frameRate, GltfBuffer &buffer) const;

    FrameSamples<3> places_;
    FrameSamples<4> turns_; ///< unit quaternions x, y, z, w
    FrameSamples<3> sizes_;
    bool isSkewed_ = false;
};

} // namespace marlet::project
