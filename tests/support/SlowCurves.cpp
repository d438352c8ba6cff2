#include <tests/support/SlowCurves.h>

#include <marlet/foundation/Quaternion.h>

#include <boost/variant.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <type_traits>
#include <vector>

namespace marlet::test
{

using namespace project;
using kytl::KyID;
using kytl::matl::KyPoint;
using kytl::matl::KyVector;

namespace
{

template <class T> bool Holds(const PropertyValue &value)
{
    return boost::get<T>(&value) != nullptr;
}

using Numbers = std::vector<double>;

/// A double holds every number of every alternative.
Numbers NumbersOf(const PropertyValue &value)
{
    return boost::apply_visitor(
        []<class T>(const T &v) -> Numbers {
            if constexpr (std::is_arithmetic_v<T>)
                return {double(v)};
            else if constexpr (requires { v.A; })
                return {v.R, v.G, v.B, v.A};
            else if constexpr (requires { v.Z; })
                return {v.X, v.Y, v.Z};
            else if constexpr (requires { v.Y; })
                return {v.X, v.Y};
            else
                return {};
        },
        value);
}

/// Halves away from zero, then the nearest an int comes to it.
int Rounded(double v)
{
    v = v > 0 ? std::floor(v + 0.5) : std::ceil(v - 0.5);
    return std::isnan(v) ? 0 : int(std::clamp(v, -2147483648.0, 2147483647.0));
}

/// For values that a long integer holds.
template <class Unsigned> Unsigned Wrapped(double v)
{
    return std::isnan(v) ? 0 : Unsigned((long long)(std::trunc(std::clamp(v, -9.2e18, 9.2e18))));
}

/// The alternative of the pattern with these numbers.
PropertyValue ValueLike(const PropertyValue &pattern, const Numbers &n)
{
    const auto f = [&n](std::size_t i) { return float(n[i]); };
    return boost::apply_visitor(
        [&]<class T>(const T &v) -> PropertyValue {
            if constexpr (std::is_same_v<T, int>)
                return Rounded(n[0]);
            else if constexpr (std::is_unsigned_v<T>)
                return Wrapped<T>(n[0]);
            else if constexpr (std::is_arithmetic_v<T>)
                return T(n[0]);
            else if constexpr (requires { v.A; })
                return T{f(0), f(1), f(2), f(3)};
            else if constexpr (requires { v.Z; })
                return T{f(0), f(1), f(2)};
            else if constexpr (requires { v.Y; })
                return T{f(0), f(1)};
            else
                throw std::logic_error("no numbers");
        },
        pattern);
}

bool IsUnsigned(const PropertyValue &value)
{
    return Holds<unsigned int>(value) || Holds<unsigned char>(value);
}

/// Two of one alternative, of which some keep the first one.
bool KeepsTheFirst(const PropertyValue &a, const PropertyValue &b)
{
    if (a.which() != b.which())
        throw std::runtime_error("Cannot interpolate between different types");
    return Holds<bool>(a) || Holds<KyID>(a);
}

double Cubic(double p0, double p1, double p2, double p3, double t)
{
    const double u = 1 - t;
    return p0 * (u * u * u) + 3 * t * (u * u) * p1 + 3 * (t * t) * u * p2 + p3 * (t * t * t);
}

PropertyValue SlowCurved(const PropertyValue &a, const PropertyValue &b, double t, double o, double i)
{
    if (KeepsTheFirst(a, b))
        return a;
    const Numbers from = NumbersOf(a);
    const Numbers to = NumbersOf(b);
    Numbers result;
    for (std::size_t n = 0; n < from.size(); ++n) {
        const double p0 = Holds<Scale3D>(a) ? float(from[n]) : from[n];
        const double p3 = Holds<Scale3D>(a) ? float(to[n]) : to[n];
        result.push_back(Cubic(p0, p0 + o, p3 + i, p3, t));
        if (IsUnsigned(a))
            result.back() += 0.5;
    }
    return ValueLike(a, result);
}

PropertyValue SlowRotation(const Orientation3D &a, const Orientation3D &b, float s)
{
    const auto radians = Slerp(Quaternion::FromOrientation(a), Quaternion::FromOrientation(b), s).ToEuler();
    Numbers degrees;
    for (const float r : {radians.X, radians.Y, radians.Z}) {
        float d = (0 - r) * 57.295776f;
        if (d < 0)
            d += 360;
        degrees.push_back(d == 360 ? 0 : d);
    }
    return ValueLike(a, degrees);
}

PropertyValue SlowStraight(const PropertyValue &a, const PropertyValue &b, std::int64_t span,
                           std::int64_t offset)
{
    if (KeepsTheFirst(a, b))
        return a;
    if (Holds<Orientation3D>(a))
        return SlowRotation(boost::get<Orientation3D>(a), boost::get<Orientation3D>(b),
                            float(offset) / float(span));
    const Numbers from = NumbersOf(a);
    const Numbers to = NumbersOf(b);
    Numbers result;
    for (std::size_t n = 0; n < from.size(); ++n) {
        const double slope = (to[n] - from[n]) / double(span);
        if (IsUnsigned(a))
            result.push_back(from[n] + 0.5 + double(offset) * slope);
        else if (Holds<int>(a) || Holds<double>(a) || Holds<Scale3D>(a))
            result.push_back(from[n] + double(offset) * slope);
        else
            result.push_back(float(from[n]) +
                             float(offset) * ((float(to[n]) - float(from[n])) / float(span)));
    }
    return ValueLike(a, result);
}

/// The curve's control values between two parameters, by its polar form.
bool LiesOutside(const std::array<double, 4> &p, double from, double to)
{
    const auto polar = [&p](double u, double v, double w) {
        std::array<double, 4> q = p;
        int count = 3;
        for (const double t : {u, v, w}) {
            for (int i = 0; i < count; ++i)
                q[i] = q[i] * (1 - t) + q[i + 1] * t;
            --count;
        }
        return q[0];
    };
    const double hull[] = {polar(from, from, from), polar(from, from, to), polar(from, to, to),
                           polar(to, to, to)};
    return std::ranges::all_of(hull, [&p](double x) { return x < p[0]; }) ||
           std::ranges::all_of(hull, [&p](double x) { return x > p[3]; });
}

// Space

using Point = std::array<float, 3>;

Point PointOf(const PropertyValue &value)
{
    Point point{};
    const Numbers numbers = NumbersOf(value);
    std::ranges::transform(numbers, point.begin(), [](double number) { return float(number); });
    return point;
}

float Length(const Point &a, const Point &b)
{
    const float x = b[0] - a[0];
    const float y = b[1] - a[1];
    const float z = b[2] - a[2];
    return std::sqrt(x * x + y * y + z * z);
}

struct Handles {
    Point incoming;
    Point outgoing;
};

Handles SlowTangents(const Point &p, const Point &c, const Point &n)
{
    const float d1 = Length(p, c);
    float sum = d1 + Length(c, n);
    if (std::abs(sum) <= 1e-5f)
        sum = 1;
    const float r = d1 / sum;
    Handles handles;
    for (std::size_t i = 0; i < 3; ++i) {
        const float m1 = (p[i] + c[i]) * 0.5f;
        const float m2 = (c[i] + n[i]) * 0.5f;
        const float q = m1 + (m2 - m1) * r;
        handles.incoming[i] = m1 - q;
        handles.outgoing[i] = m2 - q;
    }
    return handles;
}

/// The piece of a path from b to c, with the points before and after them.
struct SlowPath {
    Point a, b, c, d;

