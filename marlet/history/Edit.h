#pragma once

#include <marlet/history/EditedPart.h>

#include <memory>

namespace marlet::project
{

class AbstractAsset;
class AbstractLayer;
class AbstractSequenceObject;
class AbstractSequenceTrack;
class BinFolder;
class CompositionAsset;
class EditHistory;
class EditorSequence;
class Mask;
class PanelRenderState;
class PathPoint;
class PluginInstance;
class Project;
class PropertyManager;
class TextLayer;
class TimelinePart;
class Tracker;
class TrackingPoint;

/// One step of editing a project: it is told what is going to be changed, before that is changed through the
/// model's own interface or by operations, and then committed. What ends without a commit, for instance by an
/// exception, puts everything back.
///
/// If the project has an EditHistory, the step can be undone there. Without one it is still all or nothing.
///
/// An edit that begins while another one of the project goes on is a part of that: its commit hands over what
/// it was told, and dropping it puts back only that. So edits end in the reverse order of their beginning.
///
/// Objects keep their addresses and IDs through undo and redo, and what was removed and comes back is the
/// same object. Announcing an object costs what it holds itself: neither the lists of others in which it
/// stands nor what it owns; the content of properties is announced one by one. Announcing twice costs next to
/// nothing.
///
/// Null pointers are std::invalid_argument throughout. Belongs to the thread that edits the project.
class MARLET_EXPORT Edit
{
public:
    /// The label is for the user: "Move layer". Edits of one gesture, such as the drag of a slider, name the
    /// same gesture, which is any text but an empty one: those that follow one another with the same label
    /// become one step, until the history's EndGesture.
    /// @throws std::logic_error inside of a ChangeObserver, and where a history that checks finds that the
    /// project was changed without an edit, which stays
    Edit(const std::shared_ptr<Project> &project, const WideString &label, const WideString &gesture = {});
    Edit(const Edit &) = delete;
    Edit &operator=(const Edit &) = delete;
    /// Drops what was not committed.
    ~Edit();

    /// @throws std::logic_error if the edit has ended, if one that began later goes on, and where a history
    /// that checks finds that the edit changed what it had not announced, which stays while the edit is
    /// dropped
    void Commit();
    /// Puts everything back that was announced.
    void Drop();
    bool IsOpen() const;
    const std::shared_ptr<Project> &Document() const;

    // What is going to be changed. All of them: @throws std::logic_error if the edit has ended or one that
    // began later goes on

    /// Name, colour depth, and which sequence there is.
    void TouchProject();
    void TouchMetadata();
    /// Which assets there are, and their order.
    void TouchAssets();
    /// Name, parent and the lists of a folder. The root is Bin().
    void Touch(const std::shared_ptr<BinFolder> &folder);
    void TouchRootFolder();
    /// All that an asset says of itself, its folder and its list of instances. Of a composition also the
    /// format and the render settings, but neither layers nor panels. Of media and images also the file that
    /// they name, which is opened again by undo and redo.
    void Touch(const std::shared_ptr<AbstractAsset> &asset);
    /// Which layers a composition has, and their order.
    void TouchLayers(const std::shared_ptr<CompositionAsset> &composition);
    /// The panels of a composition or of the sequence. Views change their addresses.
    void TouchPanels(const std::shared_ptr<CompositionAsset> &composition);
    void TouchPanels(const std::shared_ptr<EditorSequence> &sequence);
    /// All that a layer says of itself, and its lists of effects, masks and trackers; not its text.
    void Touch(const std::shared_ptr<AbstractLayer> &layer);
    /// Tokens, formats, bounds and the state of editing.
    void TouchText(const std::shared_ptr<TextLayer> &layer);
    /// With the path and its list of points.
    void Touch(const std::shared_ptr<Mask> &mask);
    void Touch(const std::shared_ptr<PathPoint> &point);
    void Touch(const std::shared_ptr<Tracker> &tracker);
    void Touch(const std::shared_ptr<TrackingPoint> &point);
    /// An effect or a transition with the state of its panel and the private data of its plug-in, which is
    /// asked for these and handed them again by undo and redo, by SerializeInstance and DeserializeInstance.
    void Touch(const std::shared_ptr<PluginInstance> &instance);
    /// The sequence with its format and its lists of tracks.
    void Touch(const std::shared_ptr<EditorSequence> &sequence);
    /// Name and switches.
    void Touch(const std::shared_ptr<AbstractSequenceTrack> &track);
    /// All that an object says of itself, its list of effects, and its place on the track that it names.
    void Touch(const std::shared_ptr<AbstractSequenceObject> &object);
    /// The place of an object on a track on which it is or is going to be. An object that goes from one track
    /// to another has its place on both announced.
    void Touch(const std::shared_ptr<AbstractSequenceTrack> &track,
               const std::shared_ptr<AbstractSequenceObject> &object);
    /// Moves the objects of a track from a position on to the end, which costs as little to keep as the move
    /// of one. Changes them at once. Frames may be negative.
    void ShiftFrom(const std::shared_ptr<AbstractSequenceTrack> &track, unsigned int position, int frames);

