#pragma once

#include <marlet/foundation/Strings.h>

#include <cstdint>

namespace marlet::project
{

/// Whether a text can stand as the name of an element or an attribute.
bool IsXmlName(std::string_view utf8);

// The text of numbers in the file, which depends on no locale. Reading follows QString: blanks around a
// number and a "+" are taken, a text that is no number is 0, so is an integer out of range; "inf", "nan" and
// numbers beyond the largest are read.

std::int32_t ParseInt(std::string_view text);
std::uint32_t ParseUInt(std::string_view text);
std::uint64_t ParseUInt64(std::string_view text);
float ParseFloat(std::string_view text);
double ParseDouble(std::string_view text);
/// @throws boost::bad_lexical_cast on anything but a number that is 0 or 1.
bool ParseBool(std::string_view text);

/// Whether a text is a number that the function of its kind takes, and no 0 in place of another.
bool IsInt(std::string_view text);
bool IsUInt(std::string_view text);
bool IsUInt64(std::string_view text);
bool IsReal(std::string_view text);

/// Room for any number, and where its text ends up.
struct NumberText {
    char characters[32];
    int length = 0;

    std::string_view View() const { return {characters, static_cast<std::size_t>(length)}; }
};

NumberText FormatInt(std::int64_t value);
NumberText FormatUInt(std::uint64_t value);
/// The form of element text: 9 significant digits of a float, 17 of a double, as the standard stream writes
/// them.
NumberText FormatFloat(float value);
NumberText FormatDouble(double value);
/// The form of attributes, as QDomElement writes them: halves are rounded up. 8 significant digits of a
/// float, or 9 where 8 do not read back as the same value; 17 of a double.
NumberText FormatFloatAttribute(float value);
NumberText FormatDoubleAttribute(double value);

} // namespace marlet::project
