#include "Timeline.h"

#include "output/Failure.h"
#include "output/Output.h"

#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/operations/sequence/ObjectNames.h>
#include <marlet/project/Project.h>

namespace marlet::tool
{

using namespace project;

SequencePointer SequenceOf(const Project &project)
{
    SequencePointer sequence = project.Sequence();
    if (!sequence)
        throw Failure("The project has no sequence");
    return sequence;
}

std::string TrackTypeName(TrackType type)
{
    return type == TrackType::Video ? "video" : "audio";
}

std::string TransitionName(const Transition &transition)
{
    return OneLine(ToUtf8(NameOf(transition)));
}

std::string ObjectName(const EditorSequence &sequence, const kytl::KyID &id)
{
    const ObjectPointer object = sequence.FindObjectByID(id);
    return object ? Quoted(object->Name()) : id.ToNarrowString() + " (not there)";
}

std::string TransitionEnds(const EditorSequence &sequence, const Transition &transition)
{
    return OneLine(ToUtf8(PlaceOf(sequence, transition)));
}

TrackPointer FindTrack(const EditorSequence &sequence, const std::string &idOrName)
{
    return FindTrack(sequence, FromUtf8(idOrName));
}

ObjectPointer FindObject(const EditorSequence &sequence, const std::string &text)
{
    return FindObject(sequence, FromUtf8(text));
}

std::shared_ptr<VisualObject> FindVisualObject(const EditorSequence &sequence, const std::string &text)
{
    const ObjectPointer object = FindObject(sequence, text);
    auto visual = std::dynamic_pointer_cast<VisualObject>(object);
    if (!visual)
        throw Failure("Object " + Quoted(object->Name()) + " is a sound, which has no matrices");
    return visual;
}

} // namespace marlet::tool
