#include "Sphere.h"

#include <marlet/plugins/EffectsHelper.h>

#include <QDomDocument>

namespace guide
{

Sphere::Sphere()
{
    properties_->CreateProperty("radius", 100.f, PropertyManager::Type::Animatable, nullptr);
    properties_->CreateProperty("target", kytl::KyID(), PropertyManager::Type::NotAnimatable, nullptr);
}

std::shared_ptr<Abstract3DEffect> Sphere::Clone() const
{
    const auto clone = std::make_shared<Sphere>();
    clone->properties_->TakeCopyOf(*properties_);
    return clone;
}

void Sphere::Serialize(void *document, void *effectElement, const ProjectTextureImageCache &) const
{
    static_cast<QDomElement *>(effectElement)->setAttribute("Type", "Sphere");
    properties_->Serialize(document, effectElement);
}

// What the file knows of the properties that there are now, whichever version of the effect wrote it.
void Sphere::Read(QDomElement &element)
{
    QDomElement child = element.firstChildElement("PropertyManager");
    if (child.isNull())
        return;
    PropertyManager fromFile;
    fromFile.Deserialize(&child);
    EffectsHelper::SynchronizeSourceWithDest(*properties_, fromFile);
}

std::shared_ptr<Abstract3DEffect> EffectFactory::Create(void *effectElement, ProjectTextureImageCache &) const
{
    auto &element = *static_cast<QDomElement *>(effectElement);
    if (element.attribute("Type") != "Sphere")
        return nullptr;
    const auto sphere = std::make_shared<Sphere>();
    sphere->Read(element);
    return sphere;
}

kytl::KyID Sphere::Target() const
{
    return boost::get<kytl::KyID>(std::as_const(*properties_).StaticValue("target"));
}

std::vector<ObjectPropertyList> Sphere::LayerReferencePropertyNames() const
{
    return {{layerID_, {"target"}}};
}

void Sphere::ChangeLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes)
{
    if (const auto change = changes.find(Target().ToNarrowString()); change != changes.end())
        properties_->StaticValue("target") = kytl::KyID::FromString(change->second);
}

void Sphere::ClearInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs)
{
    if (validIDs.count(Target().ToNarrowString()) == 0)
        properties_->StaticValue("target") = kytl::KyID();
}

bool Sphere::IsLayerReferenced(const std::shared_ptr<CompositionAsset> &composition,
                               const kytl::KyID &layerID) const
{
    // A layer above the target moves the target, so it counts too.
    const kytl::KyID target = Target();
    return !target.IsNull() &&
           (target == layerID || IsAncestorOfReferencedLayer(composition, target, layerID));
}

} // namespace guide
