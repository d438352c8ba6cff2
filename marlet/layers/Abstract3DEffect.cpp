#include <marlet/layers/Abstract3DEffect.h>

#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/CompositionAsset.h>

#include <stdexcept>

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
    // An index, since searching the composition for each link of a long chain would take the square of its
    // length. The first of several layers with one ID counts, as in every search by ID.
    std::unordered_map<kytl::KyID, kytl::KyID> parents;
    for (const std::shared_ptr<AbstractLayer> &layer : composition->Layers())
        parents.try_emplace(layer->ID(), layer->ParentLayerID());

    std::size_t steps = 0;
    for (auto link = parents.find(layerID); link != parents.end(); link = parents.find(link->second)) {
        if (link->second.IsNull())
            return false;
        if (link->second == ancestorID)
            return true;
        if (++steps > parents.size())
            throw std::logic_error("The parents of layer " + layerID.ToNarrowString() + " run in a circle");
    }
    return false;
}

} // namespace marlet::project
