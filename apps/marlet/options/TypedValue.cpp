#include "TypedValue.h"

#include "FindByIdOrName.h"
#include "output/Json.h"
#include "output/Output.h"

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

#include <charconv>
#include <cmath>
#include <initializer_list>
#include <type_traits>

namespace marlet::tool
{

using kytl::matl::KyPoint;
using kytl::matl::KyVector;

namespace
{

/// Hands the components of a compound value to a function, and any other value as it is.
template <class Scalar, class Components> class ComponentVisitor : public boost::static_visitor<>
{
public:
    ComponentVisitor(Scalar scalar, Components components) : scalar_(scalar), components_(components) {}

    void operator()(const project::Scale3D &v) const { components_({v.X, v.Y, v.Z}); }
    void operator()(const project::Orientation3D &v) const { components_({v.X, v.Y, v.Z}); }
    void operator()(const kytl::KyColorRGBA_32f &v) const { components_({v.R, v.G, v.B, v.A}); }
    void operator()(const KyPoint<2, float> &v) const { components_({v.X, v.Y}); }
    void operator()(const KyPoint<3, float> &v) const { components_({v.X, v.Y, v.Z}); }
    void operator()(const KyVector<2, float> &v) const { components_({v.X, v.Y}); }
    void operator()(const KyVector<3, float> &v) const { components_({v.X, v.Y, v.Z}); }
    template <class T> void operator()(const T &v) const { scalar_(v); }

private:
    Scalar scalar_;
    Components components_;
};

struct TypeNameVisitor : boost::static_visitor<const char *> {
    const char *operator()(int) const { return "int32_t"; }
    const char *operator()(unsigned int) const { return "uint32_t"; }
    const char *operator()(unsigned char) const { return "uint8_t"; }
    const char *operator()(float) const { return "float"; }
    const char *operator()(double) const { return "double"; }
    const char *operator()(bool) const { return "bool"; }
    const char *operator()(const project::Scale3D &) const { return "Scale3D"; }
    const char *operator()(const project::Orientation3D &) const { return "Orientation3D"; }
    const char *operator()(const kytl::KyColorRGBA_32f &) const { return "MarletColor"; }
    const char *operator()(const KyPoint<2, float> &) const { return "KyPoint2_32f"; }
    const char *operator()(const KyPoint<3, float> &) const { return "KyPoint3_32f"; }
    const char *operator()(const KyVector<2, float> &) const { return "KyVector2_32f"; }
    const char *operator()(const KyVector<3, float> &) const { return "KyVector3_32f"; }
    const char *operator()(const kytl::KyID &) const { return "KyID"; }
};

struct TextScalar {
    std::string &text;

    void operator()(bool v) const { text = v ? "yes" : "no"; }
    void operator()(const kytl::KyID &v) const { text = v.ToNarrowString(); }
    void operator()(float v) const { text = NumberText(v); }
    void operator()(double v) const { text = NumberText(v); }
    template <class Integer> void operator()(Integer v) const { text = std::to_string(v); }
};

struct TextComponents {
    std::string &text;

    template <class Real> void Write(std::initializer_list<Real> components) const
    {
        for (const Real component : components)
            text += (text.empty() ? "(" : ", ") + NumberText(component);
        text += ')';
    }
    void operator()(std::initializer_list<float> components) const { Write(components); }
    void operator()(std::initializer_list<double> components) const { Write(components); }
};

struct JsonScalar {
    JsonWriter &json;

    void operator()(unsigned char v) const { json.Value(static_cast<unsigned int>(v)); }
    template <class T> void operator()(const T &v) const { json.Value(v); }
};

struct JsonComponents {
    JsonWriter &json;

    template <class Real> void Write(std::initializer_list<Real> components) const
    {
        json.BeginArray();
        for (const Real component : components)
            json.Value(component);
        json.EndArray();
    }
    void operator()(std::initializer_list<float> components) const { Write(components); }
    void operator()(std::initializer_list<double> components) const { Write(components); }
};

struct NumberScalar {
    std::vector<double> &numbers;

