#include <marlet/recovery/TagScan.h>

#include <marlet/foundation/xml/XmlText.h>
#include <marlet/recovery/CleanText.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace marlet::project
{

namespace
{

constexpr std::string_view kBlanks = " \t\r\n";
constexpr auto kNone = std::string_view::npos;

bool IsBlank(char c)
{
    return kBlanks.find(c) != kNone;
}

std::string_view NameAt(std::string_view text, std::size_t at)
{
    std::size_t end = at;
    while (end < text.size() && !IsBlank(text[end]) && std::string_view("<>/=\"'&").find(text[end]) == kNone)
        ++end;
    const std::string_view name = text.substr(at, end - at);
    return IsXmlName(name) ? name : std::string_view();
}

/// Where the ">" of a tag stands, or nothing if another tag begins before it. A quote without its partner in
/// the tag counts for nothing.
std::size_t TagEnd(std::string_view text, std::size_t at)
{
    while (at < text.size()) {
        at = text.find_first_of("<>\"'", at);
        if (at == kNone || text[at] == '<')
            return kNone;
        if (text[at] == '>')
            return at;
        const char stops[] = {text[at], '<'};
        const std::size_t partner = text.find_first_of(std::string_view(stops, 2), at + 1);
        at = partner != kNone && text[partner] != '<' ? partner + 1 : at + 1;
    }
    return kNone;
}

/// Fills in a comment, a section or an instruction, if it is one.
bool TakeSection(std::string_view text, Tag &tag, SectionEnds &ends)
{
    constexpr std::pair<std::string_view, std::string_view> kSections[SectionEnds::kKinds] = {
        {"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};
    for (std::size_t kind = 0; kind < SectionEnds::kKinds; ++kind) {
        const auto &section = kSections[kind];
        if (!text.substr(tag.at).starts_with(section.first))
            continue;
        const std::size_t from = tag.at + section.first.size();
        const std::size_t end = from < ends.noneFrom[kind] ? text.find(section.second, from) : kNone;
        if (end == kNone) {
            ends.noneFrom[kind] = std::min(ends.noneFrom[kind], from);
            return false;
        }
        tag.kind = Tag::Kind::Section;
        tag.behind = end + section.second.size();
        return true;
    }
    return false;
}

struct Attribute {
    std::string_view name;
    std::string_view value;
    bool isClean = true;         ///< as it stands there
    bool isCut = false;          ///< its value has no end
    std::string_view piece = {}; ///< of one without a name
};

/// A value that ends like the start of another attribute has lost its second quote.
bool EndsInAttribute(std::string_view value)
{
    const std::size_t blank = value.find_last_of(kBlanks);
    return value.ends_with('=') && blank != kNone &&
           IsXmlName(value.substr(blank + 1, value.size() - blank - 2));
}

/// Takes the next attribute off; one without a name is none that can be told.
Attribute TakeAttribute(std::string_view &text)
{
    Attribute attribute;
    const std::size_t start = text.find_first_not_of(kBlanks);
    attribute.isClean = start > 0;
    text.remove_prefix(std::min(start, text.size()));
    const std::string_view piece = text.substr(0, text.find_first_of(kBlanks));
    const std::size_t equals = piece.find('=');
    if (equals == kNone || !IsXmlName(piece.substr(0, equals))) {
        text.remove_prefix(piece.size());
        return {{}, {}, false, false, piece};
    }
    attribute.name = text.substr(0, equals);
    text.remove_prefix(equals + 1);
    const char quote = text.empty() ? '\0' : text[0];
    const bool isQuoted = quote == '"' || quote == '\'';
    const std::size_t end = isQuoted ? text.find(quote, 1) : kNone;
    if (end != kNone && !EndsInAttribute(text.substr(1, end - 1))) {
        attribute.value = text.substr(1, end - 1);
        text.remove_prefix(end + 1);
        return attribute;
    }
    attribute.isClean = false;
    attribute.isCut = isQuoted;
    const std::size_t behind = std::min(text.find_first_of(kBlanks), text.size());
    attribute.value = text.substr(isQuoted ? 1 : 0, behind - (isQuoted ? 1 : 0));
    if (attribute.value.ends_with('"') || attribute.value.ends_with('\''))
        attribute.value.remove_suffix(1);
    text.remove_prefix(behind);
    return attribute;
}

} // namespace

bool IsBlank(std::string_view text)
{
    return text.find_first_not_of(kBlanks) == kNone;
}

std::string_view Trimmed(std::string_view text)
{
    const std::size_t start = text.find_first_not_of(kBlanks);
    return start == kNone ? std::string_view()
                          : text.substr(start, text.find_last_not_of(kBlanks) - start + 1);
}

Tag NextTag(std::string_view text, std::size_t from, SectionEnds &ends)
{
    Tag tag;
    tag.at = std::min(text.find('<', from), text.size());
    tag.behind = tag.at;
    if (tag.at == text.size() || TakeSection(text, tag, ends))
        return tag;
    tag.isEnd = text.substr(tag.at + 1).starts_with('/');
    const std::size_t nameAt = tag.at + (tag.isEnd ? 2 : 1);
    tag.kind = Tag::Kind::Broken;
    tag.behind = tag.at + 1;
    tag.name = NameAt(text, nameAt);
    const std::size_t behindName = nameAt + tag.name.size();
    const std::size_t end = TagEnd(text, behindName);
    tag.isCut = end == kNone && text.find('<', behindName) == kNone;
    if (end == kNone) {
        if (tag.name.empty())
            return tag;
        tag.behind = behindName;
        // What stands there without a bracket may be attributes, or the text of the element.
        const std::string_view rest = text.substr(behindName, text.find('<', behindName) - behindName);
        if (!tag.isEnd && !CleanAttributes(rest).text.empty()) {
            tag.attributes = rest;
            tag.behind += rest.size();
        }
        return tag;
    }
    if (tag.name.empty()) {
        tag.behind = end + 1;
        return tag;
    }
    tag.behind = end + 1;
    tag.attributes = text.substr(behindName, end - behindName);
    if (tag.isEnd) {
        tag.kind = IsBlank(tag.attributes) ? Tag::Kind::End : Tag::Kind::Broken;
        return tag;
    }
    tag.kind = tag.attributes.ends_with('/') ? Tag::Kind::Empty : Tag::Kind::Start;
    if (tag.kind == Tag::Kind::Empty)
        tag.attributes.remove_suffix(1);
    return tag;
}

bool AreCleanAttributes(std::string_view attributes)
{
    std::vector<std::string_view> names;
    while (!IsBlank(attributes)) {
        const Attribute attribute = TakeAttribute(attributes);
        if (!attribute.isClean || !IsCleanText(attribute.value) ||
            std::ranges::find(names, attribute.name) != names.end())
            return false;
        names.push_back(attribute.name);
    }
    return true;
}

CleanedAttributes CleanAttributes(std::string_view attributes)
{
    CleanedAttributes clean;
    std::vector<std::string_view> names;
    while (!IsBlank(attributes)) {
        const Attribute attribute = TakeAttribute(attributes);
        if (attribute.name.empty() || std::ranges::find(names, attribute.name) != names.end()) {
            clean.gone.push_back(CleanText(attribute.name.empty() ? attribute.piece : attribute.name));
            continue;
        }
        if (attribute.isCut)
            clean.cut.emplace_back(attribute.name);
        names.push_back(attribute.name);
        ((clean.text += ' ') += attribute.name) += "=\"";
        for (const char c : CleanText(attribute.value)) {
            if (c == '"')
                clean.text += "&quot;";
            else
                clean.text += c;
        }
        clean.text += '"';
    }
    return clean;
}

} // namespace marlet::project
