#include "Editing.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/layers/LayerTiming.h>

namespace guide
{

// An edit hears first of what it is going to change. Without Commit it puts everything back.
void Rename(const std::shared_ptr<Project> &project, const std::shared_ptr<AbstractLayer> &layer,
            const WideString &name)
{
    Edit edit(project, u"Rename layer");
    edit.Touch(layer);
    layer->SetName(name);
    edit.Commit();
}

// All moves of one slider are one step: the host calls EndGesture when the mouse button comes up.
void DragOpacity(const std::shared_ptr<Project> &project, const std::shared_ptr<AbstractLayer> &layer,
                 float opacity)
{
    Edit edit(project, u"Opacity", u"opacity slider");
    edit.Touch(layer, "opacity");
    layer->Animation().StaticValue("opacity") = opacity;
    edit.Commit();
}

// An operation is a step of its own, or a part of the edit that goes on around it. What it refuses has
// changed nothing, and is for the user to read.
std::string SplitAll(const std::shared_ptr<Project> &project,
                     const std::shared_ptr<CompositionAsset> &composition, int frame)
{
    Edit edit(project, u"Split layers");
    const CompositionAsset::LayerList layers = composition->Layers();
    try {
        for (const std::shared_ptr<AbstractLayer> &layer : layers)
            if (!layer->IsLocked())
                SplitLayer(project, layer, frame);
    } catch (const OperationException &refusal) {
        return refusal.what(); // the edit ends without Commit
    }
    edit.Commit();
    return {};
}

// Comes after each commit, undo and redo, on the thread that edits.
void LayerPanel::Changed(const ChangeNotice &notice)
{
    for (const ObjectChange &change : notice.Changes()) {
        if (change.kind == ObjectKind::Asset && change.aspects.Has(Aspect::Members))
            needsRows_ = true;
        if (change.kind == ObjectKind::Layer)
            layersToDraw_.insert(change.id.ToNarrowString());
    }
    for (const StaleFrames &frames : notice.Stale())
        firstStaleFrame_ = frames.first; // drop rendered frames from here to frames.end
}

} // namespace guide
