#include "Standings.h"

#include "document/Document.h"
#include "document/Timeline.h"
#include "output/Output.h"

#include <marlet/checks/OwnershipTree.h>
#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

namespace marlet::tool
{

using namespace project;

std::string Standings::Standing::Text() const
{
    return name.empty() ? kind : kind + " \"" + OneLine(name) + "\"";
}

Standings::Standings(const Project &project)
{
    for (const OwnedObject &object : OwnershipOf(project).objects)
        objects_[object.id] = {object.kind, object.name};
    const auto stand = [this](const auto &object) {
        Standing &standing = objects_[object->ID()];
        standing.isInTime = true;
        standing.startFrame = object->StartFrame();
        standing.endFrame = object->EndFrame();
    };
    for (const CompositionPointer &composition : Compositions(project))
        for (const LayerPointer &layer : composition->Layers())
            if (layer)
                stand(layer);
    const auto sequence = project.Sequence();
    if (!sequence)
        return;
    for (const TrackPointer &track : TracksOf(*sequence))
        for (const ObjectPointer &object : ObjectsOf(*track)) {
            stand(object);
            tracks_[track->ID()].push_back(object->ID());
        }
}

const Standings::Standing *Standings::Find(const kytl::KyID &id) const
{
    const auto found = objects_.find(id);
    return found == objects_.end() ? nullptr : &found->second;
}

const std::vector<kytl::KyID> &Standings::ObjectsOnTrack(const kytl::KyID &track) const
{
    static const std::vector<kytl::KyID> none;
    const auto found = tracks_.find(track);
    return found == tracks_.end() ? none : found->second;
}

} // namespace marlet::tool
