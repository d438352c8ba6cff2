#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>

#include <memory>
#include <string>
#include <vector>

namespace marlet::project
{
class AbstractSequenceObject;
class AbstractSequenceTrack;
class EditorSequence;
class Project;
class Transition;
class VisualObject;
enum class AssetType : int;
enum class TrackType : int;
} // namespace marlet::project

namespace marlet::tool
{

using SequencePointer = std::shared_ptr<project::EditorSequence>;
using TrackPointer = std::shared_ptr<project::AbstractSequenceTrack>;
using ObjectPointer = std::shared_ptr<project::AbstractSequenceObject>;
using TransitionPointer = std::shared_ptr<project::Transition>;

/// @throws Failure if the project has none
SequencePointer SequenceOf(const project::Project &project);

/// The video tracks, then the audio tracks.
std::vector<TrackPointer> TracksOf(const project::EditorSequence &sequence);
/// Track by track, each by time.
std::vector<ObjectPointer> ObjectsOf(const project::AbstractSequenceTrack &track);
std::vector<ObjectPointer> ObjectsOf(const project::EditorSequence &sequence);

/// "video" or "audio"
std::string TrackTypeName(project::TrackType type);
/// Whether it matters which frame of the asset is shown: stills are the same in all of theirs.
bool HasFrames(project::AssetType type);
/// "Cross Dissolve"; the plug-in's ID if it is gone.
std::string TransitionName(const project::Transition &transition);
/// The name of an object, or its ID and that it is not there.
std::string ObjectName(const project::EditorSequence &sequence, const kytl::KyID &id);
/// "from "Sea" to "Sky"", "at the head", "at the tail"
std::string TransitionEnds(const project::EditorSequence &sequence, const project::Transition &transition);

/// Whether each of them names the other as its partner.
bool AreLinked(const project::AbstractSequenceObject &a, const project::AbstractSequenceObject &b);
/// The partner that names the object as its own, or an empty pointer.
ObjectPointer PartnerOf(const project::EditorSequence &sequence,
                        const project::AbstractSequenceObject &object);

// Where a transition lies: the tool counts its relative start frame from the cut.

/// How many frames behind the start of the object the transition into it takes, and how many before its end
/// the one out of it; none without a transition.
long long FramesIntoHead(const project::AbstractSequenceObject &object);
long long FramesIntoTail(const project::AbstractSequenceObject &object);

/// By ID or by a name that only one of them has. @throws Failure
TrackPointer FindTrack(const project::EditorSequence &sequence, const std::string &idOrName);

/// A name that only an object and its partner have is that of the one on the earlier track. @throws Failure
ObjectPointer FindObject(const project::EditorSequence &sequence, const std::string &text);
/// @throws Failure also if it is a sound
std::shared_ptr<project::VisualObject> FindVisualObject(const project::EditorSequence &sequence,
                                                        const std::string &text);

} // namespace marlet::tool
