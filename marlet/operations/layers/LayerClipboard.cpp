#include <marlet/operations/layers/LayerClipboard.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/history/Edit.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>
#include <marlet/operations/assets/AssetTransfer.h>
#include <marlet/operations/assets/AssetWork.h>
#include <marlet/operations/layers/LayerReferences.h>
#include <marlet/operations/layers/LayerWork.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>

namespace marlet::project
{

using LayerPointer = std::shared_ptr<AbstractLayer>;

struct CopiedLayers_Impl {
    std::shared_ptr<Project> source;
    std::vector<LayerPointer> layers;
    std::vector<kytl::KyID> sourceIDs; ///< of the layers that they are copies of
    BroughtAssets brought;
};

/// The making of the layers of one paste.
struct LayerPaste {
    Edit &edit;
    const std::shared_ptr<CompositionAsset> &composition;
    CopiedLayers_Impl &copied;
    const PasteOptions &options;

    static CopiedLayers_Impl &ContentOf(CopiedLayers &copied) { return *copied.impl_; }

    std::vector<LayerPointer> MakeLayers() const;
    void MoveInTime(const std::vector<LayerPointer> &layers) const;
    void Refer(const std::vector<LayerPointer> &layers) const;
    void Insert(const std::vector<LayerPointer> &layers) const;
};

std::vector<LayerPointer> LayerPaste::MakeLayers() const
{
    AssetTransfer transfer(edit, copied.source, options, copied.brought);
    std::vector<LayerPointer> made;
    for (const LayerPointer &layer : copied.layers) {
        LayerPointer copy = layer->Clone(composition->ID());
        copy->SetParentComposition(composition->ID());
        if (edit.Document() != copied.source)
            transfer.Adopt(copy);
        made.push_back(std::move(copy));
    }
    return made;
}

void LayerPaste::MoveInTime(const std::vector<LayerPointer> &layers) const
{
    if (!options.startFrame)
        return;
    const auto byStart = [](const LayerPointer &a, const LayerPointer &b) {
        return a->StartFrame() < b->StartFrame();
    };
    const std::int64_t first = (*std::ranges::min_element(layers, byStart))->StartFrame();
    for (const LayerPointer &layer : layers)
        layer->MoveLayer(Saturate(layer->StartFrame() - first + *options.startFrame));
}

void LayerPaste::Refer(const std::vector<LayerPointer> &layers) const
{
    ValidLayers valid;
    if (options.outside == PasteOptions::Outside::Keep)
        valid = LayersOf(*composition, *edit.Document());
    std::unordered_map<NarrowString, NarrowString> newIDs;
    for (std::size_t i = 0; i < layers.size(); ++i) {
        const NarrowString id = layers[i]->ID().ToNarrowString();
        newIDs.emplace(copied.sourceIDs[i].ToNarrowString(), id);
        valid.emplace(id, true);
    }
    for (const LayerPointer &layer : layers) {
        layer->ChangeLayerReferences(newIDs);
        layer->ClearInvalidLayerReferences(valid);
    }
}

void LayerPaste::Insert(const std::vector<LayerPointer> &layers) const
{
    const Project &project = *edit.Document();
    edit.TouchLayers(composition);
    unsigned int position = options.position;
    for (const LayerPointer &layer : layers) {
        if (const auto shown = std::dynamic_pointer_cast<AssetLayer>(layer)) {
            const auto asset = project.Assets().GetByID(shown->AssetID());
            if (!asset)
                throw OperationException("What layer " + Quoted(layer->Name()) +
                                         " shows is in its project no more");
            RequireNoCircle(project, *composition, asset);
            ListInstance(edit, asset, shown);
        }
        InsertLayer(*composition, layer, position++);
    }
}

CopiedLayers::CopiedLayers(std::unique_ptr<CopiedLayers_Impl> impl) : impl_(std::move(impl))
{
}

CopiedLayers::~CopiedLayers() = default;

unsigned int CopiedLayers::Count() const
{
    return static_cast<unsigned int>(impl_->layers.size());
}

std::shared_ptr<CopiedLayers> CopyLayers(const std::shared_ptr<Project> &project,
                                         const std::vector<LayerPointer> &layers)
{
    Require(project, "project");
    const auto composition = RequireOneComposition(*project, layers);
    auto impl = std::make_unique<CopiedLayers_Impl>();
    impl->source = project;
    for (const LayerPointer &layer : InStackingOrder(*composition, layers)) {
        impl->layers.push_back(layer->Clone(composition->ID()));
        impl->sourceIDs.push_back(layer->ID());
    }
    return std::shared_ptr<CopiedLayers>(new CopiedLayers(std::move(impl)));
}

std::vector<LayerPointer> PasteLayers(const std::shared_ptr<Project> &project,
                                      const std::shared_ptr<CompositionAsset> &composition,
                                      CopiedLayers &copied, const PasteOptions &options)
{
    Edit edit(project, copied.Count() == 1 ? u"Paste layer" : u"Paste layers");
    Require(composition, "composition");
    RequireAsset(*project, *composition);
    const LayerPaste paste{edit, composition, LayerPaste::ContentOf(copied), options};
    std::vector<LayerPointer> layers = paste.MakeLayers();
    paste.MoveInTime(layers);
    paste.Refer(layers);
    paste.Insert(layers);
    edit.Commit();
    return layers;
}

} // namespace marlet::project
