#include <marlet/foundation/xml/XmlReader.h>

#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/WellFormed.h>

#include <pugixml.hpp>

#include <algorithm>

namespace marlet::project
{

namespace
{

/// Text stands in its element's own value where it comes first, which saves a node for most elements.
constexpr unsigned int kParseFlags = pugi::parse_escapes | pugi::parse_cdata | pugi::parse_eol |
                                     pugi::parse_wconv_attribute | pugi::parse_embed_pcdata;

/// Blanks alone are kept where they are all that an element has. Comments and the like may part a text, and
/// then blanks anywhere may belong to one; keeping them all costs memory.
unsigned int BlankFlag(const XmlScan &scan)
{
    return scan.hasSections ? pugi::parse_ws_pcdata : pugi::parse_ws_pcdata_single;
}

bool IsElement(pugi::xml_node node)
{
    return node.type() == pugi::node_element;
}

void AppendText(pugi::xml_node node, NarrowString &text)
{
    text += node.value();
    for (const pugi::xml_node child : node)
        AppendText(child, text);
}

/// Hands the text of an element to a function, without a copy where it is in one piece.
template <class Read> auto ReadText(pugi::xml_node node, const Read &read)
{
    if (!node.first_child())
        return read(std::string_view(node.value()));
    NarrowString text;
    AppendText(node, text);
    return read(std::string_view(text));
}

/// The text of an element, which who asks for it knows.
template <class Read> auto ReadText(const XmlCursor &element, const Read &read)
{
    if (LoadContext *const context = LoadContext::Current()) {
        context->MarkText(element);
        for (XmlCursor child = element.FirstChild(); !child.IsNull(); child = child.Next())
            context->Add(LoadEntry::Severity::Loss, child, "an element inside a value is read as its text");
        for (XmlCursor child = element.FirstChild(); !child.IsNull(); child = child.Next())
            context->MarkAllKnown(child);
    }
    return ReadText(pugi::xml_node(element.Node()), read);
}

void TellOfMissing(const XmlCursor &element, const char *attribute, const char *read)
{
    if (!element.IsNull())
        TellLoad(LoadEntry::Severity::Warning, element,
                 NarrowString(attribute) + kIsMissing + read + " is read");
}

/// How a number of a kind is read, and what is none.
template <class T> struct NumberForm {
    T (*parse)(std::string_view);
    bool (*isNumber)(std::string_view);

    T Read(const XmlCursor &element, std::string_view text, const char *attribute) const
    {
        if (LoadContext *const context = LoadContext::Current(); context && !isNumber(text))
            context->Add(LoadEntry::Severity::Loss, element,
                         NarrowString(attribute ? attribute : element.Name()) + " is no number: \"" +
                             NarrowString(text.substr(0, kLongestQuote)) + "\"; 0 is read");
        return parse(text);
    }
    T Attribute(const XmlCursor &element, const char *name) const
    {
        const std::string_view text = element.AttributeText(name);
        if (!text.empty() || element.HasAttribute(name))
            return Read(element, text, name);
        TellOfMissing(element, name, "0");
        return {};
    }
    T Text(const XmlCursor &element) const
    {
        return ReadText(element, [&](std::string_view text) { return Read(element, text, nullptr); });
    }

    static constexpr std::size_t kLongestQuote = 40;
};

constexpr NumberForm<std::int32_t> kInt{ParseInt, IsInt};
constexpr NumberForm<std::uint32_t> kUInt{ParseUInt, IsUInt};
constexpr NumberForm<std::uint64_t> kUInt64{ParseUInt64, IsUInt64};
constexpr NumberForm<float> kFloat{ParseFloat, IsReal};
constexpr NumberForm<double> kDouble{ParseDouble, IsReal};

XmlCursor Known(pugi::xml_node node)
{
    const XmlCursor element(node.internal_object());
    if (node)
        element.MarkKnown();
    return element;
}

void MarkAttribute(pugi::xml_attribute attribute)
{
    if (LoadContext *const context = LoadContext::Current(); context && attribute)
        context->MarkAttribute(attribute.name());
}

void FailAt(const XmlCursor &element)
{
    if (LoadContext *const context = LoadContext::Current())
        context->FailAt(element);
}

pugi::xml_node NextElement(pugi::xml_node node)
{
    while (node && !IsElement(node))
        node = node.next_sibling();
    return node;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b)
{
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::ranges::equal(a, b, {}, lower, lower);
}

} // namespace

struct XmlDocument::Tree {
    NarrowString text;
    pugi::xml_document document;
    pugi::xml_node root;
};

XmlDocument::XmlDocument(std::u16string_view text, LoadContext *context) : tree_(std::make_unique<Tree>())
{
    NarrowString &utf8 = tree_->text;
    utf8 = ToUtf8(text);
    if (context)
        context->Follow(utf8);
    // The parser takes more than XML.
    const XmlScan scan = ScanXml(utf8);
    if (context)
        context->TakeScan(scan);
    if (scan.fault || scan.hasDocumentType)
        return;
    if (scan.tooDeep)
        throw XmlParseException("Nesting too deep");
    // The text's own terminator goes along, since the parser takes the last character for one.
    const auto result = tree_->document.load_buffer_inplace(
        utf8.data(), utf8.size() + 1, kParseFlags | BlankFlag(scan), pugi::encoding_utf8);
    if (result)
        tree_->root = tree_->document.document_element();
}

XmlDocument::~XmlDocument() = default;

XmlCursor XmlDocument::Root() const
{
    return XmlCursor(tree_->root.internal_object());
}

std::string_view XmlCursor::Name() const
{
    return pugi::xml_node(node_).name();
}

bool XmlCursor::Is(std::string_view tag) const
{
    if (Name() != tag)
        return false;
    MarkKnown();
    return true;
}

void XmlCursor::MarkKnown() const
{
    if (LoadContext *const context = LoadContext::Current())
        context->MarkKnown(*this);
}

XmlCursor XmlCursor::Find(const char *name) const
{
    return Known(pugi::xml_node(node_).child(name));
}

XmlCursor XmlCursor::Require(const char *name) const
{
    const XmlCursor child = Find(name);
    if (child.IsNull()) {
        FailAt(*this);
        throw XmlParseException(NarrowString("Missing element\n") + name, XmlParseException::Missing::Element,
                                name);
    }
    return child;
}

XmlCursor XmlCursor::FirstChild() const
{
    return XmlCursor(NextElement(pugi::xml_node(node_).first_child()).internal_object());
}

XmlCursor XmlCursor::Next() const
{
    return XmlCursor(NextElement(pugi::xml_node(node_).next_sibling()).internal_object());
}

XmlCursor XmlCursor::Next(const char *name) const
{
    return Known(pugi::xml_node(node_).next_sibling(name));
}

void XmlCursor::RequireTag(const char *tag) const
{
    if (!EqualIgnoringCase(Name(), tag)) {
        FailAt(*this);
        throw XmlParseException(NarrowString("Wrong tag name\n") + tag, XmlParseException::Missing::Element,
                                tag);
    }
    MarkKnown();
}

unsigned int XmlCursor::RequireHeader(const char *tag, unsigned int highestVersion) const
{
    RequireTag(tag);
    RequireAttribute("Version");
    unsigned int version = 0;
    Attribute("Version", version);
    if (version > highestVersion) {
        FailAt(*this);
        throw InvalidProjectVersionException();
    }
    if (version < highestVersion)
        TellLoad(LoadEntry::Severity::Note, *this,
                 "version " + std::to_string(version) + " is read; it is saved as version " +
                     std::to_string(highestVersion));
    return version;
}

void XmlCursor::RequireAttribute(const char *name) const
{
    RequiredText(name);
}

bool XmlCursor::HasAttribute(const char *name) const
{
    const pugi::xml_attribute attribute = pugi::xml_node(node_).attribute(name);
    MarkAttribute(attribute);
    return !attribute.empty();
}

std::string_view XmlCursor::AttributeText(const char *name) const
{
    const pugi::xml_attribute attribute = pugi::xml_node(node_).attribute(name);
    MarkAttribute(attribute);
    return attribute.value();
}

std::string_view XmlCursor::RequiredText(const char *name) const
{
    const pugi::xml_attribute attribute = pugi::xml_node(node_).attribute(name);
    if (attribute.empty()) {
        FailAt(*this);
        throw XmlParseException(NarrowString(Name()) + " is missing attribute " + name + "\n",
                                XmlParseException::Missing::Attribute, name);
    }
    MarkAttribute(attribute);
    return attribute.value();
}

void XmlCursor::Attribute(const char *name, bool &value) const
{
    value = kInt.Attribute(*this, name) != 0;
}

void XmlCursor::Attribute(const char *name, int &value) const
{
    value = kInt.Attribute(*this, name);
}

void XmlCursor::Attribute(const char *name, unsigned int &value) const
{
    value = kUInt.Attribute(*this, name);
}

void XmlCursor::Attribute(const char *name, std::uint64_t &value) const
{
    value = kUInt64.Attribute(*this, name);
}

void XmlCursor::Attribute(const char *name, float &value) const
{
    value = kFloat.Attribute(*this, name);
}

void XmlCursor::Attribute(const char *name, double &value) const
{
    value = kDouble.Attribute(*this, name);
}

void XmlCursor::Attribute(const char *name, kytl::KyID &value) const
{
    value = kytl::KyID::FromString(AttributeText(name));
}

void XmlCursor::Attribute(const char *name, WideString &value) const
{
    if (!HasAttribute(name))
        TellOfMissing(*this, name, "nothing");
    value = FromUtf8(AttributeText(name));
}

void XmlCursor::RequiredAttribute(const char *name, int &value) const
{
    value = kInt.Read(*this, RequiredText(name), name);
}

void XmlCursor::RequiredAttribute(const char *name, float &value) const
{
    value = kFloat.Read(*this, RequiredText(name), name);
}

NarrowString XmlCursor::Text() const
{
    return ReadText(*this, [](std::string_view text) { return NarrowString(text); });
}

void XmlCursor::Get(int &value) const
{
    value = kInt.Text(*this);
}

void XmlCursor::Get(unsigned int &value) const
{
    value = kUInt.Text(*this);
}

void XmlCursor::Get(float &value) const
{
    value = kFloat.Text(*this);
}

void XmlCursor::Get(double &value) const
{
    value = kDouble.Text(*this);
}

void XmlCursor::Get(bool &value) const
{
    value = ReadText(*this, ParseBool);
}

void XmlCursor::Get(kytl::KyID &value) const
{
    value = ReadText(*this, [](std::string_view text) { return kytl::KyID::FromString(text); });
}

std::optional<kytl::KyID> XmlCursor::FindID(const char *name) const
{
    const XmlCursor child = Find(name);
    if (child.IsNull())
        return std::nullopt;
    try {
        kytl::KyID id;
        child.Get(id);
        return id;
    } catch (const std::runtime_error &) {
        return std::nullopt;
    }
}

void XmlCursor::Get(WideString &value) const
{
    value = ReadText(*this, FromUtf8);
}

void XmlCursor::Get(kytl::KyColorRGBA_32f &value) const
{
    RequiredAttribute("R", value.R);
    RequiredAttribute("G", value.G);
    RequiredAttribute("B", value.B);
    RequiredAttribute("A", value.A);
}

} // namespace marlet::project
