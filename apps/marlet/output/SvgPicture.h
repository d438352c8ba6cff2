#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace marlet::tool
{

struct SvgAttribute {
    SvgAttribute(std::string_view attribute, std::string_view text) : name(attribute), value(text) {}
    SvgAttribute(std::string_view attribute, const std::string &text) : name(attribute), value(text) {}
    SvgAttribute(std::string_view attribute, const char *text) : name(attribute), value(text) {}
    /// With at most three digits behind the point; 0 for a number that is not finite.
    SvgAttribute(std::string_view attribute, double number);

    std::string name;
    std::string value;
};

/// A coordinate as it stands in a path or a list of points.
std::string SvgNumber(double number);

/// The text of an SVG file, made element by element. Sizes are in pixels, Y counts downwards. Works on a
/// light and on a dark page: it brings its own background.
class SvgPicture
{
public:
    using Attributes = std::initializer_list<SvgAttribute>;

    /// The style is CSS for the elements' classes.
    SvgPicture(double width, double height, std::string_view style);

    void Add(std::string_view tag, Attributes attributes);
    void Add(std::string_view tag, Attributes attributes, std::string_view text);
    /// What is added until Close stands inside of the element.
    void Open(std::string_view tag, Attributes attributes);
    void Close();

    /// The whole file. @throws std::logic_error if an element is open
    std::string Text() const;

private:
    void Begin(std::string_view tag, Attributes attributes);

    std::string text_;
    std::vector<std::string> open_;
};

} // namespace marlet::tool
