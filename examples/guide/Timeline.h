#pragma once

#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/project/Project.h>

namespace guide
{

using namespace marlet::project;

std::shared_ptr<VisualObject> Place(const std::shared_ptr<EditorSequence> &sequence, VideoTrack &track,
                                    const std::shared_ptr<AbstractAsset> &asset, int start, int length);
void Join(AbstractSequenceObject &before, AbstractSequenceObject &after,
          const std::shared_ptr<AbstractPlugin> &plugin, int length);
void Unjoin(const EditorSequence &sequence, std::shared_ptr<Transition> transition);
void TakeAway(const Project &project, VideoTrack &track, const std::shared_ptr<VisualObject> &object);

} // namespace guide
