#include "Values.h"

#include <boost/variant/apply_visitor.hpp>

#include <limits>
#include <type_traits>

namespace marlet::python
{

namespace
{

using kytl::matl::KyPoint;
using kytl::matl::KyVector;

/// Whether a type is made of components, and of how many of which kind.
template <class T> struct Components {
    static constexpr int kCount = 0;
};
template <> struct Components<Scale3D> {
    static constexpr int kCount = 3;
    using Scalar = double;
};
template <> struct Components<Orientation3D> {
    static constexpr int kCount = 3;
    using Scalar = float;
};
template <> struct Components<kytl::KyColorRGBA_32f> {
    static constexpr int kCount = 4;
    using Scalar = float;
};
template <int N> struct Components<KyPoint<N, float>> {
    static constexpr int kCount = N;
    using Scalar = float;
};
template <int N> struct Components<KyVector<N, float>> {
    static constexpr int kCount = N;
    using Scalar = float;
};

template <class T> void Spread(const T &value, typename Components<T>::Scalar *to)
{
    if constexpr (std::is_same_v<T, kytl::KyColorRGBA_32f>) {
        to[0] = value.R;
        to[1] = value.G;
        to[2] = value.B;
        to[3] = value.A;
    } else {
        to[0] = value.X;
        to[1] = value.Y;
        if constexpr (Components<T>::kCount == 3)
            to[2] = value.Z;
    }
}

template <class T> T Gather(const double *from)
{
    using Scalar = typename Components<T>::Scalar;
    T value;
    if constexpr (std::is_same_v<T, kytl::KyColorRGBA_32f>) {
        value = {static_cast<float>(from[0]), static_cast<float>(from[1]), static_cast<float>(from[2]),
                 static_cast<float>(from[3])};
    } else {
        value.X = static_cast<Scalar>(from[0]);
        value.Y = static_cast<Scalar>(from[1]);
        if constexpr (Components<T>::kCount == 3)
            value.Z = static_cast<Scalar>(from[2]);
    }
    return value;
}

struct Shower {
    py::object operator()(const kytl::KyID &id) const { return ToPython(id); }
    py::object operator()(bool value) const { return py::bool_(value); }

    template <class T> py::object operator()(const T &value) const
    {
        if constexpr (Components<T>::kCount > 0) {
            py::array_t<typename Components<T>::Scalar> array(Components<T>::kCount);
            Spread(value, array.mutable_data());
            // Writing into a copy would change nothing of the property.
            array.attr("flags").attr("writeable") = false;
            return array;
        } else if constexpr (std::is_floating_point_v<T>) {
            return py::float_(static_cast<double>(value));
        } else {
            return py::int_(static_cast<long long>(value));
        }
    }
};

/// Reads the alternative that it is called with.
struct Reader {
    py::handle value;

    PropertyValue operator()(const kytl::KyID &) const
    {
        if (value.is_none())
            return kytl::KyID{};
        if (py::hasattr(value, "id"))
            return ToID(py::cast<std::string>(value.attr("id")));
        return ToID(py::cast<std::string>(value));
    }
    PropertyValue operator()(bool) const
    {
        const int truth = PyObject_IsTrue(value.ptr());
        if (truth < 0)
            throw py::error_already_set();
        return truth != 0;
    }

    template <class T> PropertyValue operator()(const T &) const
    {
        if constexpr (Components<T>::kCount > 0) {
            const auto array = py::array_t<double, py::array::c_style | py::array::forcecast>::ensure(value);
            if (!array) {
                PyErr_Clear();
                throw py::type_error("The property takes " + std::to_string(Components<T>::kCount) +
                                     " numbers");
            }
            if (array.size() != Components<T>::kCount)
                throw py::value_error("The property takes " + std::to_string(Components<T>::kCount) +
                                      " numbers, not " + std::to_string(array.size()));
            return Gather<T>(array.data());
        } else if constexpr (std::is_floating_point_v<T>) {
            const double number = PyFloat_AsDouble(value.ptr());
            if (PyErr_Occurred())
                throw py::error_already_set();
            return static_cast<T>(number);
        } else {
            const auto whole = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
            if (!whole)
                throw py::error_already_set();
            const long long number = PyLong_AsLongLong(whole.ptr());
            if (PyErr_Occurred())
                throw py::error_already_set();
            if (number < std::numeric_limits<T>::min() || number > std::numeric_limits<T>::max())
                throw py::value_error("The number is out of the property's range");
            return static_cast<T>(number);
        }
    }
};

struct Filler {
    const std::vector<py::ssize_t> &shape;
    const std::function<PropertyValue(int)> &valueAt;
    const PropertyValue &first;
    int count;

