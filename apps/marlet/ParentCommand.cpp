#include "Arguments.h"
#include "Document.h"
#include "Failure.h"
#include "Output.h"

#include <marlet/layers/AbstractLayer.h>
#include <marlet/layers/ParentHelper.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <utility>

namespace marlet::tool
{

using namespace project;

namespace
{

/// A layer that hangs on itself, over whatever way, would have no place any more.
void RefuseCircle(const CompositionAsset &composition, const AbstractLayer &layer, const LayerPointer &parent)
{
    LayerPointer ancestor = parent;
    // A chain that is longer than there are layers runs in a circle itself, which is told of elsewhere.
    for (std::size_t i = 0; ancestor && i <= composition.Layers().size(); ++i) {
        if (ancestor->ID() == layer.ID())
            throw Failure("Layer " + Quoted(layer.Name()) + " would become its own parent");
        ancestor = composition.FindLayerByID(ancestor->ParentLayerID());
    }
}

void Run(const Arguments &arguments, Output &)
{
    if (arguments.Has("--to") == arguments.Has("--remove"))
        throw UsageError("either --to or --remove is needed, not both");
    const int frame = arguments.Integer("--frame");
    const std::string &compositionName = arguments.Text("--composition");
    const std::string &layerName = arguments.Text("--layer");

    const ProjectPointer project = ReadProject(arguments.Operand(0));
    const CompositionPointer composition = FindComposition(*project, compositionName);
    LayerPointer layer = FindLayer(*composition, layerName);
    const int time = layer->GlobalFrameToRelativeTime(frame, std::as_const(*project).Assets());
    if (arguments.Has("--to")) {
        const LayerPointer parent = FindLayer(*composition, arguments.Text("--to"));
        RefuseCircle(*composition, *layer, parent);
        ParentHelper::Parent(project, time, parent, layer);
    } else {
        if (!layer->HasParentLayer())
            throw Failure("Layer " + Quoted(layer->Name()) + " has no parent");
        ParentHelper::RemoveParent(project, time, layer);
    }
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
