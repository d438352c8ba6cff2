#include <marlet/operations/assets/AssetWork.h>

#include <marlet/history/Edit.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>
#include <marlet/operations/assets/AssetUses.h>
#include <marlet/operations/assets/InstanceChange.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <unordered_set>

namespace marlet::project
{

namespace
{

using AssetPointer = std::shared_ptr<AbstractAsset>;

/// Whether an asset is the composition, or shows it over whatever way.
bool Shows(const Project &project, const AssetPointer &asset, const CompositionAsset &composition)
{
    std::vector<AssetPointer> pending{asset};
    std::unordered_set<const AbstractAsset *> seen;
    while (!pending.empty()) {
        const AssetPointer shown = pending.back();
        pending.pop_back();
        if (shown.get() == &composition)
            return true;
        const auto *nested = dynamic_cast<const CompositionAsset *>(shown.get());
        if (!nested || !seen.insert(nested).second)
            continue;
        for (const std::shared_ptr<AssetLayer> &layer : AssetLayersOf(*nested))
            pending.push_back(project.Assets().GetByID(layer->AssetID()));
    }
    return false;
}

} // namespace

std::vector<std::shared_ptr<AssetLayer>> AssetLayersOf(const CompositionAsset &composition)
{
    std::vector<std::shared_ptr<AssetLayer>> layers;
    for (const std::shared_ptr<AbstractLayer> &layer : composition.Layers())
        if (auto shown = std::dynamic_pointer_cast<AssetLayer>(layer))
            layers.push_back(std::move(shown));
    return layers;
}

void RequireAsset(const Project &project, const AbstractAsset &asset)
{
    if (project.Assets().GetByID(asset.ID()).get() != &asset)
        throw OperationException("Asset " + Quoted(asset.Name()) + " is not in the project");
}

void RequireNoCircle(const Project &project, const CompositionAsset &composition, const AssetPointer &asset)
{
    if (asset.get() == &composition)
        throw OperationException("Composition " + Quoted(composition.Name()) + " would show itself");
    if (Shows(project, asset, composition))
        throw OperationException("Composition " + Quoted(composition.Name()) + " would show itself in " +
                                 Quoted(asset->Name()));
}

void ListInstance(Edit &edit, const AssetPointer &asset,
                  const std::shared_ptr<AbstractAssetInstance> &instance)
{
    if (std::as_const(*asset).Instances().IsEmpty())
        for (const UseOfAsset &use : UsesOf(*edit.Document(), *asset))
            if (use.instance != instance)
                AddInstance(edit, asset, use.instance);
    AddInstance(edit, asset, instance);
}

void UnlistInstance(Edit &edit, const std::shared_ptr<AbstractAssetInstance> &instance)
{
    if (const AssetPointer asset = std::as_const(*edit.Document()).Assets().GetByID(instance->AssetID()))
        RemoveInstance(edit, asset, instance);
}

std::string PlaceOf(const UseOfAsset &use)
{
    if (use.composition)
        return "layer " + Quoted(use.instance->Name()) + " of composition " + Quoted(use.composition->Name());
    return "object " + Quoted(use.instance->Name()) + " of the sequence";
}

} // namespace marlet::project
