#include "document/DifferenceText.h"
#include "document/Document.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Json.h"
#include "output/Output.h"
#include "output/Warning.h"

#include <marlet/checks/Validate.h>
#include <marlet/compare/Compare.h>
#include <marlet/compare/Merge.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectFile.h>

#include <set>

namespace marlet::tool
{

using namespace project;

namespace
{

/// What of one side stands against the other.
std::string SideText(const Difference &difference, const Difference &other)
{
    switch (difference.kind) {
    case Difference::Kind::Added:
        return difference.after.empty() ? "added it" : "added " + OneLine(difference.after);
    case Difference::Kind::Removed:
        return "removed " + (difference.path == other.path ? "it" : DifferencePlace(difference));
    case Difference::Kind::Moved:
        return "moved it to place " + difference.after;
    default:
        return (difference.path == other.path ? "" : DifferencePlace(difference) + " is ") +
               OneLine(difference.after);
    }
}

std::string ConflictText(const MergeConflict &conflict)
{
    return "! " + DifferencePlace(conflict.theirs) + ": ours " + SideText(conflict.ours, conflict.theirs) +
           ", theirs " + SideText(conflict.theirs, conflict.theirs);
}

std::string ConflictJson(const MergeConflict &conflict)
{
    JsonWriter json;
    json.BeginObject().Key("ours").BeginObject();
    WriteDifference(json, conflict.ours);
    json.EndObject().Key("theirs").BeginObject();
    WriteDifference(json, conflict.theirs);
    return json.EndObject().EndObject().Text();
}

/// The text that the library would write of a file, which tells it apart from another one by what it says
/// and not by how. Paths of media stay as they are there.
WideString WrittenText(const std::string &path, ProjectPointer &project)
{
    const auto media = project ? project->SharedMedia() : nullptr;
    try {
        project = ReadProject(path, PluginUse::With, media);
    } catch (const Failure &) {
        throw;
    } catch (const FileException &) {
        throw;
    } catch (const std::exception &failure) {
        throw Failure(path, failure.what());
    }
    return ProjectFile::TextFor(*project, path);
}

using Problems = std::set<std::string>;

void AddProblems(const Project &project, Problems &problems)
{
    for (const Finding &finding : Validate(project))
        if (finding.severity != Finding::Severity::Note)
            problems.insert(finding.place + ": " + finding.what);
}

/// Changes that are right each by itself need not go together. Returns how many problems are new.
std::size_t TellOfNewProblems(const Project &merged, const Problems &known, const std::string &name)
{
    Problems problems;
    AddProblems(merged, problems);
    std::size_t count = 0;
    for (const std::string &problem : problems) {
        if (known.contains(problem))
            continue;
        Warn(name, problem);
        ++count;
    }
    return count;
}

void Run(const Arguments &arguments, Output &output)
{
    ProjectPointer project;
    Problems known;
    const WideString base = WrittenText(arguments.Operand(0), project);
    const WideString theirs = WrittenText(arguments.Operand(2), project);
    AddProblems(*project, known);
    const std::string &ourFile = arguments.Operand(1);
    const WideString ours = WrittenText(ourFile, project);
    AddProblems(*project, known);

    const MergeResult result = MergeTexts(base, ours, theirs);
    const WideString merged = ApplyToText(ours, result.changes);
    project = Document(ourFile, Document::Voice::Silent).OpenText(merged, project->SharedMedia());
    WriteProject(*project, arguments.Operand(3));
    const std::string &name = arguments.Has("--name") ? arguments.Path("--name") : arguments.Operand(3);
    const std::size_t problems = TellOfNewProblems(*project, known, name);
    for (const MergeConflict &conflict : result.conflicts)
        output.Line(arguments.Has("--json") ? ConflictJson(conflict) : ConflictText(conflict));
    if (!result.conflicts.empty())
        throw Failure(name, Counted(result.conflicts.size(), "conflict") + ", in which ours stays");
    if (problems > 0)
        throw Failure(name, Counted(problems, "problem") + " that neither side had");
}

} // namespace

const CommandSpec &MergeCommand()
{
    static const CommandSpec command{
        "merge",
        "bring together what two sides made of a project",
        "BASE OURS THEIRS OUT [--json] [--name NAME]",
        4,
        4,
        {{"--json", "", "one JSON object for each conflict, a line each"},
         {"--name", "NAME", "what OUT is called where it is told of, as it may be a passing file"}},
        Run,
        "merge film.xml mine.xml yours.xml film.xml",
        "  OUT is what OURS holds, with what THEIRS changed since BASE. Where both changed the same, ours "
        "stays, and a\n"
        "  line tells of both. Warnings tell of what is wrong in OUT and in neither side, such as a parent "
        "that "
        "the other\n"
        "  side removed. In both cases the exit code is 1. OUT may be one of the others.\n"};
    return command;
}

} // namespace marlet::tool
