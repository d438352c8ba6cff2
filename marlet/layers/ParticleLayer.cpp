#include <marlet/layers/ParticleLayer.h>

#include <marlet/layers/Alignment.h>

#include <cmath>

namespace marlet::project
{

using Matrix = kytl::matl::KyMatrix<4, 4, float>;
using Point = kytl::matl::KyPoint<3, float>;
using Vector = kytl::matl::KyVector<3, float>;

namespace
{

/// The rotation in the plane of two axes that carries the first towards the second. Unlike a rotation about
/// any axis it leaves the third exactly as it is.
Matrix PlaneRotation(int first, int second, float angle)
{
    const auto c = static_cast<float>(std::cos(static_cast<double>(angle)));
    const auto s = static_cast<float>(std::sin(static_cast<double>(angle)));
    Matrix result;
    result(first, first) = c;
    result(first, second) = -s;
    result(second, first) = s;
    result(second, second) = c;
    return result;
}

Matrix AlignmentWithVelocity(const Point &velocity, const Matrix &frame)
{
    const Vector way{velocity.X, velocity.Y, velocity.Z};
    if (HasNoDirection(way))
        return {};
    const float length = Length(way);
    return Turning(frame.TransformPoint({}), TurnedUp(frame),
                   {way.X / length, way.Y / length, way.Z / length});
}

float Between(float previous, float current, double fraction)
{
    const auto start = static_cast<double>(previous);
    return static_cast<float>(start + (static_cast<double>(current) - start) / 1000 * (fraction * 1000));
}

Point Between(const Point &previous, const Point &current, double fraction)
{
    return {Between(previous.X, current.X, fraction), Between(previous.Y, current.Y, fraction),
            Between(previous.Z, current.Z, fraction)};
}

} // namespace

Matrix ParticleLayerTransformation(const ParticleLayer &particle)
{
    enum { X, Y, Z };

    const auto &[px, py, pz] = particle.position;
    const auto &[ox, oy, oz] = particle.offset;
    Matrix frame = Matrix::Translation(px, py, pz);
    frame *= PlaneRotation(Y, Z, particle.rotation.X);
    frame *= PlaneRotation(Z, X, particle.rotation.Y);
    frame *= PlaneRotation(X, Y, particle.rotation.Z);
    frame *= Matrix::Translation(ox, oy, oz);

    Matrix picture = PlaneRotation(X, Y, particle.spin);
    picture *= Matrix::Scaling(particle.scale, particle.scale, particle.scale);
    picture *= Matrix::Translation(-particle.width * 0.5f, -particle.height * 0.5f, 0);

    if (particle.alignment != ParticleLayer::kAlignedWithVelocity)
        return frame * picture;
    return AlignmentWithVelocity(particle.velocity, frame) * frame * picture;
}

Matrix ParticleLayerMotionBlurTransformation(const ParticleLayer &particle, float fraction)
{
    const auto part = static_cast<double>(fraction);
    ParticleLayer between = particle;
    between.scale = Between(particle.previousScale, particle.scale, part);
    between.position = Between(particle.previousPosition, particle.position, part);
    between.offset = Between(particle.previousOffset, particle.offset, part);
    between.rotation = Between(particle.previousRotation, particle.rotation, part);
    between.spin = Between(particle.previousSpin, particle.spin, part);
    between.velocity = Between(particle.previousVelocity, particle.velocity, part);
    return ParticleLayerTransformation(between);
}

} // namespace marlet::project
