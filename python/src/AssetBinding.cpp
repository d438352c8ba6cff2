#include "Bindings.h"
#include "Handles.h"
#include "Values.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/operations/assets/AssetUses.h>
#include <marlet/operations/assets/ProjectOperations.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/SolidAsset.h>

namespace marlet::python
{

namespace
{

using Type = py::class_<AssetHandle>;

const Words<AssetType> kTypes{{AssetType::Media, "media"},
                              {AssetType::Image, "image"},
                              {AssetType::Solid, "solid"},
                              {AssetType::Composition, "composition"}};

void BindFacts(Type &type)
{
    BindFact<AssetHandle>(
        type, "id", [](const AbstractAsset &asset) { return asset.ID().ToNarrowString(); },
        "The text of its ID.");
    BindFact<AssetHandle>(
        type, "type", [](const AbstractAsset &asset) { return kTypes.Of(asset.Type()); },
        "'media', 'image', 'solid' or 'composition'.");
    BindFact<AssetHandle>(
        type, "width", [](const AbstractAsset &asset) { return asset.Width(); },
        "In pixels; 0 if there is no picture.");
    BindFact<AssetHandle>(
        type, "height", [](const AbstractAsset &asset) { return asset.Height(); },
        "In pixels; 0 if there is no picture.");
    BindFact<AssetHandle>(
        type, "has_video", [](const AbstractAsset &asset) { return asset.HasVideo(); },
        "Whether it has a picture.");
    BindFact<AssetHandle>(
        type, "has_audio", [](const AbstractAsset &asset) { return asset.HasAudio(); },
        "Whether it has sound.");
    BindFact<AssetHandle>(
        type, "is_offline", [](const AbstractAsset &asset) { return asset.IsOffline(); },
        "Whether its file is missing or cannot be read.");
    BindField<AssetHandle>(
        type, "name", u"Rename asset", [](const AbstractAsset &asset) { return asset.Name(); },
        [](AbstractAsset &asset, const WideString &name) { asset.SetName(name); }, "Its name.");
}

void BindPlace(Type &type)
{
    type.def_property_readonly(
        "folder",
        [](const AssetHandle &asset) {
            BinFolder &root = asset.InProject()->Assets().Bin();
            const kytl::KyID &id = asset.Get()->ParentFolderID();
            if (root.ID() == id)
                return Show(asset.Owner(), std::shared_ptr<BinFolder>(asset.InProject(), &root));
            return Show(asset.Owner(), root.FindFolderByID(id));
        },
        "The folder that it is in, or None.");
    type.def(
        "move_to",
        [](const AssetHandle &asset, const FolderHandle &folder) {
            const auto moved = asset.Get();
            const auto to = ObjectFrom(asset.Owner(), folder);
            Operate(*asset.Owner(), [&](const auto &project) { MoveToFolder(project, moved, to); });
        },
        py::arg("folder"), "Moves it into another folder.");
    type.def_property_readonly(
        "uses",
        [](const AssetHandle &asset) {
            py::list uses;
            for (const UseOfAsset &use : UsesOf(*asset.InProject(), *asset.Get())) {
                if (const auto layer = std::dynamic_pointer_cast<AbstractLayer>(use.instance))
                    uses.append(Show(asset.Owner(), layer));
                else
                    uses.append(
                        Show(asset.Owner(), std::dynamic_pointer_cast<AbstractSequenceObject>(use.instance)));
            }
            return uses;
        },
        "A list of the layers and objects of the sequence that show it.");
}

void BindOperations(Type &type)
{
    type.def(
        "remove",
        [](const AssetHandle &asset, bool withUses) {
            const auto removed = asset.Get();
            Operate(*asset.Owner(), [&](const auto &project) {
                RemoveAsset(project, removed, withUses ? UsesOfRemoved::Remove : UsesOfRemoved::Refuse);
            });
        },
        py::kw_only(), py::arg("with_uses") = false,
        "Takes it out of the project. What shows it goes too if that is asked for; otherwise an asset in use "
        "is refused.");
    type.def(
        "replace_by",
        [](const AssetHandle &asset, const AssetHandle &replacement) {
            const auto replaced = asset.Get();
            const auto other = ObjectFrom(asset.Owner(), replacement);
            Operate(*asset.Owner(), [&](const auto &project) { ReplaceAsset(project, replaced, other); });
        },
        py::arg("asset"), "Has all that shows it show another asset.");
    type.def("__repr__", [](const py::object &self) {
        const auto &asset = py::cast<const AssetHandle &>(self);
        return "<marlet." + py::cast<std::string>(py::type::of(self).attr("__name__")) + " " +
               (asset.IsThere() ? std::string(py::repr(py::cast(asset.Get()->Name()))) : "that is gone") +
               ">";
    });
}

void BindSolid(py::module_ &module)
{
    py::class_<SolidHandle, AssetHandle> type(module, "SolidAsset", "A rectangle of one colour.");
    BindField<SolidHandle>(
        type, "color", u"Change colour", [](const SolidAsset &solid) { return ToTuple(solid.Color()); },
        [](SolidAsset &solid, const Color &color) { solid.SetColor(ToColor(color)); },
        "Red, green, blue and alpha, each from 0 to 1.");
}

} // namespace

void BindAssets(py::module_ &module)
{
    Type type(module, "Asset", "Whatever a project can place on a timeline.");
    BindIdentity<AssetHandle>(type);
    BindFacts(type);
    BindPlace(type);
    BindOperations(type);
    BindSolid(module);
}

} // namespace marlet::python
