#include "Timeline.h"

#include "options/FindByIdOrName.h"

#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/project/AbstractAsset.h>
#include <marlet/project/Project.h>

#include <charconv>

namespace marlet::tool
{

using namespace project;

namespace
{

/// The object on the frame that stands behind the last "@", if the text has that form.
ObjectPointer FindOnTrack(const EditorSequence &sequence, const std::string &text)
{
    const std::size_t at = text.rfind('@');
    if (at == std::string::npos)
        return {};
    int frame = 0;
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + at + 1, end, frame);
    if (error != std::errc() || stop != end)
        return {};
    const TrackPointer track = FindTrack(sequence, text.substr(0, at));
    const ObjectPointer object = track->Objects().FindOnFrame(frame);
    if (!object)
        throw Failure("There is nothing on frame " + std::to_string(frame) + " of track " +
                      Quoted(track->Name()));
    return object;
}

/// Those of the name, be it with the name of their track or without.
std::vector<ObjectPointer> ObjectsOfName(const EditorSequence &sequence, const WideString &name)
{
    std::vector<ObjectPointer> found;
    for (const TrackPointer &track : TracksOf(sequence))
        for (const ObjectPointer &object : ObjectsOf(*track))
            if (object->Name() == name || track->Name() + u"/" + object->Name() == name)
                found.push_back(object);
    return found;
}

Failure NoSuchObject(const EditorSequence &sequence, const std::string &text)
{
    std::vector<std::string> names;
    for (const ObjectPointer &object : ObjectsOf(sequence)) {
        const std::string name = ToUtf8(object->Name());
        if (std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(name);
    }
    return NoSuch("object", text, names);
}

} // namespace

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
    const auto plugin = transition.Plugin();
    return plugin ? OneLine(ToUtf8(plugin->Name())) : transition.PluginID().ToNarrowString();
}

std::string ObjectName(const EditorSequence &sequence, const kytl::KyID &id)
{
    const ObjectPointer object = sequence.FindObjectByID(id);
    return object ? Quoted(object->Name()) : id.ToNarrowString() + " (not there)";
}

std::string TransitionEnds(const EditorSequence &sequence, const Transition &transition)
{
    if (transition.FromObject().IsNull())
        return "at the head";
    if (transition.ToObject().IsNull())
        return "at the tail";
    return "from " + ObjectName(sequence, transition.FromObject()) + " to " +
           ObjectName(sequence, transition.ToObject());
}

TrackPointer FindTrack(const EditorSequence &sequence, const std::string &idOrName)
{
    return FindByIdOrName(TracksOf(sequence), "track", idOrName);
}

ObjectPointer FindObject(const EditorSequence &sequence, const std::string &text)
{
    if (const std::optional<kytl::KyID> id = ParseID(text))
        if (ObjectPointer object = sequence.FindObjectByID(*id))
            return object;
    const std::vector<ObjectPointer> found = ObjectsOfName(sequence, FromUtf8(text));
    if (found.size() == 1 || (found.size() == 2 && AreLinked(*found[0], *found[1])))
        return found[0];
    if (!found.empty())
        throw Failure("There are " + std::to_string(found.size()) + " objects of the name \"" +
                      OneLine(text) + "\": give the ID, or TRACK@FRAME");
    if (ObjectPointer object = FindOnTrack(sequence, text))
        return object;
    throw NoSuchObject(sequence, text);
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
