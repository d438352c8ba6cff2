#include <tests/support/MatrixMatchers.h>
#include <tests/support/TransformationModel.h>

#include <marlet/layers/ParticleLayer.h>

#include <gtest/gtest.h>

namespace marlet::test
{
namespace
{

using project::ParticleLayer;
using project::ParticleLayerMotionBlurTransformation;
using project::ParticleLayerTransformation;

ParticleLayer OddParticle()
{
    ParticleLayer p;
    p.width = 10;
    p.height = 20;
    p.scale = 2;
    p.position = {100, 200, 300};
    p.offset = {5, -6, 7};
    p.rotation = {0.5f, -1, 2};
    p.spin = 0.75f;
    return p;
}

TEST(ParticleLayer, TurnsAboutItsAxesAndSpinsInItsPlane)
{
    using namespace model;
    constexpr double kDegrees = 180 / std::numbers::pi;
    const Matrix expected = Translation({100, 200, 300}) * AboutX(0.5 * kDegrees) * AboutY(-kDegrees) *
                            AboutZ(2 * kDegrees) * Translation({5, -6, 7}) * AboutZ(0.75 * kDegrees) *
                            Scaling({2, 2, 2}) * Translation({-5, -10, 0});
    EXPECT_THAT(ParticleLayerTransformation(OddParticle()), IsMatrixNear(expected, 1e-6));
}

TEST(ParticleLayer, TurnsUpOntoItsVelocityAboutItsOffset)
{
    ParticleLayer p;
    p.position = {100, 0, 0};
    p.offset = {0, 50, 0};
    p.alignment = ParticleLayer::kAlignedWithVelocity;
    p.velocity = {7, 0, 0};
    EXPECT_THAT(ParticleLayerTransformation(p).TransformPoint({0, 3, 0}), IsPointNear(103, 50, 0, 1e-4));
    p.velocity = {1e-5f, 0, -1e-5f};
    EXPECT_THAT(ParticleLayerTransformation(p).TransformPoint({0, 3, 0}), IsPointNear(100, 53, 0, 1e-4));
}

TEST(ParticleLayer, GoesFromItsPreviousSampleToItsCurrentOne)
{
    for (const int alignment : {0, ParticleLayer::kAlignedWithVelocity}) {
        ParticleLayer current = OddParticle();
        current.alignment = alignment;
        current.velocity = {1, 2, 3};
        current.previousScale = 4;
        current.previousPosition = {60, 40, 20};
        current.previousOffset = {1, 2, 3};
        current.previousRotation = {2.5f, 3, 0};
        current.previousSpin = -0.25f;
        current.previousVelocity = {-3, 4, 1};
        ParticleLayer between = current;
        EXPECT_THAT(ParticleLayerMotionBlurTransformation(current, 1),
                    IsMatrixNear(ParticleLayerTransformation(between), 1e-5));
        between.scale = 3.5f;
        between.position = {70, 80, 90};
        between.offset = {2, 0, 4};
        between.rotation = {2, 2, 0.5f};
        between.spin = 0;
        between.velocity = {-2, 3.5f, 1.5f};
        EXPECT_THAT(ParticleLayerMotionBlurTransformation(current, 0.25f),
                    IsMatrixNear(ParticleLayerTransformation(between), 1e-5));
    }
}

} // namespace
} // namespace marlet::test
