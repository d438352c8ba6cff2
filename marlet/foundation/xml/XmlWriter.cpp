#include <marlet/foundation/xml/XmlWriter.h>

#include <algorithm>
#include <array>
#include <utility>

namespace marlet::project
{

namespace
{

/// Small enough to stay in a processor's cache until it is turned into UTF-16.
constexpr std::size_t kBlockSize = 64 * 1024;

constexpr std::string_view kID = "ID";

/// The characters that may be more than themselves in a text or an attribute.
constexpr auto kNeedsCare = [] {
    std::array<bool, 256> table{};
    for (std::size_t c = 0; c < 0x20; ++c)
        table[c] = true;
    for (const char c : {'<', '&', '>', '"'})
        table[static_cast<std::size_t>(c)] = true;
    return table;
}();

bool IsAscii(std::string_view text)
{
    unsigned char all = 0;
    for (const char c : text)
        all |= static_cast<unsigned char>(c);
    return all < 0x80;
}

bool IsSurrogatePair(std::u16string_view text, std::size_t at)
{
    return at + 1 < text.size() && (text[at] & 0xFC00) == 0xD800 && (text[at + 1] & 0xFC00) == 0xDC00;
}

/// Lone surrogates, U+FFFE and U+FFFF; XML cannot hold control characters either, but they go with what is
/// escaped.
bool IsForbidden(std::u16string_view text, std::size_t at)
{
    const bool surrogate = (text[at] & 0xF800) == 0xD800;
    const bool ofPair = IsSurrogatePair(text, at) || (at > 0 && IsSurrogatePair(text, at - 1));
    return (surrogate && !ofPair) || text[at] >= 0xFFFE;
}

NarrowString AllowedUtf8(std::u16string_view text)
{
    WideString allowed;
    std::size_t taken = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] < 0xD800 || !IsForbidden(text, i))
            continue;
        allowed += text.substr(taken, i - taken);
        taken = i + 1;
    }
    return ToUtf8(taken == 0 ? text : allowed.append(text.substr(taken)));
}

/// What stands for a character that needs care; empty for one that XML cannot hold.
std::string_view Escaped(char c, bool attribute, bool afterBrackets)
{
    switch (c) {
    case '<':
        return "&lt;";
    case '&':
        return "&amp;";
    case '>':
        return afterBrackets ? "&gt;" : ">";
    case '"':
        return attribute ? "&quot;" : "\"";
    case '\r':
        return "&#xd;";
    case '\n':
        return attribute ? "&#xa;" : "\n";
    case '\t':
        return attribute ? "&#x9;" : "\t";
    default:
        return {};
    }
}

} // namespace

XmlWriter::XmlWriter() = default;

XmlWriter::XmlWriter(std::size_t expectedBytes) : gathers_(true)
{
    gathered_.reserve(expectedBytes);
}

void XmlWriter::AppendEscaped(std::string_view utf8, bool attribute)
{
    std::size_t plain = 0;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        if (!kNeedsCare[static_cast<unsigned char>(utf8[i])])
            continue;
        block_ += utf8.substr(plain, i - plain);
        block_ += Escaped(utf8[i], attribute, block_.ends_with("]]"));
        plain = i + 1;
    }
    block_ += utf8.substr(plain);
}

void XmlWriter::AppendContent(std::u16string_view text, bool attribute)
{
    AppendEscaped(AllowedUtf8(text), attribute);
}

void XmlWriter::AppendContent(std::string_view utf8, bool attribute)
{
    if (IsAscii(utf8))
        AppendEscaped(utf8, attribute);
    else
        AppendContent(FromUtf8(utf8), attribute);
}

/// Between elements, so that no character and no "]]>" is torn apart, nor a start tag that is still open.
void XmlWriter::StartBlockIfFull()
{
    if (block_.size() < kBlockSize || withObjects_ > 0 ||
        (!open_.empty() && open_.back().state == State::OpenTag))
        return;
    if (gathers_)
        return Gather();
    fullBlocks_.push_back(std::move(block_));
    block_ = NarrowString();
    block_.reserve(kBlockSize + kBlockSize / 8);
}

