#include <bench/support/BenchPlugin.h>

#include <marlet/animation/PropertyValue.h>
#include <marlet/plugins/AbstractPluginInstance.h>
#include <marlet/plugins/PluginUILayerPicker.h>
#include <marlet/plugins/PluginUINode.h>
#include <marlet/plugins/PluginUISliderFloat.h>

using namespace marlet::project;

namespace bench
{

BenchPlugin::BenchPlugin() : panel_(PluginUINode::CreateTreeRoot())
{
    properties_.CreateProperty(kAmount, 10.F, PropertyManager::Type::Animatable, nullptr);
    properties_.CreateProperty(kLayer, kytl::KyID(), PropertyManager::Type::NotAnimatable, nullptr);
    panel_->ChildNodes().Add(
        std::make_shared<PluginUISliderFloat>(panel_, u"Amount", u"", kAmount, 0, 0.F, 100.F, 1));
    panel_->ChildNodes().Add(std::make_shared<PluginUILayerPicker>(panel_, u"Layer", kLayer, 0));
}

void BenchPlugin::SerializeInstance(Instance instance, void *document, void *element)
{
    unsigned char bytes[] = "private";
    instance->SerializeInstanceDataBytes(bytes, sizeof bytes, document, element);
}

} // namespace bench
