#include "document/DifferenceText.h"
#include "document/Document.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Json.h"
#include "output/Output.h"

#include <marlet/compare/Compare.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/project/Project.h>

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
    const std::vector<Difference> differences = Compare(*before, *after);
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
