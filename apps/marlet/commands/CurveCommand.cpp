#include "document/Document.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Output.h"
#include "output/TextFile.h"
#include "pictures/CurvePicture.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/Project.h>

namespace marlet::tool
{

using namespace project;

namespace
{

void Run(const Arguments &arguments, Output &output)
{
    const std::string &name = arguments.Text("--property");
    const std::string &path = arguments.NewPath("-o");
    const ProjectPointer project = ReadProject(arguments.Operand(0));
    const CompositionPointer composition = FindComposition(*project, arguments.Text("--composition"));
    const LayerPointer layer = FindLayer(*composition, arguments.Text("--layer"));
    const PropertyManager &properties = layer->Animation();
    if (!properties.HasProperty(name.c_str()))
        throw NoSuch("property", name, properties.PropertyNames());
    WriteFile(path, CurvePicture(properties, name));
    output.Line("wrote the curve of " + OneLine(name) + " to " + OneLine(path));
}

} // namespace

const CommandSpec &CurveCommand()
{
    static const CommandSpec command{
        "curve",
        "a picture of a property over time, and of its path",
        "FILE --composition C --layer L --property P -o OUT.svg",
        1,
        1,
        {{"--composition", "C", "the composition, by ID or name"},
         {"--layer", "L", "the layer, by ID or name"},
         {"--property", "P", "the property, such as position"},
         {"-o", "OUT.svg", "the picture"}},
        Run,
        "curve examples/orbit.xml --composition Orbit --layer Moon --property position -o moon.svg"};
    return command;
}

} // namespace marlet::tool
