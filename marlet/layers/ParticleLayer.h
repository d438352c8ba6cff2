#pragma once

#include <marlet/foundation/KyMatrix.h>

namespace marlet::project
{

/// One particle of a particle system, which the renderer fills. Angles are in radians, lengths in pixels.
struct ParticleLayer {
    static constexpr int kAlignedWithVelocity = 1;

    float width = 0;
    float height = 0;
    int alignment = 0; ///< kAlignedWithVelocity, or any other value for a particle that is not
    float scale = 1;
    kytl::matl::KyPoint<3, float> position;
    kytl::matl::KyPoint<3, float> offset; ///< inside the rotated frame
    kytl::matl::KyPoint<3, float> rotation;
    float spin = 0;
    kytl::matl::KyPoint<3, float> velocity;
    float previousScale = 1;
    kytl::matl::KyPoint<3, float> previousPosition;
    kytl::matl::KyPoint<3, float> previousOffset;
    kytl::matl::KyPoint<3, float> previousRotation;
    float previousSpin = 0;
    kytl::matl::KyPoint<3, float> previousVelocity;
};

MARLET_EXPORT kytl::matl::KyMatrix<4, 4, float> ParticleLayerTransformation(const ParticleLayer &particle);
/// The particle between its previous sample (fraction 0) and its current one (fraction 1).
MARLET_EXPORT kytl::matl::KyMatrix<4, 4, float>
ParticleLayerMotionBlurTransformation(const ParticleLayer &particle, float fraction);

} // namespace marlet::project
