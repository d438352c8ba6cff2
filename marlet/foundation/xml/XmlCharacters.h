#pragma once

namespace marlet::project
{

// The classes of characters of XML 1.0, fifth edition.

/// Whether XML has the character at all, be it as itself or by reference.
constexpr bool IsXmlCharacter(char32_t c)
{
    return c < 0x20 ? c == '\t' || c == '\n' || c == '\r'
                    : c < 0xD800 || (c >= 0xE000 && c < 0xFFFE) || (c >= 0x10000 && c <= 0x10FFFF);
}

constexpr bool IsXmlBlank(char c)
{
    return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}

/// Whether a name can start with the character.
bool IsXmlNameStart(char32_t c);

/// Whether a name can go on with the character.
bool IsXmlNameCharacter(char32_t c);

} // namespace marlet::project
