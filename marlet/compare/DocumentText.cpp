#include <marlet/compare/DocumentText.h>

#include <marlet/foundation/xml/XmlSource.h>

#include <algorithm>
#include <charconv>
#include <optional>

namespace marlet::project
{

namespace
{

/// From how many bytes on the end of an element is noted.
constexpr std::size_t kLong = 4096;
constexpr std::string_view kBlanks = " \t\r\n";

std::size_t BehindMark(std::string_view text, std::string_view mark, std::size_t from)
{
    const std::size_t at = text.find(mark, from);
    return at == std::string_view::npos ? text.size() : at + mark.size();
}

/// The place behind the comment, CDATA section or instruction at a place.
std::size_t BehindSection(std::string_view text, std::size_t at)
{
    if (text.substr(at).starts_with("<!--"))
        return BehindMark(text, "-->", at);
    return BehindMark(text, text[at + 1] == '?' ? "?>" : "]]>", at);
}

/// The place behind the start tag at a place; a value may hold brackets.
std::size_t BehindStartTag(std::string_view text, std::size_t at)
{
    for (; at < text.size() && text[at] != '>'; ++at)
        if (text[at] == '"' || text[at] == '\'')
            at = std::min(text.find(text[at], at + 1), text.size() - 1);
    return std::min(at + 1, text.size());
}

/// Steps over the markup at a "<" and counts by how much it goes deeper.
std::size_t BehindMarkup(std::string_view text, std::size_t at, int &depth)
{
    const char next = at + 1 < text.size() ? text[at + 1] : '\0';
    if (next == '!' || next == '?')
        return BehindSection(text, at);
    if (next == '/') {
        --depth;
        return BehindMark(text, ">", at);
    }
    const std::size_t end = BehindStartTag(text, at);
    depth += text[end - 2] == '/' ? 0 : 1;
    return end;
}

void AppendUtf8(NarrowString &text, std::uint32_t character)
{
    if (character < 0x10000)
        text += ToUtf8(WideString(1, static_cast<char16_t>(character)));
    else
        text += ToUtf8(WideString{static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)),
                                  static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF))});
}

/// What a reference without "&" and ";" stands for.
void AppendReferred(NarrowString &text, std::string_view name)
{
    constexpr std::pair<std::string_view, char> kNames[] = {
        {"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}};
    for (const auto &[known, character] : kNames)
        if (name == known)
            text += character;
    if (!name.starts_with('#'))
        return;
    const bool isHexadecimal = name.starts_with("#x");
    const std::string_view digits = name.substr(isHexadecimal ? 2 : 1);
    std::uint32_t character = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), character, isHexadecimal ? 16 : 10);
    AppendUtf8(text, character);
}

} // namespace

NarrowString WithoutReferences(std::string_view escaped)
{
    NarrowString text;
    for (std::size_t at = 0; at < escaped.size();) {
        const std::size_t reference = std::min(escaped.find('&', at), escaped.size());
        text += escaped.substr(at, reference - at);
        const std::size_t end = std::min(escaped.find(';', reference), escaped.size());
        if (reference < escaped.size())
            AppendReferred(text, escaped.substr(reference + 1, end - reference - 1));
        at = end == escaped.size() ? end : end + 1;
    }
    return text;
}

std::size_t TextElement::EndOfStartTag() const
{
    return BehindStartTag(source_, 0);
}

std::string_view TextElement::Tag() const
{
    return IsNull() ? std::string_view() : XmlNameAt(source_, 1);
}

TextElement::Attributes TextElement::AllAttributes() const
{
    Attributes attributes;
    if (IsNull())
        return attributes;
    const std::string_view tag = source_.substr(0, EndOfStartTag());
    for (std::size_t at = 1 + Tag().size();;) {
        at = tag.find_first_not_of(kBlanks, at);
        if (at == std::string_view::npos || tag[at] == '/' || tag[at] == '>')
            return attributes;
        const std::string_view attribute = XmlAttributeAt(tag, at);
        const std::size_t quote = attribute.find_first_of("\"'");
        attributes.emplace_back(XmlNameAt(tag, at),
                                attribute.substr(quote + 1, attribute.size() - quote - 2));
        at += attribute.size();
    }
}

NarrowString TextElement::Attribute(std::string_view name) const
{
    for (const auto &[known, value] : AllAttributes())
        if (known == name)
            return WithoutReferences(value);
    return {};
}

std::string_view TextElement::Content() const
{
    if (IsNull() || !HasEndTag())
        return {};
    const std::size_t start = EndOfStartTag();
    return source_.substr(start, source_.rfind("</") - start);
}

bool TextElement::TakeChild(std::string_view &content, TextElement &child) const
{
    content.remove_prefix(std::min(content.find_first_not_of(kBlanks), content.size()));
    if (content.size() < 2 || content[0] != '<' || content[1] == '!' || content[1] == '?')
        return false;
    const auto start = static_cast<std::size_t>(content.data() - document_->Text().data());
    child = TextElement(document_, content.substr(0, document_->EndOf(start) - start));
    content.remove_prefix(child.Source().size());
    return true;
}

std::vector<TextElement> TextElement::Children() const
{
    std::vector<TextElement> children;
    std::string_view content = Content();
    for (TextElement child; TakeChild(content, child);)
        children.push_back(child);
    if (!content.empty())
        children.clear();
    return children;
}

TextElement TextElement::Child(std::string_view tag) const
{
    std::string_view content = Content();
    for (TextElement child; TakeChild(content, child);)
        if (child.Tag() == tag)
            return child;
    return {};
}

NarrowString TextElement::Text() const
{
    return WithoutReferences(Content());
}

DocumentText::DocumentText(NarrowString text) : text_(std::move(text))
{
    std::vector<std::size_t> open;
    int depth = 0;
    for (std::size_t at = text_.find('<'); at < text_.size(); at = text_.find('<', at)) {
        const int before = depth;
        const std::size_t start = at;
        at = BehindMarkup(text_, at, depth);
        if (depth > before)
            open.push_back(start);
        if (depth >= before || open.empty())
            continue;
        if (at - open.back() >= kLong)
            longOnes_.emplace_back(open.back(), at);
        open.pop_back();
    }
    std::sort(longOnes_.begin(), longOnes_.end());
}

TextElement DocumentText::Root() const
{
    const std::string_view text = text_;
    std::size_t start = text.find('<');
    while (start < text.size() && (text[start + 1] == '?' || text[start + 1] == '!'))
        start = text.find('<', BehindSection(text, start));
    return start < text.size() ? TextElement(this, text.substr(start, EndOf(start) - start)) : TextElement();
}

std::size_t DocumentText::EndOf(std::size_t start) const
{
    int depth = 0;
    for (std::size_t at = start; at < text_.size() && at - start < kLong;
         at = std::min(text_.find('<', at), text_.size())) {
        at = BehindMarkup(text_, at, depth);
        if (depth == 0)
            return at;
    }
    const auto found = std::lower_bound(longOnes_.begin(), longOnes_.end(), std::pair(start, std::size_t{0}));
    return found != longOnes_.end() && found->first == start ? found->second : text_.size();
}

} // namespace marlet::project
