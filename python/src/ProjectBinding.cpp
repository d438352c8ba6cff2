#include "Bindings.h"
#include "Handles.h"
#include "Listing.h"
#include "Settings.h"
#include "Values.h"

#include <marlet/editor/EditorSequence.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/operations/assets/MediaImport.h>
#include <marlet/operations/assets/ProjectOperations.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/ProjectFile.h>
#include <marlet/project/SolidAsset.h>

#include <pybind11/stl/filesystem.h>

#include <filesystem>

namespace marlet::python
{

namespace
{

using Type = py::class_<ProjectHandle>;
using AssetPointer = std::shared_ptr<AbstractAsset>;

void Save(const ProjectHandle &project, const std::optional<std::filesystem::path> &path, int keptVersions,
          bool relativeMedia)
{
    const std::filesystem::path to = path ? *path : std::filesystem::path(ToUtf8(project.Get()->Filename()));
    if (to.empty())
        throw py::value_error("The project has no file yet: name one");
    Unlocked(*project.document, [&](Project &saved) {
        ProjectFile::Save(saved, to, {.keptVersions = keptVersions, .relativeMedia = relativeMedia});
    });
    project.Get()->SetFilename(FromUtf8(to.string()));
    project.document->History().MarkSaved();
}

/// Opens files without the interpreter's lock, so that adding them finds them open.
void OpenFiles(const ProjectHandle &project, const std::vector<WideString> &paths)
{
    const auto media = project.Get()->SharedMedia();
    std::vector<WideString> opened;
    for (const WideString &path : paths)
        if (!path.empty())
            opened.push_back(path);
    const py::gil_scoped_release release;
    const auto assets = media->CreateMediaAssets(opened);
}

py::list Import(const ProjectHandle &project, const std::vector<std::filesystem::path> &paths,
                const FolderHandle *folder)
{
    std::vector<WideString> names;
    for (const std::filesystem::path &path : paths)
        names.push_back(FromUtf8(path.string()));
    OpenFiles(project, names);
    const auto to = ObjectFrom(project.document, folder);
    return ShowAll(project.document, Operate(*project.document, [&](const std::shared_ptr<Project> &into) {
                       return ImportFiles(into, names, to);
                   }));
}

py::object Add(const ProjectHandle &project, const AssetPointer &asset)
{
    Operate(*project.document, [&](const std::shared_ptr<Project> &into) { AddAsset(into, asset); });
    return Show(project.document, asset);
}

py::object AddComposition(const ProjectHandle &project, const WideString &name, int frames, double rate,
                          int width, int height, const std::string &preset)
{
    const auto composition = CompositionAsset::Create(name, AudioVideoSettings::Preset::None, frames);
    composition->Settings() = SettingsOf(rate, width, height, frames, preset);
    return Add(project, composition);
}

void BindLists(Type &type)
{
    type.def_property_readonly(
        "assets",
        [](const ProjectHandle &project) {
            project.Get();
            return MakeListing<AbstractAsset>(
                [project] { return std::as_const(project.Get()->Assets()).All(); },
                [document = project.document](const AssetPointer &asset) { return Show(document, asset); });
        },
        "All assets, in the order of the file.");
    type.def_property_readonly(
        "compositions",
        [](const ProjectHandle &project) {
            project.Get();
            return MakeListing<AbstractAsset>(
                [project] { return project.Get()->Assets().GetByType(AssetType::Composition); },
                [document = project.document](const AssetPointer &asset) { return Show(document, asset); });
        },
        "The compositions among the assets.");
    type.def_property_readonly(
        "folder",
        [](const ProjectHandle &project) {
            return Show(project.document,
                        std::shared_ptr<BinFolder>(project.Get(), &project.Get()->Assets().Bin()));
        },
        "The root of the folders.");
    type.def_property_readonly(
        "sequence",
        [](const ProjectHandle &project) { return Show(project.document, project.Get()->Sequence()); },
        "The editor timeline, or None.");
}

void BindAdding(Type &type)
{
    type.def("import_files", &Import, py::arg("paths"), py::kw_only(), py::arg("folder") = py::none(),
             "Makes assets of files, and returns a list of them: images of stills, media of everything "
             "else. A file that the project has already gives the asset that there is.");
    type.def(
        "add_composition", &AddComposition, py::arg("name"), py::kw_only(), py::arg("frames") = 250,
        py::arg("rate") = 0, py::arg("width") = 0, py::arg("height") = 0, py::arg("preset") = "",
        "Adds a composition, of 1280 x 720 pixels at 25 frames a second unless something else is said, and "
        "returns it. Presets are 'pal', 'pal-wide', 'ntsc', 'ntsc-wide', 'hd720-23.976', 'hd720-25', "
        "'hd720-29.97', 'hdv1080-25' and 'hdv1080-29.97'.");
    type.def(
        "add_solid",
        [](const ProjectHandle &project, const WideString &name, const Color &color, int width, int height) {
            return Add(project, SolidAsset::Create(name, ToColor(color), width, height, PAR::Square));
        },
        py::arg("name"), py::arg("color"), py::arg("width"), py::arg("height"),
        "Adds a rectangle of one colour (red, green, blue, alpha from 0 to 1) and returns it.");
    type.def(
        "add_sequence",
        [](const ProjectHandle &project, int frames, double rate, int width, int height,
           const std::string &preset) {
            if (project.Get()->Sequence())
                throw Failure("OperationError", "The project has a sequence already");
            const auto sequence = EditorSequence::Create(AudioVideoSettings::Preset::None, frames);
            sequence->Settings() = SettingsOf(rate, width, height, frames, preset);
            Edited(*project.document, u"Add sequence", [&](Edit &edit) {
                edit.TouchProject();
                project.Get()->SetSequence(sequence);
            });
            return Show(project.document, sequence);
        },
        py::kw_only(), py::arg("frames") = 250, py::arg("rate") = 0, py::arg("width") = 0,
        py::arg("height") = 0, py::arg("preset") = "",
        "Gives the project its editor timeline, with an empty track of each kind, and returns it.");
}

void BindImporting(Type &type)
{
    type.def(
        "import_image_sequence",
        [](const ProjectHandle &project, const std::filesystem::path &path, double rate,
           const FolderHandle *folder) {
            const auto to = ObjectFrom(project.document, folder);
            const auto asset = Operate(*project.document, [&](const std::shared_ptr<Project> &into) {
                return ImportImageSequence(into, FromUtf8(path.string()), rate, to);
            });
            return Show(project.document, std::static_pointer_cast<AbstractAsset>(asset));
        },
        py::arg("path"), py::arg("rate"), py::kw_only(), py::arg("folder") = py::none(),
        "Makes one asset of the images that belong to a member, shown at a rate in frames per second.");
    type.def(
        "add_composition_of",
        [](const ProjectHandle &project, const AssetHandle &asset) {
            const auto shown = ObjectFrom(project.document, asset);
            const AudioVideoSettings settings = SettingsOf(0, 0, 0, 250, "");
            const auto composition = Operate(*project.document, [&](const std::shared_ptr<Project> &into) {
                return AddCompositionOf(into, shown, settings);
            });
            return Show(project.document, std::static_pointer_cast<AbstractAsset>(composition));
        },
        py::arg("asset"),
        "Adds a composition of the size, the rate and the length of an asset, with a layer that shows it, "
        "and "
        "returns the composition.");
}

void BindText(Type &type)
{
    type.def("save", &Save, py::arg("path") = py::none(), py::kw_only(), py::arg("kept_versions") = 0,
             py::arg("relative_media") = false,
             "Puts the project in place of what a file holds, as a whole or not at all: by default its own "
             "file. So many earlier contents stay beside it as film.xml.~1~ and so on. Other threads of "
             "Python run meanwhile, and may not change the project.");
    type.def(
        "to_xml",
        [](const ProjectHandle &project) {
            return Unlocked(*project.document,
                            [](const Project &written) { return written.SerializeUtf8(); });
        },
        "The text of the whole project.");
    type.def_property_readonly(
        "path",
        [](const ProjectHandle &project) -> std::optional<WideString> {
            const WideString &path = project.Get()->Filename();
            return path.empty() ? std::nullopt : std::optional(path);
        },
        "Its file, or None.");
}

void BindLife(Type &type)
{
    type.def(
        "close", [](const ProjectHandle &project) { project.document->Close(); },
        "Ends the project at once, and drops edits that go on. Everything that belonged to it raises "
        "ClosedError from then on. A project that is not closed ends with the last object that belongs to "
        "it.");
    type.def_property_readonly(
        "closed", [](const ProjectHandle &project) { return !project.document->IsOpen(); },
        "Whether it was closed.");
    type.def("__enter__", [](const py::object &self) { return self; });
    type.def("__exit__", [](const ProjectHandle &project, const py::args &) { project.document->Close(); });
    type.def(
        "__eq__", [](const ProjectHandle &a, const ProjectHandle &b) { return a.document == b.document; },
        py::is_operator());
    type.def("__hash__",
             [](const ProjectHandle &project) { return std::hash<Document *>()(project.document.get()); });
    type.def("__repr__", [](const ProjectHandle &project) {
        return "<marlet.Project " +
               (project.document->IsOpen() ? std::string(py::repr(py::cast(project.Get()->Name())))
                                           : "that is closed") +
               ">";
    });
}

} // namespace

void BindProject(py::module_ &module)
{
    Type type(
        module, "Project",
        "The root of a document: everything that a user's project consists of. It belongs to the thread "
        "that edits it; while nobody does, any thread may read it.");
    type.def_property_readonly(
        "id", [](const ProjectHandle &project) { return project.Get()->ID().ToNarrowString(); },
        "The text of its ID.");
    type.def_property(
        "name", [](const ProjectHandle &project) { return project.Get()->Name(); },
        [](const ProjectHandle &project, const WideString &name) {
            Edited(*project.document, u"Rename project", [&](Edit &edit) {
                edit.TouchProject();
                project.Get()->SetName(name);
            });
        },
        "Its name.");
    type.def_property_readonly(
        "report", [](const ProjectHandle &project) { return project.document->Report(); },
        "What the load found; empty for a new project.");
    BindLists(type);
    BindAdding(type);
    BindImporting(type);
    BindText(type);
    BindLife(type);
    BindEditing(type);
    BindObserving(type);
    BindChecking(type);
    BindApplying(type);
}

} // namespace marlet::python
