#include <marlet/operations/sequence/ObjectNames.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>
#include <marlet/operations/sequence/Timeline.h>
#include <marlet/plugins/AbstractPlugin.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <unordered_set>

namespace marlet::project
{

namespace
{

using Track = std::shared_ptr<AbstractSequenceTrack>;
using Object = std::shared_ptr<AbstractSequenceObject>;

std::optional<kytl::KyID> ParseID(const WideString &text)
{
    try {
        return kytl::KyID::FromString(text);
    } catch (const std::runtime_error &) {
        return std::nullopt;
    }
}

/// With the names that there are, each once.
template <class Found>
OperationException NoSuch(const std::string &kind, const WideString &text, const std::vector<Found> &all)
{
    std::vector<std::string> names;
    std::unordered_set<std::string> seen;
    for (const Found &one : all)
        if (std::string name = Quoted(one->Name()); seen.insert(name).second)
            names.push_back(std::move(name));
    std::string sentence = "There is no " + kind + " " + Quoted(text);
    constexpr std::size_t kMostNamed = 20;
    for (std::size_t i = 0; i < std::min(names.size(), kMostNamed); ++i)
        sentence += (i == 0 ? ", only " : ", ") + names[i];
    if (names.size() > kMostNamed)
        sentence += " and " + std::to_string(names.size() - kMostNamed) + " more";
    return OperationException(sentence);
}

/// The object on the frame that stands behind the last "@", if the text has that form.
Object FindOnTrack(const EditorSequence &sequence, const WideString &text)
{
    const std::size_t at = text.rfind(u'@');
    if (at == WideString::npos)
        return {};
    const std::string number = ToUtf8(text.substr(at + 1));
    int frame = 0;
    const auto [stop, error] = std::from_chars(number.data(), number.data() + number.size(), frame);
    if (error != std::errc() || stop != number.data() + number.size())
        return {};
    const Track track = FindTrack(sequence, text.substr(0, at));
    Object object = track->Objects().FindOnFrame(frame);
    if (!object)
        throw OperationException("There is nothing on frame " + std::to_string(frame) + " of track " +
                                 Quoted(track->Name()));
    return object;
}

/// Those of the name, be it with the name of their track or without.
std::vector<Object> ObjectsOfName(const EditorSequence &sequence, const WideString &name)
{
    std::vector<Object> found;
    for (const Track &track : TracksOf(sequence))
        for (const Object &object : ObjectsOf(*track))
            if (object->Name() == name || track->Name() + u"/" + object->Name() == name)
                found.push_back(object);
    return found;
}

WideString NameOfObject(const EditorSequence &sequence, const kytl::KyID &id)
{
    const Object object = sequence.FindObjectByID(id);
    return object ? u"\"" + object->Name() + u"\"" : FromUtf8(id.ToNarrowString()) + u" (not there)";
}

} // namespace

Track FindTrack(const EditorSequence &sequence, const WideString &idOrName)
{
    const std::vector<Track> tracks = TracksOf(sequence);
    if (const std::optional<kytl::KyID> id = ParseID(idOrName))
        if (Track track = sequence.FindSequenceTrackByID(*id))
            return track;
    const auto hasName = [&idOrName](const Track &track) { return track->Name() == idOrName; };
    const auto count = std::ranges::count_if(tracks, hasName);
    if (count == 0)
        throw NoSuch("track", idOrName, tracks);
    if (count > 1)
        throw OperationException("There are " + std::to_string(count) + " tracks of the name " +
                                 Quoted(idOrName) + ": give the ID");
    return *std::ranges::find_if(tracks, hasName);
}

Object FindObject(const EditorSequence &sequence, const WideString &text)
{
    if (const std::optional<kytl::KyID> id = ParseID(text))
        if (Object object = sequence.FindObjectByID(*id))
            return object;
    const std::vector<Object> found = ObjectsOfName(sequence, text);
    if (found.size() == 1 || (found.size() == 2 && AreLinked(*found[0], *found[1])))
        return found[0];
    if (!found.empty())
        throw OperationException("There are " + std::to_string(found.size()) + " objects of the name " +
                                 Quoted(text) + ": give the ID, or TRACK@FRAME");
    if (Object object = FindOnTrack(sequence, text))
        return object;
    throw NoSuch("object", text, ObjectsOf(sequence));
}

WideString NameOf(const Transition &transition)
{
    const std::shared_ptr<AbstractPlugin> plugin = transition.Plugin();
    return plugin ? plugin->Name() : FromUtf8(transition.PluginID().ToNarrowString());
}

WideString PlaceOf(const EditorSequence &sequence, const Transition &transition)
{
    if (transition.FromObject().IsNull())
        return u"at the head";
    if (transition.ToObject().IsNull())
        return u"at the tail";
    return u"from " + NameOfObject(sequence, transition.FromObject()) + u" to " +
           NameOfObject(sequence, transition.ToObject());
}

} // namespace marlet::project
