#include <marlet/foundation/xml/XmlWriter.h>

#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/XmlReader.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace marlet::project
{

namespace
{

/// Small enough to stay in a processor's cache until it is turned into UTF-16.
constexpr std::size_t kBlockSize = 64 * 1024;

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
    if (block_.size() < kBlockSize || (!open_.empty() && open_.back().state == State::OpenTag))
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

void XmlWriter::StartTag(std::string_view tag)
{
    if (open_.size() >= std::size_t(kDeepestNesting))
        throw XmlParseException("Nesting too deep");
    StartBlockIfFull();
    keptOfChild_ = open_.empty() || open_.back().kept < 0 ? nullptr : PassKept(tag);
    StartLine();
    block_ += '<';
    block_ += tag;
}

void XmlWriter::StartLine()
{
    if (open_.empty())
        return;
    CloseStartTag();
    State &parent = open_.back().state;
    if (parent == State::OpenTag)
        block_ += '\n';
    // Behind a text a blank would belong to it.
    if (parent != State::Text)
        block_.append(open_.size(), ' ');
    parent = State::Children;
}

void XmlWriter::CloseStartTag()
{
    const Open &element = open_.back();
    if (element.state != State::OpenTag)
        return;
    if (element.kept >= 0)
        AppendAttributesKept(kept_[static_cast<std::size_t>(element.kept)].place);
    block_ += '>';
}

/// Those that the element has got meanwhile go: an attribute that stands twice is no XML.
void XmlWriter::AppendAttributesKept(const KeptPlace *kept)
{
    if (!kept)
        return;
    const NarrowString written = block_.substr(block_.rfind('<'));
    for (const NarrowString &attribute : kept->attributes) {
        const NarrowString start = ' ' + attribute.substr(0, attribute.find_first_of(" \t\r\n=")) + "=\"";
        if (written.find(start) == NarrowString::npos)
            (block_ += ' ') += attribute;
    }
}

void XmlWriter::Push(std::string_view tag, const KeptPlace *kept)
{
    open_.push_back({tag, State::OpenTag, -1});
    if (!kept)
        return;
    open_.back().kept = static_cast<int>(kept_.size());
    kept_.push_back({kept, 0, 0, {}});
}

void XmlWriter::Element(std::string_view tag, std::string_view source)
{
    StartBlockIfFull();
    if (!open_.empty() && open_.back().kept >= 0)
        PassKept(tag);
    StartLine();
    block_ += source;
    block_ += '\n';
}

/// Writes what stands in front of the next child of the open element, and finds what is kept for that child.
const KeptPlace *XmlWriter::PassKept(std::string_view tag)
{
    Kept &parent = kept_.back();
    WriteKeptUpTo(parent.children);
    ++parent.children;
    const auto found = parent.place->children.find({NarrowString(tag), parent.ofTag[tag]++});
    return found == parent.place->children.end() ? nullptr : &found->second;
}

void XmlWriter::WriteKeptUpTo(unsigned int children)
{
    Kept &parent = kept_.back();
    const auto &elements = parent.place->elements;
    for (; parent.written < elements.size() && elements[parent.written].first <= children; ++parent.written) {
        StartLine();
        block_ += elements[parent.written].second;
        block_ += '\n';
    }
}

void XmlWriter::EndTag(std::string_view tag)
{
    block_ += "</";
    block_ += tag;
    block_ += ">\n";
}

void XmlWriter::Begin(std::string_view tag)
{
    StartTag(tag);
    Push(tag, keptOfChild_);
}

void XmlWriter::Begin(std::string_view tag, const KeptXml &kept)
{
    StartTag(tag);
    Push(tag, writesKept_ ? kept.Root() : nullptr);
}

void XmlWriter::End()
{
    if (open_.back().kept >= 0)
        WriteKeptUpTo(std::numeric_limits<unsigned int>::max());
    const Open element = open_.back();
    open_.pop_back();
    if (element.kept >= 0) {
        if (element.state == State::OpenTag)
            AppendAttributesKept(kept_.back().place);
        kept_.pop_back();
    }
    if (element.state == State::OpenTag) {
        block_ += "/>\n";
        return;
    }
    if (element.state == State::Children)
        block_.append(open_.size(), ' ');
    EndTag(element.tag);
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
    AppendAttribute(name, FormatDoubleAttribute(value).View());
}

void XmlWriter::Attribute(std::string_view name, const kytl::KyID &value)
{
    const auto text = value.ToCharacters();
    AppendAttribute(name, {text.data(), text.size()});
}

void XmlWriter::Attribute(std::string_view name, std::u16string_view value)
{
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
}

void XmlWriter::Child(std::string_view name, const WideString &value)
{
    StartTag(name);
    AppendAttributesKept(keptOfChild_);
    block_ += ">";
    AppendContent(value, false);
    EndTag(name);
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
