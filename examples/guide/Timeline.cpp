#include "Timeline.h"

#include "Instances.h"

#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/project/AssetList.h>

namespace guide
{

// Three sides know of an object: its list, the object itself, and its asset.
std::shared_ptr<VisualObject> Place(const std::shared_ptr<EditorSequence> &sequence, VideoTrack &track,
                                    const std::shared_ptr<AbstractAsset> &asset, int start, int length)
{
    const auto object = VisualObject::Create(asset, sequence);
    object->SetParentTrackID(track.ID());
    object->SetEndFrame(start + length);
    track.Objects().Insert(object, start);
    asset->Instances().Add(object);
    return object;
}

// A transition stands in the slots of both objects at the cut, and names both.
void Join(AbstractSequenceObject &before, AbstractSequenceObject &after,
          const std::shared_ptr<AbstractPlugin> &plugin, int length)
{
    const auto transition = Transition::Create(plugin);
    transition->SetLength(length);
    transition->SetRelativeStartFrame(-length / 2);
    transition->SetFromObject(before.ID());
    transition->SetToObject(after.ID());
    before.SetOutgoingTransition(transition);
    after.SetIncomingTransition(transition);
}

void Unjoin(const EditorSequence &sequence, std::shared_ptr<Transition> transition)
{
    if (const auto before = sequence.FindObjectByID(transition->FromObject()))
        before->ClearOutgoingTransition();
    if (const auto after = sequence.FindObjectByID(transition->ToObject()))
        after->ClearIncomingTransition();
}

// Whatever named the object lets go of it before it leaves its list.
void TakeAway(const Project &project, VideoTrack &track, const std::shared_ptr<VisualObject> &object)
{
    const EditorSequence &sequence = *project.Sequence();
    for (const auto &transition : {object->IncomingTransition(), object->OutgoingTransition()})
        if (transition)
            Unjoin(sequence, transition);
    if (const auto partner = sequence.FindObjectByID(object->LinkedObjectID()))
        partner->ClearLinkedObject();
    if (const auto asset = object->Asset(project.Assets()))
        Forget(*asset, *object);
    track.Objects().Remove(object);
    object->ClearParentTrackID();
}

} // namespace guide
