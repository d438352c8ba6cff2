#include "document/DifferenceText.h"
#include "document/Document.h"
#include "options/Arguments.h"
#include "output/Colors.h"
#include "output/Failure.h"
#include "output/Json.h"
#include "output/Output.h"

#include <marlet/compare/Compare.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectFile.h>

#include <filesystem>

namespace marlet::tool
{

using namespace project;

namespace
{

std::string DifferenceJson(const Difference &difference)
{
    JsonWriter json;
    json.BeginObject();
    WriteDifference(json, difference);
    return json.EndObject().Text();
}

/// Added is green, removed red, and what is still there another colour.
std::string ColoredText(const Difference &difference)
{
    using Kind = Difference::Kind;
    const Color color = difference.kind == Kind::Added     ? Color::Green
                        : difference.kind == Kind::Removed ? Color::Red
                        : difference.kind == Kind::Moved   ? Color::Blue
                                                           : Color::Yellow;
    return Colored(DifferenceText(difference), color, Stream::Out);
}

/// What version control hands over where there is no file.
bool IsNothing(const std::string &path)
{
    std::error_code error;
    return path == "/dev/null" || (std::filesystem::file_size(path, error) == 0 && !error);
}

/// A project that came or went as a whole.
Difference WholeProject(const std::string &path, Difference::Kind kind)
{
    Difference difference;
    difference.kind = kind;
    difference.place = {"project " + Quoted(ReadProject(path)->Name())};
    return difference;
}

/// Paths of media are relative to the project where the two stand in different folders.
std::vector<Difference> DifferencesOf(const Project &before, const Project &after, const Arguments &arguments)
{
    const std::filesystem::path first = arguments.Operand(0);
    const std::filesystem::path second = arguments.Operand(1);
    if (first.parent_path() == second.parent_path())
        return Compare(before, after);
    return CompareTexts(ProjectFile::TextFor(before, first), ProjectFile::TextFor(after, second));
}

std::vector<Difference> CompareFiles(const Arguments &arguments)
{
    const bool hadNone = IsNothing(arguments.Operand(0));
    const bool hasNone = IsNothing(arguments.Operand(1));
    if (hadNone && hasNone)
        return {};
    if (hadNone)
        return {WholeProject(arguments.Operand(1), Difference::Kind::Added)};
    if (hasNone)
        return {WholeProject(arguments.Operand(0), Difference::Kind::Removed)};
    const ProjectPointer before = ReadProject(arguments.Operand(0));
    ProjectPointer after;
    try {
        after = ReadProject(arguments.Operand(1), PluginUse::With, before->SharedMedia());
    } catch (const Failure &) {
        throw;
    } catch (const FileException &) {
        throw;
    } catch (const std::exception &failure) {
        throw Failure(arguments.Operand(1), failure.what());
    }
    return DifferencesOf(*before, *after, arguments);
}

void Run(const Arguments &arguments, Output &output)
{
    const std::vector<Difference> differences = CompareFiles(arguments);
    for (const Difference &difference : differences)
        output.Line(arguments.Has("--json") ? DifferenceJson(difference) : ColoredText(difference));
    if (!arguments.Has("--json"))
        output.Line(differences.empty() ? "no differences" : Counted(differences.size(), "difference"));
}

} // namespace

const CommandSpec &DiffCommand()
{
    static const CommandSpec command{"diff",
                                     "what differs between two projects, in terms of the document",
                                     "FILE OTHER [--json]",
                                     2,
                                     2,
                                     {{"--json", "", "one JSON object a line"}},
                                     Run,
                                     "diff before.xml after.xml"};
    return command;
}

} // namespace marlet::tool
