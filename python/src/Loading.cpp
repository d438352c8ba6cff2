#include "Loading.h"
#include "Bindings.h"
#include "Handles.h"
#include "KeptEffect.h"
#include "PythonPlugin.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/operations/sequence/Timeline.h>
#include <marlet/platform/files/WholeFile.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/LoadOptions.h>
#include <marlet/project/MediaProgress.h>
#include <marlet/project/ProjectFile.h>
#include <marlet/recovery/Recovery.h>

#include <pybind11/stl/filesystem.h>

#include <filesystem>

namespace marlet::python
{

namespace
{

using ManagerPointer = std::shared_ptr<PythonPlugins>;
using ReportPointer = std::shared_ptr<LoadReport>;

/// Tells a function of Python of each file, in the middle of a load without the interpreter's lock.
class PythonProgress : public MediaProgress
{
public:
    explicit PythonProgress(const py::object &function) : function_(function) {}

    bool OnFile(const WideString &path, int number, int count) override
    {
        const py::gil_scoped_acquire acquire;
        return function_.is_none() || py::object(function_(path, number, count)).ptr() != Py_False;
    }

private:
    const py::object &function_;
};

[[noreturn]] void Fail(const char *error, const std::exception &failure, const LoadReport &report,
                       const std::optional<std::filesystem::path> &path)
{
    LoadFailure told(error, failure.what());
    if (path)
        told.path = path->string();
    if (const LoadEntry *const entry = report.FirstError()) {
        told.place = entry->path;
        if (entry->line > 0) {
            told.line = entry->line;
            told.column = entry->column;
        }
    }
    throw told;
}

/// Runs what loads without the interpreter's lock, and makes its failures those of a load.
template <class Function>
auto Load(const Function &load, const LoadReport &report, const std::optional<std::filesystem::path> &path)
{
    try {
        const py::gil_scoped_release release;
        return load();
    } catch (const py::error_already_set &) {
        throw;
    } catch (const py::builtin_exception &) {
        throw;
    } catch (const FileException &) {
        throw;
    } catch (const InvalidProjectVersionException &failure) {
        Fail("VersionError", failure, report, path);
    } catch (const MissingPluginException &failure) {
        Fail("PluginError", failure, report, path);
    } catch (const InvalidPluginVersionException &failure) {
        Fail("PluginError", failure, report, path);
    } catch (const std::bad_alloc &) {
        throw;
    } catch (const std::exception &failure) {
        Fail("LoadError", failure, report, path);
    }
}

LoadOptions OptionsOf(LoadReport &report, bool keepUnknown, const ProjectHandle *shared,
                      MediaProgress *progress)
{
    LoadOptions options;
    options.report = &report;
    options.keepUnknown = keepUnknown;
    options.progress = progress;
    if (shared)
        options.media = shared->Get()->SharedMedia();
    return options;
}

/// A script without plug-ins has a manager that has none, so that all of them are kept.
ManagerPointer ManagerOr(const ManagerPointer &plugins)
{
    return plugins ? plugins : std::make_shared<PythonPlugins>();
}

ProjectHandle LoadFile(const std::filesystem::path &path, const ManagerPointer &plugins, bool keepUnknown,
                       bool findMovedMedia, const std::optional<WideString> &textures,
                       const ProjectHandle *shared, const py::object &progress)
{
    const auto report = std::make_shared<LoadReport>();
    PythonProgress told(progress);
    LoadOptions options = OptionsOf(*report, keepUnknown, shared, progress.is_none() ? nullptr : &told);
    options.findMovedMedia = findMovedMedia;
    if (textures)
        options.texturesFolder = *textures;
    const ManagerPointer manager = ManagerOr(plugins);
    const auto load = [&] { return ProjectFile::Load(path, manager, KeptEffectFactory(), options); };
    return Opened(Load(load, *report, path), manager, report);
}

ProjectHandle LoadText(const WideString &text, const ManagerPointer &plugins, bool keepUnknown,
                       const WideString &textures, const ProjectHandle *shared, const py::object &progress)
{
    const auto report = std::make_shared<LoadReport>();
    PythonProgress told(progress);
    const LoadOptions options = OptionsOf(*report, keepUnknown, shared, progress.is_none() ? nullptr : &told);
    const ManagerPointer manager = ManagerOr(plugins);
    const auto load = [&] {
        return Project::CreateFromXml(text, textures, manager, KeptEffectFactory(), options);
    };
    return Opened(Load(load, *report, std::nullopt), manager, report);
}

/// A file that does not load, as far as it can be had.
ProjectHandle Recover(const std::filesystem::path &path, const ManagerPointer &plugins)
{
    const auto report = std::make_shared<LoadReport>();
    const ManagerPointer manager = ManagerOr(plugins);
    const auto load = [&] {
        const KeptEffectFactory effects;
        const WideString text = RecoverProject(ReadWholeFile(path), u"", manager, effects, *report);
        return ProjectFile::Read(text, path, manager, effects, {.keepUnknown = true});
    };
    return Opened(Load(load, *report, path), manager, report);
}

ProjectHandle New(const WideString &name, const ManagerPointer &plugins, const ProjectHandle *shared)
{
    const ManagerPointer manager = ManagerOr(plugins);
    const auto project = Project::Create(manager, shared ? shared->Get()->SharedMedia() : nullptr);
    project->SetName(name);
    return Opened(project, manager, std::make_shared<LoadReport>());
}

} // namespace

void FillInstances(const Project &project)
{
    const auto remember = [&](const std::shared_ptr<AbstractAssetInstance> &instance) {
        const auto asset = instance ? project.Assets().GetByID(instance->AssetID()) : nullptr;
        if (asset)
            asset->Instances().Add(instance);
    };
    for (const auto &asset : project.Assets().GetByType(AssetType::Composition))
        for (const auto &layer : std::as_const(static_cast<CompositionAsset &>(*asset)).Layers())
            remember(std::dynamic_pointer_cast<AbstractAssetInstance>(layer));
    if (const auto sequence = project.Sequence())
        for (const auto &object : ObjectsOf(*sequence))
            remember(object);
}

ProjectHandle Opened(const std::shared_ptr<Project> &project,
                     const std::shared_ptr<AbstractPluginManager> &plugins, const ReportPointer &report)
{
    FillInstances(*project);
    return {std::make_shared<Document>(project, plugins, report)};
}

void BindLoading(py::module_ &module)
{
    const auto plugins = py::arg("plugins") = py::none();
    const auto keep = py::arg("keep_unknown") = true;
    const auto shared = py::arg("share_media_with") = py::none();
    const auto progress = py::arg("progress") = py::none();
    module.def(
        "load", &LoadFile, py::arg("path"), py::kw_only(), plugins, keep, py::arg("find_moved_media") = false,
        py::arg("textures") = py::none(), shared, progress,
        "Loads a project from a file. What is not known, and effects whose plug-in is missing, are kept "
        "and written again, unless keep_unknown is false. Media that are not where the file says are "
        "looked for beside it if find_moved_media is true. A function for the progress is called with "
        "path, number and count of each media file that is opened; when it returns False no more are. "
        "Other threads of Python run meanwhile.\n\nRaises LoadError, VersionError, PluginError and "
        "FileError.");
    module.def("loads", &LoadText, py::arg("text"), py::kw_only(), plugins, keep, py::arg("textures") = u"",
               shared, progress, "Loads a project from its text.");
    module.def("recover", &Recover, py::arg("path"), py::kw_only(), plugins,
               "Loads what can be had of a damaged file; the report tells what is gone.");
    module.def("new", &New, py::arg("name") = u"", py::kw_only(), plugins, shared, "An empty project.");
}

} // namespace marlet::python
