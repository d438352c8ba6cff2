#include <marlet/recovery/CleanText.h>

#include <marlet/foundation/Utf8.h>
#include <marlet/foundation/xml/XmlCharacters.h>

#include <algorithm>
#include <cstdint>

namespace marlet::project
{

namespace
{

/// The size of the reference that a text begins with, 0 if there is none.
std::size_t ReferenceSize(std::string_view text)
{
    constexpr std::size_t kLongest = 12;
    const std::size_t end = text.substr(0, kLongest).find(';');
    if (end == std::string_view::npos || end < 2)
        return 0;
    std::string_view name = text.substr(1, end - 1);
    constexpr std::string_view kNames[] = {"lt", "gt", "amp", "quot", "apos"};
    if (std::ranges::find(kNames, name) != std::end(kNames))
        return end + 1;
    if (name[0] != '#')
        return 0;
    name.remove_prefix(1);
    const bool isHex = name.starts_with('x');
    if (isHex)
        name.remove_prefix(1);
    constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
    std::uint32_t character = 0;
    for (const char c : name) {
        std::size_t digit = kDigits.find(c);
        if (digit > 15 && digit != std::string_view::npos)
            digit -= 6;
        if (digit >= (isHex ? 16u : 10u) || character > 0x10FFFF)
            return 0;
        character = character * (isHex ? 16 : 10) + static_cast<std::uint32_t>(digit);
    }
    return !name.empty() && IsXmlCharacter(character) ? end + 1 : 0;
}

void AppendSection(std::string_view text, std::string &to)
{
    while (!text.empty()) {
        const std::size_t size = CharacterSize(text);
        if (text[0] == '<')
            to += "&lt;";
        else if (text[0] == '&')
            to += "&amp;";
        else if (text[0] == '>')
            to += "&gt;";
        else
            to += text.substr(0, size);
        text.remove_prefix(std::max<std::size_t>(size, 1));
    }
}

/// The size of the comment or section that a text begins with, 0 if there is none.
std::size_t MarkupSize(std::string_view text, std::string_view open, std::string_view close)
{
    if (!text.starts_with(open))
        return 0;
    const std::size_t end = text.find(close, open.size());
    return end == std::string_view::npos ? 0 : end + close.size();
}

} // namespace

std::size_t CharacterSize(std::string_view text)
{
    const char *at = text.data();
    const char32_t character = TakeCharacter(at, text.data() + text.size());
    const bool isMalformed = character == kReplacementCharacter && !text.starts_with("\xEF\xBF\xBD");
    return IsXmlCharacter(character) && !isMalformed ? static_cast<std::size_t>(at - text.data()) : 0;
}

bool IsCleanText(std::string_view text)
{
    std::size_t at = 0;
    while (at < text.size()) {
        const char c = text[at];
        std::size_t size = 1;
        if (c == '&')
            size = ReferenceSize(text.substr(at));
        else if (c == '<' || (c == '>' && text.substr(0, at).ends_with("]]")))
            return false;
        else if (static_cast<unsigned char>(c) >= 0x80 || c < ' ')
            size = CharacterSize(text.substr(at));
        if (size == 0)
            return false;
        at += size;
    }
    return true;
}

bool HasForbiddenCharacter(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t size = CharacterSize(text);
        if (size == 0)
            return true;
        text.remove_prefix(size);
    }
    return false;
}

std::string CleanText(std::string_view text)
{
    std::string clean;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::string_view rest = text.substr(at);
        if (const std::size_t comment = MarkupSize(rest, "<!--", "-->")) {
            at += comment;
        } else if (const std::size_t instruction = MarkupSize(rest, "<?", "?>")) {
            at += instruction;
        } else if (const std::size_t section = MarkupSize(rest, "<![CDATA[", "]]>")) {
            AppendSection(rest.substr(9, section - 12), clean);
            at += section;
        } else if (rest[0] == '&') {
            const std::size_t reference = ReferenceSize(rest);
            clean += reference > 0 ? rest.substr(0, reference) : "&amp;";
            at += std::max<std::size_t>(reference, 1);
        } else if (rest[0] == '<') {
            clean += "&lt;";
            ++at;
        } else if (rest[0] == '>' && clean.ends_with("]]")) {
            clean += "&gt;";
            ++at;
        } else {
            const std::size_t character = CharacterSize(rest);
            clean += rest.substr(0, character);
            at += std::max<std::size_t>(character, 1);
        }
    }
    return clean;
}

} // namespace marlet::project
