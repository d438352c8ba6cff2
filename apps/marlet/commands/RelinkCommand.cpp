#include "document/Document.h"
#include "document/MediaSource.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Output.h"

#include <marlet/operations/assets/MediaImport.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MissingFiles.h>
#include <marlet/project/Project.h>

#include <filesystem>

namespace marlet::tool
{

using namespace project;

namespace
{

void RelinkOne(const Arguments &arguments)
{
    const std::string &asset = arguments.Text("--asset");
    // A project names its files so that it can be opened in any folder.
    const WideString path =
        FromUtf8(std::filesystem::absolute(arguments.Path("--to")).lexically_normal().string());

    const ProjectPointer project = ReadProject(arguments.Operand(0));
    const MediaPointer media = FindMedia(*project, asset);
    RelinkAsset(project, media, path);
    RequireUsable(*media);
    WriteProject(*project, arguments.Operand(1));
}

/// Whether the file is found.
bool Tell(const MissingFile &file, Output &output)
{
    const std::string what = Quoted(file.asset->Name()) + " " + OneLine(ToUtf8(file.before));
    const bool isFound = file.found.size() == 1;
    if (isFound)
        output.Line("found     " + what + " -> " + OneLine(file.found.front().string()));
    else
        output.Line((file.found.empty() ? "missing   " : "ambiguous ") + what);
    if (!isFound)
        for (const std::filesystem::path &path : file.found)
            output.Line("          " + OneLine(path.string()));
    for (const MissingFile::Refused &refused : file.refused)
        output.Line("          not " + OneLine(refused.path.string()) + ": " + refused.reason);
    return isFound;
}

void Run(const Arguments &arguments, Output &output)
{
    if (!arguments.Has("--search"))
        return RelinkOne(arguments);
    if (arguments.Has("--asset") || arguments.Has("--to"))
        throw UsageError("--search goes alone");
    const ProjectPointer project = ReadProject(arguments.Operand(0));
    std::size_t left = 0;
    for (const MissingFile &file : RelinkMissingFiles(project, arguments.Path("--search")))
        left += Tell(file, output) ? 0 : 1;
    WriteProject(*project, arguments.Operand(1));
    if (left > 0)
        throw Failure(Counted(left, "file") + " not found");
}

} // namespace

const CommandSpec &RelinkCommand()
{
    static const CommandSpec command{
        "relink",
        "point media assets at other files",
        "PROJECT OUT --asset A --to PATH\nPROJECT OUT --search FOLDER",
        2,
        2,
        {{"--asset", "A", "the media asset, by ID or name"},
         {"--to", "PATH", "the file, or a member of the image sequence if the asset is one"},
         {"--search", "FOLDER",
          "look for all media and images that are missing, by name, in FOLDER and below"}},
        Run,
        "relink film.xml out.xml --search /media/archive",
        "  A file has to be readable and to have the picture and the sound that are used. Of several of one "
        "name those\n"
        "  are taken that are long enough, then those in folders of the same names, then any of equal "
        "copies. "
        "Where it\n"
        "  is still not clear, they are listed and the asset is left as it is.\n"};
    return command;
}

} // namespace marlet::tool
