#include "document/Document.h"
#include "document/LayerContent.h"
#include "options/Arguments.h"
#include "output/Output.h"

#include <marlet/operations/layers/LayerOperations.h>
#include <marlet/project/CompositionAsset.h>

#include <stdexcept>

namespace marlet::tool
{

using namespace project;

namespace
{

std::string HolderPlace(const AbstractLayer &layer, const LayerReference &reference)
{
    return "layer " + Quoted(layer.Name()) + ", " + HolderText(reference);
}

/// Whether a layer depends on another one, be it without naming it, such as by the parents of the one that it
/// names. Parents in a circle that does not pass by the other layer lead to no answer; they do not depend on
/// it, and keep nobody from deleting it.
bool DependsOn(const CompositionPointer &composition, const AbstractLayer &layer, const kytl::KyID &on)
{
    try {
        return layer.IsLayerReferenced(composition, on);
    } catch (const std::logic_error &) {
        return false;
    }
}

void ListReferences(const CompositionPointer &composition, const AbstractLayer &layer, Output &output)
{
    for (const LayerPointer &other : composition->Layers()) {
        if (other->ID() == layer.ID())
            continue;
        bool named = false;
        for (const LayerReference &reference : LayerReferences(*other)) {
            if (reference.target != layer.ID())
                continue;
            named = true;
            output.Line("referred to by " + HolderPlace(*other, reference));
        }
        if (!named && DependsOn(composition, *other, layer.ID()))
            output.Line("referred to by layer " + Quoted(other->Name()) + ", over parents");
    }
}

/// What leads nowhere once the layer is gone.
void ListCleared(const CompositionAsset &composition, const LayerPointer &deleted, Output &output)
{
    std::unordered_map<kytl::KyID, LayerPointer> valid = LayersByID(composition);
    valid.erase(deleted->ID());
    for (const LayerPointer &layer : composition.Layers())
        if (layer != deleted)
            for (const LayerReference &reference : LayerReferences(*layer))
                if (valid.count(reference.target) == 0)
                    output.Line("cleared " + HolderPlace(*layer, reference));
}

void Run(const Arguments &arguments, Output &output)
{
    const std::string &compositionName = arguments.Text("--composition");
    const std::string &layerName = arguments.Text("--layer");
    const ProjectPointer project = ReadProject(arguments.Operand(0));
    const CompositionPointer composition = FindComposition(*project, compositionName);
    const LayerPointer layer = FindLayer(*composition, layerName);

    ListReferences(composition, *layer, output);
    ListCleared(*composition, layer, output);
    RemoveLayers(project, {layer});
    WriteProject(*project, arguments.Operand(1));
    output.Line("Layer " + Quoted(layer->Name()) + " is deleted");
}

} // namespace

const CommandSpec &DeleteCommand()
{
    static const CommandSpec command{
        "delete",
        "delete a layer: say what refers to it, and clear what then leads nowhere",
        "FILE OUT --composition C --layer L",
        2,
        2,
        {{"--composition", "C", "the composition, by ID or name"},
         {"--layer", "L", "the layer, by ID or name"}},
        Run,
        "delete examples/titles.xml shorter.xml --composition Opening --layer Title"};
    return command;
}

} // namespace marlet::tool
