#include <marlet/project/InstancesXml.h>

#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/AbstractAssetInstance.h>

namespace marlet::project
{

void WriteInstances(XmlWriter &writer, const AbstractAsset::InstanceList &instances)
{
    const XmlElement list(writer, "Instances");
    for (const std::weak_ptr<AbstractAssetInstance> &reference : instances) {
        const std::shared_ptr<AbstractAssetInstance> instance = reference.lock();
        if (!instance)
            continue;
        const XmlElement element(writer, "Instance");
        writer.Attribute("ID", instance->ID());
        writer.Attribute("Type", instance->AssetInstanceType());
        if (instance->AssetInstanceType() != AbstractAssetInstance::Type::AssetLayer)
            continue;
        if (const auto *layer = dynamic_cast<const AbstractLayer *>(instance.get()))
            writer.Attribute("CompID", layer->ParentCompositionID());
    }
}

} // namespace marlet::project
