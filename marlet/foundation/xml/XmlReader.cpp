#include <marlet/foundation/xml/XmlReader.h>

#include <marlet/foundation/Exceptions.h>
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

XmlDocument::XmlDocument(std::u16string_view text) : tree_(std::make_unique<Tree>())
{
    NarrowString &utf8 = tree_->text;
    utf8 = ToUtf8(text);
    // The parser takes more than XML.
    const XmlScan scan = ScanXml(utf8);
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

XmlCursor XmlCursor::Find(const char *name) const
{
    return XmlCursor(pugi::xml_node(node_).child(name).internal_object());
}

XmlCursor XmlCursor::Require(const char *name) const
{
    const XmlCursor child = Find(name);
    if (child.IsNull())
        throw XmlParseException(NarrowString("Missing element\n") + name);
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
    return XmlCursor(pugi::xml_node(node_).next_sibling(name).internal_object());
}

void XmlCursor::RequireTag(const char *tag) const
{
    if (!EqualIgnoringCase(Name(), tag))
        throw XmlParseException(NarrowString("Wrong tag name\n") + tag);
}

unsigned int XmlCursor::RequireHeader(const char *tag, unsigned int highestVersion) const
{
    RequireTag(tag);
    RequireAttribute("Version");
    unsigned int version = 0;
    Attribute("Version", version);
    if (version > highestVersion)
        throw InvalidProjectVersionException();
    return version;
}

void XmlCursor::RequireAttribute(const char *name) const
{
    RequiredText(name);
}

bool XmlCursor::HasAttribute(const char *name) const
{
    return !pugi::xml_node(node_).attribute(name).empty();
}

std::string_view XmlCursor::AttributeText(const char *name) const
{
    return pugi::xml_node(node_).attribute(name).value();
}

std::string_view XmlCursor::RequiredText(const char *name) const
{
    const pugi::xml_attribute attribute = pugi::xml_node(node_).attribute(name);
    if (attribute.empty())
        throw XmlParseException(NarrowString(Name()) + " is missing attribute " + name + "\n");
    return attribute.value();
}

void XmlCursor::Attribute(const char *name, bool &value) const
{
    value = ParseInt(AttributeText(name)) != 0;
}

void XmlCursor::Attribute(const char *name, int &value) const
{
    value = ParseInt(AttributeText(name));
}

void XmlCursor::Attribute(const char *name, unsigned int &value) const
{
    value = ParseUInt(AttributeText(name));
}

void XmlCursor::Attribute(const char *name, std::uint64_t &value) const
{
    value = ParseUInt64(AttributeText(name));
}

void XmlCursor::Attribute(const char *name, float &value) const
{
    value = ParseFloat(AttributeText(name));
}

void XmlCursor::Attribute(const char *name, double &value) const
{
    value = ParseDouble(AttributeText(name));
}

void XmlCursor::Attribute(const char *name, kytl::KyID &value) const
{
    value = kytl::KyID::FromString(AttributeText(name));
}

void XmlCursor::Attribute(const char *name, WideString &value) const
{
    value = FromUtf8(AttributeText(name));
}

void XmlCursor::RequiredAttribute(const char *name, int &value) const
{
    value = ParseInt(RequiredText(name));
}

void XmlCursor::RequiredAttribute(const char *name, float &value) const
{
    value = ParseFloat(RequiredText(name));
}

NarrowString XmlCursor::Text() const
{
    return ReadText(pugi::xml_node(node_), [](std::string_view text) { return NarrowString(text); });
}

void XmlCursor::Get(int &value) const
{
    value = ReadText(pugi::xml_node(node_), ParseInt);
}

void XmlCursor::Get(unsigned int &value) const
{
    value = ReadText(pugi::xml_node(node_), ParseUInt);
}

void XmlCursor::Get(float &value) const
{
    value = ReadText(pugi::xml_node(node_), ParseFloat);
}

void XmlCursor::Get(double &value) const
{
    value = ReadText(pugi::xml_node(node_), ParseDouble);
}

void XmlCursor::Get(bool &value) const
{
    value = ReadText(pugi::xml_node(node_), ParseBool);
}

void XmlCursor::Get(kytl::KyID &value) const
{
    value =
        ReadText(pugi::xml_node(node_), [](std::string_view text) { return kytl::KyID::FromString(text); });
}

void XmlCursor::Get(WideString &value) const
{
    value = ReadText(pugi::xml_node(node_), FromUtf8);
}

void XmlCursor::Get(kytl::KyColorRGBA_32f &value) const
{
    RequiredAttribute("R", value.R);
    RequiredAttribute("G", value.G);
    RequiredAttribute("B", value.B);
    RequiredAttribute("A", value.A);
}

} // namespace marlet::project
