#include "Editing.h"
#include "Verb.h"
#include "output/Failure.h"
#include "output/Output.h"

#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/operations/layers/LayerClipboard.h>
#include <marlet/operations/layers/LayerOperations.h>
#include <marlet/operations/layers/LayerTiming.h>
#include <marlet/project/CompositionAsset.h>

namespace marlet::tool
{

using namespace project;

namespace
{

void Add(Editing &editing)
{
    const int start = editing.Number("--at").value_or(0);
    const unsigned int place = editing.Place();
    const CompositionPointer composition = editing.Composition();
    editing.Tell("added", AddAssetLayer(editing.Document(), composition, editing.Asset(editing.Operand(1)),
                                        start, place));
}

LayerPointer NewLayer(const std::string &type, const WideString &name, const PixelSize &size)
{
    if (type == "text")
        return TextLayer::Create(name, size.width, size.height);
    if (type == "point")
        return PointLayer::Create(name);
    if (type == "grade")
        return GradeLayer::Create(name, size.width, size.height);
    throw UsageError("--type: \"" + type + "\" is none of text, point and grade");
}

void New(Editing &editing)
{
    const unsigned int place = editing.Place();
    const CompositionPointer composition = editing.Composition();
    const PixelSize size = editing.Words().Has("--size")
                               ? editing.Words().Size("--size")
                               : PixelSize{composition->Width(), composition->Height()};
    const LayerPointer layer = NewLayer(editing.Words().Text("--type"), FromUtf8(editing.Operand(1)), size);
    AddLayer(editing.Document(), composition, layer, place);
    editing.Tell("added", layer);
}

void Remove(Editing &editing)
{
    const LayerPointer layer = editing.Layer();
    RemoveLayers(editing.Document(), {layer});
    editing.Tell("removed", layer);
}

void Move(Editing &editing)
{
    const std::optional<int> to = editing.Number("--to");
    const std::optional<int> by = editing.Number("--by");
    const bool isReordered = editing.Words().Has("--place");
    if (int{to.has_value()} + int{by.has_value()} + int{isReordered} != 1)
        throw UsageError("one of --to, --by and --place is needed");
    const LayerPointer layer = editing.Layer();
    if (isReordered)
        ReorderLayer(editing.Document(), layer, editing.Place());
    else
        MoveLayers(editing.Document(), {layer}, to ? *to - layer->StartFrame() : *by);
    editing.Tell("moved", layer);
}

void Split(Editing &editing)
{
    const int frame = editing.Words().Integer("--at");
    const LayerPointer layer = editing.Layer();
    const LayerPointer tail = SplitLayer(editing.Document(), layer, frame);
    editing.Tell("head", layer);
    editing.Tell("tail", tail);
}

void Trim(Editing &editing)
{
    const std::optional<int> start = editing.Number("--start");
    const std::optional<int> end = editing.Number("--end");
    if (!start && !end)
        throw UsageError("--start or --end is needed");
    const LayerPointer layer = editing.Layer();
    TrimLayer(editing.Document(), layer, start.value_or(layer->StartFrame()),
              end.value_or(layer->EndFrame()));
    editing.Tell("trimmed", layer);
}

void Slip(Editing &editing)
{
    const int by = editing.Words().Integer("--by");
    const LayerPointer layer = editing.Layer();
    SlipLayer(editing.Document(), layer, by);
    editing.Tell("slipped", layer);
}

void Parent(Editing &editing)
{
    const Arguments &arguments = editing.Words();
    if (arguments.Has("--on") == arguments.Has("--remove"))
        throw UsageError("either --on or --remove is needed, not both");
    const int frame = arguments.Integer("--at");
    const LayerPointer layer = editing.Layer();
    if (arguments.Has("--on")) {
        const LayerPointer parent = FindLayer(*editing.Composition(), arguments.Text("--on"));
        SetParent(editing.Document(), layer, parent, frame);
        editing.Tell("hung", "layer " + Quoted(layer->Name()) + " on layer " + Quoted(parent->Name()));
    } else {
        RemoveParent(editing.Document(), layer, frame);
        editing.Tell("cut loose", layer);
    }
}

void Copy(Editing &editing)
{
    PasteOptions options;
    options.startFrame = editing.Number("--at");
    options.position = editing.Place();
    const CompositionPointer into = editing.Words().Has("--into")
                                        ? FindComposition(*editing.Document(), editing.Words().Text("--into"))
                                        : editing.Composition();
    const auto copied = CopyLayers(editing.Document(), {editing.Layer()});
    for (const LayerPointer &layer : PasteLayers(editing.Document(), into, *copied, options))
        editing.Tell("added", layer);
}

} // namespace

const std::vector<Verb> &LayerVerbs()
{
    static const std::vector<Verb> verbs{
        {"layer add", "COMPOSITION ASSET [--at F] [--place N]", Add},
        {"layer new", "COMPOSITION NAME --type text|point|grade [--size WxH] [--place N]", New},
        {"layer copy", "COMPOSITION LAYER [--into COMPOSITION] [--at F] [--place N]", Copy},
        {"layer remove", "COMPOSITION LAYER", Remove},
        {"layer move", "COMPOSITION LAYER (--to F | --by N | --place N)", Move},
        {"layer split", "COMPOSITION LAYER --at F", Split},
        {"layer trim", "COMPOSITION LAYER [--start F] [--end F]", Trim},
        {"layer slip", "COMPOSITION LAYER --by N", Slip},
        {"layer parent", "COMPOSITION LAYER --at F (--on LAYER | --remove)", Parent},
    };
    return verbs;
}

} // namespace marlet::tool
