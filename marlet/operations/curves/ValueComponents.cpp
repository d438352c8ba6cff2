#include <marlet/operations/curves/ValueComponents.h>

#include <marlet/animation/PropertyValueTraits.h>

#include <boost/variant/apply_visitor.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace marlet::project
{

std::vector<double> ComponentsOf(const PropertyValue &value)
{
    return boost::apply_visitor(
        []<class T>(const T &content) {
            using Arithmetic = typename ValueTraits<T>::Arithmetic;
            std::vector<double> components;
            if constexpr (HasFields<T>) {
                for (const auto &field : ValueTraits<T>::kFields)
                    components.push_back(Arithmetic::Widen(content.*field.member));
            } else if constexpr (!std::is_same_v<Arithmetic, SteppedArithmetic>) {
                components.push_back(Arithmetic::Widen(content));
            }
            return components;
        },
        value);
}

std::optional<double> CommonRise(const PropertyValue &from, const PropertyValue &to)
{
    constexpr double kTolerance = 1e-6;
    const std::vector<double> a = ComponentsOf(from);
    const std::vector<double> b = ComponentsOf(to);
    if (a.empty() || a.size() != b.size())
        return std::nullopt;
    const double rise = b[0] - a[0];
    for (std::size_t i = 1; i < a.size(); ++i)
        if (std::abs(b[i] - a[i] - rise) > kTolerance * std::abs(rise))
            return std::nullopt;
    return rise;
}

double Deviation(const PropertyValue &a, const PropertyValue &b)
{
    constexpr double kFar = std::numeric_limits<double>::infinity();
    const std::vector<double> first = ComponentsOf(a);
    const std::vector<double> second = ComponentsOf(b);
    if (a.which() != b.which())
        return kFar;
    if (first.empty())
        return a == b ? 0 : kFar;
    const bool isOrientation = boost::get<Orientation3D>(&a) != nullptr;
    double largest = 0;
    for (std::size_t i = 0; i < first.size(); ++i) {
        const double difference = second[i] - first[i];
        largest = std::max(largest, std::abs(isOrientation ? std::remainder(difference, 360) : difference));
    }
    return largest;
}

} // namespace marlet::project
