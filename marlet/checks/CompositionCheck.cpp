#include <marlet/animation/PropertyManager.h>
#include <marlet/checks/CheckScope.h>
#include <marlet/checks/LayerContentCheck.h>
#include <marlet/checks/Nesting.h>
#include <marlet/checks/ParentCircles.h>
#include <marlet/checks/PropertyCheck.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <utility>

namespace marlet::project
{

namespace
{

using CompositionPointer = std::shared_ptr<CompositionAsset>;
using LayerPointer = std::shared_ptr<AbstractLayer>;

/// Takes all entries of a layer but the first out of a composition.
void DropRepeatedLayer(CompositionAsset &composition, const AbstractLayer *layer)
{
    bool isFirst = true;
    std::erase_if(composition.Layers(), [&](const LayerPointer &entry) {
        return entry.get() == layer && !std::exchange(isFirst, false);
    });
}

/// What names the ID goes on naming the first layer that has it.
void ReplaceByClone(Project &project, CompositionAsset &composition, const LayerPointer &layer)
{
    const LayerPointer clone = layer->Clone(composition.ID());
    for (LayerPointer &entry : composition.Layers())
        if (entry == layer)
            entry = clone;
    const auto instance = std::dynamic_pointer_cast<AssetLayer>(layer);
    const auto asset = instance ? project.Assets().GetByID(instance->AssetID()) : nullptr;
    if (!asset)
        return;
    for (std::weak_ptr<AbstractAssetInstance> &entry : asset->Instances())
        if (entry.lock() == instance)
            entry = std::dynamic_pointer_cast<AssetLayer>(clone);
}

/// Clears the parent of a layer that is in the circle of its parents still.
void BreakCircle(const CompositionAsset &composition, AbstractLayer &layer)
{
    std::unordered_set<const AbstractLayer *> visited;
    const AbstractLayer *at = &layer;
    while (at && visited.insert(at).second)
        at = composition.FindLayerByID(at->ParentLayerID()).get();
    if (at == &layer)
        layer.RemoveParentLayer();
}

class CompositionChecker
{
public:
    CompositionChecker(CheckScope &scope, const CompositionPointer &composition, const Nesting &nesting,
                       std::unordered_set<const AbstractLayer *> &visited)
        : scope_(scope), composition_(composition), nesting_(nesting), visited_(visited)
    {
        for (const LayerPointer &layer : std::as_const(*composition).Layers())
            if (layer && !layer->ID().IsNull())
                ids_.insert(layer->ID());
    }

    void Run()
    {
        const Place place("composition", composition_->Name(), composition_->ID());
        CheckFormat(scope_.findings, place, std::as_const(*composition_).Settings());
        const ParentCircles circles(std::as_const(*composition_).Layers());
        Findings::IDSet seen;
        std::unordered_set<const AbstractLayer *> here;
        for (const LayerPointer &layer : std::as_const(*composition_).Layers()) {
            if (!layer)
                continue;
            const Place layerPlace("layer", layer->Name(), layer->ID(), &place, Place::Join::Of);
            if (!here.insert(layer.get()).second) {
                scope_.findings.Warn(
                    FindingKind::Twice, layerPlace, "it is in its composition a second time",
                    {"drops the second entry", [composition = composition_, layer](Project &) {
                         DropRepeatedLayer(*composition, layer.get());
                     }});
                continue;
            }
            if (!visited_.insert(layer.get()).second) {
                scope_.findings.Error(FindingKind::Twice, layerPlace, "it is in another composition, too");
                continue;
            }
            CheckLayer(layer, layerPlace, circles);
            // Last, since a clone takes over what was repaired before.
            scope_.findings.CheckID(
                layerPlace, layer->ID(), seen,
                {"gives it an ID of its own", [composition = composition_, layer](Project &project) {
                     ReplaceByClone(project, *composition, layer);
                 }});
        }
    }

private:
    static constexpr auto kError = Finding::Severity::Error;