    // A property of the object: static value, key frames and expression.

    void Touch(const std::shared_ptr<AbstractLayer> &owner, const char *property);
    void Touch(const std::shared_ptr<Mask> &owner, const char *property);
    void Touch(const std::shared_ptr<PathPoint> &owner, const char *property);
    void Touch(const std::shared_ptr<TrackingPoint> &owner, const char *property);
    void Touch(const std::shared_ptr<PluginInstance> &owner, const char *property);
    void Touch(const std::shared_ptr<AbstractSequenceObject> &owner, const char *property);
    /// One that anything else owns, which the notice names.
    void Touch(const std::shared_ptr<PropertyManager> &properties, const char *property, ObjectKind kind,
               const kytl::KyID &owner);

    /// One key frame that is there, or is going to be: where the property has many, this costs less than the
    /// whole property, which then need not be announced.
    void TouchKeyFrame(const std::shared_ptr<PropertyManager> &properties, const char *property,
                       const kytl::KyID &keyFrame, ObjectKind kind, const kytl::KyID &owner);
    /// Which properties there are, with all that they hold. Their values change their addresses.
    void TouchAll(const std::shared_ptr<PropertyManager> &properties, ObjectKind kind,
                  const kytl::KyID &owner);

    /// A part of the host's.
    void Touch(std::unique_ptr<EditedPart> part);

private:
    friend class EditHistory;

    struct Data;

    void RequireOpen() const;
    void End();
    void PutBack();
    void Add(std::unique_ptr<EditedPart> part);
    template <class Object, class Maker>
    void AddPartsOf(const std::shared_ptr<Object> &object, const char *what, const Maker &make);
    void TouchPlace(const std::shared_ptr<AbstractSequenceTrack> &track,
                    const std::shared_ptr<AbstractSequenceObject> &object);
    TimelinePart &Timeline();
    std::shared_ptr<AbstractSequenceTrack> TrackOf(const AbstractSequenceObject &object) const;

    std::unique_ptr<Data> data_;
};

/// The properties of an object, sharing the ownership of the object: for the operations above that take the
/// manager.
MARLET_EXPORT std::shared_ptr<PropertyManager> PropertiesOf(const std::shared_ptr<AbstractLayer> &layer);
MARLET_EXPORT std::shared_ptr<PropertyManager> PropertiesOf(const std::shared_ptr<Mask> &mask);
MARLET_EXPORT std::shared_ptr<PropertyManager> PropertiesOf(const std::shared_ptr<PathPoint> &point);
MARLET_EXPORT std::shared_ptr<PropertyManager> PropertiesOf(const std::shared_ptr<TrackingPoint> &point);
MARLET_EXPORT std::shared_ptr<PropertyManager> PropertiesOf(const std::shared_ptr<PluginInstance> &instance);
MARLET_EXPORT std::shared_ptr<PropertyManager>
PropertiesOf(const std::shared_ptr<AbstractSequenceObject> &object);

} // namespace marlet::project
