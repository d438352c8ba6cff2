#include "document/Document.h"
#include "document/MediaSource.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Json.h"
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

const char *FateOf(const MissingFile &file)
{
    return file.found.size() == 1 ? "found" : file.found.empty() ? "missing" : "ambiguous";
}

std::string Json(const MissingFile &file)
{
    JsonWriter json;
    json.BeginObject()
        .Member("kind", FateOf(file))
        .Member("id", file.asset->ID())
        .Member("name", file.asset->Name())
        .Member("before", file.before);
    json.Key("files").BeginArray();
    for (std::size_t i = 0; i < file.found.size(); ++i)
        json.BeginObject().Member("path", file.found[i].string()).Member("facts", file.facts[i]).EndObject();
    json.EndArray();
    if (!file.doubt.empty())
        json.Member("doubt", file.doubt);
    json.Key("refused").BeginArray();
    for (const MissingFile::Refused &refused : file.refused)
        json.BeginObject().Member("path", refused.path.string()).Member("reason", refused.reason).EndObject();
    return json.EndArray().EndObject().Text();
}

void Tell(const MissingFile &file, Output &output)
{
    const std::string fate = FateOf(file);
    const std::string indent(10, ' ');
    const std::string what = Quoted(file.asset->Name()) + " " + OneLine(ToUtf8(file.before));
    const bool isFound = file.found.size() == 1;
    output.Line(fate + std::string(indent.size() - fate.size(), ' ') + what +
                (isFound ? " -> " + OneLine(file.found.front().string()) : ""));
    if (!file.doubt.empty())
        output.Line(indent + "but " + file.doubt);
    for (std::size_t i = 0; !isFound && i < file.found.size(); ++i)
        output.Line(indent + OneLine(file.found[i].string()) + ": " + file.facts[i]);
    for (const MissingFile::Refused &refused : file.refused)
        output.Line(indent + "not " + OneLine(refused.path.string()) + ": " + refused.reason);
}

void Run(const Arguments &arguments, Output &output)
{
    if (!arguments.Has("--search")) {
        if (arguments.Has("--json"))
            throw UsageError("--json is for --search");
        return RelinkOne(arguments);
    }
    if (arguments.Has("--asset") || arguments.Has("--to"))
        throw UsageError("--search goes alone");
    const ProjectPointer project = ReadProject(arguments.Operand(0));
    std::size_t left = 0;
    std::size_t doubtful = 0;
    for (const MissingFile &file : RelinkMissingFiles(project, arguments.Path("--search"))) {
        if (arguments.Has("--json"))
            output.Line(Json(file));
        else
            Tell(file, output);
        left += file.found.size() != 1;
        doubtful += !file.doubt.empty();
    }
    WriteProject(*project, arguments.Operand(1));
    if (left > 0)
        throw Failure(Counted(left, "file") + " not found");
    if (doubtful > 0)
        throw Failure(Counted(doubtful, "file") + " found that may be another");
}

} // namespace

const CommandSpec &RelinkCommand()
{
    static const CommandSpec command{
        "relink",
        "point media assets at other files",
        "PROJECT OUT --asset A --to PATH\nPROJECT OUT --search FOLDER [--json]",
        2,
        2,
        {{"--asset", "A", "the media asset, by ID or name"},
         {"--to", "PATH", "the file, or a member of the image sequence if the asset is one"},
         {"--search", "FOLDER",
          "look for all media and images that are missing, by name, in FOLDER and below"},
         {"--json", "", "with --search: one JSON object a line"}},
        Run,
        "relink film.xml out.xml --search /media/archive",
        "  A file has to be readable and to have the picture and the sound that are used. Of several of one "
        "name those\n"
        "  are taken that are long enough, then those in folders of the same names, then any of equal "
        "copies. "
        "Where it\n"
        "  is still not clear, they are listed and the asset is left as it is. One that is too short is "
        "taken "
        "and told of.\n"
        "  Exit status with --search: 0 if all that was missing is found, 1 if something is not, or may be "
        "another file.\n"};
    return command;
}

} // namespace marlet::tool
