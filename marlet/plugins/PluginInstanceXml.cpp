#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/DomBridge.h>
#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/plugins/AbstractPluginUITreeNode.h>
#include <marlet/plugins/PluginElement.h>
#include <marlet/plugins/PluginInstance_Impl.h>
#include <marlet/plugins/PluginUITreeWalk.h>
#include <marlet/plugins/StandInPlugin.h>

#include <QByteArray>
#include <QDomDocument>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace marlet::project
{

namespace
{

constexpr unsigned int kFirstWithPluginVersion = 1;
constexpr unsigned int kFirstWithUIState = 2;
constexpr char kVersionAttribute[] = "Version";
constexpr char kPluginVersionTag[] = "PluginVersion";
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

/// Whoever has looked for the elements of an instance by their names knows them.
void MarkOwn(const XmlCursor &element)
{
    for (const char *tag : {"PluginName", kPluginVersionTag, "UIState", kInstanceBytes})
        element.Find(tag);
    for (const auto &field : kPluginVersion)
        element.Find(kPluginVersionTag).HasAttribute(field.name);
    element.Find("PluginName").Text();
}

bool HasUnknown(const LoadContext &context, const XmlCursor &element)
{
    if (context.HasUnknownAttribute(element))
        return true;
    for (XmlCursor child = element.FirstChild(); !child.IsNull(); child = child.Next())
        if (!context.IsKnown(child) || HasUnknown(context, child))
            return true;
    return false;
}

/// What the plug-in says of its properties stands in place of what the text says.
void TellOfDifferences(const XmlCursor &saved, const PropertyManager &own, const PropertyManager &fromFile)
{
    using Severity = LoadEntry::Severity;
    if (!LoadContext::Current())
        return;
    for (const NarrowString &property : own.PropertyNames()) {
        const char *const name = property.c_str();
        if (!fromFile.HasProperty(name)) {
            TellLoad(Severity::Warning, saved,
                     "the property " + property + " is not there; it is that of a new instance");
            continue;
        }
        const XmlCursor element = saved.Find(name);
        if (!(own.DefaultValue(name) == fromFile.DefaultValue(name)))
            TellLoad(Severity::Note, element.Find("Default"),
                     "the plug-in has another default, which stands in place of this one");
        if (own.CanAnimate(name) != fromFile.CanAnimate(name) ||
            own.IsSpatial(name) != fromFile.IsSpatial(name))
            TellLoad(Severity::Note, element,
                     "Type and Spatial are others than the plug-in's, which stand in place of these");
        const int type = fromFile.StaticValue(name).which();
        if (type == fromFile.DefaultValue(name).which() && type != own.DefaultValue(name).which())
            TellLoad(Severity::Warning, element.Find("Static"),
                     "the value is of another type than the plug-in's default");
    }
}

void TellOfLayersNamed(LoadContext &context, const AbstractPlugin &plugin, const XmlCursor &saved)
{
    ForEachPluginUINode(plugin, [&](const AbstractPluginUITreeNode &node) {
        if (node.Type() == AbstractPluginUITreeNode::NodeType::LayerPicker)
            context.AddLayerNamed(saved.Find(EditedProperty(node)).Find("Static"));
    });
}

/// Of the properties only those are the library's to keep that the plug-in no longer has.
void TellOfProperties(LoadContext &context, const XmlCursor &element, const XmlCursor &saved,
                      PropertyManager &properties)
{
    if (saved.IsNull())
        context.Add(LoadEntry::Severity::Warning, element,
                    "there are no properties; they are those of a new instance");
    for (XmlCursor child = saved.FirstChild(); !child.IsNull(); child = child.Next())
        if (!properties.HasProperty(child.Name().data()))
            context.MarkUnknown(child);
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
    const XmlElement element(writer, Tag(), kInstanceVersion, kept);
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
        const XmlElement element(to, Tag(), kInstanceVersion, kept);
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
    const unsigned int version = element.RequireHeader(Tag(), kInstanceVersion);
    ReadHead(element);
    if (locked->ID() != pluginID)
        throw std::runtime_error("Supplied plugin does not match deserialized PluginID");
    const XmlCursor saved = element.Find("PropertyManager");
    if (!saved.IsNull() && !standIn) { // whose properties are those of the element
        PropertyManager fromFile;
        fromFile.Deserialize(saved);
        TellOfDifferences(saved, *properties, fromFile);
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
    if (const XmlCursor bytes = element.Find(kInstanceBytes); !bytes.IsNull()) {
        const std::string_view base64 = bytes.AttributeText(kBytesAttribute);
        HandOver(*locked, instance, QByteArray(base64.data(), static_cast<qsizetype>(base64.size())));
    }
    if (LoadContext *const context = LoadContext::Current()) {
        MarkOwn(element);
        TellOfLayersNamed(*context, *locked, saved);
        // The plug-in is asked only where there is something that may be its own.
        if (HasUnknown(*context, element))
            try {
                PluginElement(*this, *locked, instance).MarkAdded(*context, element);
            } catch (const std::exception &) {
                // Without options it would not have been asked, and a load must not fail of its options.
            }
        TellOfProperties(*context, element, saved, *properties);
        kept = KeptXml(element);
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
    QDomElement child = static_cast<QDomDocument *>(document)->createElement(kInstanceBytes);
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
