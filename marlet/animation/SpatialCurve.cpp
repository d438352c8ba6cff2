#include <marlet/animation/SpatialCurve.h>

#include <marlet/animation/Interpolation.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <stdexcept>

namespace marlet::project
{

namespace
{

template <class To, class Function>
To EachAxis(const SpatialPoint &a, const SpatialPoint &b, Function function)
{
    return {function(a.X, b.X), function(a.Y, b.Y), function(a.Z, b.Z)};
}

SpatialVector Difference(const SpatialPoint &from, const SpatialPoint &to)
{
    return EachAxis<SpatialVector>(from, to, [](float a, float b) { return b - a; });
}

SpatialPoint Middle(const SpatialPoint &a, const SpatialPoint &b)
{
    return EachAxis<SpatialPoint>(a, b, [](float x, float y) { return (x + y) * 0.5f; });
}

/// The curve of one axis. Its two inner control values are summed in different widths.
float AxisAt(float a, float outgoing, float b, float incoming, double s)
{
    const double first = static_cast<double>(a) + outgoing;
    const float second = b + incoming;
    return static_cast<float>(CubicBezier(a, first, second, b, s));
}

} // namespace

float Distance(const SpatialPoint &a, const SpatialPoint &b)
{
    const SpatialVector d = Difference(a, b);
    return std::sqrt(d.X * d.X + d.Y * d.Y + d.Z * d.Z);
}

SpatialTangents AutoBezierTangents(const SpatialPoint &before, const SpatialPoint &point,
                                   const SpatialPoint &after)
{
    const float incomingChord = Distance(before, point);
    const SpatialPoint incomingMiddle = Middle(before, point);
    const SpatialPoint outgoingMiddle = Middle(point, after);
    float sum = incomingChord + Distance(point, after);
    if (std::abs(sum) <= kytl::kPointTolerance)
        sum = 1;
    // Divides the line between the middles of the chords as the chords divide the way.
    const float ratio = incomingChord / sum;
    const SpatialPoint divider = EachAxis<SpatialPoint>(
        incomingMiddle, outgoingMiddle, [ratio](float a, float b) { return a + (b - a) * ratio; });
    return {Difference(divider, incomingMiddle), Difference(divider, outgoingMiddle)};
}

SpatialTable::SpatialTable(const SpatialInputs &inputs)
    : inputs_(inputs),
      tangents_(AutoBezierTangents(inputs.before, inputs.first, inputs.second),
                AutoBezierTangents(inputs.first, inputs.second, inputs.after))
{
    if (inputs.first == inputs.second)
        return;
    double length = 0;
    SpatialPoint last = inputs.first;
    Enter(0, 0);
    // Adding up the steps, not multiplying them, is what the parameters of saved animations rest on.
    for (double s = 0.05; s < 1.0; s += 0.05) {
        const SpatialPoint point = PointAt(s);
        length += Distance(point, last);
        Enter(length, s);
        last = point;
    }
    Enter(length + Distance(inputs.second, last), 1);
}

/// Lengths never fall, so that one that is there already is the last one.
void SpatialTable::Enter(double length, double parameter)
{
    if (count_ == 0 || lengths_[count_ - 1] != length)
        ++count_;
    lengths_[count_ - 1] = length;
    parameters_[count_ - 1] = parameter;
}

bool SpatialTable::IsBuiltFrom(const SpatialInputs &inputs) const
{
    static_assert(sizeof(SpatialInputs) == 3 * sizeof(int) + 12 * sizeof(float), "no padding to compare");
    return std::memcmp(&inputs_, &inputs, sizeof inputs) == 0;
}

double SpatialTable::Parameter(double fraction) const
{
    if (count_ < 2)
        throw std::runtime_error("Curve piece length has not been cached");
    const double target = fraction * lengths_[count_ - 1];
    const double *end = lengths_ + count_;
    // Overflown lengths have no order; any two neighbours will do for them.
    const auto found = std::upper_bound(lengths_, end, target) - lengths_;
    const std::size_t high = std::clamp<std::size_t>(found, 1, count_ - 1);
    const std::size_t low = high - 1;
    return parameters_[low] + (target - lengths_[low]) *
                                  ((parameters_[high] - parameters_[low]) / (lengths_[high] - lengths_[low]));
}

SpatialPoint SpatialTable::PointAt(double s) const
{
    const SpatialPoint &a = inputs_.first;
    const SpatialPoint &b = inputs_.second;
    const SpatialVector &outgoing = tangents_.first.outgoing;
    const SpatialVector &incoming = tangents_.second.incoming;
    return {AxisAt(a.X, outgoing.X, b.X, incoming.X, s), AxisAt(a.Y, outgoing.Y, b.Y, incoming.Y, s),
            AxisAt(a.Z, outgoing.Z, b.Z, incoming.Z, s)};
}

} // namespace marlet::project
