#pragma once

#include <marlet/foundation/Export.h>
#include <marlet/foundation/Strings.h>
#include <marlet/project/LoadOptions.h>

#include <filesystem>

namespace marlet::project
{

class Abstract3DEffectFactory;
class AbstractPluginManager;
class Project;

/// How a project is put into a file.
struct SaveOptions {
    /// How many earlier contents stay beside the file, as film.xml.~1~, the newest, to film.xml.~N~.
    int keptVersions = 0;
    /// Writes the paths of media and image files relative to the folder of the project's file, so that both
    /// can be moved together. Paths that the text had so when it was loaded are written so anyway. The
    /// project in memory keeps its paths.
    bool relativeMedia = false;
};

/// Projects in files. Relative paths of media in a text are meant from the folder that its file stands in,
/// and are made such that the program can use them when it is loaded. Of a symbolic link it is the folder of
/// the link, of a pipe the current one. Paths of another system, such as C:\film\sea.mov, are left as they
/// are.
class MARLET_EXPORT ProjectFile
{
public:
    /// The project that a file holds; its Filename is the path.
    /// @throws FileException; otherwise as Project::CreateFromXml
    static std::shared_ptr<Project> Load(const std::filesystem::path &path,
                                         const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                         const Abstract3DEffectFactory &effectFactory,
                                         const LoadOptions &options = {});

    /// The same from the file's text, which was read before. @throws as Project::CreateFromXml
    static std::shared_ptr<Project> Read(const WideString &text, const std::filesystem::path &path,
                                         const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                         const Abstract3DEffectFactory &effectFactory,
                                         const LoadOptions &options = {});

    /// Puts the project in place of what the file holds: as a whole or, if that fails, not at all.
    /// Permissions stay, and a symbolic link is followed. Changes nothing in the project.
    /// @throws FileException
    static void Save(const Project &project, const std::filesystem::path &path,
                     const SaveOptions &options = {});

    /// The text that Save writes, before it is one of bytes.
    static WideString TextFor(const Project &project, const std::filesystem::path &path,
                              const SaveOptions &options = {});

    /// The text of a file in UTF-8, or in UTF-16 if it begins with a byte order mark. Malformed bytes are
    /// refused: they would come out as other characters, and the next save would lose them. A report, which
    /// may be null, tells of a failure with its place.
    /// @throws FileException
    static WideString ReadText(const std::filesystem::path &path, LoadReport *report = nullptr);

    /// The folder that relative paths in a file's text are meant from, with its trailing separator. Empty for
    /// the current one.
    static WideString FolderOf(const std::filesystem::path &path);
};

} // namespace marlet::project