    void CheckLayer(const LayerPointer &layer, const Place &place, const ParentCircles &circles)
    {
        CheckLinks(layer, place);
        if (circles.Holds(layer->ID()))
            scope_.findings.Error(
                FindingKind::ParentCircle, place, "its parents run in a circle",
                {"clears the first parent layer in the circle",
                 [composition = composition_, layer](Project &) { BreakCircle(*composition, *layer); }});
        // A layer that was just made has no frames yet.
        if (layer->EndFrame() == layer->StartFrame())
            scope_.findings.Note(FindingKind::Frames, place, "it has no frames");
        else if (layer->EndFrame() < layer->StartFrame())
            scope_.findings.Warn(FindingKind::Frames, place,
                                 "it ends on " + std::to_string(layer->EndFrame()) + " and starts on " +
                                     std::to_string(layer->StartFrame()));
        if (const auto instance = std::dynamic_pointer_cast<AssetLayer>(layer))
            CheckAsset(instance, place);
        CheckProperties(scope_.findings, place, std::as_const(*layer).Animation(),
                        {scope_.models.OfLayer(layer->Type()), scope_.hasExpressionEngine},
                        [layer]() -> PropertyManager & { return layer->Animation(); });
        CheckLayerContent(scope_, place, layer, ids_);
    }

    void CheckLinks(const LayerPointer &layer, const Place &place)
    {
        const kytl::KyID &holder = layer->ParentCompositionID();
        if (holder != composition_->ID())
            scope_.findings.AddDangling(
                kError, place, "the parent composition", holder,
                scope_.assets.contains(holder) ? "is another one" : "does not exist",
                {"names its composition", [composition = composition_, layer](Project &) {
                     layer->SetParentComposition(composition->ID());
                 }});
        const kytl::KyID &parent = layer->ParentLayerID();
        if (!parent.IsNull() && !ids_.contains(parent))
            scope_.findings.AddDangling(
                kError, place, "the parent layer", parent, "does not exist",
                {"clears the parent layer", [layer](Project &) { layer->RemoveParentLayer(); }});
    }

    void CheckAsset(const std::shared_ptr<AssetLayer> &layer, const Place &place)
    {
        AbstractAsset *const asset = scope_.FindAsset(layer->AssetID());
        if (!asset) {
            scope_.findings.AddDangling(kError, place, "the asset", layer->AssetID(), "does not exist");
            return;
        }
        scope_.uses[asset].push_back(layer);
        if (scope_.offline.contains(asset))
            scope_.findings.Note(FindingKind::OfflineUse, place,
                                 "it shows the asset \"" + ToUtf8(asset->Name()) + "\", which is offline");
        if (layer->EndFrame() > layer->StartFrame()) {
            const std::int64_t start = layer->AssetInstanceStart();
            CheckShownFrames(scope_, place, *asset, std::as_const(*composition_).Settings().FrameRate(),
                             start, start + layer->EndFrame() - layer->StartFrame());
        }
        if (nesting_.LeadsBack(composition_.get(), asset))
            scope_.findings.Error(FindingKind::Nesting, place,
                                  "it shows " + (asset == composition_.get()
                                                     ? NarrowString("its own composition")
                                                     : "the composition \"" + ToUtf8(asset->Name()) +
                                                           "\", which shows that of the layer again"));
    }

    CheckScope &scope_;
    const CompositionPointer &composition_;
    const Nesting &nesting_;
    std::unordered_set<const AbstractLayer *> &visited_;
    Findings::IDSet ids_;
};

} // namespace

void CheckFormat(Findings &findings, const Place &place, const AudioVideoSettings &settings)
{
    if (!(settings.FrameRate() > 0) || settings.FrameCount() < 1 || settings.Width() < 1 ||
        settings.Height() < 1)
        findings.Warn(FindingKind::Frames, place,
                      "its format has no frames: a rate, a length or a size is not above 0");
}

void CheckCompositions(CheckScope &scope)
{
    std::vector<CompositionPointer> compositions;
    std::unordered_set<const AbstractAsset *> known;
    for (const auto &asset : scope.project.Assets().All())
        if (auto composition = std::dynamic_pointer_cast<CompositionAsset>(asset);
            composition && known.insert(composition.get()).second)
            compositions.push_back(std::move(composition));
    const Nesting nesting(compositions, scope.assets);
    std::unordered_set<const AbstractLayer *> visited;
    for (const CompositionPointer &composition : compositions)
        CompositionChecker(scope, composition, nesting, visited).Run();
}

} // namespace marlet::project
