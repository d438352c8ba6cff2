#include <marlet/foundation/xml/XmlText.h>

#include <boost/lexical_cast.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace marlet::project
{

namespace
{

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool IsBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

std::string_view Trimmed(std::string_view text)
{
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

template <class Integer> Integer ParseInteger(std::string_view text)
{
    text = Trimmed(text);
    if (text.size() > 1 && text.front() == '+' && IsDigit(text[1]))
        text.remove_prefix(1);
    Integer value = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end ? value : 0;
}

/// Qt takes Unicode's blanks around a floating number and its minus sign in it.
NarrowString WithPlainBlanksAndSigns(std::string_view text)
{
    NarrowString plain;
    for (const char16_t c : FromUtf8(text)) {
        const bool blank = c == 0x85 || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) ||
                           c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
        if (blank)
            plain += ' ';
        else if (c == 0x2212)
            plain += '-';
        else
            plain += c < 0x80 ? static_cast<char>(c) : '?';
    }
    return plain;
}

bool EqualsIgnoringCase(std::string_view text, std::string_view lower)
{
    return std::ranges::equal(text, lower, [](char a, char b) {
        return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
    });
}

/// Whether a number that no double holds is too large rather than too small: its decimal point lies behind
/// its first digit that is not 0.
bool IsTooLarge(std::string_view number)
{
    const std::size_t exponentAt = number.find_first_of("eE");
    const std::string_view digits = number.substr(0, exponentAt);
    const std::size_t point = std::min(digits.find('.'), digits.size());
    const std::size_t first = digits.find_first_of("123456789");
    if (exponentAt == std::string_view::npos)
        return first < point;
    std::string_view exponentText = number.substr(exponentAt + 1);
    if (exponentText.front() == '+')
        exponentText.remove_prefix(1);
    std::int64_t exponent = 0;
    const auto [stop, error] =
        std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent);
    if (error != std::errc())
        return exponentText.front() != '-';
    const auto digitsBeforePoint = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
    return exponent > -digitsBeforePoint;
}

/// A number without blanks and sign.
double ParseMagnitude(std::string_view text)
{
    double value = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (stop != end)
        return 0;
    if (error == std::errc::result_out_of_range)
        return IsTooLarge(text) ? std::numeric_limits<double>::infinity() : 0.0;
    return value;
}

template <class Real> NumberText FormatGeneral(Real value, int digits)
{
    NumberText text;
    // Whole numbers, which most values are, come out the same and much faster.
    if (std::abs(value) < Real(10'000'000) && value == std::trunc(value) &&
        !(value == 0 && std::signbit(value)))
        return FormatInt(static_cast<std::int64_t>(value));
    // A NaN has no sign in the file, since one is not read.
    if (std::isnan(value))
        value = std::abs(value);
    const auto result = std::to_chars(text.characters, text.characters + sizeof text.characters, value,
                                      std::chars_format::general, digits);
    text.length = static_cast<int>(result.ptr - text.characters);
    return text;
}

template <class Integer> NumberText FormatInteger(Integer value)
{
    NumberText text;
    const auto result = std::to_chars(text.characters, text.characters + sizeof text.characters, value);
    text.length = static_cast<int>(result.ptr - text.characters);
    return text;
}

} // namespace

std::int32_t ParseInt(std::string_view text)
{
    return ParseInteger<std::int32_t>(text);
}

std::uint32_t ParseUInt(std::string_view text)
{
    return ParseInteger<std::uint32_t>(text);
}

std::uint64_t ParseUInt64(std::string_view text)
{
    return ParseInteger<std::uint64_t>(text);
}

float ParseFloat(std::string_view text)
{
    const double value = ParseDouble(text);
    if (std::abs(value) > double(std::numeric_limits<float>::max()))
        return std::numeric_limits<float>::infinity() * (value < 0 ? -1.0f : 1.0f);
    const auto narrow = static_cast<float>(value);
    // One that vanishes loses its sign.
    return narrow == 0 && value != 0 ? 0.0f : narrow;
}

double ParseDouble(std::string_view text)
{
    if (std::ranges::any_of(text, [](char c) { return static_cast<unsigned char>(c) >= 0x80; }))
        return ParseDouble(WithPlainBlanksAndSigns(text));
    text = Trimmed(text);
    if (EqualsIgnoringCase(text, "nan"))
        return std::numeric_limits<double>::quiet_NaN();
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    double magnitude = 0;
    if (EqualsIgnoringCase(text, "inf"))
        magnitude = std::numeric_limits<double>::infinity();
    else if (!text.empty() && (IsDigit(text.front()) || text.front() == '.'))
        magnitude = ParseMagnitude(text);
    return negative ? -magnitude : magnitude;
}

bool ParseBool(std::string_view text)
{
    if (text == "0" || text == "1")
        return text == "1";
    return boost::lexical_cast<bool>(text.data(), text.size());
}

NumberText FormatInt(std::int64_t value)
{
    return FormatInteger(value);
}

NumberText FormatUInt(std::uint64_t value)
{
    return FormatInteger(value);
}

NumberText FormatFloat(float value)
{
    // Nine digits round the largest float up to what reads as infinity.
    constexpr float largest = std::numeric_limits<float>::max();
    if (std::abs(value) == largest)
        return FormatGeneral(std::copysign(3.40282346e+38, double(value)), 9);
    return FormatGeneral(value, 9);
}

NumberText FormatDouble(double value)
{
    return FormatGeneral(value, 17);
}

NumberText FormatFloatAttribute(float value)
{
    const NumberText text = FormatGeneral(value, 8);
    return std::isnan(value) || ParseFloat(text.View()) == value ? text : FormatFloat(value);
}

} // namespace marlet::project
