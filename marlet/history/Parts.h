#pragma once

#include <marlet/history/EditedPart.h>

#include <functional>
#include <memory>

namespace marlet::project
{

class AbstractAsset;
class AbstractLayer;
class AbstractSequenceObject;
class AbstractSequenceTrack;
class BinFolder;
class CompositionAsset;
class EditorSequence;
class Mask;
class PathPoint;
class PluginInstance;
class Project;
class PropertyManager;
class TextLayer;
class Tracker;
class TrackingPoint;

using PartSink = std::function<void(std::unique_ptr<EditedPart>)>;

// The parts that keep what an object holds: some classes have one part for each class that they derive from.

void MakeParts(const std::shared_ptr<AbstractLayer> &layer, const PartSink &sink);
void MakeParts(const std::shared_ptr<Project> &project, const std::shared_ptr<AbstractAsset> &asset,
               const PartSink &sink);
void MakeParts(const std::shared_ptr<PluginInstance> &instance, const PartSink &sink);
void MakeParts(const std::shared_ptr<AbstractSequenceTrack> &track, const PartSink &sink);

std::unique_ptr<EditedPart> MakePart(const std::shared_ptr<Project> &project);
std::unique_ptr<EditedPart> MakeMetadataPart(const std::shared_ptr<Project> &project);
std::unique_ptr<EditedPart> MakeAssetsPart(const std::shared_ptr<Project> &project);
std::unique_ptr<EditedPart> MakePart(const std::shared_ptr<BinFolder> &folder);
std::unique_ptr<EditedPart> MakeLayersPart(const std::shared_ptr<CompositionAsset> &composition);
std::unique_ptr<EditedPart> MakePanelsPart(const std::shared_ptr<CompositionAsset> &composition);
std::unique_ptr<EditedPart> MakePanelsPart(const std::shared_ptr<EditorSequence> &sequence);
std::unique_ptr<EditedPart> MakeTextPart(const std::shared_ptr<TextLayer> &layer);
std::unique_ptr<EditedPart> MakePart(const std::shared_ptr<Mask> &mask);
std::unique_ptr<EditedPart> MakePart(const std::shared_ptr<PathPoint> &point);
std::unique_ptr<EditedPart> MakePart(const std::shared_ptr<Tracker> &tracker);
std::unique_ptr<EditedPart> MakePart(const std::shared_ptr<TrackingPoint> &point);
std::unique_ptr<EditedPart> MakePart(const std::shared_ptr<EditorSequence> &sequence);
std::unique_ptr<EditedPart> MakePart(const std::shared_ptr<AbstractSequenceObject> &object);

/// Whose properties they are.
struct PropertyOwner {
    ObjectKind kind = {};
    kytl::KyID id;
};

/// @throws std::out_of_range if there is no such property
std::unique_ptr<EditedPart> MakePropertyPart(const std::shared_ptr<PropertyManager> &properties,
                                             const char *name, const PropertyOwner &owner);
std::unique_ptr<EditedPart> MakeKeyFramePart(const std::shared_ptr<PropertyManager> &properties,
                                             const char *name, const kytl::KyID &keyFrame,
                                             const PropertyOwner &owner);
std::unique_ptr<EditedPart> MakePropertiesPart(const std::shared_ptr<PropertyManager> &properties,
                                               const PropertyOwner &owner);

// The same fields the other way: make what an object says of itself that of another one of its class, in
// place. Lists, properties, transitions and panels stay.

void TakeOver(Project &project, const Project &other);
void TakeOver(BinFolder &folder, const BinFolder &other);
void TakeOver(AbstractAsset &asset, const AbstractAsset &other); ///< but for the file of media
void TakeOver(AbstractLayer &layer, const AbstractLayer &other);
void TakeOverText(TextLayer &layer, const TextLayer &other); ///< shares tokens and formats
void TakeOver(Mask &mask, const Mask &other);
void TakeOver(PathPoint &point, const PathPoint &other);
void TakeOver(Tracker &tracker, const Tracker &other);
void TakeOver(TrackingPoint &point, const TrackingPoint &other);
void TakeOver(PluginInstance &instance, const PluginInstance &other);
void TakeOver(EditorSequence &sequence, const EditorSequence &other);
void TakeOver(AbstractSequenceTrack &track, const AbstractSequenceTrack &other);
void TakeOver(AbstractSequenceObject &object, const AbstractSequenceObject &other);

} // namespace marlet::project
