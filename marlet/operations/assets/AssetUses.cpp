#include <marlet/operations/assets/AssetUses.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/operations/assets/AssetWork.h>
#include <marlet/operations/sequence/Timeline.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

namespace marlet::project
{

std::vector<UseOfAsset> UsesOf(const Project &project, const AbstractAsset &asset)
{
    std::vector<UseOfAsset> uses;
    for (const std::shared_ptr<AbstractAsset> &entry : project.Assets().All()) {
        const auto composition = std::dynamic_pointer_cast<CompositionAsset>(entry);
        if (!composition)
            continue;
        for (const std::shared_ptr<AssetLayer> &layer : AssetLayersOf(*composition))
            if (layer->AssetID() == asset.ID())
                uses.push_back({layer, composition});
    }
    if (const std::shared_ptr<const EditorSequence> sequence = project.Sequence())
        for (const std::shared_ptr<AbstractSequenceObject> &object : ObjectsOf(*sequence))
            if (object->AssetID() == asset.ID())
                uses.push_back({object, nullptr});
    return uses;
}

} // namespace marlet::project
