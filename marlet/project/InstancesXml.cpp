#include <marlet/project/InstancesXml.h>

#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/AbstractAssetInstance.h>

namespace marlet::project
{

namespace
{

constexpr char kList[] = "Instances";
constexpr char kItem[] = "Instance";

/// Null for what is none.
kytl::KyID ReadID(const XmlCursor &instance)
{
    try {
        return kytl::KyID::FromString(instance.AttributeText("ID"));
    } catch (const std::exception &) {
        return {};
    }
}

} // namespace

void WriteInstances(XmlWriter &writer, const AbstractAsset::InstanceList &instances)
{
    const XmlElement list(writer, kList);
    for (const std::weak_ptr<AbstractAssetInstance> &reference : instances) {
        const std::shared_ptr<AbstractAssetInstance> instance = reference.lock();
        if (!instance)
            continue;
        const XmlElement element(writer, kItem);
        writer.Attribute("ID", instance->ID());
        writer.Attribute("Type", instance->AssetInstanceType());
        if (instance->AssetInstanceType() != AbstractAssetInstance::Type::AssetLayer)
            continue;
        if (const auto *layer = dynamic_cast<const AbstractLayer *>(instance.get()))
            writer.Attribute("CompID", layer->ParentCompositionID());
    }
}

void PassInstances(const XmlCursor &asset)
{
    for (XmlCursor instance = asset.Find(kList).Find(kItem); !instance.IsNull();
         instance = instance.Next(kItem)) {
        // The host lists the uses that it knows.
        if (IsKept(ReadID(instance))) {
            LoadContext::Current()->KeepReference(instance);
            continue;
        }
        for (const char *attribute : {"ID", "Type", "CompID"})
            static_cast<void>(instance.HasAttribute(attribute));
    }
}

} // namespace marlet::project
