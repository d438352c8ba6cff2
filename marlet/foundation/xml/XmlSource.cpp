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

std::string_view XmlNameIn(std::string_view text, std::size_t start)
{
    int depth = 0;
    bool isInBase = false;
    for (std::size_t at = start; at < text.size(); at = std::min(text.find('<', at), text.size())) {
        if (const std::size_t behind = BehindSection(text, at); behind != at) {
            at = behind;
            continue;
        }
        const bool isEnd = text.substr(at, 2) == "</";
        const std::string_view tag = XmlNameAt(text, at + 1);
        at = BehindTag(text, at);
        if (isEnd && --depth == 0)
            break;
        if (isEnd || text[at - 1] != '>' || text[at - 2] == '/')
            continue;
        isInBase = depth == 1 ? tag.ends_with("Base") : isInBase && depth > 1;
        if (tag == "Name" && (depth == 1 || (depth == 2 && isInBase)))
            return text.substr(at, text.find('<', at) - at);
        ++depth;
    }
    return {};
}

std::vector<XmlSection> XmlSections(std::string_view text)
{
    std::vector<XmlSection> sections;
    std::vector<std::size_t> open;
    for (std::size_t at = text.find('<'); at < text.size(); at = text.find('<', at)) {
        const std::size_t start = at;
        if (const std::size_t behind = BehindSection(text, at); behind != at) {
            at = behind;
            const bool isText = text.substr(start, 3) == "<![";
            const bool isDeclaration = start == 0 && text.starts_with("<?xml ");
            if (!isText && !isDeclaration)
                sections.push_back({start, open.empty() ? text.npos : open.back()});
            continue;
        }
        at = BehindTag(text, at);
        if (text[start + 1] == '/')
            open.pop_back();
        else if (text[at - 2] != '/')
            open.push_back(start);
    }
    return sections;
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

} // namespace marlet::project
