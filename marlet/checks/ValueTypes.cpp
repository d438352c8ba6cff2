#include <marlet/checks/ValueTypes.h>

#include <marlet/animation/PropertyValueTraits.h>

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

#include <array>
#include <cmath>
#include <type_traits>

namespace marlet::project
{

namespace
{

struct TypeNameVisitor : boost::static_visitor<const char *> {
    template <class T> const char *operator()(const T &) const { return ValueTraits<T>::kTag; }
};

/// The numbers of a value; none of an ID.
struct Numbers {
    std::array<double, 4> values{};
    std::size_t count = 0;
};

struct NumbersVisitor : boost::static_visitor<Numbers> {
    Numbers operator()(const kytl::KyID &) const { return {}; }
    template <class T> Numbers operator()(const T &value) const
    {
        Numbers numbers;
        if constexpr (HasFields<T>) {
            for (const auto &field : ValueTraits<T>::kFields)
                numbers.values[numbers.count++] = static_cast<double>(value.*field.member);
        } else {
            numbers.values[numbers.count++] = static_cast<double>(value);
        }
        return numbers;
    }
};

/// Makes a value of the alternative that it visits.
class ConversionVisitor : public boost::static_visitor<std::optional<PropertyValue>>
{
public:
    explicit ConversionVisitor(const Numbers &numbers) : numbers_(numbers) {}

    std::optional<PropertyValue> operator()(const kytl::KyID &) const { return std::nullopt; }
    template <class T> std::optional<PropertyValue> operator()(const T &) const
    {
        T made{};
        if constexpr (HasFields<T>) {
            if (numbers_.count != std::size(ValueTraits<T>::kFields))
                return std::nullopt;
            std::size_t index = 0;
            for (const auto &field : ValueTraits<T>::kFields)
                if (!Store(numbers_.values[index++], made.*field.member))
                    return std::nullopt;
        } else if (numbers_.count != 1 || !Store(numbers_.values[0], made)) {
            return std::nullopt;
        }
        return PropertyValue(made);
    }

private:
    template <class Component> static bool Store(double number, Component &component)
    {
        if constexpr (std::is_floating_point_v<Component>) {
            // What is too large for a float becomes infinite.
            component = static_cast<Component>(number);
            return std::isfinite(component);
        } else if constexpr (std::is_same_v<Component, bool>) {
            component = number != 0;
            return number == 0 || number == 1;
        } else {
            component = Truncate<Component>(number);
            return static_cast<double>(component) == number;
        }
    }

    const Numbers &numbers_;
};

} // namespace

NarrowString TypeName(const PropertyValue &value)
{
    return boost::apply_visitor(TypeNameVisitor(), value);
}

bool IsFinite(const PropertyValue &value)
{
    const Numbers numbers = boost::apply_visitor(NumbersVisitor(), value);
    for (std::size_t i = 0; i < numbers.count; ++i)
        if (!std::isfinite(numbers.values[i]))
            return false;
    return true;
}

std::optional<PropertyValue> Converted(const PropertyValue &value, const PropertyValue &model)
{
    const Numbers numbers = boost::apply_visitor(NumbersVisitor(), value);
    return boost::apply_visitor(ConversionVisitor(numbers), model);
}

} // namespace marlet::project
