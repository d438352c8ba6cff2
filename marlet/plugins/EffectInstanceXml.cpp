#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/DomBridge.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/EffectInstance_Impl.h>

#include <QByteArray>
#include <QDomDocument>

#include <algorithm>
#include <map>
#include <stdexcept>

namespace marlet::project
{

namespace
{

constexpr char kTag[] = "Instance";
constexpr unsigned int kVersion = 2;
constexpr unsigned int kFirstWithPluginVersion = 1;
constexpr unsigned int kFirstWithUIState = 2;
constexpr char kVersionAttribute[] = "Version";
constexpr char kBytesTag[] = "InstanceBytes";
constexpr char kBytesAttribute[] = "Base64";

constexpr struct {
    const char *name;
    std::uint32_t AbstractPlugin::VersionInfo::*number;
} kPluginVersion[] = {{"Ma", &AbstractPlugin::VersionInfo::major},
                      {"Mi", &AbstractPlugin::VersionInfo::minor},
                      {"Re", &AbstractPlugin::VersionInfo::revision},
                      {"Bu", &AbstractPlugin::VersionInfo::build}};

template <class Xml, class Data> void IdentityFields(Xml &xml, Data &data)
{
    xml.Child("ID", data.id);
    xml.Child("Name", data.name);
    xml.Child("PluginID", data.pluginID);
}

template <class Xml, class Data> void PlaceFields(Xml &xml, Data &data)
{
    xml.Child("ParentID", data.parentID);
    xml.Child("ParentTimelineID", data.parentTimelineID);
    xml.Child("Enabled", data.enabled);
}

/// Of the plug-in's own name and version only the version is read again, and that later.
void WriteHead(XmlWriter &writer, const EffectInstance_Impl &data, const AbstractPlugin &plugin)
{
    IdentityFields(writer, data);
    writer.Child("PluginName", plugin.Name());
    {
        const XmlElement element(writer, "PluginVersion");
        const AbstractPlugin::VersionInfo &version = plugin.Version();
        for (const auto &field : kPluginVersion)
            writer.Attribute(field.name, version.*field.number);
    }
    PlaceFields(writer, data);
}

AbstractPlugin::VersionInfo ReadPluginVersion(const XmlCursor &element)
{
    AbstractPlugin::VersionInfo version;
    for (const auto &field : kPluginVersion)
        element.RequireAttribute(field.name);
    for (const auto &field : kPluginVersion)
        element.Attribute(field.name, version.*field.number);
    return version;
}

std::u16string_view View(const QString &text)
{
    return {QStringView(text).utf16(), static_cast<std::size_t>(text.size())};
}

/// What a plug-in has to say of an instance: the element that it is handed, and what it appended to that.
class PluginElement
{
public:
    PluginElement(const EffectInstance_Impl &data, AbstractPlugin &plugin, AbstractPluginInstance *instance)
    {
        const WideString own = XmlText([&](XmlWriter &writer) {
            const XmlElement element(writer, kTag, kVersion);
            WriteHead(writer, data, plugin);
        });
        AppendXmlToDom(own, &document_, &document_);
        element_ = document_.documentElement();
        const QDomNode lastOwn = element_.lastChild();
        plugin.SerializeInstance(instance, &document_, &element_);
        appended_ = lastOwn.nextSibling();
    }

    QDomElement Bytes() const { return element_.firstChildElement(kBytesTag); }

    void WriteAttributes(XmlWriter &writer) const
    {
        std::map<NarrowString, QString> sorted;
        const QDomNamedNodeMap attributes = element_.attributes();
        for (int i = 0; i < attributes.count(); ++i)
            sorted.emplace(ToUtf8(View(attributes.item(i).nodeName())), attributes.item(i).nodeValue());
        sorted.erase(kVersionAttribute);
        for (const auto &[name, value] : sorted)
            if (IsXmlName(name))
                writer.Attribute(name, View(value));
    }

