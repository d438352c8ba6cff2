#include <marlet/plugins/StandInPlugin.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/animation/PropertyValue.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/plugins/PluginInstance_Impl.h>
#include <marlet/plugins/PluginUILayerPicker.h>

namespace marlet::project
{

namespace
{

class Panel final : public PluginUITreeNode
{
public:
    Panel() : PluginUITreeNode(NodeType::Root, nullptr, {}, nullptr, 0) {}
};

std::shared_ptr<AbstractPluginUITreeNode> PanelOf(const PropertyManager &properties)
{
    constexpr int kNoOptions = 0;
    auto panel = std::make_shared<Panel>();
    for (const NarrowString &name : properties.PropertyNames())
        if (boost::get<kytl::KyID>(&properties.StaticValue(name.c_str())))
            panel->ChildNodes().Add(
                std::make_shared<PluginUILayerPicker>(panel, FromUtf8(name), name.c_str(), kNoOptions));
    return panel;
}

} // namespace

StandInPlugin::StandInPlugin(const XmlCursor &instance)
    : version_(SavedPluginVersion(instance).value_or(VersionInfo())), properties_(PropertyManager::Create())
{
    instance.Child("PluginID", id_);
    instance.Child("PluginName", name_);
    if (const XmlCursor properties = instance.Find("PropertyManager"); !properties.IsNull())
        properties_->Deserialize(properties);
    panel_ = PanelOf(*properties_);
}

} // namespace marlet::project
