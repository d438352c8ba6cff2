#pragma once

#include <marlet/animation/PropertyValue.h>
#include <marlet/foundation/Numbers.h>

#include <cstdint>

namespace marlet::project
{

// What each alternative of PropertyValue is to its text and to interpolation: its tag, its components, and
// the arithmetic of one component. Everything else is written once over these traits.

/// Never changes between two key frames.
struct SteppedArithmetic {
};

/// Widen and Narrow are the ways into and out of the double arithmetic of curves; Line is the value of a
/// straight piece after offset of its span.
template <class Real> struct RealArithmetic {
    static double Widen(Real value) { return value; }
    static Real Narrow(double value) { return static_cast<Real>(value); }
    static Real Line(Real a, Real b, std::int64_t span, std::int64_t offset)
    {
        return a + static_cast<Real>(offset) * ((b - a) / static_cast<Real>(span));
    }
};

struct SignedArithmetic {
    static double Widen(int value) { return value; }
    static int Narrow(double value) { return Truncate<int>(RoundHalfAway(value)); }
    static int Line(int a, int b, std::int64_t span, std::int64_t offset)
    {
        return Narrow(RealArithmetic<double>::Line(a, b, span, offset));
    }
};

template <class Unsigned> struct UnsignedArithmetic {
    static double Widen(Unsigned value) { return value; }
    static Unsigned Narrow(double value) { return TruncateWrapping<Unsigned>(value + 0.5); }
    static Unsigned Line(Unsigned a, Unsigned b, std::int64_t span, std::int64_t offset)
    {
        // The half that rounds goes in first: added last, it would round the sum another way.
        const double slope = (Widen(b) - Widen(a)) / static_cast<double>(span);
        return TruncateWrapping<Unsigned>(Widen(a) + 0.5 + static_cast<double>(offset) * slope);
    }
};

/// Held in double, but with the precision of float wherever it was worked out.
struct PercentArithmetic {
    static double Widen(double value) { return static_cast<float>(value); }
    static double Narrow(double value) { return static_cast<float>(value); }
    static double Line(double a, double b, std::int64_t span, std::int64_t offset)
    {
        return Narrow(RealArithmetic<double>::Line(a, b, span, offset));
    }
};

template <class Value, class Component> struct ValueField {
    const char *name;
    Component Value::*member;
};

/// Defined for the alternatives alone, so that one without traits does not compile. A tag without fields is
/// an element whose text is the value; fields are attributes of the element.
template <class T> struct ValueTraits;

template <> struct ValueTraits<int> {
    static constexpr const char *kTag = "int32_t";
    using Arithmetic = SignedArithmetic;
};

template <> struct ValueTraits<unsigned int> {
    static constexpr const char *kTag = "uint32_t";
    using Arithmetic = UnsignedArithmetic<unsigned int>;
};

template <> struct ValueTraits<unsigned char> {
    static constexpr const char *kTag = "uint8_t";
    using Arithmetic = UnsignedArithmetic<unsigned char>;
};

template <> struct ValueTraits<float> {
    static constexpr const char *kTag = "float";
    using Arithmetic = RealArithmetic<float>;
};

template <> struct ValueTraits<double> {
    static constexpr const char *kTag = "double";
    using Arithmetic = RealArithmetic<double>;
};

template <> struct ValueTraits<bool> {
    static constexpr const char *kTag = "bool";
    using Arithmetic = SteppedArithmetic;
};

template <> struct ValueTraits<Scale3D> {
    static constexpr const char *kTag = "Scale3D";
    using Arithmetic = PercentArithmetic;
    static constexpr ValueField<Scale3D, double> kFields[] = {
        {"X", &Scale3D::X}, {"Y", &Scale3D::Y}, {"Z", &Scale3D::Z}};
};

template <> struct ValueTraits<Orientation3D> {
    static constexpr const char *kTag = "Orientation3D";
    using Arithmetic = RealArithmetic<float>;
    static constexpr ValueField<Orientation3D, float> kFields[] = {
        {"X", &Orientation3D::X}, {"Y", &Orientation3D::Y}, {"Z", &Orientation3D::Z}};
};

template <> struct ValueTraits<kytl::KyColorRGBA_32f> {
    using Color = kytl::KyColorRGBA_32f;
    static constexpr const char *kTag = "MarletColor";
    using Arithmetic = RealArithmetic<float>;
    static constexpr ValueField<Color, float> kFields[] = {
        {"R", &Color::R}, {"G", &Color::G}, {"B", &Color::B}, {"A", &Color::A}};
};

/// What the points and vectors of two and of three dimensions have in common.
template <class T, int N> struct PlainCoordinates;

template <class T> struct PlainCoordinates<T, 2> {
    using Arithmetic = RealArithmetic<float>;
    static constexpr ValueField<T, float> kFields[] = {{"X", &T::X}, {"Y", &T::Y}};
};

template <class T> struct PlainCoordinates<T, 3> {
    using Arithmetic = RealArithmetic<float>;
    static constexpr ValueField<T, float> kFields[] = {{"X", &T::X}, {"Y", &T::Y}, {"Z", &T::Z}};
};

template <>
struct ValueTraits<kytl::matl::KyPoint<2, float>> : PlainCoordinates<kytl::matl::KyPoint<2, float>, 2> {
    static constexpr const char *kTag = "KyPoint2_32f";
};

template <>
struct ValueTraits<kytl::matl::KyPoint<3, float>> : PlainCoordinates<kytl::matl::KyPoint<3, float>, 3> {
    static constexpr const char *kTag = "KyPoint3_32f";
};

template <>
struct ValueTraits<kytl::matl::KyVector<2, float>> : PlainCoordinates<kytl::matl::KyVector<2, float>, 2> {
    static constexpr const char *kTag = "KyVector2_32f";
};

template <>
struct ValueTraits<kytl::matl::KyVector<3, float>> : PlainCoordinates<kytl::matl::KyVector<3, float>, 3> {
    static constexpr const char *kTag = "KyVector3_32f";
};

template <> struct ValueTraits<kytl::KyID> {
    static constexpr const char *kTag = "KyID";
    using Arithmetic = SteppedArithmetic;
};

template <class T>
concept HasFields = requires
{
    ValueTraits<T>::kFields;
};

} // namespace marlet::project
