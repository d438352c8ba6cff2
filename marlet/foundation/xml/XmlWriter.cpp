#include <marlet/foundation/xml/XmlWriter.h>

#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/XmlReader.h>

#include <algorithm>
#include <utility>

namespace marlet::project
{

namespace
{

constexpr std::size_t kFirstRoom = 1024;

/// Whether a character may be more than itself in a text or an attribute.
template <class Char> bool NeedsCare(Char c)
{
    const auto unit = static_cast<char16_t>(c);
    return unit < 0x20 || unit == u'<' || unit == u'&' || unit == u'>' || unit == u'"' ||
           (unit >= 0xD800 && (unit < 0xE000 || unit >= 0xFFFE));
}

bool IsSurrogatePair(std::u16string_view text, std::size_t at)
{
    return at + 1 < text.size() && (text[at] & 0xFC00) == 0xD800 && (text[at + 1] & 0xFC00) == 0xDC00;
}

bool IsAscii(std::string_view text)
{
    return std::ranges::none_of(text, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

/// What stands for a character below U+0080 that needs care; empty for one that XML cannot hold.
std::string_view Escaped(char16_t c, bool attribute, bool afterBrackets)
{
    switch (c) {
    case u'<':
        return "&lt;";
    case u'&':
        return "&amp;";
    case u'>':
        return afterBrackets ? "&gt;" : ">";
    case u'"':
        return attribute ? "&quot;" : "\"";
    case u'\r':
        return "&#xd;";
    case u'\n':
        return attribute ? "&#xa;" : "\n";
    case u'\t':
        return attribute ? "&#x9;" : "\t";
    default:
        return {};
    }
}

} // namespace

XmlWriter::XmlWriter() = default;

char16_t *XmlWriter::Room(std::size_t length)
{
    if (text_.size() - used_ < length)
        text_.resize(std::max({kFirstRoom, 2 * text_.size(), used_ + length}));
    return text_.data() + used_;
}

void XmlWriter::Append(std::string_view ascii)
{
    char16_t *const to = Room(ascii.size());
    for (std::size_t i = 0; i < ascii.size(); ++i)
        to[i] = static_cast<unsigned char>(ascii[i]);
    used_ += ascii.size();
}

void XmlWriter::Append(std::u16string_view text)
{
    std::ranges::copy(text, Room(text.size()));
    used_ += text.size();
}

void XmlWriter::AppendName(std::string_view name)
{
    if (IsAscii(name))
        Append(name);
    else
        Append(FromUtf8(name));
}

template <class Char> void XmlWriter::AppendEscaped(std::basic_string_view<Char> text, bool attribute)
{
    std::size_t plain = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!NeedsCare(text[i]))
            continue;
        Append(text.substr(plain, i - plain));
        plain = i + 1;
        if constexpr (std::is_same_v<Char, char16_t>) {
            if (IsSurrogatePair(text, i)) {
                plain = i;
                ++i;
                continue;
            }
        }
        const bool afterBrackets = used_ >= 2 && text_[used_ - 1] == u']' && text_[used_ - 2] == u']';
        Append(Escaped(static_cast<char16_t>(text[i]), attribute, afterBrackets));
    }
    Append(text.substr(plain));
}

void XmlWriter::AppendEscapedUtf8(std::string_view utf8, bool attribute)
{
    if (IsAscii(utf8))
        AppendEscaped(utf8, attribute);
    else
        AppendEscaped(std::u16string_view(FromUtf8(utf8)), attribute);
}

void XmlWriter::Indent(std::size_t depth)
{
    std::fill_n(Room(depth), depth, u' ');
    used_ += depth;
}

void XmlWriter::StartTag(std::string_view tag)
{
    if (!open_.empty()) {
        State &parent = open_.back().state;
        if (parent == State::OpenTag)
            Append(">\n");
        // Behind a text a blank would belong to it.
        if (parent != State::Text)
            Indent(open_.size());
        parent = State::Children;
    }
    Append("<");
    AppendName(tag);
}

void XmlWriter::EndTag(std::string_view tag)
{
    Append("</");
    AppendName(tag);
    Append(">\n");
}

void XmlWriter::Begin(std::string_view tag)
{
    if (open_.size() >= std::size_t(kDeepestNesting))
        throw XmlParseException("Nesting too deep");
    StartTag(tag);
    open_.push_back({tag, State::OpenTag});
}

void XmlWriter::End()
{
    const Open element = open_.back();
    open_.pop_back();
    if (element.state == State::OpenTag) {
        Append("/>\n");
        return;
    }
    if (element.state == State::Children)
        Indent(open_.size());
    EndTag(element.tag);
}

void XmlWriter::StartAttribute(std::string_view name)
{
    Append(" ");
    AppendName(name);
    Append("=\"");
}

void XmlWriter::AppendAttribute(std::string_view name, std::string_view ascii)
{
    StartAttribute(name);
    Append(ascii);
    Append("\"");
}

void XmlWriter::AppendChild(std::string_view name, std::string_view ascii)
{
    StartTag(name);
    Append(">");
    Append(ascii);
    EndTag(name);
}

void XmlWriter::Attribute(std::string_view name, bool value)
{
    AppendAttribute(name, value ? "1" : "0");
}

void XmlWriter::Attribute(std::string_view name, int value)
{
    AppendAttribute(name, FormatInt(value).View());
}

void XmlWriter::Attribute(std::string_view name, unsigned int value)
{
    AppendAttribute(name, FormatUInt(value).View());
}

void XmlWriter::Attribute(std::string_view name, std::int64_t value)
{
    AppendAttribute(name, FormatInt(value).View());
}

void XmlWriter::Attribute(std::string_view name, std::uint64_t value)
{
    AppendAttribute(name, FormatUInt(value).View());
}

void XmlWriter::Attribute(std::string_view name, float value)
{
    AppendAttribute(name, FormatFloatAttribute(value).View());
}

void XmlWriter::Attribute(std::string_view name, double value)
{
    AppendAttribute(name, FormatDouble(value).View());
}

void XmlWriter::Attribute(std::string_view name, const kytl::KyID &value)
{
    const auto text = value.ToCharacters();
    AppendAttribute(name, {text.data(), text.size()});
}

void XmlWriter::Attribute(std::string_view name, std::u16string_view value)
{
    StartAttribute(name);
    AppendEscaped(value, true);
    Append("\"");
}

void XmlWriter::Attribute(std::string_view name, std::string_view utf8)
{
    StartAttribute(name);
    AppendEscapedUtf8(utf8, true);
    Append("\"");
}

void XmlWriter::StartText()
{
    State &state = open_.back().state;
    if (state == State::OpenTag)
        Append(">");
    // The line feed behind the element before would belong to the text.
    if (state == State::Children)
        --used_;
    state = State::Text;
}

void XmlWriter::Text(std::u16string_view text)
{
    StartText();
    AppendEscaped(text, false);
}

void XmlWriter::Text(std::string_view utf8)
{
    StartText();
    AppendEscapedUtf8(utf8, false);
}

void XmlWriter::Child(std::string_view name, int value)
{
    AppendChild(name, FormatInt(value).View());
}

void XmlWriter::Child(std::string_view name, unsigned int value)
{
    AppendChild(name, FormatUInt(value).View());
}

void XmlWriter::Child(std::string_view name, float value)
{
    AppendChild(name, FormatFloat(value).View());
}

void XmlWriter::Child(std::string_view name, double value)
{
    AppendChild(name, FormatDouble(value).View());
}

void XmlWriter::Child(std::string_view name, bool value)
{
    AppendChild(name, value ? "1" : "0");
}

void XmlWriter::Child(std::string_view name, const kytl::KyID &value)
{
    const auto text = value.ToCharacters();
    AppendChild(name, {text.data(), text.size()});
}

void XmlWriter::Child(std::string_view name, const WideString &value)
{
    StartTag(name);
    Append(">");
    AppendEscaped(std::u16string_view(value), false);
    EndTag(name);
}

void XmlWriter::Child(std::string_view name, const kytl::KyColorRGBA_32f &value)
{
    StartTag(name);
    AppendAttribute("R", FormatFloatAttribute(value.R).View());
    AppendAttribute("G", FormatFloatAttribute(value.G).View());
    AppendAttribute("B", FormatFloatAttribute(value.B).View());
    AppendAttribute("A", FormatFloatAttribute(value.A).View());
    Append("/>\n");
}

WideString XmlWriter::Take()
{
    text_.resize(std::exchange(used_, 0));
    return std::exchange(text_, {});
}

} // namespace marlet::project
