#include <marlet/plugins/EffectsHelper.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/xml/DomBridge.h>
#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/plugins/AbstractPluginUITreeNode.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/plugins/PluginInstance_Impl.h>
#include <marlet/plugins/PluginUITreeWalk.h>

#include <map>

namespace marlet::project
{

namespace
{

using NodeType = AbstractPluginUITreeNode::NodeType;

/// Whether a node is the control of one property, whose state is kept. Layer pickers have none.
bool HasUIState(NodeType type)
{
    return type >= NodeType::SliderInt && type <= NodeType::ColorPicker;
}

/// The path in space that values of this alternative can run along.
KeyFrameList::SpatialDataType PathOf(const PropertyValue &value)
{
    if (boost::get<kytl::matl::KyPoint<2, float>>(&value) != nullptr)
        return KeyFrameList::SpatialDataType::Spatial2D;
    if (boost::get<kytl::matl::KyPoint<3, float>>(&value) != nullptr)
        return KeyFrameList::SpatialDataType::Spatial3D;
    return KeyFrameList::SpatialDataType::NotSpatial;
}

/// A property is saved with the plug-in's spatial flag, so its key frames get the type that goes with that
/// flag and with their values. The type that they have in this file must not stay: the animation would be
/// another one after the next save, or fail where key frames and plug-in are of different alternatives.
void TakeKeyFrames(PropertyManager &properties, const char *name, const KeyFrameList &fromFile)
{
    KeyFrameList &keyFrames = properties.KeyFrames(name);
    keyFrames = fromFile;
    auto type = KeyFrameList::SpatialDataType::NotSpatial;
    if (properties.IsSpatial(name))
        type = PathOf(keyFrames.IsEmpty() ? properties.DefaultValue(name) : keyFrames.FirstByTime().Value());
    keyFrames.ForEach([&type](KeyFrame &key) {
        if (PathOf(key.Value()) != type)
            type = KeyFrameList::SpatialDataType::NotSpatial;
    });
    keyFrames.SetSpatialType(type);
}

} // namespace

void EffectsHelper::SerializeEffects(QDomDocument *document, QDomElement *parent, const Effects &effects)
{
    Require(document, "document");
    Require(parent, "parent");
    AppendXmlToDom(XmlText([&](XmlWriter &writer) { SerializeEffects(writer, effects); }), document, parent);
}

void EffectsHelper::DeserializeEffects(QDomElement *parent, Effects &effects,
                                       const std::shared_ptr<AbstractPluginManager> &pluginManager)
{
    Require(parent, "parent");
    const XmlDocument document(XmlFromDom(parent));
    DeserializeEffects(document.Root(), effects, pluginManager);
}

void EffectsHelper::SerializeUIState(QDomDocument *document, QDomElement *parent, const UIStates &states)
{
    Require(document, "document");
    Require(parent, "parent");
    AppendXmlToDom(XmlText([&](XmlWriter &writer) { SerializeUIState(writer, states); }), document, parent);
}

void EffectsHelper::SynchronizeUIState(QDomElement *parent, UIStates &states)
{
    Require(parent, "parent");
    const XmlDocument document(XmlFromDom(parent));
    SynchronizeUIState(document.Root(), states);
}

void EffectsHelper::SerializeEffects(XmlWriter &writer, const Effects &effects)
{
    const XmlElement element(writer, "Effects");
    for (const std::shared_ptr<EffectInstance> &effect : effects)
        if (effect)
            effect->Serialize(writer);
}

void EffectsHelper::DeserializeEffects(const XmlCursor &parent, Effects &effects,
                                       const std::shared_ptr<AbstractPluginManager> &pluginManager)
{
    Effects read;
    XmlCursor instance;
    if (CanReadInstances(pluginManager.get(), parent.Find("Effects")))
        instance = parent.Find("Effects").Find("Instance");
    for (; !instance.IsNull(); instance = instance.Next("Instance")) {
        const std::shared_ptr<AbstractPlugin> plugin = FindPlugin(pluginManager.get(), instance);
        read.Add(EffectInstance::Create(plugin));
        read.back()->Deserialize(instance);
    }
    effects.swap(read);
}

EffectsHelper::UIStates EffectsHelper::CreateUIState(const std::shared_ptr<AbstractPlugin> &plugin)
{
    UIStates states;
    if (!plugin)
        return states;
    ForEachPluginUINode(*plugin, [&states](const AbstractPluginUITreeNode &node) {
        if (HasUIState(node.Type()))
            states[EditedProperty(node)].visible = (node.Options() & AbstractPluginUITreeNode::kHidden) == 0;
    });
    return states;
}

void EffectsHelper::SerializeUIState(XmlWriter &writer, const UIStates &states)
{
    const XmlElement element(writer, "UIState");
    const std::map<std::string_view, AbstractPluginInstance::UIState> sorted(states.begin(), states.end());
    for (const auto &[name, state] : sorted) {
        const XmlElement property(writer, "Property");
        writer.Attribute("name", name);
        writer.Attribute("vis", state.visible);
    }
}

void EffectsHelper::SynchronizeUIState(const XmlCursor &parent, UIStates &states)
{
    UIStates saved;
    for (XmlCursor property = parent.Find("UIState").Find("Property"); !property.IsNull();
         property = property.Next("Property")) {
        const NarrowString name(property.AttributeText("name"));
        if (!states.contains(name)) {
            Disown(property);
            continue;
        }
        bool &visible = saved[name].visible;
        visible = true;
        if (property.HasAttribute("vis"))
            property.Attribute("vis", visible);
    }
    for (auto &[name, state] : states)
        if (const auto found = saved.find(name); found != saved.end())
            state = found->second;
}

void EffectsHelper::SynchronizeSourceWithDest(PropertyManager &properties, const PropertyManager &fromFile)
{
    for (const NarrowString &name : properties.PropertyNames()) {
        if (!fromFile.HasProperty(name.c_str()))
            continue;
        properties.StaticValue(name.c_str()) = fromFile.StaticValue(name.c_str());
        TakeKeyFrames(properties, name.c_str(), fromFile.KeyFrames(name.c_str()));
        properties.Expression(name.c_str()) = fromFile.Expression(name.c_str());
        properties.KeepAsItCame(name.c_str(), fromFile);
    }
}

int EffectsHelper::ComparePluginVersions(const AbstractPlugin::VersionInfo &a,
                                         const AbstractPlugin::VersionInfo &b)
{
    const auto order = a <=> b;
    return order > 0 ? 1 : order < 0 ? -1 : 0;
}

} // namespace marlet::project
