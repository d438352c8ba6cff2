#include <marlet/animation/XmlName.h>

#include <marlet/foundation/Strings.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

struct Range {
    char32_t first;
    char32_t last;
};

// "Extensible Markup Language (XML) 1.0", fifth edition, section 2.3.
constexpr Range kStartRanges[] = {{'A', 'Z'},       {'_', '_'},       {'a', 'z'},        {0xC0, 0xD6},
                                  {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},    {0x37F, 0x1FFF},
                                  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},  {0x3001, 0xD7FF},
                                  {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
constexpr Range kFurtherRanges[] = {{'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

template <std::size_t N> bool Contains(const Range (&ranges)[N], char32_t c)
{
    return std::ranges::any_of(ranges,
                               [c](const Range &range) { return range.first <= c && c <= range.last; });
}

/// The character at a position of a text without lone surrogates, which is moved behind it.
char32_t Next(std::u16string_view text, std::size_t &position)
{
    const char16_t unit = text[position++];
    if (unit < 0xD800 || unit > 0xDFFF)
        return unit;
    return 0x10000 + ((unit - char32_t{0xD800}) << 10) + (text[position++] - char32_t{0xDC00});
}

} // namespace

bool IsXmlName(std::string_view utf8)
{
    const WideString text = FromUtf8(utf8);
    // Bytes that are no UTF-8 were replaced.
    if (text.empty() || ToUtf8(text) != utf8)
        return false;
    for (std::size_t position = 0; position < text.size();) {
        const bool isFirst = position == 0;
        const char32_t c = Next(text, position);
        if (!Contains(kStartRanges, c) && (isFirst || !Contains(kFurtherRanges, c)))
            return false;
    }
    return true;
}

} // namespace marlet::project
