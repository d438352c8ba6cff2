#include <marlet/exchange/gltf/GltfMotion.h>

#include <cmath>
#include <numeric>

namespace marlet::project
{

namespace
{

constexpr double kPlaceTolerance = 1e-5;
constexpr double kSizeTolerance = 1e-6;
constexpr double kSkewTolerance = 1e-3;

using Vector = std::array<double, 3>;
using Turn = std::array<double, 4>;

Vector Column(const GltfMotion::Matrix &matrix, int column)
{
    return {matrix(0, column), matrix(1, column), matrix(2, column)};
}

double DotOf(const Vector &a, const Vector &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vector CrossOf(const Vector &a, const Vector &b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

/// The quaternion of the turn that takes the axes to these three, which are at right angles and of length 1:
/// its largest component is worked out first, so that none is divided by a small one.
Turn TurnOf(const Vector &x, const Vector &y, const Vector &z)
{
    const double squares[] = {1 + x[0] - y[1] - z[2], 1 - x[0] + y[1] - z[2], 1 - x[0] - y[1] + z[2],
                              1 + x[0] + y[1] + z[2]};
    const auto largest = std::max_element(std::begin(squares), std::end(squares)) - std::begin(squares);
    const double a = std::sqrt(squares[largest]) / 2;
    const double b = 1 / (4 * a);
    switch (largest) {
    case 0:
        return {a, (x[1] + y[0]) * b, (x[2] + z[0]) * b, (y[2] - z[1]) * b};
    case 1:
        return {(x[1] + y[0]) * b, a, (y[2] + z[1]) * b, (z[0] - x[2]) * b};
    case 2:
        return {(x[2] + z[0]) * b, (y[2] + z[1]) * b, a, (x[1] - y[0]) * b};
    default:
        return {(y[2] - z[1]) * b, (z[0] - x[2]) * b, (x[1] - y[0]) * b, a};
    }
}

} // namespace

void GltfMotion::Add(const Matrix &given)
{
    Matrix world = given;
    for (int i = 0; i < 16; ++i)
        world[i] = static_cast<float>(FiniteSample(world[i]));
    places_.push_back({world[3] * kGltfUnit, world[7] * kGltfUnit, world[11] * kGltfUnit});
    Vector axes[3];
    Vector size{};
    for (int i = 0; i < 3; ++i) {
        axes[i] = Column(world, i);
        size[static_cast<std::size_t>(i)] = std::sqrt(DotOf(axes[i], axes[i]));
    }
    const bool isFlat = size[0] <= 0 || size[1] <= 0 || size[2] <= 0;
    Turn turn = turns_.empty() ? Turn{0, 0, 0, 1} : turns_.back();
    if (!isFlat) {
        // A mirror is a size below 0.
        if (DotOf(CrossOf(axes[0], axes[1]), axes[2]) < 0)
            size[0] = -size[0];
        for (std::size_t i = 0; i < 3; ++i)
            for (double &component : axes[i])
                component /= size[i];
        isSkewed_ = isSkewed_ || std::abs(DotOf(axes[0], axes[1])) > kSkewTolerance ||
                    std::abs(DotOf(axes[1], axes[2])) > kSkewTolerance ||
                    std::abs(DotOf(axes[2], axes[0])) > kSkewTolerance;
        turn = TurnOf(axes[0], axes[1], axes[2]);
    }
    const double length = std::sqrt(std::inner_product(turn.begin(), turn.end(), turn.begin(), 0.0));
    const bool isFarWay =
        !turns_.empty() && std::inner_product(turn.begin(), turn.end(), turns_.back().begin(), 0.0) < 0;
    for (double &component : turn)
        component /= isFarWay ? -length : length;
    turns_.push_back(turn);
    sizes_.push_back(size);
}

void GltfMotion::WriteTo(Json &node) const
{
    node["translation"] = places_.front();
    node["rotation"] = turns_.front();
    node["scale"] = sizes_.front();
}

template <std::size_t N>
void GltfMotion::AddChannel(Json &animation, std::size_t node, const char *path,
                            const FrameSamples<N> &samples, const std::vector<std::size_t> &kept,
                            double frameRate, GltfBuffer &buffer) const
{
    if (kept.size() < 2)
        return;
    std::vector<float> times;
    std::vector<float> numbers;
    for (const std::size_t frame : kept) {
        times.push_back(static_cast<float>(static_cast<double>(frame) / frameRate));
        for (const double number : samples[frame])
            numbers.push_back(static_cast<float>(number));
    }
    const std::size_t input = buffer.AddScalars(times);
    const std::size_t output = buffer.AddVectors(numbers, N);
    const std::size_t sampler = animation.contains("samplers") ? animation["samplers"].size() : 0;
    animation["samplers"].push_back({{"input", input}, {"interpolation", "LINEAR"}, {"output", output}});
    animation["channels"].push_back({{"sampler", sampler}, {"target", {{"node", node}, {"path", path}}}});
}

void GltfMotion::WriteTo(Json &animation, std::size_t node, double frameRate, GltfBuffer &buffer) const
{
    AddChannel(animation, node, "translation", places_, SamplesOfStraightLines(places_, kPlaceTolerance),
               frameRate, buffer);
    // Turns run along arcs, so each frame has its own where there is more than one.
    std::vector<std::size_t> frames(turns_.size());
    std::iota(frames.begin(), frames.end(), std::size_t{0});
    if (SamplesOfStraightLines(turns_, 0).size() > 1)
        AddChannel(animation, node, "rotation", turns_, frames, frameRate, buffer);
    AddChannel(animation, node, "scale", sizes_, SamplesOfStraightLines(sizes_, kSizeTolerance), frameRate,
               buffer);
}

} // namespace marlet::project
