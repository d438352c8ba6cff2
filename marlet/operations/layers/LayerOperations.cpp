#include <marlet/operations/layers/LayerOperations.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/history/Edit.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/ParentHelper.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>
#include <marlet/operations/assets/AssetWork.h>
#include <marlet/operations/layers/LayerContent.h>
#include <marlet/operations/layers/LayerReferences.h>
#include <marlet/operations/layers/LayerWork.h>
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

/// What ParentHelper may change beside the link.
constexpr const char *kPlacement[] = {"position", "scale", "orientation", "rotationZ"};

void TouchPlacement(Edit &edit, const LayerPointer &layer)
{
    edit.Touch(layer);
    for (const char *property : kPlacement)
        if (layer->Animation().HasProperty(property))
            edit.Touch(layer, property);
}

/// A layer that hangs on itself, over whatever way, would have no place any more.
void RequireNoParentCircle(const CompositionAsset &composition, const AbstractLayer &layer,
                           const LayerPointer &parent)
{
    LayerPointer ancestor = parent;
    // A chain that is longer than there are layers runs in a circle itself, which is told of elsewhere.
    for (std::size_t i = 0; ancestor && i <= composition.Layers().size(); ++i) {
        if (ancestor->ID() == layer.ID())
            throw OperationException("Layer " + Quoted(layer.Name()) + " would become its own parent");
        ancestor = composition.FindLayerByID(ancestor->ParentLayerID());
    }
}

/// From its start to the end of its asset, or else of the composition.
void Span(AbstractLayer &layer, const AbstractAsset *asset, const AudioVideoSettings &settings)
{
    const std::int64_t start = layer.StartFrame();
    const std::optional<int> length = asset ? AssetLength(*asset, settings.FrameRate()) : std::nullopt;
    const std::int64_t end = length ? start + *length : settings.FrameCount();
    layer.SetEndFrame(Saturate(std::max(end, start + 1)));
}

int TimeOf(const Project &project, const AbstractLayer &layer, int frame)
{
    return layer.GlobalFrameToRelativeTime(frame, project.Assets());
}

} // namespace

void AddLayer(const std::shared_ptr<Project> &project, const CompositionPointer &composition,
              const LayerPointer &layer, unsigned int position)
{
    Edit edit(project, u"Add layer");
    Require(composition, "composition");
    Require(layer, "layer");
    RequireAsset(*project, *composition);
    if (composition->FindLayerByID(layer->ID()))
        throw OperationException("Layer " + Quoted(layer->Name()) + " is in composition " +
                                 Quoted(composition->Name()) + " already");
    const auto shown = std::dynamic_pointer_cast<AssetLayer>(layer);
    const auto asset = shown ? std::as_const(*project).Assets().GetByID(shown->AssetID()) : nullptr;
    if (shown && !asset)
        throw OperationException("Layer " + Quoted(layer->Name()) +
                                 " shows an asset that is not in the project");
    if (asset)
        RequireNoCircle(*project, *composition, asset);

    NameComposition(edit, layer, composition->ID());
    if (layer->StartFrame() == layer->EndFrame())
        Span(*layer, asset.get(), std::as_const(*composition).Settings());
    edit.TouchLayers(composition);
    InsertLayer(*composition, layer, position);
    ClearInvalidReferences(edit, layer, LayersOf(*composition, *project));
    if (asset)
        ListInstance(edit, asset, shown);
    edit.Commit();
}

std::shared_ptr<AssetLayer> AddAssetLayer(const std::shared_ptr<Project> &project,
                                          const CompositionPointer &composition,
                                          const std::shared_ptr<AbstractAsset> &asset, int startFrame,
                                          unsigned int position)
{
    Edit edit(project, u"Add layer");
    auto layer = AssetLayer::Create(asset);
    layer->SetStartFrame(startFrame);
    layer->SetEndFrame(startFrame);
    AddLayer(project, composition, layer, position);
    edit.Commit();
    return layer;
}

void RemoveLayers(const std::shared_ptr<Project> &project, const std::vector<LayerPointer> &layers)
{
    Edit edit(project, layers.size() == 1 ? u"Remove layer" : u"Remove layers");
    std::vector<CompositionPointer> compositions;
    for (const LayerPointer &layer : layers) {
        const CompositionPointer composition = RequireCompositionOf(*project, layer);
        edit.TouchLayers(composition);
        std::erase(composition->Layers(), layer);
        if (const auto shown = std::dynamic_pointer_cast<AssetLayer>(layer))
            UnlistInstance(edit, shown);
        if (std::ranges::find(compositions, composition) == compositions.end())
            compositions.push_back(composition);
    }
    for (const CompositionPointer &composition : compositions) {
        const ValidLayers valid = LayersOf(*composition, *project);
        for (const LayerPointer &layer : std::as_const(*composition).Layers())
            if (layer)
                ClearInvalidReferences(edit, layer, valid);
    }
    edit.Commit();
}

void ReorderLayer(const std::shared_ptr<Project> &project, const LayerPointer &layer, unsigned int position)
{
    Edit edit(project, u"Reorder layer");
    const CompositionPointer composition = RequireCompositionOf(*project, layer);
    edit.TouchLayers(composition);
    std::erase(composition->Layers(), layer);
    InsertLayer(*composition, layer, position);
    edit.Commit();
}

void SetParent(const std::shared_ptr<Project> &project, const LayerPointer &layer, const LayerPointer &parent,
               int frame)
{
    Edit edit(project, u"Set parent");
    Require(parent, "parent");
    const CompositionPointer composition = RequireOneComposition(*project, {layer, parent});
    RequireNoParentCircle(*composition, *layer, parent);
    TouchPlacement(edit, layer);
    LayerPointer child = layer;
    ParentHelper::Parent(project, TimeOf(*project, *layer, frame), parent, child);
    edit.Commit();
}

void RemoveParent(const std::shared_ptr<Project> &project, const LayerPointer &layer, int frame)
{
    Edit edit(project, u"Remove parent");
    const CompositionPointer composition = RequireCompositionOf(*project, layer);
    if (!layer->HasParentLayer())
        throw OperationException("Layer " + Quoted(layer->Name()) + " has no parent");
    TouchPlacement(edit, layer);
    LayerPointer child = layer;
    if (composition->FindLayerByID(layer->ParentLayerID()))
        ParentHelper::RemoveParent(project, TimeOf(*project, *layer, frame), child);
    else
        layer->RemoveParentLayer();
    edit.Commit();
}

} // namespace marlet::project
