#include "Instances.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

namespace guide
{

namespace
{

void Remember(const Project &project, const std::shared_ptr<AbstractAssetInstance> &instance)
{
    if (const auto asset = project.Assets().GetByID(instance->AssetID()))
        asset->Instances().Add(instance);
}

} // namespace

// Files do not bring the lists back: a host fills them after a load, from all that uses an asset.
void FillInstances(const Project &project)
{
    for (const auto &asset : project.Assets().GetByType(AssetType::Composition))
        for (const auto &layer : static_cast<CompositionAsset &>(*asset).Layers())
            if (const auto instance = std::dynamic_pointer_cast<AbstractAssetInstance>(layer))
                Remember(project, instance);
    const auto sequence = project.Sequence();
    if (!sequence)
        return;
    const auto remember = [&](const std::shared_ptr<AbstractSequenceObject> &object) {
        Remember(project, object);
    };
    for (const auto &track : sequence->VideoTracks())
        track->Objects().ForEach(remember);
    for (const auto &track : sequence->AudioTracks())
        track->Objects().ForEach(remember);
}

void Forget(AbstractAsset &asset, const AbstractAssetInstance &instance)
{
    std::erase_if(asset.Instances(), [&](const std::weak_ptr<AbstractAssetInstance> &user) {
        const auto alive = user.lock();
        return !alive || alive.get() == &instance;
    });
}

} // namespace guide
