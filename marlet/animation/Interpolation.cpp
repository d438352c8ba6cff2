#include <marlet/animation/Interpolation.h>

#include <marlet/animation/PropertyValueTraits.h>
#include <marlet/foundation/Quaternion.h>

#include <boost/variant/apply_visitor.hpp>

#include <stdexcept>

namespace marlet::project
{

namespace
{

/// Applies a function of two components and the arithmetic to a value, component by component.
template <class T, class Function> T ByComponent(const T &a, const T &b, Function function)
{
    using Arithmetic = typename ValueTraits<T>::Arithmetic;
    if constexpr (std::is_same_v<Arithmetic, SteppedArithmetic>) {
        return a;
    } else if constexpr (HasFields<T>) {
        T result;
        for (const auto &field : ValueTraits<T>::kFields)
            result.*field.member = function(Arithmetic(), a.*field.member, b.*field.member);
        return result;
    } else {
        return function(Arithmetic(), a, b);
    }
}

/// Applies a function to the contents of two values of the same alternative.
template <class Function>
PropertyValue Combine(const PropertyValue &a, const PropertyValue &b, Function function)
{
    return boost::apply_visitor(
        [&](const auto &first) -> PropertyValue {
            using T = std::decay_t<decltype(first)>;
            const T *second = boost::get<T>(&b);
            if (second == nullptr)
                throw std::runtime_error("Cannot interpolate between different types");
            return function(first, *second);
        },
        a);
}

float DegreesFromRadians(float radians)
{
    float degrees = (0 - radians) * 57.295776f;
    if (degrees < 0)
        degrees += 360;
    return degrees >= 360 ? 0 : degrees;
}

/// Turns the short way round about one axis.
Orientation3D StraightRotation(const Orientation3D &a, const Orientation3D &b, float fraction)
{
    const Quaternion rotation =
        Slerp(Quaternion::FromOrientation(a), Quaternion::FromOrientation(b), fraction);
    const auto radians = rotation.ToEuler();
    return {DegreesFromRadians(radians.X), DegreesFromRadians(radians.Y), DegreesFromRadians(radians.Z)};
}

} // namespace

PropertyValue StraightValue(const PropertyValue &a, const PropertyValue &b, std::int64_t span,
                            std::int64_t offset)
{
    return Combine(a, b, [=]<class T>(const T &first, const T &second) -> T {
        if constexpr (std::is_same_v<T, Orientation3D>) {
            return StraightRotation(first, second, static_cast<float>(offset) / static_cast<float>(span));
        } else {
            return ByComponent(first, second, [=](auto arithmetic, auto from, auto to) {
                return arithmetic.Line(from, to, span, offset);
            });
        }
    });
}

PropertyValue CurvedValue(const PropertyValue &a, const PropertyValue &b, double t, double outgoing,
                          double incoming)
{
    return Combine(a, b, [=]<class T>(const T &first, const T &second) -> T {
        return ByComponent(first, second, [=](auto arithmetic, auto from, auto to) {
            const double p0 = arithmetic.Widen(from);
            const double p3 = arithmetic.Widen(to);
            return arithmetic.Narrow(CubicBezier(p0, p0 + outgoing, p3 + incoming, p3, t));
        });
    });
}

} // namespace marlet::project
