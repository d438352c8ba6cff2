// Replacing an asset, of ProjectOperations.h.

#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObject.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/history/Edit.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>
#include <marlet/operations/assets/AssetUses.h>
#include <marlet/operations/assets/AssetWork.h>
#include <marlet/operations/assets/ProjectOperations.h>
#include <marlet/operations/layers/LayerWork.h>
#include <marlet/operations/sequence/SequenceWork.h>
#include <marlet/project/AssetLength.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

namespace marlet::project
{

namespace
{

using AssetPointer = std::shared_ptr<AbstractAsset>;

/// @param frames of the asset, as many as the use shows
void RequireFrames(const AbstractAssetInstance &use, long long frames, const AbstractAsset &asset,
                   double frameRate)
{
    const std::optional<int> length = AssetLength(asset, frameRate);
    const long long end = use.AssetInstanceStart() + frames;
    if (length && (use.AssetInstanceStart() < 0 || end > *length))
        throw OperationException("Frames " + std::to_string(use.AssetInstanceStart()) + " to " +
                                 std::to_string(end) + " are shown by " + Quoted(use.Name()) + ", asset " +
                                 Quoted(asset.Name()) + " has " + CountedFrames(*length));
}

void RequireSuitable(const AbstractSequenceObject &object, const AbstractAsset &asset)
{
    const bool isPicture = object.Type() == ObjectType::Visual;
    if (isPicture ? !asset.HasVideo() : !asset.HasAudio())
        throw OperationException("Asset " + Quoted(asset.Name()) + " has no " +
                                 (isPicture ? "picture" : "sound") + " for object " + Quoted(object.Name()));
}

void Show(AssetLayer &layer, const AssetPointer &asset)
{
    // Only compositions have lights and a content in space.
    if (asset->Type() != AssetType::Composition) {
        layer.SetPromoteLights(false);
        if (layer.Dimensions() == LayerDimensions::ThreeDContent)
            layer.SetDimensions(LayerDimensions::ThreeD);
    }
    layer.SetAsset(asset);
}

void Replace(Edit &edit, const std::shared_ptr<AbstractAssetInstance> &use, const AssetPointer &asset)
{
    const Project &project = *edit.Document();
    UnlistInstance(edit, use);
    if (const auto layer = std::dynamic_pointer_cast<AssetLayer>(use)) {
        const std::shared_ptr<const CompositionAsset> composition = RequireCompositionOf(project, layer);
        RequireNoCircle(project, *composition, asset);
        RequireFrames(*layer, layer->Length(), *asset, composition->Settings().FrameRate());
        edit.Touch(std::shared_ptr<AbstractLayer>(layer));
        Show(*layer, asset);
    } else if (const auto object = std::dynamic_pointer_cast<SequenceObject>(use)) {
        const std::shared_ptr<EditorSequence> sequence = RequireSequence(project);
        RequireTrackOf(*sequence, object);
        RequireSuitable(*object, *asset);
        RequireFrames(*object, AssetFrames(*object, object->Length()), *asset,
                      sequence->Settings().FrameRate());
        edit.Touch(std::shared_ptr<AbstractSequenceObject>(object));
        object->SetAsset(asset);
    }
    ListInstance(edit, asset, use);
}

} // namespace

void ReplaceUses(const std::shared_ptr<Project> &project,
                 const std::vector<std::shared_ptr<AbstractAssetInstance>> &uses,
                 const AssetPointer &replacement)
{
    Edit edit(project, u"Replace asset");
    Require(replacement, "replacement");
    RequireAsset(*project, *replacement);
    for (const std::shared_ptr<AbstractAssetInstance> &use : uses) {
        Require(use, "use");
        Replace(edit, use, replacement);
    }
    edit.Commit();
}

void ReplaceAsset(const std::shared_ptr<Project> &project, const AssetPointer &asset,
                  const AssetPointer &replacement)
{
    Require(project, "project");
    Require(asset, "asset");
    RequireAsset(*project, *asset);
    std::vector<std::shared_ptr<AbstractAssetInstance>> uses;
    for (const UseOfAsset &use : UsesOf(*project, *asset))
        uses.push_back(use.instance);
    ReplaceUses(project, uses, replacement);
}

} // namespace marlet::project
