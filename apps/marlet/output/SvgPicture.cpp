#include "SvgPicture.h"

#include "Markup.h"

#include <charconv>
#include <cmath>
#include <stdexcept>

namespace marlet::tool
{

SvgAttribute::SvgAttribute(std::string_view attribute, double number)
    : name(attribute), value(SvgNumber(number))
{
}

std::string SvgNumber(double number)
{
    constexpr double kLimit = 1e9;
    if (!(std::abs(number) < kLimit))
        return number >= kLimit ? "1000000000" : number <= -kLimit ? "-1000000000" : "0";
    const double rounded = std::round(number * 1000) / 1000;
    char buffer[40];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, rounded == 0 ? 0 : rounded);
    return std::string(buffer, result.ptr);
}

SvgPicture::SvgPicture(double width, double height, std::string_view style)
{
    text_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    Open("svg", {{"xmlns", "http://www.w3.org/2000/svg"},
                 {"width", width},
                 {"height", height},
                 {"viewBox", "0 0 " + SvgNumber(width) + " " + SvgNumber(height)}});
    Add("style", {}, style);
    Add("rect", {{"class", "background"}, {"width", "100%"}, {"height", "100%"}});
}

void SvgPicture::Begin(std::string_view tag, Attributes attributes)
{
    text_.append(open_.size(), ' ').append("<").append(tag);
    for (const SvgAttribute &attribute : attributes)
        text_.append(" ")
            .append(attribute.name)
            .append("=\"")
            .append(EscapedMarkup(attribute.value))
            .append("\"");
}

void SvgPicture::Add(std::string_view tag, Attributes attributes)
{
    Begin(tag, attributes);
    text_ += "/>\n";
}

void SvgPicture::Add(std::string_view tag, Attributes attributes, std::string_view text)
{
    Begin(tag, attributes);
    text_.append(">").append(EscapedMarkup(text)).append("</").append(tag).append(">\n");
}

void SvgPicture::Open(std::string_view tag, Attributes attributes)
{
    Begin(tag, attributes);
    text_ += ">\n";
    open_.emplace_back(tag);
}

void SvgPicture::Close()
{
    if (open_.size() < 2)
        throw std::logic_error("No element of the picture is open");
    text_.append(open_.size() - 1, ' ').append("</").append(open_.back()).append(">\n");
    open_.pop_back();
}

std::string SvgPicture::Text() const
{
    if (open_.size() != 1)
        throw std::logic_error("An element of the picture is open");
    return text_ + "</svg>\n";
}

} // namespace marlet::tool
