#include "Arguments.h"
#include "Document.h"
#include "Failure.h"
#include "Json.h"
#include "Output.h"
#include "ProjectDiff.h"

#include <marlet/foundation/Exceptions.h>
#include <marlet/project/Project.h>

namespace marlet::tool
{

using namespace project;

namespace
{

struct KindName {
    const char *sign;
    const char *word;
};

KindName NameOf(Difference::Kind kind)
{
    switch (kind) {
    case Difference::Kind::Added:
        return {"+", "added"};
    case Difference::Kind::Removed:
        return {"-", "removed"};
    case Difference::Kind::Moved:
        return {"^", "moved"};
    default:
        return {"~", "changed"};
    }
}

std::string DifferenceText(const Difference &difference)
{
    const KindName name = NameOf(difference.kind);
    std::string text = name.sign;
    for (const std::string &place : difference.place)
        text += (text.size() > 1 ? ", " : " ") + place;
    if (!difference.what.empty())
        text += (text.size() > 1 ? ": " : " ") + difference.what;
    if (difference.kind == Difference::Kind::Moved)
        return text + ": moved from place " + difference.before + " to " + difference.after;
    if (difference.kind == Difference::Kind::Changed)
        return text + " " + difference.before + " -> " + difference.after;
    return text + " " + name.word;
}

std::string DifferenceJson(const Difference &difference)
{
    JsonWriter json;
    json.BeginObject().Member("change", NameOf(difference.kind).word).Key("place").BeginArray();
    for (const std::string &place : difference.place)
        json.Value(place);
    json.EndArray();
    if (!difference.what.empty())
        json.Member("what", difference.what);
    if (!difference.before.empty() || !difference.after.empty())
        json.Member("before", difference.before).Member("after", difference.after);
    return json.EndObject().Text();
}

void Run(const Arguments &arguments, Output &output)
{
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
    const std::vector<Difference> differences = CompareProjects(*before, *after);
    for (const Difference &difference : differences)
        output.Line(arguments.Has("--json") ? DifferenceJson(difference) : DifferenceText(difference));
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
