#include <marlet/foundation/xml/XmlCharacters.h>

#include <algorithm>
#include <span>

namespace marlet::project
{

namespace
{

struct Range {
    char32_t first;
    char32_t last;
};

/// Beyond ASCII.
constexpr Range kNameStarts[] = {{0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
                                 {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
                                 {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
constexpr Range kOtherNameCharacters[] = {{0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

bool IsIn(std::span<const Range> ranges, char32_t c)
{
    return std::ranges::any_of(ranges, [c](Range range) { return c >= range.first && c <= range.last; });
}

} // namespace

bool IsXmlNameStart(char32_t c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' || IsIn(kNameStarts, c);
}

bool IsXmlNameCharacter(char32_t c)
{
    return IsXmlNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.' ||
           IsIn(kOtherNameCharacters, c);
}

} // namespace marlet::project
