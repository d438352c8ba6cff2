#include <marlet/plugins/PluginElement.h>

#include <marlet/foundation/xml/DomBridge.h>
#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/plugins/PluginInstance_Impl.h>

#include <algorithm>
#include <map>

namespace marlet::project
{

namespace
{

std::u16string_view View(const QString &text)
{
    return {QStringView(text).utf16(), static_cast<std::size_t>(text.size())};
}

/// The node behind in the order of the text, of those that stand in the root.
QDomNode NextIn(const QDomNode &root, QDomNode node)
{
    if (node.hasChildNodes())
        return node.firstChild();
    while (node != root && node.nextSibling().isNull())
        node = node.parentNode();
    return node == root ? QDomNode() : node.nextSibling();
}

/// How many nodes and attributes there are from the root down, which may be as deep as a plug-in likes.
int SizeOf(const QDomNode &root)
{
    int size = 0;
    for (QDomNode node = root; !node.isNull(); node = NextIn(root, node))
        size += 1 + node.attributes().count();
    return size;
}

void WriteNode(XmlWriter &writer, const QDomNode &node)
{
    const QDomElement element = node.toElement();
    if (node.isText())
        writer.Text(View(node.nodeValue()));
    else
        WriteDom(writer, &element);
}

QString TagOf(const XmlCursor &element)
{
    const std::string_view tag = element.Name();
    return QString::fromUtf8(tag.data(), static_cast<qsizetype>(tag.size()));
}

/// Takes the attributes that an element of the plug-in's has for known, in what is below it, too.
void MarkAttributes(const XmlCursor &element, const QDomElement &written)
{
    const QDomNamedNodeMap attributes = written.attributes();
    for (int i = 0; i < attributes.count(); ++i)
        element.HasAttribute(ToUtf8(View(attributes.item(i).nodeName())).c_str());
    std::map<QString, QDomElement> next;
    for (XmlCursor child = element.FirstChild(); !child.IsNull(); child = child.Next()) {
        const QString tag = TagOf(child);
        const auto [same, isFirst] = next.try_emplace(tag);
        same->second = isFirst ? written.firstChildElement(tag) : same->second.nextSiblingElement(tag);
        if (!same->second.isNull())
            MarkAttributes(child, same->second);
    }
}

} // namespace

PluginElement::PluginElement(const PluginInstance_Impl &data, AbstractPlugin &plugin,
                             AbstractPluginInstance *instance)
{
    const WideString own = XmlText([&](XmlWriter &writer) {
        // What the plug-in itself had put there would stand there twice.
        writer.LeaveKept();
        const XmlElement element(writer, data.Tag(), kInstanceVersion);
        data.WriteChildren(writer, plugin);
    });
    AppendXmlToDom(own, &document_, &document_);
    element_ = document_.documentElement();
    for (QDomNode node = element_.firstChild(); !node.isNull(); node = node.nextSibling())
        own_.push_back({node, SizeOf(node)});
    plugin.SerializeInstance(instance, &document_, &element_);
}

QDomElement PluginElement::Bytes() const
{
    return element_.firstChildElement(kInstanceBytes);
}

void PluginElement::WriteAttributes(XmlWriter &writer) const
{
    std::map<NarrowString, QString> sorted;
    const QDomNamedNodeMap attributes = element_.attributes();
    for (int i = 0; i < attributes.count(); ++i)
        sorted.emplace(ToUtf8(View(attributes.item(i).nodeName())), attributes.item(i).nodeValue());
    sorted.erase("Version");
    for (const auto &[name, value] : sorted)
        if (IsXmlName(name))
            writer.Attribute(name, View(value));
}

bool PluginElement::IsOwnAddedTo() const
{
    return std::ranges::any_of(own_, [](const Own &own) { return SizeOf(own.node) != own.size; });
}

void PluginElement::WriteOwn(XmlWriter &writer) const
{
    for (const Own &own : own_)
        WriteNode(writer, own.node);
}

void PluginElement::WriteAdded(XmlWriter &writer) const
{
    for (QDomNode node = element_.firstChild(); !node.isNull(); node = node.nextSibling())
        if (std::ranges::find(own_, node, &Own::node) == own_.end())
            WriteNode(writer, node);
}

bool PluginElement::IsAdded(const QString &tag) const
{
    for (QDomNode node = element_.firstChildElement(tag); !node.isNull(); node = node.nextSiblingElement(tag))
        if (std::ranges::find(own_, node, &Own::node) == own_.end())
            return true;
    return false;
}

void PluginElement::MarkAdded(LoadContext &context, const XmlCursor &element) const
{
    MarkAttributes(element, element_);
    for (XmlCursor child = element.FirstChild(); !child.IsNull(); child = child.Next())
        if (!context.IsKnown(child) && IsAdded(TagOf(child)))
            context.MarkAllKnown(child);
}

} // namespace marlet::project
