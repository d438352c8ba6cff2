#include <marlet/foundation/xml/XmlText.h>

#include <marlet/foundation/Utf8.h>
#include <marlet/foundation/xml/XmlCharacters.h>

#include <boost/lexical_cast.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

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

template <class Integer> std::optional<Integer> FindInteger(std::string_view text)
{
    text = Trimmed(text);
    if (text.size() > 1 && text.front() == '+' && IsDigit(text[1]))
        text.remove_prefix(1);
    Integer value = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

bool IsAscii(std::string_view text)
{
    return std::ranges::none_of(text, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
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

/// Digits with at most a point among them, which most numbers are, and so few that their quotient is what the
/// text reads as.
std::optional<double> ParseFewDigits(std::string_view text)
{
    constexpr double powers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6, 1e7,
                                 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14};
    constexpr std::size_t most = 15;
    if (text.empty() || text.size() > most)
        return {};
    std::uint64_t digits = 0;
    std::size_t behindPoint = 0;
    bool isBehindPoint = false;
    for (const char c : text) {
        if (IsDigit(c)) {
            digits = digits * 10 + static_cast<std::uint64_t>(c - '0');
            behindPoint += isBehindPoint ? 1 : 0;
        } else if (c == '.' && !isBehindPoint) {
            isBehindPoint = true;
        } else {
            return {};
        }
    }
    return text == "." ? std::nullopt : std::optional(static_cast<double>(digits) / powers[behindPoint]);
}

/// A number without blanks and sign; nothing for a text that is none, or whose number vanishes.
std::optional<double> ParseMagnitude(std::string_view text)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    if (const std::optional<double> value = ParseFewDigits(text))
        return value;
    if (EqualsIgnoringCase(text, "inf"))
        return infinity;
    // Keeps out what std::from_chars takes beyond digits.
    if (text.empty() || (!IsDigit(text.front()) && text.front() != '.'))
        return {};
    double value = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (stop != end)
        return {};
    if (error == std::errc::result_out_of_range)
        return IsTooLarge(text) ? std::optional(infinity) : std::nullopt;
    return value;
}

std::optional<double> ParseReal(std::string_view text)
{
    text = Trimmed(text);
    if (EqualsIgnoringCase(text, "nan"))
        return std::numeric_limits<double>::quiet_NaN();
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    const std::optional<double> magnitude = ParseMagnitude(text);
    return negative && magnitude ? -*magnitude : magnitude;
}

std::optional<double> FindReal(std::string_view text)
{
    const std::optional<double> value = ParseReal(text);
    return value || IsAscii(text) ? value : ParseReal(WithPlainBlanksAndSigns(text));
}

__extension__ using Wide = unsigned __int128;

constexpr auto kPowersOfFive = [] {
    std::array<std::uint64_t, 21> powers = {1};
    for (std::size_t i = 1; i < powers.size(); ++i)
        powers[i] = powers[i - 1] * 5;
    return powers;
}();

/// From 1e-4 on: each negative power lies just above the decimal one, so that comparing with it is exact.
constexpr std::array<double, 22> kPowersOfTen = {1e-4, 1e-3, 1e-2, 1e-1, 1e0,  1e1, 1e2,  1e3,
                                                 1e4,  1e5,  1e6,  1e7,  1e8,  1e9, 1e10, 1e11,
                                                 1e12, 1e13, 1e14, 1e15, 1e16, 1e17};
constexpr int kLowestPower = -4;

double PowerOfTen(int exponent)
{
    return kPowersOfTen[static_cast<std::size_t>(exponent - kLowestPower)];
}

/// A number as significant * 10^-scale.
struct Decimal {
    std::uint64_t significant;
    int scale;
};

/// What becomes of a number half-way between two roundings.
enum class Halves { ToEven, Up };

/// The number rounded to so many digits. It must lie from 1e-4 up to 10^digits, where all
/// that it takes is one exact product of integers.
Decimal Rounded(double value, int digits, Halves halves)
{
    int exponent = kLowestPower;
    while (value >= PowerOfTen(exponent + 1))
        ++exponent;
    const int scale = digits - 1 - exponent;
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const std::uint64_t mantissa = (bits & 0xF'FFFF'FFFF'FFFF) | 0x10'0000'0000'0000;
    const int shift = static_cast<int>(bits >> 52) - 1075 + scale;
    const Wide product = Wide(mantissa) * kPowersOfFive[static_cast<std::size_t>(scale)];
    if (shift >= 0)
        return {static_cast<std::uint64_t>(product << shift), scale};
    const auto whole = static_cast<std::uint64_t>(product >> -shift);
    const Wide rest = product - (Wide(whole) << -shift);
    const Wide half = Wide(1) << (-shift - 1);
    const bool up = rest > half || (rest == half && (halves == Halves::Up || whole % 2 == 1));
    return {whole + (up ? 1u : 0u), scale};
}

/// Digits with a point among them, or zeros before them, and without zeros at the end.
NumberText FormatFixed(Decimal number, bool negative)
{
    while (number.scale > 0 && number.significant % 10 == 0) {
        number.significant /= 10;
        --number.scale;
    }
    char digits[20];
    char *const end = std::to_chars(digits, std::end(digits), number.significant).ptr;
    const int count = static_cast<int>(end - digits);
    NumberText text;
    char *to = text.characters;
    if (negative)
        *to++ = '-';
    if (count <= number.scale) {
        *to++ = '0';
        *to++ = '.';
        to = std::fill_n(to, number.scale - count, '0');
        to = std::copy(digits, end, to);
    } else {
        char *const point = end - number.scale;
        to = std::copy(digits, point, to);
        if (number.scale > 0)
            *to++ = '.';
        to = std::copy(point, end, to);
    }
    text.length = static_cast<int>(to - text.characters);
    return text;
}

/// What printf's %g writes, for a number of any size. None lies half-way where the form has an exponent, but
/// for doubles too small to matter.
NumberText FormatAny(double value, int digits)
{
    NumberText text;
    // A NaN has no sign in the file, since one is not read.
    if (std::isnan(value))
        value = std::abs(value);
    const auto result =
        std::to_chars(text.characters, std::end(text.characters), value, std::chars_format::general, digits);
    text.length = static_cast<int>(result.ptr - text.characters);
    return text;
}

/// Whether a number has so few digits before and zeros behind its point that its text has no exponent.
/// Rounding might give it one more digit than there is room for near the upper end.
bool IsMiddling(double magnitude, int digits)
{
    return magnitude >= PowerOfTen(kLowestPower) && magnitude < PowerOfTen(digits - 1);
}

/// Like FormatAny, and several times faster for the numbers that documents are full of.
NumberText FormatGeneral(double value, int digits, Halves halves)
{
    const double magnitude = std::abs(value);
    if (!IsMiddling(magnitude, digits))
        return value == 0 && !std::signbit(value) ? FormatInt(0) : FormatAny(value, digits);
    return FormatFixed(Rounded(magnitude, digits, halves), value < 0);
}

template <class Integer> NumberText FormatInteger(Integer value)
{
    NumberText text;
    const auto result = std::to_chars(text.characters, text.characters + sizeof text.characters, value);
    text.length = static_cast<int>(result.ptr - text.characters);
    return text;
}

} // namespace

bool IsXmlName(std::string_view utf8)
{
    const char *at = utf8.data();
    const char *const end = at + utf8.size();
    bool isName = at != end && ToUtf8(FromUtf8(utf8)) == utf8 && IsXmlNameStart(TakeCharacter(at, end));
    while (isName && at != end)
        isName = IsXmlNameCharacter(TakeCharacter(at, end));
    return isName;
}

std::int32_t ParseInt(std::string_view text)
{
    return FindInteger<std::int32_t>(text).value_or(0);
}

std::uint32_t ParseUInt(std::string_view text)
{
    return FindInteger<std::uint32_t>(text).value_or(0);
}

std::uint64_t ParseUInt64(std::string_view text)
{
    return FindInteger<std::uint64_t>(text).value_or(0);
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
    return FindReal(text).value_or(0);
}

bool IsInt(std::string_view text)
{
    return FindInteger<std::int32_t>(text).has_value();
}

bool IsUInt(std::string_view text)
{
    return FindInteger<std::uint32_t>(text).has_value();
}

bool IsUInt64(std::string_view text)
{
    return FindInteger<std::uint64_t>(text).has_value();
}

bool IsReal(std::string_view text)
{
    return FindReal(text).has_value();
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
        return FormatGeneral(std::copysign(3.40282346e+38, double(value)), 9, Halves::ToEven);
    return FormatGeneral(value, 9, Halves::ToEven);
}

NumberText FormatDouble(double value)
{
    return FormatGeneral(value, 17, Halves::ToEven);
}

NumberText FormatDoubleAttribute(double value)
{
    return FormatGeneral(value, 17, Halves::Up);
}

NumberText FormatFloatAttribute(float value)
{
    constexpr int digits = 8;
    const double magnitude = std::abs(double(value));
    if (IsMiddling(magnitude, digits)) {
        const Decimal shorter = Rounded(magnitude, digits, Halves::Up);
        // Both are small enough for the quotient to be what the text reads as.
        const double readBack = static_cast<double>(shorter.significant) / PowerOfTen(shorter.scale);
        return static_cast<float>(readBack) == std::abs(value) ? FormatFixed(shorter, value < 0)
                                                               : FormatFloat(value);
    }
    const NumberText text = FormatGeneral(value, digits, Halves::Up);
    return std::isnan(value) || ParseFloat(text.View()) == value ? text : FormatFloat(value);
}

} // namespace marlet::project
