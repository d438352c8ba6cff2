#include "Files.h"

#include "Instances.h"
#include "Sphere.h"

#include <marlet/foundation/Exceptions.h>
#include <marlet/layers/KeptEffects3D.h>
#include <marlet/platform/files/WholeFile.h>
#include <marlet/project/ProjectFile.h>
#include <marlet/recovery/Recovery.h>

#include <filesystem>

namespace guide
{

// The textures folder is named with its separator; a 3D effect finds its pictures in it.
std::shared_ptr<Project> Open(const std::string &path, const std::shared_ptr<AbstractPluginManager> &plugins)
{
    const std::string textures = std::filesystem::path(path).parent_path().string() + "/textures/";
    const auto project =
        ProjectFile::Load(path, plugins, EffectFactory(), {.texturesFolder = FromUtf8(textures)});
    FillInstances(*project);
    return project;
}

// An empty pointer and a reason for the user, if the file is none of ours.
std::shared_ptr<Project> TryOpen(const std::string &path,
                                 const std::shared_ptr<AbstractPluginManager> &plugins, std::string &why)
try {
    return Open(path, plugins);
} catch (const InvalidProjectVersionException &) {
    why = "A newer version of this program saved the project.";
    return nullptr;
} catch (const ProjectException &error) {
    why = error.Code() == ProjectException::kMissingEffect
              ? "The project uses a 3D effect that is not installed."
              : "The project is damaged: " + error.Detail() + " is missing.";
    return nullptr;
} catch (const std::exception &error) {
    // A plug-in that is missing or too old, a text that is not whole: the message names it.
    why = error.what();
    return nullptr;
}

// The old file is whole until the new one is. Two earlier ones stay beside it, and the folder can be moved.
void Save(const Project &project, const std::string &path)
{
    ProjectFile::Save(project, path, {.keptVersions = 2, .relativeMedia = true});
}

// Opens whatever can be opened: what the host does not have is kept, and the user is told of it.
std::shared_ptr<Project> OpenAnyway(const std::string &path,
                                    const std::shared_ptr<AbstractPluginManager> &plugins,
                                    std::vector<std::string> &told)
{
    LoadReport report;
    const LoadOptions options{.report = &report, .keepUnknown = true, .findMovedMedia = true};
    const EffectFactory known;
    const auto project = ProjectFile::Load(path, plugins, KeptEffects3D(known), options);
    for (const UnresolvedPlugin &plugin : report.UnresolvedPlugins())
        told.push_back(ToUtf8(plugin.name) + " " + plugin.version + " is not installed");
    for (const LoadEntry &entry : report.Entries())
        if (entry.severity >= LoadEntry::Severity::Loss)
            told.push_back("line " + std::to_string(entry.line) + ": " + entry.what);
    FillInstances(*project);
    return project;
}

// What can be had of a damaged file. The report tells what is gone, and where in the file.
std::shared_ptr<Project> Rescue(const std::string &path,
                                const std::shared_ptr<AbstractPluginManager> &plugins, LoadReport &report)
{
    const WideString text = RecoverProject(ReadWholeFile(path), u"", plugins, EffectFactory(), report);
    return ProjectFile::Read(text, path, plugins, EffectFactory(), {.keepUnknown = true});
}

} // namespace guide
