#include <marlet/operations/layers/LayerTiming.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/history/Edit.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>
#include <marlet/operations/assets/AssetWork.h>
#include <marlet/operations/layers/LayerContent.h>
#include <marlet/operations/layers/LayerWork.h>
#include <marlet/operations/sequence/Timeline.h>
#include <marlet/project/AssetLength.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

using LayerPointer = std::shared_ptr<AbstractLayer>;
using CompositionPointer = std::shared_ptr<CompositionAsset>;

double FrameRateOf(const CompositionPointer &composition)
{
    return std::as_const(*composition).Settings().FrameRate();
}

/// A layer that shows different frames of its asset, or an empty pointer.
std::shared_ptr<AssetLayer> WithFrames(const LayerPointer &layer)
{
    const auto shown = std::dynamic_pointer_cast<AssetLayer>(layer);
    return shown && HasFrames(std::as_const(*shown).AssetType()) ? shown : nullptr;
}

/// Moves the frames of the asset that a layer shows. Each edge of the asset that they newly pass, and pass
/// further than before, is refused.
void ShowFrames(const Project &project, AssetLayer &layer, std::int64_t first, std::int64_t formerFirst,
                std::int64_t formerEnd, double frameRate)
{
    const std::int64_t end = first + layer.Length();
    const auto asset = layer.Asset(project.Assets());
    const std::optional<int> length = asset ? AssetLength(*asset, frameRate) : std::nullopt;
    if ((first < 0 && first < formerFirst) || (length && end > *length && end > formerEnd))
        throw OperationException("Layer " + Quoted(layer.Name()) + " would show frames " +
                                 std::to_string(first) + " to " + std::to_string(end) + " of " +
                                 (asset ? "asset " + Quoted(asset->Name()) : "an asset") +
                                 (length ? ", which has " + CountedFrames(*length) : ""));
    layer.SetAssetInstanceStart(Saturate(first));
}

} // namespace

LayerPointer SplitLayer(const std::shared_ptr<Project> &project, const LayerPointer &layer, int frame)
{
    Edit edit(project, u"Split layer");
    const CompositionPointer composition = RequireCompositionOf(*project, layer);
    if (frame <= layer->StartFrame() || frame >= layer->EndFrame())
        throw OperationException("Frame " + std::to_string(frame) + " is not inside of layer " +
                                 Quoted(layer->Name()));
    const std::int64_t frames = std::int64_t{frame} - layer->StartFrame();
    const LayerPointer tail = layer->Clone(composition->ID());
    tail->ChangeLayerReferences({{layer->ID().ToNarrowString(), tail->ID().ToNarrowString()}});
    tail->SetStartFrame(frame);
    MoveKeyFrames(edit, tail, -frames, FrameRateOf(composition));
    if (const auto shown = WithFrames(tail))
        shown->SetAssetInstanceStart(Saturate(shown->AssetInstanceStart() + frames));

    edit.Touch(layer);
    layer->SetEndFrame(frame);
    edit.TouchLayers(composition);
    CompositionAsset::LayerList &layers = composition->Layers();
    layers.insert(std::ranges::find(layers, layer), tail);
    if (const auto shown = std::dynamic_pointer_cast<AssetLayer>(tail))
        if (const auto asset = std::as_const(*project).Assets().GetByID(shown->AssetID()))
            ListInstance(edit, asset, shown);
    edit.Commit();
    return tail;
}

void TrimLayer(const std::shared_ptr<Project> &project, const LayerPointer &layer, int startFrame,
               int endFrame)
{
    Edit edit(project, u"Trim layer");
    const CompositionPointer composition = RequireCompositionOf(*project, layer);
    if (startFrame >= endFrame)
        throw OperationException("No frame of layer " + Quoted(layer->Name()) + " would be left");
    const std::int64_t later = std::int64_t{startFrame} - layer->StartFrame();
    const std::int64_t formerLength = layer->Length();
    edit.Touch(layer);
    layer->SetStartFrame(startFrame);
    layer->SetEndFrame(endFrame);
    MoveKeyFrames(edit, layer, -later, FrameRateOf(composition));
    if (const auto shown = WithFrames(layer)) {
        const std::int64_t former = shown->AssetInstanceStart();
        ShowFrames(*project, *shown, former + later, former, former + formerLength, FrameRateOf(composition));
    }
    edit.Commit();
}

void SlipLayer(const std::shared_ptr<Project> &project, const LayerPointer &layer, int frames)
{
    Edit edit(project, u"Slip layer");
    const CompositionPointer composition = RequireCompositionOf(*project, layer);
    const auto shown = WithFrames(layer);
    if (!shown)
        throw OperationException("Layer " + Quoted(layer->Name()) + " shows nothing that moves");
    edit.Touch(layer);
    const std::int64_t former = shown->AssetInstanceStart();
    ShowFrames(*project, *shown, former + frames, former, former + shown->Length(), FrameRateOf(composition));
    edit.Commit();
}

void MoveLayers(const std::shared_ptr<Project> &project, const std::vector<LayerPointer> &layers, int frames)
{
    Edit edit(project, layers.size() == 1 ? u"Move layer" : u"Move layers");
    for (const LayerPointer &layer : layers) {
        RequireCompositionOf(*project, layer);
        edit.Touch(layer);
        layer->MoveLayer(Saturate(std::int64_t{layer->StartFrame()} + frames));
    }
    edit.Commit();
}

} // namespace marlet::project