    void operator()(const kytl::KyID &) const {}
    template <class Number> void operator()(Number v) const { numbers.push_back(static_cast<double>(v)); }
};

struct NumberComponents {
    std::vector<double> &numbers;

    template <class Real> void operator()(std::initializer_list<Real> components) const
    {
        numbers.assign(components.begin(), components.end());
    }
};

template <class Number> bool ParsePart(std::string_view part, Number &number)
{
    while (part.starts_with(' '))
        part.remove_prefix(1);
    const char *end = part.data() + part.size();
    const auto [stop, error] = std::from_chars(part.data(), end, number);
    if constexpr (std::is_floating_point_v<Number>)
        if (!std::isfinite(number))
            return false;
    return error == std::errc() && stop == end;
}

/// Reads each component from its part of a text; a value of one is a part by itself.
class ParsingVisitor : public boost::static_visitor<bool>
{
public:
    explicit ParsingVisitor(std::string_view text) : rest_(text)
    {
        if (rest_.starts_with('(') && rest_.ends_with(')'))
            rest_ = rest_.substr(1, rest_.size() - 2);
    }

    bool operator()(bool &v)
    {
        v = rest_ == "yes";
        return v || rest_ == "no";
    }
    bool operator()(kytl::KyID &v)
    {
        const std::optional<kytl::KyID> id = ParseID(std::string(rest_));
        v = id.value_or(kytl::KyID());
        return id.has_value();
    }
    bool operator()(project::Scale3D &v) { return All(v.X, v.Y, v.Z); }
    bool operator()(project::Orientation3D &v) { return All(v.X, v.Y, v.Z); }
    bool operator()(kytl::KyColorRGBA_32f &v) { return All(v.R, v.G, v.B, v.A); }
    bool operator()(KyPoint<2, float> &v) { return All(v.X, v.Y); }
    bool operator()(KyPoint<3, float> &v) { return All(v.X, v.Y, v.Z); }
    bool operator()(KyVector<2, float> &v) { return All(v.X, v.Y); }
    bool operator()(KyVector<3, float> &v) { return All(v.X, v.Y, v.Z); }
    template <class Number> bool operator()(Number &v) { return All(v); }

private:
    template <class... Parts> bool All(Parts &...parts) { return (Next(parts) && ...) && isAtEnd_; }

    template <class Number> bool Next(Number &number)
    {
        if (isAtEnd_)
            return false;
        const std::size_t comma = rest_.find(',');
        const std::string_view part = rest_.substr(0, comma);
        isAtEnd_ = comma == std::string_view::npos;
        rest_.remove_prefix(isAtEnd_ ? rest_.size() : comma + 1);
        return ParsePart(part, number);
    }

    std::string_view rest_;
    bool isAtEnd_ = false;
};

} // namespace

std::string TypeName(const project::PropertyValue &value)
{
    return boost::apply_visitor(TypeNameVisitor(), value);
}

std::string ValueText(const project::PropertyValue &value)
{
    std::string text;
    boost::apply_visitor(ComponentVisitor(TextScalar{text}, TextComponents{text}), value);
    return text;
}

std::optional<project::PropertyValue> ParseValue(const std::string &text, const project::PropertyValue &model)
{
    project::PropertyValue value = model;
    ParsingVisitor visitor(text);
    if (!boost::apply_visitor(visitor, value))
        return {};
    return value;
}

std::vector<double> Components(const project::PropertyValue &value)
{
    std::vector<double> numbers;
    boost::apply_visitor(ComponentVisitor(NumberScalar{numbers}, NumberComponents{numbers}), value);
    return numbers;
}

void WriteValue(JsonWriter &json, const project::PropertyValue &value)
{
    boost::apply_visitor(ComponentVisitor(JsonScalar{json}, JsonComponents{json}), value);
}

} // namespace marlet::tool
