#include <marlet/foundation/xml/XmlSource.h>

#include <algorithm>
#include <utility>

namespace marlet::project
{

namespace
{

/// The place behind a mark that is looked for from a place on.
std::size_t Behind(std::string_view text, std::string_view mark, std::size_t from)
{
    const std::size_t at = text.find(mark, from);
    return at == std::string_view::npos ? text.size() : at + mark.size();
}

/// The place behind the tag that starts at a "<". A value may hold brackets.
std::size_t BehindTag(std::string_view text, std::size_t at)
{
    for (;;) {
        at = text.find_first_of("\"'>", at);
        if (at >= text.size())
            return text.size();
        if (text[at] == '>')
            return at + 1;
        at = Behind(text, text.substr(at, 1), at + 1);
    }
}

/// The place behind the comment, CDATA section or instruction at a "<"; the same place if there is none.
std::size_t BehindSection(std::string_view text, std::size_t at)
{
    constexpr std::pair<std::string_view, std::string_view> kSections[] = {
        {"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};
    for (const auto &[open, close] : kSections)
        if (text.substr(at, open.size()) == open)
            return Behind(text, close, at + open.size());
    return at;
}

} // namespace

std::string_view XmlElementAt(std::string_view text, std::size_t start)
{
    int depth = 0;
    std::size_t at = start;
    while (at < text.size()) {
        if (const std::size_t behind = BehindSection(text, at); behind != at) {
            at = behind;
        } else {
            const bool isEnd = text.substr(at, 2) == "</";
            at = BehindTag(text, at);
            const bool isEmpty = !isEnd && at >= 2 && text[at - 2] == '/';
            depth += isEnd ? -1 : isEmpty ? 0 : 1;
        }
        if (depth == 0)
            break;
        at = std::min(text.find('<', at), text.size());
    }
    return text.substr(start, at - start);
}

std::string_view XmlNameAt(std::string_view text, std::size_t start)
{
    const std::size_t end = std::min(text.find_first_of(" \t\r\n/>=", start), text.size());
    return text.substr(start, end - start);
}

std::string_view XmlAttributeAt(std::string_view text, std::size_t name)
{
    const std::size_t quote = text.find_first_of("\"'", name);
    return quote == std::string_view::npos
               ? std::string_view()
               : text.substr(name, Behind(text, text.substr(quote, 1), quote + 1) - name);
}

void TextPlace::GoTo(std::string_view text, std::size_t to)
{
    for (to = std::min(to, text.size()); offset < to; ++offset) {
        const char c = text[offset];
        if (c == '\n' || (c == '\r' && text.substr(offset + 1, 1) != "\n")) {
            ++line;
            column = 1;
        } else if ((c & 0xC0) != 0x80) {
            ++column;
        }
    }
}

} // namespace marlet::project
