#pragma once

#include "Common.h"

#include <pybind11/numpy.h>

#include <marlet/animation/PropertyValue.h>
#include <marlet/foundation/KyColorRGBA.h>
#include <marlet/foundation/KyMatrix.h>
#include <marlet/foundation/KyPoint.h>

#include <functional>
#include <initializer_list>
#include <utility>
#include <vector>

namespace marlet::python
{

/// A number, a bool, an array that cannot be written for what has several components, or the text of an ID;
/// None for the null ID.
py::object ToPython(const PropertyValue &value);
/// The same alternative as that of another value, so that a property keeps its type.
/// @throws py::type_error, py::value_error for what does not fit
PropertyValue FromPython(const py::handle &value, const PropertyValue &like);
/// "float", "point2" and so on.
const char *TypeName(const PropertyValue &value);

/// Values one after the other as one array, with the components as its last axis.
/// @param valueAt is asked once for each; all have to be of one alternative
/// @throws boost::bad_get if they are not, py::type_error for IDs
py::array ValuesArray(const std::vector<py::ssize_t> &shape,
                      const std::function<PropertyValue(int)> &valueAt);

/// Whole numbers of whatever shape, of which a single one has none.
struct IntegerArray {
    std::vector<py::ssize_t> shape;
    std::vector<int> values;
};
/// @throws py::type_error, py::value_error for what is not whole or too large
IntegerArray ToIntegers(const py::object &numbers);

using Matrix = kytl::matl::KyMatrix<4, 4, float>;
/// A matrix for each number, as an array of two more axes.
py::array MatricesArray(const IntegerArray &numbers, const std::function<Matrix(int)> &matrixAt);
py::array ToArray(const Matrix &matrix);

using Pair = std::pair<float, float>;
inline Pair ToPair(const kytl::matl::KyPoint<2, float> &point)
{
    return {point.X, point.Y};
}
inline Pair ToPair(const kytl::matl::KyVector<2, float> &vector)
{
    return {vector.X, vector.Y};
}
inline kytl::matl::KyPoint<2, float> ToPoint(const Pair &pair)
{
    return {pair.first, pair.second};
}

using Color = std::tuple<float, float, float, float>;
inline Color ToTuple(const kytl::KyColorRGBA_32f &color)
{
    return {color.R, color.G, color.B, color.A};
}
inline kytl::KyColorRGBA_32f ToColor(const Color &color)
{
    const auto [red, green, blue, alpha] = color;
    return {red, green, blue, alpha};
}

/// The text of an ID; None for the null ID.
py::object ToPython(const kytl::KyID &id);
std::vector<std::string> ToTexts(const std::vector<kytl::KyID> &ids);
/// @throws py::value_error
kytl::KyID ToID(const std::string &text);

/// The words that Python has for an enumeration.
template <class Enum> class Words
{
public:
    Words(std::initializer_list<std::pair<Enum, const char *>> words) : words_(words) {}

    std::string Of(Enum value) const
    {
        for (const auto &[known, word] : words_)
            if (known == value)
                return word;
        return std::to_string(static_cast<int>(value));
    }

    /// @throws py::value_error that lists the words
    Enum Find(const std::string &word) const
    {
        std::string choices;
        for (const auto &[known, name] : words_) {
            if (word == name)
                return known;
            choices += (choices.empty() ? "'" : ", '") + std::string(name) + "'";
        }
        throw py::value_error("'" + word + "' is none of " + choices);
    }

private:
    std::vector<std::pair<Enum, const char *>> words_;
};

} // namespace marlet::python