    Point At(double s) const
    {
        const Point outgoing = SlowTangents(a, b, c).outgoing;
        const Point incoming = SlowTangents(b, c, d).incoming;
        Point point;
        for (std::size_t i = 0; i < 3; ++i)
            point[i] = float(Cubic(b[i], double(b[i]) + outgoing[i], c[i] + incoming[i], c[i], s));
        return point;
    }

    Point AtFraction(double fraction) const
    {
        if (fraction == 1)
            return At(1);
        std::map<double, double> table = {{0, 0}};
        double length = 0;
        Point last = b;
        for (double s = 0.05; s < 1; s += 0.05) {
            length += Length(last, At(s));
            table[length] = s;
            last = At(s);
        }
        length += Length(last, c);
        table[length] = 1;
        const double target = fraction * table.rbegin()->first;
        const auto high = table.upper_bound(target);
        const auto low = std::prev(high);
        return At(low->second +
                  (target - low->first) * ((high->second - low->second) / (high->first - low->first)));
    }
};

PropertyValue SlowPieceValue(const std::vector<KeyFrame> &keys, std::size_t piece, int time, bool onPath)
{
    const KeyFrame &a = keys[piece];
    const KeyFrame &b = keys[piece + 1];
    const std::int64_t span = std::int64_t{b.Time()} - a.Time();
    const std::int64_t offset = std::int64_t{time} - a.Time();
    const auto isZero = [](const KyVector<2, float> &handle) { return handle.X == 0 && handle.Y == 0; };
    const bool straight = isZero(a.OutgoingPoint()) && isZero(b.IncomingPoint());
    PropertyValue value;
    if (straight) {
        value = SlowStraight(a.Value(), b.Value(), span, offset);
    } else {
        const auto table = SlowTemporalTable(a, b, Stretches::NearThePiece);
        value = SlowCurved(a.Value(), b.Value(), SlowParameter(table, time), a.OutgoingPoint().Y,
                           b.IncomingPoint().Y);
    }
    if (!onPath)
        return value;

    std::size_t before = piece;
    while (before > 0 && keys[before].Time() == a.Time())
        --before;
    std::size_t after = piece + 1;
    while (after + 1 < keys.size() && keys[after].Time() == b.Time())
        ++after;
    const Point first = PointOf(a.Value());
    const Point second = PointOf(b.Value());
    const SlowPath path{keys[before].Time() < a.Time() ? PointOf(keys[before].Value()) : first, first, second,
                        keys[after].Time() > b.Time() ? PointOf(keys[after].Value()) : second};
    const double fraction =
        straight ? double(offset) / double(span) : Length(first, PointOf(value)) / Length(first, second);
    const Point point = path.AtFraction(std::clamp(fraction, 0.0, 1.0));
    return ValueLike(value, Numbers(point.begin(), point.end()));
}

} // namespace

std::map<int, double> SlowTemporalTable(const KeyFrame &a, const KeyFrame &b, Stretches stretches)
{
    const float p2 = float(b.Time()) + b.IncomingPoint().X;
    const std::array<double, 4> p = {double(a.Time()), a.Time() + double(a.OutgoingPoint().X), p2,
                                     double(b.Time())};
    const auto timeAt = [&p](double t) {
        const double u = 1 - t;
        const double x = ((p[3] * t + 3 * p[2] * u) * t + 3 * p[1] * (u * u)) * t + p[0] * (u * u * u);
        return std::isnan(x) ? 0 : int(std::clamp(x, -2147483648.0, 2147483647.0));
    };
    const std::int64_t span = std::int64_t{b.Time()} - a.Time();
    const auto tolerance = std::int64_t(double(span) * 0.01);

    std::map<int, double> table = {{a.Time(), 0.0}, {b.Time(), 1.0}};
    using Entry = std::pair<int, double>;
    const std::function<void(Entry, Entry)> subdivide = [&](Entry low, Entry high) {
        if (std::int64_t{high.first} - low.first <= tolerance)
            return;
        if (stretches == Stretches::NearThePiece && LiesOutside(p, low.second, high.second))
            return;
        const double t = low.second + (high.second - low.second) * 0.5;
        const Entry middle = {timeAt(t), t};
        if (!table.insert(middle).second)
            return;
        subdivide(low, middle);
        subdivide(middle, high);
    };
    subdivide(*table.begin(), *table.rbegin());
    return table;
}

double SlowParameter(const std::map<int, double> &table, int time)
{
    const auto high = table.upper_bound(time);
    const auto low = std::prev(high);
    return low->second +
           (double(time) - low->first) * ((high->second - low->second) / (double(high->first) - low->first));
}

PropertyValue SlowValueAt(const KeyFrameList &list, int time, bool isSpatialProperty)
{
    std::vector<KeyFrame> keys;
    list.ForEach([&keys](const KeyFrame &key) { keys.push_back(key); });
    for (const KeyFrame &key : keys)
        if (key.Time() == time)
            return key.Value();
    if (time < keys.front().Time())
        return keys.front().Value();
    std::size_t piece = 0;
    while (piece + 1 < keys.size() && keys[piece + 1].Time() < time)
        ++piece;
    const KeyFrame &a = keys[piece];
    if (piece + 1 == keys.size() || a.Type() == KeyFrameType::Hold || a.Value() == keys[piece + 1].Value())
        return a.Value();
    const bool isPoint = Holds<KyPoint<2, float>>(a.Value()) || Holds<KyPoint<3, float>>(a.Value());
    return SlowPieceValue(keys, piece, time,
                          isSpatialProperty && list.IsSpatial() && keys.size() != 2 && isPoint);
}

std::string Exactly(const PropertyValue &value)
{
    std::string text = std::to_string(value.which()) + ":";
    for (const double number : NumbersOf(value)) {
        char digits[64];
        std::snprintf(digits, sizeof digits, " %.17g", std::isnan(number) ? std::abs(number) : number);
        text += digits;
    }
    if (const KyID *id = boost::get<KyID>(&value))
        text += " " + id->ToNarrowString();
    return text;
}

} // namespace marlet::test
