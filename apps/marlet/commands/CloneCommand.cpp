#include "document/Document.h"
#include "options/Arguments.h"
#include "output/Output.h"

#include <marlet/operations/assets/ProjectOperations.h>
#include <marlet/project/CompositionAsset.h>

namespace marlet::tool
{

using namespace project;

namespace
{

void Run(const Arguments &arguments, Output &output)
{
    const std::string &name = arguments.Text("--composition");
    const ProjectPointer project = ReadProject(arguments.Operand(0));
    const CompositionPointer composition = FindComposition(*project, name);
    const CompositionPointer clone = DuplicateComposition(
        project, composition,
        arguments.Has("--name") ? FromUtf8(arguments.Text("--name")) : composition->Name());
    WriteProject(*project, arguments.Operand(1));
    output.Line("Composition " + Quoted(composition->Name()) + " is cloned as " + Quoted(clone->Name()) +
                "  " + clone->ID().ToNarrowString());
}

} // namespace

const CommandSpec &CloneCommand()
{
    static const CommandSpec command{
        "clone",
        "a second composition like one that is there, whose layers refer to one another",
        "FILE OUT --composition C [--name N]",
        2,
        2,
        {{"--composition", "C", "the composition, by ID or name"},
         {"--name", "N", "the name of the clone; that of the composition if not given"}},
        Run,
        "clone examples/titles.xml copy.xml --composition Opening --name \"Second Opening\""};
    return command;
}

} // namespace marlet::tool
