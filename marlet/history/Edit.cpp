#include <marlet/history/Edit.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/history/EditHistory.h>
#include <marlet/history/HistoryData.h>
#include <marlet/history/Parts.h>
#include <marlet/history/Step.h>
#include <marlet/history/TimelinePart.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/PluginInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

#include <stdexcept>
#include <type_traits>
#include <utility>

namespace marlet::project
{

struct Edit::Data {
    std::shared_ptr<Project> project;
    WideString label;
    WideString gesture;
    Edit *outer = nullptr;
    bool isOpen = true;
    Step step;
    /// One of the parts, once there is one. An inner edit has the outer ones hear of its places at once,
    /// since positions mean something at that moment only.
    TimelinePart *timeline = nullptr;
    std::vector<std::size_t> outerMoments; ///< of the edits around this one, from the inside out
};

Edit::Edit(const std::shared_ptr<Project> &project, const WideString &label, const WideString &gesture)
    : data_(std::make_unique<Data>())
{
    Require(project, "project");
    data_->project = project;
    data_->label = label;
    data_->gesture = gesture;
    data_->outer = project->editing_.innermost;
    const EditHistory *const history = project->editing_.history;
    if (history && history->data_->isTelling)
        throw std::logic_error("An observer of changes must not edit");
    for (const Edit *outer = data_->outer; outer; outer = outer->data_->outer) {
        const TimelinePart *timeline = outer->data_->timeline;
        data_->outerMoments.push_back(timeline ? timeline->Moment() : 0);
    }
    if (!data_->outer && history && history->ChecksAnnouncements())
        history->data_->check.RequireKnown(*project);
    project->editing_.innermost = this;
}

Edit::~Edit()
{
    if (!data_->isOpen)
        return;
    // Edits inside of this one that outlive it go on in the one around it.
    for (Edit *inner = data_->project->editing_.innermost; inner && inner != this;) {
        Edit *const next = inner->data_->outer;
        if (next == this)
            inner->data_->outer = data_->outer;
        inner = next;
    }
    try {
        PutBack();
    } catch (...) {
        // What cannot be put back stays as it is.
    }
}

bool Edit::IsOpen() const
{
    return data_->isOpen;
}

const std::shared_ptr<Project> &Edit::Document() const
{
    return data_->project;
}

void Edit::RequireOpen() const
{
    if (!data_->isOpen)
        throw std::logic_error("The edit has ended");
    if (data_->project->editing_.innermost != this)
        throw std::logic_error("An edit that began later goes on");
}

void Edit::End()
{
    data_->isOpen = false;
    data_->project->editing_.innermost = data_->outer;
}

void Edit::Commit()
{
    RequireOpen();
    if (data_->outer) {
        End();
        for (std::unique_ptr<EditedPart> &part : data_->step.TakeParts())
            if (part.get() != data_->timeline)
                data_->outer->data_->step.Add(std::move(part));
        return;
    }
    EditHistory *const history = data_->project->editing_.history;
    if (history && history->ChecksAnnouncements()) {
        try {
            history->data_->check.Check(*data_->project, data_->step, data_->label);
        } catch (...) {
            Drop();
            throw;
        }
    }
    End();
    if (history && data_->step.IsChange())
        history->data_->Take(data_->label, data_->gesture, std::move(data_->step));
}

void Edit::Drop()
{
    RequireOpen();
    PutBack();
}

/// The edits around this one forget the shifts in it. If something cannot be put back, the steps of the
/// history do not fit the document any more.
void Edit::PutBack()
{
    if (data_->project->editing_.innermost == this)
        End();
    data_->isOpen = false;
    auto moment = data_->outerMoments.begin();
    for (Edit *outer = data_->outer; outer && moment != data_->outerMoments.end(); ++moment) {
        if (outer->data_->timeline)
            outer->data_->timeline->ForgetSince(*moment);
        outer = outer->data_->outer;
    }
    try {
        data_->step.Undo();
    } catch (...) {
        if (EditHistory *const history = data_->project->editing_.history)
            history->data_->Break();
        throw;
    }
}

void Edit::Add(std::unique_ptr<EditedPart> part)
{
    data_->step.Add(std::move(part));
}

void Edit::TouchPlace(const std::shared_ptr<AbstractSequenceTrack> &track,
                      const std::shared_ptr<AbstractSequenceObject> &object)
{
    if (data_->outer)
        data_->outer->TouchPlace(track, object);
    Timeline().Touch(track, object);
}

TimelinePart &Edit::Timeline()
{
    if (!data_->timeline) {
        const std::shared_ptr<EditorSequence> sequence = data_->project->Sequence();
        auto part = std::make_unique<TimelinePart>(sequence ? sequence->ID() : kytl::KyID());
        data_->timeline = part.get();
        data_->step.Add(std::move(part));
    }
    return *data_->timeline;
}

/// Adds the part, or the parts, that keep what an object holds.
template <class Object, class Maker>
void Edit::AddPartsOf(const std::shared_ptr<Object> &object, const char *what, const Maker &make)
{
    RequireOpen();
    Require(object, what);
    const PartSink sink = [this](std::unique_ptr<EditedPart> part) { Add(std::move(part)); };
    if constexpr (std::is_invocable_v<Maker, const std::shared_ptr<Object> &, const PartSink &>)
        make(object, sink);
    else
        Add(make(object));
}

namespace
{

/// What makes the parts of the objects of most classes, which each have an overload of their own.
constexpr auto kMake = [](const auto &object) { return MakePart(object); };
constexpr auto kMakeAll = [](const auto &object, const PartSink &sink) { MakeParts(object, sink); };

} // namespace

void Edit::TouchProject()
{
    AddPartsOf(data_->project, "project", kMake);
}

void Edit::TouchMetadata()
{
    AddPartsOf(data_->project, "project", MakeMetadataPart);
}

void Edit::TouchAssets()
{
    AddPartsOf(data_->project, "project", MakeAssetsPart);
}

void Edit::TouchRootFolder()
{
    Touch(std::shared_ptr<BinFolder>(data_->project, &data_->project->Assets().Bin()));
}

void Edit::Touch(const std::shared_ptr<BinFolder> &folder)
{
    AddPartsOf(folder, "folder", kMake);
}

void Edit::Touch(const std::shared_ptr<AbstractAsset> &asset)
{
    AddPartsOf(asset, "asset", [this](const std::shared_ptr<AbstractAsset> &object, const PartSink &sink) {
        MakeParts(data_->project, object, sink);
    });
}

void Edit::TouchLayers(const std::shared_ptr<CompositionAsset> &composition)
{
    AddPartsOf(composition, "composition", MakeLayersPart);
}

void Edit::TouchPanels(const std::shared_ptr<CompositionAsset> &composition)
{
    AddPartsOf(composition, "composition", [](const auto &object) { return MakePanelsPart(object); });
}

void Edit::TouchPanels(const std::shared_ptr<EditorSequence> &sequence)
{
    AddPartsOf(sequence, "sequence", [](const auto &object) { return MakePanelsPart(object); });
}

void Edit::Touch(const std::shared_ptr<AbstractLayer> &layer)
{
    AddPartsOf(layer, "layer", kMakeAll);
}

void Edit::TouchText(const std::shared_ptr<TextLayer> &layer)
{
    AddPartsOf(layer, "layer", MakeTextPart);
}

void Edit::Touch(const std::shared_ptr<Mask> &mask)
{
    AddPartsOf(mask, "mask", kMake);
}

void Edit::Touch(const std::shared_ptr<PathPoint> &point)
{
    AddPartsOf(point, "point", kMake);
}

void Edit::Touch(const std::shared_ptr<Tracker> &tracker)
{
    AddPartsOf(tracker, "tracker", kMake);
}

void Edit::Touch(const std::shared_ptr<TrackingPoint> &point)
{
    AddPartsOf(point, "tracking point", kMake);
}

void Edit::Touch(const std::shared_ptr<PluginInstance> &instance)
{
    AddPartsOf(instance, "instance", kMakeAll);
}

void Edit::Touch(const std::shared_ptr<EditorSequence> &sequence)
{
    AddPartsOf(sequence, "sequence", kMake);
}

void Edit::Touch(const std::shared_ptr<AbstractSequenceTrack> &track)
{
    AddPartsOf(track, "track", kMakeAll);
}

void Edit::Touch(const std::shared_ptr<AbstractSequenceObject> &object)
{
    RequireOpen();
    Require(object, "object");
    Add(MakePart(object));
    if (const std::shared_ptr<AbstractSequenceTrack> track = TrackOf(*object))
        TouchPlace(track, object);
}

void Edit::Touch(const std::shared_ptr<AbstractSequenceTrack> &track,
                 const std::shared_ptr<AbstractSequenceObject> &object)
{
    RequireOpen();
    Require(track, "track");
    Require(object, "object");
    TouchPlace(track, object);
}

std::shared_ptr<AbstractSequenceTrack> Edit::TrackOf(const AbstractSequenceObject &object) const
{
    const std::shared_ptr<EditorSequence> sequence = data_->project->Sequence();
    return sequence ? sequence->FindSequenceTrackByID(object.ParentTrackID()) : nullptr;
}

void Edit::ShiftFrom(const std::shared_ptr<AbstractSequenceTrack> &track, unsigned int position, int frames)
{
    RequireOpen();
    Require(track, "track");
    Timeline().ShiftFrom(track, position, frames);
    for (Edit *outer = data_->outer; outer; outer = outer->data_->outer)
        outer->Timeline().NoteShift(track, position, frames);
}

void Edit::Touch(const std::shared_ptr<PropertyManager> &properties, const char *property, ObjectKind kind,
                 const kytl::KyID &owner)
{
    RequireOpen();
    Require(properties, "property manager");
    Require(property, "property name");
    Add(MakePropertyPart(properties, property, {kind, owner}));
}

void Edit::TouchKeyFrame(const std::shared_ptr<PropertyManager> &properties, const char *property,
                         const kytl::KyID &keyFrame, ObjectKind kind, const kytl::KyID &owner)
{
    RequireOpen();
    Require(properties, "property manager");
    Require(property, "property name");
    Add(MakeKeyFramePart(properties, property, keyFrame, {kind, owner}));
}

void Edit::TouchAll(const std::shared_ptr<PropertyManager> &properties, ObjectKind kind,
                    const kytl::KyID &owner)
{
    RequireOpen();
    Require(properties, "property manager");
    Add(MakePropertiesPart(properties, {kind, owner}));
}

void Edit::Touch(std::unique_ptr<EditedPart> part)
{
    RequireOpen();
    Require(part, "part");
    Add(std::move(part));
}

} // namespace marlet::project