    py::array operator()(const kytl::KyID &) const
    {
        throw py::type_error("IDs make no array: ask for them one by one");
    }

    template <class T> py::array operator()(const T &) const
    {
        if constexpr (Components<T>::kCount > 0) {
            constexpr int kWidth = Components<T>::kCount;
            std::vector<py::ssize_t> whole = shape;
            whole.push_back(kWidth);
            py::array_t<typename Components<T>::Scalar> array(whole);
            auto *to = array.mutable_data();
            for (int i = 0; i < count; ++i, to += kWidth)
                Spread(boost::get<T>(i == 0 ? first : valueAt(i)), to);
            return array;
        } else {
            py::array_t<T> array(shape);
            T *to = array.mutable_data();
            for (int i = 0; i < count; ++i)
                *to++ = boost::get<T>(i == 0 ? first : valueAt(i));
            return array;
        }
    }
};

} // namespace

py::object ToPython(const PropertyValue &value)
{
    return boost::apply_visitor(Shower(), value);
}

PropertyValue FromPython(const py::handle &value, const PropertyValue &like)
{
    return boost::apply_visitor(Reader{value}, like);
}

const char *TypeName(const PropertyValue &value)
{
    static constexpr const char *kNames[] = {"int",    "uint",    "byte",          "float", "double",
                                             "bool",   "scale3d", "orientation3d", "color", "point2",
                                             "point3", "vector2", "vector3",       "id"};
    return kNames[value.which()];
}

py::array ValuesArray(const std::vector<py::ssize_t> &shape, const std::function<PropertyValue(int)> &valueAt)
{
    py::ssize_t count = 1;
    for (const py::ssize_t length : shape)
        count *= length;
    // The type of no values at all is that of the first one that there would be.
    const PropertyValue first = valueAt(0);
    return boost::apply_visitor(Filler{shape, valueAt, first, static_cast<int>(count)}, first);
}

IntegerArray ToIntegers(const py::object &numbers)
{
    const auto array = py::array::ensure(numbers);
    if (!array || (array.dtype().kind() != 'i' && array.dtype().kind() != 'u' && array.size() > 0)) {
        PyErr_Clear();
        throw py::type_error("Times and frames are whole numbers");
    }
    const auto whole = py::array_t<long long, py::array::c_style | py::array::forcecast>::ensure(array);
    IntegerArray result;
    result.shape.assign(whole.shape(), whole.shape() + whole.ndim());
    result.values.reserve(static_cast<std::size_t>(whole.size()));
    for (const long long *number = whole.data(), *end = number + whole.size(); number != end; ++number) {
        if (*number < std::numeric_limits<int>::min() || *number > std::numeric_limits<int>::max())
            throw py::value_error("A time or a frame is out of range");
        result.values.push_back(static_cast<int>(*number));
    }
    return result;
}

py::array MatricesArray(const IntegerArray &numbers, const std::function<Matrix(int)> &matrixAt)
{
    std::vector<py::ssize_t> shape = numbers.shape;
    shape.push_back(4);
    shape.push_back(4);
    py::array_t<float> array(shape);
    float *to = array.mutable_data();
    for (const int number : numbers.values) {
        const Matrix matrix = matrixAt(number);
        to = std::copy(matrix.Data(), matrix.Data() + 16, to);
    }
    return array;
}

py::array ToArray(const Matrix &matrix)
{
    return MatricesArray({{}, {0}}, [&](int) { return matrix; });
}

py::object ToPython(const kytl::KyID &id)
{
    return id.IsNull() ? py::object(py::none()) : py::str(id.ToNarrowString());
}

std::vector<std::string> ToTexts(const std::vector<kytl::KyID> &ids)
{
    std::vector<std::string> texts;
    texts.reserve(ids.size());
    for (const kytl::KyID &id : ids)
        texts.push_back(id.ToNarrowString());
    return texts;
}

kytl::KyID ToID(const std::string &text)
try {
    return kytl::KyID::FromString(std::string_view(text));
} catch (const std::runtime_error &) {
    throw py::value_error("'" + text + "' is no ID");
}

} // namespace marlet::python
