#include "Editing.h"
#include "Verb.h"
#include "options/FindByIdOrName.h"
#include "output/Failure.h"
#include "output/Output.h"

#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/operations/assets/FolderOperations.h>
#include <marlet/operations/assets/MediaImport.h>
#include <marlet/operations/assets/ProjectOperations.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>

#include <filesystem>
#include <string_view>

namespace marlet::tool
{

using namespace project;

namespace
{

using FolderPointer = std::shared_ptr<BinFolder>;

void AddFolders(const BinFolder &folder, std::vector<FolderPointer> &folders)
{
    for (const FolderPointer &inner : folder.Folders()) {
        folders.push_back(inner);
        AddFolders(*inner, folders);
    }
}

FolderPointer FindFolder(const Editing &editing, const std::string &idOrName)
{
    std::vector<FolderPointer> folders;
    AddFolders(std::as_const(*editing.Document()).Assets().Bin(), folders);
    return FindByIdOrName(folders, "folder", idOrName);
}

/// That of --folder, or else the root.
FolderPointer Folder(const Editing &editing)
{
    return editing.Words().Has("--folder") ? FindFolder(editing, editing.Words().Text("--folder")) : nullptr;
}

void Add(Editing &editing)
{
    const PixelSize size = editing.Words().Size("--size");
    const FolderPointer folder = Folder(editing);
    const auto solid = SolidAsset::Create(FromUtf8(editing.Operand()), editing.Colour(), size.width,
                                          size.height, PAR::Square);
    AddAsset(editing.Document(), solid, folder);
    editing.Tell("added", *solid);
}

void Remove(Editing &editing)
{
    const auto asset = editing.Asset(editing.Operand());
    RemoveAsset(editing.Document(), asset,
                editing.Words().Has("--uses") ? UsesOfRemoved::Remove : UsesOfRemoved::Refuse);
    editing.Tell("removed", *asset);
}

void Replace(Editing &editing)
{
    const auto asset = editing.Asset(editing.Operand());
    const auto replacement = editing.Asset(editing.Words().Text("--with"));
    ReplaceAsset(editing.Document(), asset, replacement);
    editing.Tell("replaced", "asset " + Quoted(asset->Name()) + " by asset " + Quoted(replacement->Name()));
}

/// A project names its files so that it can be opened in any folder.
void Import(Editing &editing)
{
    const WideString path =
        FromUtf8(std::filesystem::absolute(editing.Operand()).lexically_normal().string());
    const FolderPointer folder = Folder(editing);
    if (editing.Words().Has("--rate"))
        editing.Tell("added",
                     *ImportImageSequence(editing.Document(), path, editing.Words().Real("--rate"), folder));
    else
        for (const auto &asset : ImportFiles(editing.Document(), {path}, folder))
            editing.Tell("added", *asset);
}

void Move(Editing &editing)
{
    const auto asset = editing.Asset(editing.Operand());
    MoveToFolder(editing.Document(), asset, Folder(editing));
    editing.Tell("moved", *asset);
}

void Duplicate(Editing &editing)
{
    editing.Tell("added", *DuplicateComposition(editing.Document(), editing.Composition(),
                                                FromUtf8(editing.Operand(1))));
}

void Nest(Editing &editing)
{
    editing.Tell("nested", LayerPointer(NestLayers(editing.Document(), editing.Layers("--layers"),
                                                   FromUtf8(editing.Operand(1)))));
}

void TellOfFolder(const Editing &editing, const char *what, const BinFolder &folder)
{
    editing.Tell(what, "folder " + Quoted(folder.Name()) + "  " + folder.ID().ToNarrowString());
}

void AddNewFolder(Editing &editing)
{
    TellOfFolder(editing, "added",
                 *AddFolder(editing.Document(), FromUtf8(editing.Operand()), Folder(editing)));
}

void RemoveOneFolder(Editing &editing)
{
    const FolderPointer folder = FindFolder(editing, editing.Operand());
    RemoveFolder(editing.Document(), folder);
    TellOfFolder(editing, "removed", *folder);
}

void Rename(Editing &editing)
{
    const FolderPointer folder = FindFolder(editing, editing.Operand());
    RenameFolder(editing.Document(), folder, FromUtf8(editing.Operand(1)));
    TellOfFolder(editing, "renamed", *folder);
}

void MoveFolder(Editing &editing)
{
    const FolderPointer folder = FindFolder(editing, editing.Operand());
    MoveToFolder(editing.Document(), folder, Folder(editing));
    TellOfFolder(editing, "moved", *folder);
}

} // namespace

const std::vector<Verb> &AssetVerbs()
{
    static const std::vector<Verb> verbs{
        {"asset add", "NAME --size WxH --colour RRGGBB [--folder D]", Add},
        {"asset import", "PATH [--rate R] [--folder D]", Import},
        {"asset remove", "ASSET [--uses]", Remove},
        {"asset replace", "ASSET --with ASSET", Replace},
        {"asset move", "ASSET [--folder D]", Move},
        {"asset duplicate", "COMPOSITION NAME", Duplicate},
        {"asset nest", "COMPOSITION NAME --layers L,L", Nest},
        {"folder add", "NAME [--folder D]", AddNewFolder},
        {"folder remove", "FOLDER", RemoveOneFolder},
        {"folder rename", "FOLDER NAME", Rename},
        {"folder move", "FOLDER [--folder D]", MoveFolder},
    };
    return verbs;
}

} // namespace marlet::tool
