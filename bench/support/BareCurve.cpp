#include <bench/support/BareCurve.h>

#include <algorithm>
#include <cmath>

namespace bench
{

namespace
{

/// A cubic from 0 to 1, by its two inner control values.
struct UnitCubic {
    double c, b, a;

    UnitCubic(double first, double second) : c(3 * first), b(3 * (second - first) - c), a(1 - c - b) {}

    double At(double t) const { return ((a * t + b) * t + c) * t; }
    double SlopeAt(double t) const { return (3 * a * t + 2 * b) * t + c; }
};

double Solve(const UnitCubic &x, double fraction)
{
    double t = fraction;
    for (int step = 0; step < 50; ++step) {
        const double error = x.At(t) - fraction;
        if (std::abs(error) < 1e-9)
            break;
        const double slope = x.SlopeAt(t);
        if (std::abs(slope) < 1e-9)
            break;
        t -= error / slope;
    }
    return t;
}

double Bezier(double p0, double p1, double p2, double p3, double t)
{
    const double s = 1 - t;
    return s * s * s * p0 + 3 * s * s * t * p1 + 3 * s * t * t * p2 + t * t * t * p3;
}

} // namespace

double BareCurve::ValueAt(double time) const
{
    const auto after = std::upper_bound(keys_.begin(), keys_.end(), time,
                                        [](double wanted, const Key &key) { return wanted < key.time; });
    if (after == keys_.begin())
        return keys_.front().value;
    const Key &first = *(after - 1);
    if (after == keys_.end() || first.time == time)
        return first.value;
    const Key &second = *after;
    const double length = second.time - first.time;
    const double t =
        Solve({first.outgoingX / length, 1 + second.incomingX / length}, (time - first.time) / length);
    return Bezier(first.value, first.value + first.outgoingY, second.value + second.incomingY, second.value,
                  t);
}

} // namespace bench
