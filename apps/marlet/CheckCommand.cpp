#include "Arguments.h"
#include "Document.h"
#include "Failure.h"
#include "Json.h"
#include "Output.h"
#include "ProjectCheck.h"
#include "TextFile.h"

#include <marlet/project/Project.h>
#include <marlet/project/ProjectTextureImageCache.h>

#include <algorithm>
#include <utility>

namespace marlet::tool
{

using namespace project;

namespace
{

std::string FindingText(const Finding &finding)
{
    return PadRight(finding.kind, 16) + OneLine(finding.place) + ": " + OneLine(finding.what);
}

std::string FindingJson(const Finding &finding)
{
    JsonWriter json;
    json.BeginObject().Member("kind", finding.kind).Member("place", finding.place);
    return json.Member("what", finding.what).EndObject().Text();
}

/// Where two texts part, as a person finds it in an editor.
std::size_t FirstDifferentLine(const WideString &a, const WideString &b)
{
    const auto end = a.begin() + static_cast<std::ptrdiff_t>(std::min(a.size(), b.size()));
    const auto different = std::mismatch(a.begin(), end, b.begin()).first;
    return 1 + static_cast<std::size_t>(std::count(a.begin(), different, u'\n'));
}

/// Tells where a save would change the file. That is no problem in itself, but where a file was edited by
/// hand it shows what was not taken as it was meant.
void TellOfChange(const WideString &file, const WideString &saved, bool json, Output &output)
{
    if (file == saved)
        return;
    const std::size_t line = FirstDifferentLine(file, saved);
    if (json)
        output.Line(
            JsonWriter().BeginObject().Member("kind", "change").Member("line", line).EndObject().Text());
    else
        output.Line("A save changes the file, first in line " + std::to_string(line));
}

/// What a load and a save of the project's own text change about it.
std::vector<Finding> CheckSaving(const ProjectPointer &project)
{
    const WideString first = project->Serialize();
    const WideString &textures = std::as_const(*project).TextureImageCache().TexturesFolderPath();
    const WideString second =
        ParseProject(first, textures, PluginUse::With, project->SharedMedia())->Serialize();
    if (first == second)
        return {};
    return {
        {"unstable", "Project",
         "line " + std::to_string(FirstDifferentLine(first, second)) + " changes when it is saved again"}};
}

void Run(const Arguments &arguments, Output &output)
{
    const std::string &path = arguments.Operand(0);
    const WideString text = ReadTextFile(path);
    const ProjectPointer project = ParseProject(text, FolderOf(path));
    project->SetFilename(FromUtf8(path));
    std::vector<Finding> findings = CheckProject(*project);
    const std::vector<Finding> saving = CheckSaving(project);
    findings.insert(findings.end(), saving.begin(), saving.end());

    const bool json = arguments.Has("--json");
    for (const Finding &finding : findings)
        output.Line(json ? FindingJson(finding) : FindingText(finding));
    TellOfChange(text, project->Serialize(), json, output);
    if (json)
        output.Line(JsonWriter()
                        .BeginObject()
                        .Member("kind", "sums")
                        .Member("problems", findings.size())
                        .EndObject()
                        .Text());
    else if (findings.empty())
        output.Line("Loads, saves and loads again as the same; nothing dangles or is missing");
    if (!findings.empty())
        throw Failure(Counted(findings.size(), "problem"));
}

} // namespace

const CommandSpec &CheckCommand()
{
    static const CommandSpec command{
        "check",
        "whether a project survives saving, and what in it dangles or is missing",
        "FILE [--json]",
        1,
        1,
        {{"--json", "", "one JSON object a line"}},
        Run,
        "check project.xml"};
    return command;
}

} // namespace marlet::tool
