#include <marlet/layers/Abstract3DEffect.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/CompositionAsset.h>

#include <stdexcept>
#include <utility>

namespace marlet::project
{

Abstract3DEffect::~Abstract3DEffect() = default;

std::vector<ObjectPropertyList> Abstract3DEffect::LayerReferencePropertyNames() const
{
    return {};
}

void Abstract3DEffect::ChangeLayerReferences(const std::unordered_map<NarrowString, NarrowString> &)
{
}

void Abstract3DEffect::ClearInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &)
{
}

bool Abstract3DEffect::IsLayerReferenced(const std::shared_ptr<CompositionAsset> &, const kytl::KyID &) const
{
    return false;
}

bool Abstract3DEffect::IsTextureListReferenced(const kytl::KyID &) const
{
    return false;
}

bool Abstract3DEffect::IsAncestorOfReferencedLayer(const std::shared_ptr<CompositionAsset> &composition,
                                                   const kytl::KyID &layerID,
                                                   const kytl::KyID &ancestorID) const
{
    Require(composition, "composition");
    std::size_t steps = 0;
    auto layer = composition->FindLayerByID(layerID);
    while (layer && layer->HasParentLayer()) {
        if (layer->ParentLayerID() == ancestorID)
            return true;
        if (++steps > std::as_const(*composition).Layers().size())
            throw std::logic_error("The parents of layer " + layerID.ToNarrowString() + " run in a circle");
        layer = composition->FindLayerByID(layer->ParentLayerID());
    }
    return false;
}

} // namespace marlet::project
