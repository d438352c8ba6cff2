// Nesting layers, of ProjectOperations.h.

#include <marlet/history/Edit.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/operations/assets/FolderWork.h>
#include <marlet/operations/assets/ProjectOperations.h>
#include <marlet/operations/layers/LayerContent.h>
#include <marlet/operations/layers/LayerOperations.h>
#include <marlet/operations/layers/LayerReferences.h>
#include <marlet/operations/layers/LayerWork.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/CompositionRenderSettings.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <unordered_set>

namespace marlet::project
{

namespace
{

using LayerPointer = std::shared_ptr<AbstractLayer>;
using CompositionPointer = std::shared_ptr<CompositionAsset>;

CompositionPointer NewLike(const CompositionAsset &composition, const WideString &name)
{
    const AudioVideoSettings &settings = composition.Settings();
    auto like = CompositionAsset::Create(name, AudioVideoSettings::Preset::None, settings.FrameCount());
    like->Settings() = settings;
    like->RenderSettings() = composition.RenderSettings();
    return like;
}

/// Cuts the links between nested layers and others in both directions.
void LeaveParentsAcross(const std::shared_ptr<Project> &project, const CompositionAsset &composition,
                        const std::vector<LayerPointer> &nested)
{
    std::unordered_set<kytl::KyID> ids;
    for (const LayerPointer &layer : nested)
        ids.insert(layer->ID());
    for (const LayerPointer &layer : composition.Layers())
        if (layer && layer->HasParentLayer() &&
            ids.contains(layer->ID()) != ids.contains(layer->ParentLayerID()))
            RemoveParent(project, layer, layer->StartFrame());
}

void MoveInto(Edit &edit, const CompositionPointer &composition, const CompositionPointer &inner,
              const std::vector<LayerPointer> &nested)
{
    edit.TouchLayers(composition);
    edit.TouchLayers(inner);
    for (const LayerPointer &layer : nested) {
        std::erase(composition->Layers(), layer);
        inner->Layers().Add(layer);
        NameComposition(edit, layer, inner->ID());
    }
    for (const CompositionPointer &holder : {composition, inner}) {
        const ValidLayers valid = LayersOf(*holder, *edit.Document());
        for (const LayerPointer &layer : std::as_const(*holder).Layers())
            if (layer)
                ClearInvalidReferences(edit, layer, valid);
    }
}

bool StandsInSpace(const std::vector<LayerPointer> &layers)
{
    const auto isOfType = [](LayerType type) {
        return [type](const LayerPointer &layer) { return layer->Type() == type; };
    };
    const auto isInSpace = [](const LayerPointer &layer) {
        return layer->HasVideo() && layer->Dimensions() != LayerDimensions::TwoD;
    };
    return std::ranges::any_of(layers, isInSpace) &&
           std::ranges::none_of(layers, isOfType(LayerType::Camera));
}

/// Within the frames of the composition that it shows, if any of the layers is there.
void Span(AssetLayer &nest, const std::vector<LayerPointer> &layers, int frameCount)
{
    const auto byStart = [](const LayerPointer &a, const LayerPointer &b) {
        return a->StartFrame() < b->StartFrame();
    };
    const auto byEnd = [](const LayerPointer &a, const LayerPointer &b) {
        return a->EndFrame() < b->EndFrame();
    };
    int start = std::max(0, (*std::ranges::min_element(layers, byStart))->StartFrame());
    int end = std::min(frameCount, (*std::ranges::max_element(layers, byEnd))->EndFrame());
    if (start >= end) {
        start = 0;
        end = frameCount;
    }
    nest.SetStartFrame(start);
    nest.SetEndFrame(end);
    nest.SetAssetInstanceStart(start);
}

} // namespace

std::shared_ptr<AssetLayer> NestLayers(const std::shared_ptr<Project> &project,
                                       const std::vector<LayerPointer> &layers, const WideString &name)
{
    Edit edit(project, u"Nest layers");
    const CompositionPointer composition = RequireOneComposition(*project, layers);
    const std::vector<LayerPointer> nested = InStackingOrder(*composition, layers);
    const CompositionAsset::LayerList &stack = std::as_const(*composition).Layers();
    const auto position =
        static_cast<unsigned int>(std::distance(stack.begin(), std::ranges::find(stack, nested.front())));

    const CompositionPointer inner = NewLike(*composition, name);
    AddAsset(project, inner, FolderOf(project, *composition));
    LeaveParentsAcross(project, *composition, nested);
    MoveInto(edit, composition, inner, nested);
    auto nest = AssetLayer::Create(inner);
    Span(*nest, nested, std::as_const(*composition).Settings().FrameCount());
    if (StandsInSpace(nested))
        nest->SetDimensions(LayerDimensions::ThreeDContent);
    AddLayer(project, composition, nest, position);
    edit.Commit();
    return nest;
}

} // namespace marlet::project