    void WriteChildren(XmlWriter &writer) const
    {
        for (QDomNode node = appended_; !node.isNull(); node = node.nextSibling()) {
            const QDomElement child = node.toElement();
            if (node.isText())
                writer.Text(View(node.nodeValue()));
            else
                WriteDom(writer, &child);
        }
    }

private:
    QDomDocument document_;
    QDomElement element_;
    QDomNode appended_;
};

void HandOver(AbstractPlugin &plugin, AbstractPluginInstance *instance, const QByteArray &base64)
{
    QByteArray bytes = QByteArray::fromBase64(base64);
    plugin.DeserializeInstance(instance, reinterpret_cast<unsigned char *>(bytes.data()),
                               static_cast<int>(bytes.size()));
}

} // namespace

WideString EffectInstance::Serialize() const
{
    return XmlText([this](XmlWriter &writer) { Serialize(writer); });
}

void EffectInstance::Serialize(XmlWriter &writer) const
{
    const std::shared_ptr<AbstractPlugin> plugin = impl_->RequirePlugin();
    // The plug-in is handed an instance that it may change; saving is const to everybody else.
    const PluginElement plugins(*impl_, *plugin, const_cast<EffectInstance *>(this));
    const XmlElement element(writer, kTag, kVersion);
    plugins.WriteAttributes(writer);
    WriteHead(writer, *impl_, *plugin);
    impl_->properties->Serialize(writer);
    EffectsHelper::SerializeUIState(writer, impl_->uiStates);
    plugins.WriteChildren(writer);
}

void EffectInstance::SerializeInstanceDataBytes(unsigned char *bytes, int size, void *document, void *element)
{
    const QByteArray data(reinterpret_cast<const char *>(bytes), std::max(size, 0));
    QDomElement child = static_cast<QDomDocument *>(document)->createElement(kBytesTag);
    child.setAttribute(kBytesAttribute, QString::fromLatin1(data.toBase64()));
    static_cast<QDomElement *>(element)->appendChild(child);
}

void EffectInstance::Deserialize(const XmlCursor &element)
{
    const std::shared_ptr<AbstractPlugin> plugin = impl_->RequirePlugin();
    const unsigned int version = element.RequireHeader(kTag, kVersion);
    IdentityFields(element, *impl_);
    PlaceFields(element, *impl_);
    if (plugin->ID() != impl_->pluginID)
        throw std::runtime_error("Supplied plugin does not match deserialized PluginID");
    if (const XmlCursor properties = element.Find("PropertyManager"); !properties.IsNull()) {
        PropertyManager fromFile;
        fromFile.Deserialize(properties);
        EffectsHelper::SynchronizeSourceWithDest(*impl_->properties, fromFile);
    }
    if (version >= kFirstWithPluginVersion) {
        const auto saved = ReadPluginVersion(element.Require("PluginVersion"));
        if (EffectsHelper::ComparePluginVersions(saved, plugin->Version()) > 0)
            throw InvalidPluginVersionException("The project file was saved with a newer version of the " +
                                                ToUtf8(plugin->Name()) +
                                                " plugin than what is currently loaded.");
    }
    if (version >= kFirstWithUIState)
        EffectsHelper::SynchronizeUIState(element, impl_->uiStates);
    if (const XmlCursor bytes = element.Find(kBytesTag); !bytes.IsNull()) {
        const std::string_view base64 = bytes.AttributeText(kBytesAttribute);
        HandOver(*plugin, this, QByteArray(base64.data(), static_cast<qsizetype>(base64.size())));
    }
}

/// Private data is copied as it is saved and read.
void EffectInstance::TakePrivateData(EffectInstance &source)
{
    const std::shared_ptr<AbstractPlugin> plugin = impl_->RequirePlugin();
    const PluginElement saved(*source.impl_, *plugin, &source);
    if (const QDomElement bytes = saved.Bytes(); !bytes.isNull())
        HandOver(*plugin, this, bytes.attribute(kBytesAttribute).toLatin1());
}

} // namespace marlet::project
