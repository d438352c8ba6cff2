#include <marlet/foundation/xml/DomBridge.h>

#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

#include <QDomDocument>
#include <pugixml.hpp>

#include <map>

namespace marlet::project
{

namespace
{

std::u16string_view View(const QString &text)
{
    return {QStringView(text).utf16(), static_cast<std::size_t>(text.size())};
}

NarrowString Name(const QString &name)
{
    return ToUtf8(View(name));
}

QString Text(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

/// The element and all below it, but for what has no name that XML can hold: it would make the text
/// unreadable. Recursion ends at the writer's bound, since an element begins before it is looked into.
void Write(XmlWriter &writer, const QDomElement &source)
{
    const NarrowString tag = Name(source.nodeName());
    if (!IsXmlName(tag))
        return;
    const XmlElement element(writer, tag);
    std::map<NarrowString, QString> attributes;
    const QDomNamedNodeMap unordered = source.attributes();
    for (int i = 0; i < unordered.count(); ++i)
        attributes.emplace(Name(unordered.item(i).nodeName()), unordered.item(i).nodeValue());
    for (const auto &[name, value] : attributes)
        if (IsXmlName(name))
            writer.Attribute(name, View(value));
    for (QDomNode child = source.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (child.isText())
            writer.Text(View(child.nodeValue()));
        else if (child.isElement())
            Write(writer, child.toElement());
    }
}

/// The parent comes by reference, since an empty document is nothing yet until it makes its first element.
void Append(pugi::xml_node source, QDomDocument &document, QDomNode &parent)
{
    QDomElement element = document.createElement(Text(source.name()));
    parent.appendChild(element);
    for (const pugi::xml_attribute attribute : source.attributes())
        element.setAttribute(Text(attribute.name()), Text(attribute.value()));
    const bool hasElements = !XmlCursor(source.internal_object()).FirstChild().IsNull();
    const auto appendText = [&](std::string_view text) {
        const bool blank = text.find_first_not_of(" \t\r\n") == std::string_view::npos;
        // Blanks between elements are layout, which a DOM adds itself.
        if (!text.empty() && !(blank && hasElements))
            element.appendChild(document.createTextNode(Text(text)));
    };
    appendText(source.value());
    for (const pugi::xml_node child : source.children()) {
        if (child.type() == pugi::node_element)
            Append(child, document, element);
        else
            appendText(child.value());
    }
}

} // namespace

void WriteDom(XmlWriter &writer, const void *element)
{
    const auto &source = *static_cast<const QDomElement *>(element);
    if (!source.isNull())
        Write(writer, source);
}

WideString XmlFromDom(const void *element)
{
    return XmlText([element](XmlWriter &writer) { WriteDom(writer, element); });
}

void AppendXmlToDom(const XmlCursor &element, void *document, void *parent)
{
    // A document and an element both are nodes at the same address.
    PassOver(element);
    if (!element.IsNull())
        Append(pugi::xml_node(element.Node()), *static_cast<QDomDocument *>(document),
               *static_cast<QDomNode *>(parent));
}

void AppendXmlToDom(const WideString &xml, void *document, void *parent)
{
    const XmlDocument text(xml);
    AppendXmlToDom(text.Root(), document, parent);
}

} // namespace marlet::project
