#include "document/Document.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Output.h"

#include <marlet/operations/layers/LayerOperations.h>

namespace marlet::tool
{

using namespace project;

namespace
{

void Run(const Arguments &arguments, Output &)
{
    if (arguments.Has("--to") == arguments.Has("--remove"))
        throw UsageError("either --to or --remove is needed, not both");
    const int frame = arguments.Integer("--frame");
    const std::string &compositionName = arguments.Text("--composition");
    const std::string &layerName = arguments.Text("--layer");

    const ProjectPointer project = ReadProject(arguments.Operand(0));
    const CompositionPointer composition = FindComposition(*project, compositionName);
    const LayerPointer layer = FindLayer(*composition, layerName);
    if (arguments.Has("--to"))
        SetParent(project, layer, FindLayer(*composition, arguments.Text("--to")), frame);
    else
        RemoveParent(project, layer, frame);
    WriteProject(*project, arguments.Operand(1));
}

} // namespace

const CommandSpec &ParentCommand()
{
    static const CommandSpec command{
        "parent",
        "attach a layer to a parent, or detach it, so that it stays where it is at one frame",
        "FILE OUT --composition C --layer L --frame F (--to P | --remove)",
        2,
        2,
        {{"--composition", "C", "the composition, by ID or name"},
         {"--layer", "L", "the layer, by ID or name"},
         {"--frame", "F", "the frame of the composition at which the layer stays in place"},
         {"--to", "P", "the new parent, by ID or name"},
         {"--remove", "", "detach the layer"}},
        Run,
        "parent examples/orbit.xml out.xml --composition Orbit --layer Moon --frame 12 --remove"};
    return command;
}

} // namespace marlet::tool
