#include "document/Document.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Json.h"
#include "output/Output.h"

#include <marlet/layers/AssetLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <utility>

namespace marlet::tool
{

using namespace project;

namespace
{

struct Dimensions {
    kytl::matl::KyPoint<2, float> offset;
    int width = 0;
    int height = 0;
};

std::string DimensionsText(const AbstractAsset &asset, int frame, const Dimensions &after)
{
    return "frame " + std::to_string(frame) + ": " + std::to_string(asset.Width()) + "x" +
           std::to_string(asset.Height()) + " of " + Quoted(asset.Name()) + " become " +
           std::to_string(after.width) + "x" + std::to_string(after.height) + ", and lie at " +
           NumberText(after.offset.X) + "," + NumberText(after.offset.Y) + " in them";
}

std::string DimensionsJson(const AbstractAsset &asset, int frame, const Dimensions &after)
{
    JsonWriter json;
    json.BeginObject()
        .Member("frame", frame)
        .Member("asset", asset.ID())
        .Member("asset_width", asset.Width())
        .Member("asset_height", asset.Height())
        .Member("width", after.width)
        .Member("height", after.height)
        .Member("x", after.offset.X)
        .Member("y", after.offset.Y);
    return json.EndObject().Text();
}

void Run(const Arguments &arguments, Output &output)
{
    // What the plug-ins of this tool are told beside the size and the time means nothing to them.
    constexpr float kUnused = 1;
    const std::string &compositionName = arguments.Text("--composition");
    const std::string &layerName = arguments.Text("--layer");

    const ProjectPointer project = ReadProject(arguments.Operand(0));
    const CompositionPointer composition = FindComposition(*project, compositionName);
    const AssetLayerPointer layer = FindAssetLayer(*composition, layerName);
    const int frame =
        arguments.Has("--frame") ? arguments.Integer("--frame") : composition->CurrentTimeIndicator();
    const AssetList &assets = std::as_const(*project).Assets();
    const auto asset = layer->Asset(assets);
    if (!asset)
        throw Failure("The asset of layer " + Quoted(layer->Name()) + " does not exist");

    Dimensions after;
    AssetLayer::ComputePostFilterDims(asset, std::as_const(*layer).Effects(),
                                      layer->GlobalFrameToRelativeTime(frame, assets), kUnused, false,
                                      after.offset, after.width, after.height);
    output.Line((arguments.Has("--json") ? DimensionsJson : DimensionsText)(*asset, frame, after));
}

} // namespace

const CommandSpec &PostFilterCommand()
{
    static const CommandSpec command{
        "postfilter",
        "how large the picture of a layer's asset is after the layer's effects",
        "PROJECT --composition C --layer L [--frame N] [--json]",
        1,
        1,
        {{"--composition", "C", "the composition, by ID or name"},
         {"--layer", "L", "the layer, by ID or name"},
         {"--frame", "N", "a frame of the composition; that of the playhead if not given"},
         {"--json", "", "one JSON object"}},
        Run,
        "postfilter examples/titles.xml --composition Opening --layer Credits"};
    return command;
}

} // namespace marlet::tool
