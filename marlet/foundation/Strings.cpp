#include <marlet/foundation/Strings.h>

#include <marlet/foundation/Utf8.h>

#include <cstddef>
#include <cstdint>

namespace marlet::project
{

namespace
{

constexpr std::size_t kBlock = 32;

bool IsHighSurrogate(char32_t unit)
{
    return (unit & 0xFC00) == 0xD800;
}

bool IsLowSurrogate(char32_t unit)
{
    return (unit & 0xFC00) == 0xDC00;
}

/// Whether the block has nothing but ASCII. Without a branch inside, so that it compiles to vector code.
template <class Char> bool IsAsciiBlock(const Char *block)
{
    Char all = 0;
    for (std::size_t i = 0; i < kBlock; ++i)
        all = static_cast<Char>(all | block[i]);
    return (all & Char(~0x7F)) == 0;
}

/// At least as many bytes as the text has in UTF-8, and exactly as many where it has no surrogates.
std::size_t Utf8Bound(std::u16string_view text)
{
    std::size_t bytes = text.size();
    for (std::size_t i = 0; i < text.size(); ++i) {
        while (text.size() - i > kBlock && IsAsciiBlock(text.data() + i))
            i += kBlock;
        bytes += (text[i] >= 0x80 ? 1u : 0u) + (text[i] >= 0x800 ? 1u : 0u);
    }
    return bytes;
}

char *AppendUtf8(char *to, char32_t c)
{
    if (c < 0x80) {
        *to++ = static_cast<char>(c);
    } else if (c < 0x800) {
        *to++ = static_cast<char>(0xC0 | c >> 6);
        *to++ = static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        *to++ = static_cast<char>(0xE0 | c >> 12);
        *to++ = static_cast<char>(0x80 | (c >> 6 & 0x3F));
        *to++ = static_cast<char>(0x80 | (c & 0x3F));
    } else {
        *to++ = static_cast<char>(0xF0 | c >> 18);
        *to++ = static_cast<char>(0x80 | (c >> 12 & 0x3F));
        *to++ = static_cast<char>(0x80 | (c >> 6 & 0x3F));
        *to++ = static_cast<char>(0x80 | (c & 0x3F));
    }
    return to;
}

/// Takes one character off the text, or one lone surrogate.
char32_t NextCharacter(const char16_t *&from, const char16_t *end)
{
    const char32_t unit = *from++;
    if (IsHighSurrogate(unit) && from != end && IsLowSurrogate(*from))
        return 0x10000 + ((unit & 0x3FF) << 10) + (*from++ & 0x3FF);
    return IsHighSurrogate(unit) || IsLowSurrogate(unit) ? kReplacementCharacter : unit;
}

/// What a lead byte says about its sequence: the bytes that follow, and the range of the first of them, which
/// keeps out overlong forms, surrogates and what lies beyond Unicode.
struct Lead {
    int following;
    std::uint8_t low;
    std::uint8_t high;
    char32_t bits;
};

Lead LeadOf(std::uint8_t byte)
{
    if (byte >= 0xC2 && byte <= 0xDF)
        return {1, 0x80, 0xBF, byte & 0x1Fu};
    if (byte >= 0xE0 && byte <= 0xEF) {
        const std::uint8_t low = byte == 0xE0 ? 0xA0 : 0x80;
        const std::uint8_t high = byte == 0xED ? 0x9F : 0xBF;
        return {2, low, high, byte & 0x0Fu};
    }
    if (byte >= 0xF0 && byte <= 0xF4) {
        const std::uint8_t low = byte == 0xF0 ? 0x90 : 0x80;
        const std::uint8_t high = byte == 0xF4 ? 0x8F : 0xBF;
        return {3, low, high, byte & 0x07u};
    }
    return {0, 0, 0, kReplacementCharacter};
}

} // namespace

char32_t TakeCharacter(const char *&from, const char *end)
{
    const auto first = static_cast<std::uint8_t>(*from++);
    if (first < 0x80)
        return first;
    Lead lead = LeadOf(first);
    char32_t c = lead.bits;
    for (; lead.following > 0; --lead.following) {
        const auto byte = from != end ? static_cast<std::uint8_t>(*from) : std::uint8_t(0);
        if (byte < lead.low || byte > lead.high)
            return kReplacementCharacter;
        c = c << 6 | (byte & 0x3Fu);
        lead.low = 0x80;
        lead.high = 0xBF;
        ++from;
    }
    return c;
}

NarrowString ToUtf8(std::u16string_view text)
{
    NarrowString utf8(Utf8Bound(text), '\0');
    char *to = utf8.data();
    const char16_t *from = text.data();
    const char16_t *const end = from + text.size();
    while (from != end) {
        if (end - from >= std::ptrdiff_t(kBlock) && IsAsciiBlock(from)) {
            for (std::size_t i = 0; i < kBlock; ++i)
                to[i] = static_cast<char>(from[i]);
            from += kBlock;
            to += kBlock;
        } else {
            to = AppendUtf8(to, NextCharacter(from, end));
        }
    }
    utf8.resize(static_cast<std::size_t>(to - utf8.data()));
    return utf8;
}

WideString FromUtf8(std::string_view text)
{
    WideString utf16(text.size(), u'\0');
    char16_t *to = utf16.data();
    const char *from = text.data();
    const char *const end = from + text.size();
    while (from != end) {
        if (end - from >= std::ptrdiff_t(kBlock) && IsAsciiBlock(from)) {
            for (std::size_t i = 0; i < kBlock; ++i)
                to[i] = static_cast<char16_t>(from[i]);
            from += kBlock;
            to += kBlock;
            continue;
        }
        const char32_t c = TakeCharacter(from, end);
        if (c < 0x10000) {
            *to++ = static_cast<char16_t>(c);
        } else {
            *to++ = static_cast<char16_t>(0xD7C0 + (c >> 10));
            *to++ = static_cast<char16_t>(0xDC00 + (c & 0x3FF));
        }
    }
    utf16.resize(static_cast<std::size_t>(to - utf16.data()));
    return utf16;
}

} // namespace marlet::project
