#include "Files.h"

#include "Instances.h"
#include "Sphere.h"

#include <marlet/foundation/Exceptions.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace guide
{

// The textures folder is named with its separator; a 3D effect finds its pictures in it.
std::shared_ptr<Project> Open(const std::string &path, const std::shared_ptr<AbstractPluginManager> &plugins)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("The file cannot be opened");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::string textures = std::filesystem::path(path).parent_path().string() + "/textures/";
    const auto project = Project::CreateFromXml(FromUtf8(text), FromUtf8(textures), plugins, EffectFactory());
    project->SetFilename(FromUtf8(path));
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

// The old file is whole until the new one is.
void Save(const Project &project, const std::string &path)
{
    const std::string unfinished = path + ".unfinished";
    std::ofstream file(unfinished, std::ios::binary);
    file << ToUtf8(project.Serialize());
    file.close();
    if (!file)
        throw std::runtime_error("The file cannot be written");
    std::filesystem::rename(unfinished, path);
}

} // namespace guide
