#include "Bindings.h"
#include "Handles.h"
#include "Listing.h"

#include <marlet/operations/assets/ProjectOperations.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>

namespace marlet::python
{

namespace
{

using Type = py::class_<FolderHandle>;

void BindLists(Type &type)
{
    type.def_property_readonly(
        "folders",
        [](const FolderHandle &folder) {
            folder.Get();
            return MakeListing<BinFolder>(
                [folder] { return std::as_const(*folder.Get()).Folders(); },
                [owner = folder.Owner()](const std::shared_ptr<BinFolder> &sub) { return Show(owner, sub); });
        },
        "The folders in it.");
    type.def_property_readonly(
        "assets",
        [](const FolderHandle &folder) {
            folder.Get();
            return MakeListing<AbstractAsset>(
                [folder] {
                    std::vector<std::shared_ptr<AbstractAsset>> assets;
                    for (const auto &asset : std::as_const(*folder.Get()).Assets())
                        assets.push_back(asset.lock());
                    return assets;
                },
                [owner = folder.Owner()](const std::shared_ptr<AbstractAsset> &asset) {
                    return Show(owner, asset);
                });
        },
        "The assets in it.");
}

py::object AddFolder(const FolderHandle &parent, const WideString &name)
{
    const auto outer = parent.Get();
    const auto folder = BinFolder::Create(name);
    Edited(*parent.Owner(), u"Add folder", [&](Edit &edit) {
        edit.Touch(outer);
        folder->SetParentFolderID(outer->ID());
        outer->Folders().Add(folder);
    });
    return Show(parent.Owner(), folder);
}

} // namespace

void BindFolder(py::module_ &module)
{
    Type type(module, "Folder", "A folder of a project's assets.");
    BindIdentity<FolderHandle>(type);
    BindFact<FolderHandle>(
        type, "id", [](const BinFolder &folder) { return folder.ID().ToNarrowString(); },
        "The text of its ID.");
    BindField<FolderHandle>(
        type, "name", u"Rename folder", [](const BinFolder &folder) { return folder.Name(); },
        [](BinFolder &folder, const WideString &name) { folder.SetName(name); }, "Its name.");
    BindLists(type);
    type.def("add_folder", &AddFolder, py::arg("name"), "Adds a folder in it, and returns that.");
    type.def(
        "move_to",
        [](const FolderHandle &folder, const FolderHandle &other) {
            const auto moved = folder.Get();
            const auto to = ObjectFrom(folder.Owner(), other);
            Operate(*folder.Owner(), [&](const auto &project) { MoveToFolder(project, moved, to); });
        },
        py::arg("folder"), "Moves it, with all that is in it, into another folder.");
    type.def("__repr__", [](const FolderHandle &folder) {
        return "<marlet.Folder " +
               (folder.IsThere() ? std::string(py::repr(py::cast(folder.Get()->Name()))) : "that is gone") +
               ">";
    });
}

} // namespace marlet::python
