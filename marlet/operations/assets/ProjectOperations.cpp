#include <marlet/operations/assets/ProjectOperations.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/history/Edit.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>
#include <marlet/operations/assets/AssetUses.h>
#include <marlet/operations/assets/AssetWork.h>
#include <marlet/operations/assets/FolderWork.h>
#include <marlet/operations/layers/LayerOperations.h>
#include <marlet/operations/sequence/SequenceRemoval.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

using AssetPointer = std::shared_ptr<AbstractAsset>;
using FolderPointer = std::shared_ptr<BinFolder>;

/// A refusal stays readable, however much an asset is used.
constexpr std::size_t kNamedUses = 10;

/// Out of all folders that hold it.
void LeaveFolders(Edit &edit, const AssetPointer &asset)
{
    const auto isAsset = [&](const std::weak_ptr<AbstractAsset> &entry) { return entry.lock() == asset; };
    for (const FolderPointer &folder : FoldersOf(edit.Document())) {
        if (std::ranges::none_of(folder->Assets(), isAsset))
            continue;
        edit.Touch(folder);
        std::erase_if(folder->Assets(), isAsset);
    }
}

void EnterFolder(Edit &edit, const AssetPointer &asset, const FolderPointer &folder)
{
    edit.Touch(folder);
    edit.Touch(asset);
    folder->Assets().Add(asset);
    asset->SetParentFolderID(folder->ID());
}

/// @throws OperationException if the project lacks what a composition shows
void RequireContent(const Project &project, const AbstractAsset &asset)
{
    const auto *composition = dynamic_cast<const CompositionAsset *>(&asset);
    if (!composition)
        return;
    for (const std::shared_ptr<AssetLayer> &layer : AssetLayersOf(*composition)) {
        const AssetPointer shown = project.Assets().GetByID(layer->AssetID());
        if (!shown)
            throw OperationException("Layer " + Quoted(layer->Name()) +
                                     " shows an asset that is not in the project");
        RequireNoCircle(project, *composition, shown);
    }
}

/// On the project's list, but in no folder.
void AddToList(Edit &edit, const AssetPointer &asset)
{
    const std::shared_ptr<Project> &project = edit.Document();
    const AssetList &assets = std::as_const(*project).Assets();
    if (assets.GetByID(asset->ID()))
        throw OperationException("Asset " + Quoted(asset->Name()) + " is in the project already");
    if (const auto composition = std::dynamic_pointer_cast<CompositionAsset>(asset))
        for (const std::shared_ptr<AssetLayer> &layer : AssetLayersOf(*composition))
            if (const AssetPointer shown = assets.GetByID(layer->AssetID()))
                ListInstance(edit, shown, layer);
    edit.TouchAssets();
    project->Assets().All().Add(asset);
}

OperationException IsUsed(const AbstractAsset &asset, const std::vector<UseOfAsset> &uses)
{
    std::string places;
    for (std::size_t i = 0; i < std::min(uses.size(), kNamedUses); ++i)
        places += (i == 0 ? "" : ", ") + PlaceOf(uses[i]);
    if (uses.size() > kNamedUses)
        places += " and " + std::to_string(uses.size() - kNamedUses) + " more";
    return OperationException("Asset " + Quoted(asset.Name()) + " is used: " + places);
}

void RemoveUses(const std::shared_ptr<Project> &project, const std::vector<UseOfAsset> &uses)
{
    std::vector<std::shared_ptr<AbstractLayer>> layers;
    for (const UseOfAsset &use : uses) {
        if (auto layer = std::dynamic_pointer_cast<AbstractLayer>(use.instance))
            layers.push_back(std::move(layer));
        else if (const auto object = std::dynamic_pointer_cast<AbstractSequenceObject>(use.instance))
            RemoveObject(project, object, Partner::Stays);
    }
    RemoveLayers(project, layers);
}

} // namespace

void AddAsset(const std::shared_ptr<Project> &project, const AssetPointer &asset, const FolderPointer &folder)
{
    Edit edit(project, u"Add asset");
    Require(asset, "asset");
    RequireContent(*project, *asset);
    AddToList(edit, asset);
    EnterFolder(edit, asset, RequireFolder(project, folder));
    edit.Commit();
}

void RemoveAsset(const std::shared_ptr<Project> &project, const AssetPointer &asset, UsesOfRemoved uses)
{
    Edit edit(project, u"Remove asset");
    Require(asset, "asset");
    RequireAsset(*project, *asset);
    const std::vector<UseOfAsset> found = UsesOf(*project, *asset);
    if (!found.empty() && uses == UsesOfRemoved::Refuse)
        throw IsUsed(*asset, found);
    RemoveUses(project, found);
    if (const auto composition = std::dynamic_pointer_cast<CompositionAsset>(asset))
        for (const std::shared_ptr<AssetLayer> &layer : AssetLayersOf(*composition))
            UnlistInstance(edit, layer);
    LeaveFolders(edit, asset);
    edit.Touch(asset);
    asset->ClearParentBinFolder();
    edit.TouchAssets();
    std::erase(project->Assets().All(), asset);
    edit.Commit();
}

void MoveToFolder(const std::shared_ptr<Project> &project, const AssetPointer &asset,
                  const FolderPointer &folder)
{
    Edit edit(project, u"Move to folder");
    Require(asset, "asset");
    RequireAsset(*project, *asset);
    const FolderPointer into = RequireFolder(project, folder);
    LeaveFolders(edit, asset);
    EnterFolder(edit, asset, into);
    edit.Commit();
}

void MoveToFolder(const std::shared_ptr<Project> &project, const FolderPointer &moved,
                  const FolderPointer &folder)
{
    Edit edit(project, u"Move to folder");
    Require(moved, "folder");
    const FolderPointer into = RequireFolder(project, folder);
    RequireFolder(project, moved);
    if (moved->ID() == into->ID() || moved->FindFolderByID(into->ID()))
        throw OperationException("Folder " + Quoted(moved->Name()) + " would be in itself");
    if (moved == RootOf(project))
        throw OperationException("The root folder stays");
    for (const FolderPointer &holder : FoldersOf(project)) {
        if (std::ranges::find(holder->Folders(), moved) == holder->Folders().end())
            continue;
        edit.Touch(holder);
        std::erase(holder->Folders(), moved);
    }
    edit.Touch(into);
    edit.Touch(moved);
    into->Folders().Add(moved);
    moved->SetParentFolderID(into->ID());
    edit.Commit();
}

std::shared_ptr<CompositionAsset> DuplicateComposition(const std::shared_ptr<Project> &project,
                                                       const std::shared_ptr<CompositionAsset> &composition,
                                                       const WideString &name)
{
    Edit edit(project, u"Duplicate composition");
    Require(composition, "composition");
    RequireAsset(*project, *composition);
    auto clone = CompositionAsset::Copy(composition);
    clone->SetName(name);
    clone->ClearParentBinFolder();
    AddToList(edit, clone);
    if (const FolderPointer folder = FolderOf(project, *composition))
        EnterFolder(edit, clone, folder);
    edit.Commit();
    return clone;
}

} // namespace marlet::project
