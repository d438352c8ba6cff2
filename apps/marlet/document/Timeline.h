#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>
#include <marlet/operations/sequence/Timeline.h>

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

/// "video" or "audio"
std::string TrackTypeName(project::TrackType type);
/// "Cross Dissolve"; the plug-in's ID if it is gone.
std::string TransitionName(const project::Transition &transition);
/// The name of an object, or its ID and that it is not there.
std::string ObjectName(const project::EditorSequence &sequence, const kytl::KyID &id);
/// "from "Sea" to "Sky"", "at the head", "at the tail"
std::string TransitionEnds(const project::EditorSequence &sequence, const project::Transition &transition);

// As the library finds them. @throws OperationException

TrackPointer FindTrack(const project::EditorSequence &sequence, const std::string &idOrName);
ObjectPointer FindObject(const project::EditorSequence &sequence, const std::string &text);
/// @throws Failure if it is a sound
std::shared_ptr<project::VisualObject> FindVisualObject(const project::EditorSequence &sequence,
                                                        const std::string &text);

} // namespace marlet::tool
