#include <marlet/operations/layers/LayerWork.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <unordered_set>

namespace marlet::project
{

using LayerPointer = std::shared_ptr<AbstractLayer>;
using CompositionPointer = std::shared_ptr<CompositionAsset>;

namespace
{

bool Holds(const CompositionAsset *composition, const LayerPointer &layer)
{
    return composition && composition->FindLayerByID(layer->ID()) == layer;
}

} // namespace

CompositionPointer RequireCompositionOf(const Project &project, const LayerPointer &layer)
{
    Require(layer, "layer");
    auto named =
        std::dynamic_pointer_cast<CompositionAsset>(project.Assets().GetByID(layer->ParentCompositionID()));
    if (Holds(named.get(), layer))
        return named;
    // A layer of a file may name another composition than the one that holds it.
    for (const std::shared_ptr<AbstractAsset> &asset : project.Assets().All())
        if (auto holder = std::dynamic_pointer_cast<CompositionAsset>(asset); Holds(holder.get(), layer))
            return holder;
    throw OperationException("Layer " + Quoted(layer->Name()) + " is in no composition of the project");
}

CompositionPointer RequireOneComposition(const Project &project, const std::vector<LayerPointer> &layers)
{
    CompositionPointer composition;
    for (const LayerPointer &layer : layers) {
        const CompositionPointer own = RequireCompositionOf(project, layer);
        if (composition && own != composition)
            throw OperationException("Layers " + Quoted(layers[0]->Name()) + " and " + Quoted(layer->Name()) +
                                     " are in two compositions");
        composition = own;
    }
    if (!composition)
        throw OperationException("There are no layers");
    return composition;
}

std::vector<LayerPointer> InStackingOrder(const CompositionAsset &composition,
                                          const std::vector<LayerPointer> &layers)
{
    const std::unordered_set<LayerPointer> wanted(layers.begin(), layers.end());
    std::vector<LayerPointer> sorted;
    std::ranges::copy_if(composition.Layers(), std::back_inserter(sorted),
                         [&](const LayerPointer &layer) { return wanted.contains(layer); });
    return sorted;
}

void InsertLayer(CompositionAsset &composition, const LayerPointer &layer, unsigned int position)
{
    CompositionAsset::LayerList &layers = composition.Layers();
    layers.insert(std::next(layers.begin(), std::min(position, layers.Count())), layer);
}

} // namespace marlet::project
