#include <marlet/compare/Update.h>

#include <marlet/compare/ElementNames.h>
#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/history/Edit.h>
#include <marlet/history/Parts.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/PanelRenderState.h>
#include <marlet/project/Project.h>

namespace marlet::project
{

namespace
{

using InstancesByID = std::unordered_map<kytl::KyID, std::shared_ptr<AbstractAssetInstance>>;

void UpdateComposition(const Update &update, const ElementPair &elements,
                       const std::shared_ptr<CompositionAsset> &composition, CompositionAsset &fresh)
{
    if (const ElementPair layers = elements.Child("Layers"); !layers.IsSame()) {
        update.edit.TouchLayers(composition);
        UpdateList(layers, composition->Layers(), fresh.Layers(),
                   [&](const auto &layer, const auto &replacement, const ElementPair &pair) {
                       return UpdateLayer(update, pair, layer, replacement);
                   });
    }
    if (elements.Child("ViewerState").IsSame())
        return;
    update.edit.TouchPanels(composition);
    composition->ViewerPanelState().Swap(fresh.ViewerPanelState());
}

void UpdateFile(const Update &update, std::shared_ptr<MediaAsset> media, const MediaAsset &fresh)
{
    if (media->Filename() == fresh.Filename() && media->IsImageSequence() == fresh.IsImageSequence())
        return;
    if (fresh.IsImageSequence())
        update.project->Media().RelinkImageSequence(media, fresh.Filename());
    else
        update.project->Media().RelinkMediaFile(media, fresh.Filename());
}

std::shared_ptr<AbstractAsset> UpdateAsset(const Update &update, const ElementPair &elements,
                                           const std::shared_ptr<AbstractAsset> &asset,
                                           const std::shared_ptr<AbstractAsset> &fresh)
{
    if (asset->Type() != fresh->Type() || update.Exchanges(elements))
        return fresh;
    update.edit.Touch(asset);
    if (const auto media = std::dynamic_pointer_cast<MediaAsset>(asset))
        UpdateFile(update, media, dynamic_cast<const MediaAsset &>(*fresh));
    TakeOver(*asset, *fresh);
    if (const auto composition = std::dynamic_pointer_cast<CompositionAsset>(asset))
        UpdateComposition(update, elements, composition, dynamic_cast<CompositionAsset &>(*fresh));
    return asset;
}

InstancesByID InstancesOf(const Project &project)
{
    InstancesByID instances;
    for (const auto &asset : project.Assets().GetByType(AssetType::Composition))
        for (const auto &layer : std::static_pointer_cast<CompositionAsset>(asset)->Layers())
            if (const auto instance = std::dynamic_pointer_cast<AbstractAssetInstance>(layer))
                instances.emplace(instance->ID(), instance);
    const auto addTrack = [&](const auto &track) {
        if (track)
            track->Objects().ForEach([&](const std::shared_ptr<AbstractSequenceObject> &object) {
                instances.emplace(object->ID(), object);
            });
    };
    if (const std::shared_ptr<EditorSequence> sequence = project.Sequence()) {
        for (const auto &track : sequence->VideoTracks())
            addTrack(track);
        for (const auto &track : sequence->AudioTracks())
            addTrack(track);
    }
    return instances;
}

/// Whether a list of references is one of those objects.
template <class References, class Objects> bool RefersTo(const References &references, const Objects &objects)
{
    return std::equal(references.begin(), references.end(), objects.begin(), objects.end(),
                      [](const auto &reference, const auto &object) { return reference.lock() == object; });
}

template <class References, class Touch, class Objects>
void SetReferences(References &references, const Objects &objects, const Touch &touch)
{
    if (RefersTo(references, objects))
        return;
    touch();
    references.Clear();
    for (const auto &object : objects)
        references.Add(object);
}

class FolderUpdate
{
public:
    explicit FolderUpdate(const Update &update) : update_(update)
    {
        Collect(update.project->Assets().Bin(), own_);
        Collect(update.fresh.Assets().Bin(), fresh_);
    }

    void UpdateRoot(const TextElement &element)
    {
        BinFolder &root = update_.project->Assets().Bin();
        update_.edit.TouchRootFolder();
        TakeOver(root, update_.fresh.Assets().Bin());
        Fill(root, element, [this] { update_.edit.TouchRootFolder(); });
    }

private:
    using Folders = std::unordered_map<kytl::KyID, std::shared_ptr<BinFolder>>;

    static void Collect(const BinFolder &folder, Folders &folders)
    {
        for (const std::shared_ptr<BinFolder> &inner : folder.Folders()) {
            folders.emplace(inner->ID(), inner);
            Collect(*inner, folders);
        }
    }

    std::shared_ptr<BinFolder> Updated(const kytl::KyID &id, const TextElement &element)
    {
        const auto found = own_.find(id);
        const auto fresh = fresh_.find(id);
        const std::shared_ptr<BinFolder> folder = found == own_.end() ? fresh->second : found->second;
        const auto touch = [&] { update_.edit.Touch(folder); };
        touch();
        TakeOver(*folder, *fresh->second);
        Fill(*folder, element, touch);
        return folder;
    }

    template <class Touch> void Fill(BinFolder &folder, const TextElement &element, const Touch &touch)
    {
        std::vector<std::shared_ptr<AbstractAsset>> assets;
        for (const TextElement &reference : element.Child("Assets").Children())
            if (const auto asset =
                    update_.project->Assets().GetByID(kytl::KyID::FromString(reference.Text())))
                assets.push_back(asset);
        SetReferences(folder.Assets(), assets, touch);
        BinFolder::SubFolders folders;
        for (const TextElement &inner : element.Child("SubFolders").Children())
            folders.Add(Updated(kytl::KyID::FromString(inner.ChildText("ID")), inner));
        if (folders != folder.Folders())
            folder.Folders() = folders;
    }

    const Update &update_;
    Folders own_;
    Folders fresh_;
};

} // namespace

void UpdateAssets(const Update &update, const ElementPair &assetList)
{
    const ElementPair assets = assetList.Child("Assets");
    if (assets.IsSame())
        return;
    update.edit.TouchAssets();
    UpdateList(assets, update.project->Assets().All(), update.fresh.Assets().All(),
               [&](const auto &asset, const auto &fresh, const ElementPair &pair) {
                   return UpdateAsset(update, pair, asset, fresh);
               });
}

void UpdateFolders(const Update &update, const ElementPair &rootFolder)
{
    // Folders refer to assets weakly, and those may be others now.
    FolderUpdate(update).UpdateRoot(rootFolder.after);
}

void UpdateInstances(const Update &update, const TextElement &assets)
{
    const InstancesByID known = InstancesOf(*update.project);
    for (const TextElement &element : assets.Children()) {
        const auto asset = update.project->Assets().GetByID(kytl::KyID::FromString(element.ChildText("ID")));
        std::vector<std::shared_ptr<AbstractAssetInstance>> instances;
        for (const TextElement &instance : element.Child("Instances").Children())
            if (const auto found = known.find(kytl::KyID::FromString(instance.Attribute("ID")));
                found != known.end())
                instances.push_back(found->second);
        if (asset)
            SetReferences(asset->Instances(), instances, [&] { update.edit.Touch(asset); });
    }
}

} // namespace marlet::project
