#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/Abstract3DEffect.h>
#include <marlet/layers/Abstract3DEffectFactory.h>
#include <marlet/plugins/WithoutHostOperations.h>

#include <memory>

class QDomElement;

namespace guide
{

using namespace marlet::project;

// A ball that turns towards another layer.
class Sphere : public WithoutHostOperations<Abstract3DEffect>
{
public:
    Sphere();

    std::shared_ptr<Abstract3DEffect> Clone() const override;
    void SetLayerID(const kytl::KyID &layerID) override { layerID_ = layerID; }
    void Serialize(void *document, void *effectElement,
                   const ProjectTextureImageCache &textures) const override;
    void Read(QDomElement &element);

    // The target goes along when its layer is copied, and is cleared when the layer goes.
    std::vector<ObjectPropertyList> LayerReferencePropertyNames() const override;
    void ChangeLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes) override;
    void ClearInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs) override;
    bool IsLayerReferenced(const std::shared_ptr<CompositionAsset> &composition,
                           const kytl::KyID &layerID) const override;

    PropertyManager &Animation() { return *properties_; }

private:
    kytl::KyID Target() const;

    kytl::KyID layerID_;
    std::shared_ptr<PropertyManager> properties_ = PropertyManager::Create();
};

class EffectFactory : public Abstract3DEffectFactory
{
public:
    std::shared_ptr<Abstract3DEffect> Create(void *effectElement,
                                             ProjectTextureImageCache &textures) const override;
};

} // namespace guide
