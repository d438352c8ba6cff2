#include <marlet/operations/assets/AssetTransfer.h>

#include <marlet/history/Edit.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>
#include <marlet/operations/assets/ProjectOperations.h>
#include <marlet/operations/layers/LayerContent.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

template <class Asset, class Compare>
bool AreAlikeAs(const AbstractAsset &a, const AbstractAsset &b, const Compare &compare)
{
    const auto *first = dynamic_cast<const Asset *>(&a);
    const auto *second = dynamic_cast<const Asset *>(&b);
    return first && second && compare(*first, *second);
}

bool AreAlike(const AbstractAsset &a, const AbstractAsset &b)
{
    if (a.Type() != b.Type())
        return false;
    return a.ID() == b.ID() ||
           AreAlikeAs<MediaAsset>(a, b,
                                  [](const MediaAsset &x, const MediaAsset &y) {
                                      return x.Filename() == y.Filename() &&
                                             x.IsImageSequence() == y.IsImageSequence();
                                  }) ||
           AreAlikeAs<ImageAsset>(
               a, b, [](const ImageAsset &x, const ImageAsset &y) { return x.Filename() == y.Filename(); }) ||
           AreAlikeAs<SolidAsset>(a, b, [](const SolidAsset &x, const SolidAsset &y) {
               return x.Name() == y.Name() && x.Color() == y.Color() && x.Width() == y.Width() &&
                      x.Height() == y.Height() && x.PixelAspectRatio() == y.PixelAspectRatio();
           });
}

} // namespace

AssetTransfer::AssetTransfer(Edit &edit, std::shared_ptr<Project> source, const PasteOptions &options,
                             BroughtAssets &brought)
    : edit_(edit), source_(std::move(source)), options_(options), brought_(brought)
{
}

void AssetTransfer::Adopt(std::shared_ptr<AbstractLayer> &layer)
{
    const std::shared_ptr<Project> &project = edit_.Document();
    if (layer->Type() == LayerType::Effect3D && options_.effectFactory)
        layer = AbstractLayer::CreateFromXml(layer->Serialize(source_->TextureImageCache()),
                                             project->PluginManager(), *options_.effectFactory,
                                             project->TextureImageCache());
    AdoptEffects(*layer);
    const auto shown = std::dynamic_pointer_cast<AssetLayer>(layer);
    if (!shown)
        return;
    const AssetPointer asset = std::as_const(*source_).Assets().GetByID(shown->AssetID());
    if (!asset)
        throw OperationException("What layer " + Quoted(layer->Name()) + " shows is in its project no more");
    shown->SetAsset(Bring(asset));
}

AssetTransfer::AssetPointer AssetTransfer::Bring(const AssetPointer &asset)
{
    if (AssetPointer known = FindBrought(*asset))
        return known;
    if (options_.assets == PasteOptions::Assets::Match)
        if (AssetPointer alike = FindAlike(*asset))
            return alike;
    if (!open_.insert(asset.get()).second)
        throw OperationException("Composition " + Quoted(asset->Name()) + " shows itself");
    AssetPointer copy = Copy(*asset);
    if (const auto composition = std::dynamic_pointer_cast<CompositionAsset>(copy))
        for (std::shared_ptr<AbstractLayer> &layer : composition->Layers())
            if (layer)
                Adopt(layer);
    open_.erase(asset.get());
    AddAsset(edit_.Document(), copy);
    brought_.emplace(asset->ID(), copy);
    return copy;
}

AssetTransfer::AssetPointer AssetTransfer::FindBrought(const AbstractAsset &asset) const
{
    const AssetList &assets = std::as_const(*edit_.Document()).Assets();
    const auto [first, last] = brought_.equal_range(asset.ID());
    for (auto entry = first; entry != last; ++entry)
        if (AssetPointer known = entry->second.lock(); known && assets.GetByID(known->ID()) == known)
            return known;
    return nullptr;
}

AssetTransfer::AssetPointer AssetTransfer::FindAlike(const AbstractAsset &asset) const
{
    const AssetList::Assets &all = std::as_const(*edit_.Document()).Assets().All();
    const auto found = std::ranges::find_if(
        all, [&](const AssetPointer &entry) { return entry && AreAlike(*entry, asset); });
    return found == all.end() ? nullptr : *found;
}

/// Media belong to the manager that opened their file.
AssetTransfer::AssetPointer AssetTransfer::Copy(const AbstractAsset &asset) const
{
    AssetPointer clone = asset.Clone();
    clone->ClearParentBinFolder();
    if (asset.Type() != AssetType::Media)
        return clone;
    return edit_.Document()->Media().CreateMediaAssetFromXml(clone->Serialize(source_->TextureImageCache()));
}

void AssetTransfer::AdoptEffects(AbstractLayer &layer) const
{
    auto *effects = EffectsOf(layer);
    if (!effects)
        return;
    const std::shared_ptr<AbstractPluginManager> &plugins = edit_.Document()->PluginManager();
    for (std::shared_ptr<EffectInstance> &effect : *effects) {
        const std::shared_ptr<AbstractPlugin> plugin =
            plugins ? plugins->FindPlugin(effect->PluginID()) : nullptr;
        if (!plugin && !effect->IsStandIn())
            throw OperationException("The project has no plug-in for effect " + Quoted(effect->Name()) +
                                     " of layer " + Quoted(layer.Name()));
        if (!plugin || plugin == effect->Plugin())
            continue;
        effect = EffectInstance::CreateFromXml(plugin, effect->Serialize(), {});
        effect->SetParent(layer.ID(), layer.ParentCompositionID());
    }
}

} // namespace marlet::project
