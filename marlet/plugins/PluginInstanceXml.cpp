#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/DomBridge.h>
#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/plugins/PluginInstance_Impl.h>
#include <marlet/plugins/StandInPlugin.h>

#include <QByteArray>
#include <QDomDocument>

#include <algorithm>
#include <map>
#include <stdexcept>
#include <vector>

namespace marlet::project
{

namespace
{

constexpr unsigned int kVersion = 2;
constexpr unsigned int kFirstWithPluginVersion = 1;
constexpr unsigned int kFirstWithUIState = 2;
constexpr char kVersionAttribute[] = "Version";
constexpr char kPluginVersionTag[] = "PluginVersion";
constexpr char kBytesTag[] = "InstanceBytes";
constexpr char kBytesAttribute[] = "Base64";

constexpr struct {
    const char *name;
    std::uint32_t AbstractPlugin::VersionInfo::*number;
} kPluginVersion[] = {{"Ma", &AbstractPlugin::VersionInfo::major},
                      {"Mi", &AbstractPlugin::VersionInfo::minor},
                      {"Re", &AbstractPlugin::VersionInfo::revision},
                      {"Bu", &AbstractPlugin::VersionInfo::build}};

NarrowString VersionText(const AbstractPlugin::VersionInfo &version)
{
    NarrowString text;
    for (const auto &field : kPluginVersion)
        (text += text.empty() ? "" : ".") += std::to_string(version.*field.number);
    return text;
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

bool IsOlder(const AbstractPlugin &plugin, const AbstractPlugin::VersionInfo &than)
{
    return EffectsHelper::ComparePluginVersions(than, plugin.Version()) > 0;
}

void RequireVersion(const AbstractPlugin &plugin, const AbstractPlugin::VersionInfo &saved)
{
    if (IsOlder(plugin, saved))
        throw InvalidPluginVersionException("The project file was saved with a newer version of the " +
                                            ToUtf8(plugin.Name()) + " plugin than what is currently loaded.");
}

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

/// What a plug-in has to say of an instance: the element that it is handed with all that the library writes
/// there, and what it added to that.
class PluginElement
{
public:
    PluginElement(const PluginInstance_Impl &data, AbstractPlugin &plugin, AbstractPluginInstance *instance)
    {
        const WideString own = XmlText([&](XmlWriter &writer) {
            // What the plug-in itself had put there would stand there twice.
            writer.LeaveKept();
            const XmlElement element(writer, data.Tag(), kVersion);
            data.WriteChildren(writer, plugin);
        });
        AppendXmlToDom(own, &document_, &document_);
        element_ = document_.documentElement();
        for (QDomNode node = element_.firstChild(); !node.isNull(); node = node.nextSibling())
            own_.push_back({node, SizeOf(node)});
        plugin.SerializeInstance(instance, &document_, &element_);
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

    /// Whether the plug-in put something into what the library wrote.
    bool IsOwnAddedTo() const
    {
        return std::ranges::any_of(own_, [](const Own &own) { return SizeOf(own.node) != own.size; });
    }

    void WriteOwn(XmlWriter &writer) const
    {
        for (const Own &own : own_)
            WriteNode(writer, own.node);
    }

    /// What the plug-in put beside what the library wrote. It is read by its name, which may be the same, so
    /// it has to stand behind that, wherever the plug-in put it.
    void WriteAdded(XmlWriter &writer) const
    {
        for (QDomNode node = element_.firstChild(); !node.isNull(); node = node.nextSibling())
            if (std::ranges::find(own_, node, &Own::node) == own_.end())
                WriteNode(writer, node);
    }

private:
    struct Own {
        QDomNode node;
        int size;
    };

    QDomDocument document_;
    QDomElement element_;
    std::vector<Own> own_;
};

/// A plug-in that is there writes again what it has put beside the library's own elements. Of the properties
/// only those are the library's to keep that the plug-in no longer has.
void LeaveToPlugin(const XmlCursor &element, const XmlCursor &saved, PropertyManager &properties)
{
    LoadContext *const context = LoadContext::Current();
    if (!context)
        return;
    for (const char *tag : {"PluginName", kPluginVersionTag, "UIState", kBytesTag})
        element.Find(tag);
    if (saved.IsNull())
        context->Add(LoadEntry::Severity::Warning, element,
                     "there are no properties; they are those of a new instance");
    for (XmlCursor child = element.FirstChild(); !child.IsNull(); child = child.Next()) {
        if (child.Node() == saved.Node())
            continue;
        if (!context->IsKnown(child))
            context->Add(LoadEntry::Severity::Note, child,
                         NarrowString(child.Name()) + " is left to the plug-in, which may write it again");
        context->MarkAllKnown(child);
    }
    context->MarkAttributes(element);
    for (XmlCursor child = saved.FirstChild(); !child.IsNull(); child = child.Next())
        if (!properties.HasProperty(child.Name().data()))
            context->MarkUnknown(child);
    properties.Keep(saved);
}

void ReadStates(const XmlCursor &element, EffectsHelper::UIStates &states)
{
    for (XmlCursor property = element.Find("UIState").Find("Property"); !property.IsNull();
         property = property.Next("Property"))
        states[NarrowString(property.AttributeText("name"))];
}

void HandOver(AbstractPlugin &plugin, AbstractPluginInstance *instance, const QByteArray &base64)
{
    QByteArray bytes = QByteArray::fromBase64(base64);
    plugin.DeserializeInstance(instance, reinterpret_cast<unsigned char *>(bytes.data()),
                               static_cast<int>(bytes.size()));
}

std::shared_ptr<AbstractPlugin> StandIn(LoadContext &context, const XmlCursor &instance,
                                        const AbstractPlugin *older)
{
    auto standIn = std::make_shared<StandInPlugin>(instance);
    const NarrowString version = VersionText(standIn->Version());
    const NarrowString plugin = "the plug-in \"" + ToUtf8(standIn->Name()) + "\" " + version;
    context.Add(LoadEntry::Severity::Warning, instance,
                older ? plugin + " is there as " + VersionText(older->Version()) +
                            " only; it is kept as it stands"
                      : plugin + " is missing; it is kept as it stands");
    context.AddUse({standIn->ID(), standIn->Name(), version, older != nullptr, 1});
    return standIn;
}

} // namespace

void PluginInstance_Impl::Write(XmlWriter &writer, const AbstractPluginInstance &instance) const
{
    const std::shared_ptr<AbstractPlugin> locked = RequirePlugin();
    if (standIn) {
        WriteStandIn(writer);
        return;
    }
    const PluginElement plugins(*this, *locked, const_cast<AbstractPluginInstance *>(&instance));
    const XmlElement element(writer, Tag(), kVersion);
    plugins.WriteAttributes(writer);
    if (plugins.IsOwnAddedTo())
        plugins.WriteOwn(writer);
    else
        WriteChildren(writer, *locked);
    plugins.WriteAdded(writer);
}

/// The element as it came while nothing has changed: what a plug-in adds to the library's own elements is
/// written in an order of its own.
void PluginInstance_Impl::WriteStandIn(XmlWriter &writer) const
{
    const auto write = [this](XmlWriter &to) {
        const XmlElement element(to, Tag(), kVersion, kept);
        WriteChildren(to, *standIn);
    };
    if (source && std::hash<WideString>()(XmlText(write)) == asRead)
        writer.Element(Tag(), *source);
    else
        write(writer);
}

void PluginInstance_Impl::KeepElement(const XmlCursor &element)
{
    kept = KeptXml(element);
    source = nullptr;
    asRead = std::hash<WideString>()(XmlText([this](XmlWriter &writer) { WriteStandIn(writer); }));
    if (LoadContext *const context = LoadContext::Current()) {
        source = std::make_shared<const NarrowString>(context->SourceOf(element));
        context->MarkWhole(element); // it was told of as a whole
    }
}

void PluginInstance_Impl::WriteChildren(XmlWriter &writer, const AbstractPlugin &ofPlugin) const
{
    WriteHead(writer, ofPlugin);
    properties->Serialize(writer);
    EffectsHelper::SerializeUIState(writer, uiStates);
}

void PluginInstance_Impl::Read(const XmlCursor &element, AbstractPluginInstance *instance)
{
    const std::shared_ptr<AbstractPlugin> locked = RequirePlugin();
    const unsigned int version = element.RequireHeader(Tag(), kVersion);
    ReadHead(element);
    if (locked->ID() != pluginID)
        throw std::runtime_error("Supplied plugin does not match deserialized PluginID");
    const XmlCursor saved = element.Find("PropertyManager");
    if (!saved.IsNull() && !standIn) { // whose properties are those of the element
        PropertyManager fromFile;
        fromFile.Deserialize(saved);
        EffectsHelper::SynchronizeSourceWithDest(*properties, fromFile);
    }
    if (version >= kFirstWithPluginVersion)
        RequireVersion(*locked, ReadPluginVersion(element.Require(kPluginVersionTag)));
    if (standIn)
        ReadStates(element, uiStates);
    if (version >= kFirstWithUIState)
        EffectsHelper::SynchronizeUIState(element, uiStates);
    if (standIn) {
        KeepElement(element);
        return;
    }
    LeaveToPlugin(element, saved, *properties);
    if (const XmlCursor bytes = element.Find(kBytesTag); !bytes.IsNull()) {
        const std::string_view base64 = bytes.AttributeText(kBytesAttribute);
        HandOver(*locked, instance, QByteArray(base64.data(), static_cast<qsizetype>(base64.size())));
    }
}

void PluginInstance_Impl::CopyPrivateData(AbstractPluginInstance *instance,
                                          AbstractPluginInstance *copy) const
{
    // The copy of a stand-in shares what is kept.
    if (const std::optional<std::vector<unsigned char>> bytes = PrivateBytes(instance))
        SetPrivateBytes(copy, bytes);
}

std::optional<std::vector<unsigned char>>
PluginInstance_Impl::PrivateBytes(AbstractPluginInstance *instance) const
{
    if (standIn)
        return std::nullopt;
    const std::shared_ptr<AbstractPlugin> locked = RequirePlugin();
    const PluginElement saved(*this, *locked, instance);
    const QDomElement element = saved.Bytes();
    if (element.isNull())
        return std::nullopt;
    const QByteArray bytes = QByteArray::fromBase64(element.attribute(kBytesAttribute).toLatin1());
    return std::vector<unsigned char>(bytes.begin(), bytes.end());
}

void PluginInstance_Impl::SetPrivateBytes(AbstractPluginInstance *instance,
                                          const std::optional<std::vector<unsigned char>> &bytes) const
{
    if (standIn)
        return;
    std::vector<unsigned char> handed = bytes.value_or(std::vector<unsigned char>());
    RequirePlugin()->DeserializeInstance(instance, handed.data(), static_cast<int>(handed.size()));
}

void WritePluginNameAndVersion(XmlWriter &writer, const AbstractPlugin &plugin)
{
    writer.Child("PluginName", plugin.Name());
    const XmlElement element(writer, kPluginVersionTag);
    const AbstractPlugin::VersionInfo &version = plugin.Version();
    for (const auto &field : kPluginVersion)
        writer.Attribute(field.name, version.*field.number);
}

void AppendInstanceBytes(const unsigned char *bytes, int size, void *document, void *element)
{
    Require(bytes != nullptr || size <= 0, "bytes");
    Require(document, "document");
    Require(element, "element");
    const QByteArray data(reinterpret_cast<const char *>(bytes), std::max(size, 0));
    QDomElement child = static_cast<QDomDocument *>(document)->createElement(kBytesTag);
    child.setAttribute(kBytesAttribute, QString::fromLatin1(data.toBase64()));
    static_cast<QDomElement *>(element)->appendChild(child);
}

std::optional<AbstractPlugin::VersionInfo> SavedPluginVersion(const XmlCursor &instance)
{
    unsigned int version = 0;
    instance.Attribute(kVersionAttribute, version);
    if (version < kFirstWithPluginVersion)
        return std::nullopt;
    return ReadPluginVersion(instance.Require(kPluginVersionTag));
}

bool CanReadInstances(const AbstractPluginManager *manager, const XmlCursor &element)
{
    LoadContext *const context = LoadContext::Current();
    if (manager || (context && context->KeepsUnknown()))
        return true;
    if (context && !element.FirstChild().IsNull()) {
        context->Add(LoadEntry::Severity::Loss, element, "what plug-ins made is dropped, as there are none");
        context->MarkAllKnown(element);
    }
    return false;
}

std::shared_ptr<AbstractPlugin> FindPlugin(AbstractPluginManager *manager, const XmlCursor &instance)
{
    kytl::KyID id;
    instance.Child("PluginID", id);
    std::shared_ptr<AbstractPlugin> plugin = manager ? manager->FindPlugin(id) : nullptr;
    LoadContext *const context = LoadContext::Current();
    if (context && context->KeepsUnknown()) {
        const std::optional<AbstractPlugin::VersionInfo> saved = SavedPluginVersion(instance);
        if (!plugin || (saved && IsOlder(*plugin, *saved)))
            return StandIn(*context, instance, plugin.get());
    }
    if (plugin)
        return plugin;
    throw MissingPluginException("This project uses the " + instance.Require("PluginName").Text() +
                                 " plugin but it cannot be found.");
}

} // namespace marlet::project