/// Grows by less than a string does by itself, since a text may be most of the memory there is.
void XmlWriter::Gather()
{
    if (gathered_.capacity() - gathered_.size() < block_.size())
        gathered_.reserve(gathered_.size() + gathered_.size() / 4 + block_.size());
    gathered_ += block_;
    block_.clear();
}

void XmlWriter::StartAttribute(std::string_view name)
{
    block_ += " ";
    block_ += name;
    block_ += "=\"";
}

void XmlWriter::AppendAttribute(std::string_view name, std::string_view ascii)
{
    StartAttribute(name);
    block_ += ascii;
    block_ += "\"";
}

void XmlWriter::AppendChild(std::string_view name, std::string_view ascii)
{
    StartTag(name);
    AppendAttributesKept(keptOfChild_);
    block_ += ">";
    block_ += ascii;
    EndTag(name);
    NoteEnd();
}

void XmlWriter::Attribute(std::string_view name, bool value)
{
    AppendAttribute(name, value ? "1" : "0");
}

void XmlWriter::Attribute(std::string_view name, int value)
{
    const auto text = FormatInt(value);
    if (name == "Time")
        TellApart(text.View());
    AppendAttribute(name, text.View());
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
    AppendAttribute(name, FormatDoubleAttribute(value).View());
}

void XmlWriter::Attribute(std::string_view name, const kytl::KyID &value)
{
    const auto text = value.ToCharacters();
    if (name == kID) {
        TellApart({text.data(), text.size()});
        NoteID(open_.size() - 1, value);
    }
    AppendAttribute(name, {text.data(), text.size()});
}

void XmlWriter::Attribute(std::string_view name, std::u16string_view value)
{
    if (name == kID)
        TellApart(ToUtf8(value));
    StartAttribute(name);
    AppendContent(value, true);
    block_ += "\"";
}

void XmlWriter::Attribute(std::string_view name, std::string_view utf8)
{
    StartAttribute(name);
    AppendContent(utf8, true);
    block_ += "\"";
}

void XmlWriter::StartText()
{
    State &state = open_.back().state;
    CloseStartTag();
    // The line feed behind the element before would belong to the text.
    if (state == State::Children)
        block_.pop_back();
    state = State::Text;
}

void XmlWriter::Text(std::u16string_view text)
{
    StartText();
    AppendContent(text, false);
}

void XmlWriter::Text(std::string_view utf8)
{
    StartText();
    AppendContent(utf8, false);
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
    if (name == kID && !open_.empty())
        // What all objects of a kind have stands in an element of its own.
        NoteID(open_.size() - (open_.back().tag.ends_with("Base") ? 2 : 1), value);
}

void XmlWriter::Child(std::string_view name, const WideString &value)
{
    StartTag(name);
    AppendAttributesKept(keptOfChild_);
    block_ += ">";
    AppendContent(value, false);
    EndTag(name);
    NoteEnd();
}

void XmlWriter::Child(std::string_view name, const kytl::KyColorRGBA_32f &value)
{
    StartTag(name);
    AppendAttribute("R", FormatFloatAttribute(value.R).View());
    AppendAttribute("G", FormatFloatAttribute(value.G).View());
    AppendAttribute("B", FormatFloatAttribute(value.B).View());
    AppendAttribute("A", FormatFloatAttribute(value.A).View());
    AppendAttributesKept(keptOfChild_);
    block_ += "/>\n";
    NoteEnd();
}

WideString XmlWriter::Take()
{
    fullBlocks_.push_back(std::move(block_));
    std::size_t size = 0;
    for (const NarrowString &block : fullBlocks_)
        size += block.size();
    WideString text(size, u'\0');
    char16_t *to = text.data();
    for (NarrowString &block : fullBlocks_) {
        to = IsAscii(block) ? std::ranges::copy(block, to).out : std::ranges::copy(FromUtf8(block), to).out;
        block = NarrowString();
    }
    text.resize(static_cast<std::size_t>(to - text.data()));
    fullBlocks_.clear();
    return text;
}

NarrowString XmlWriter::TakeUtf8()
{
    Gather();
    return std::move(gathered_);
}

} // namespace marlet::project
