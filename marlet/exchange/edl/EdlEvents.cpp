#include <marlet/exchange/edl/EdlEvents.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/exchange/Telling.h>
#include <marlet/exchange/edl/EdlLine.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/operations/sequence/Timeline.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/EffectInstance.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace marlet::project
{

namespace
{

using Object = std::shared_ptr<AbstractSequenceObject>;
using TransitionPointer = std::shared_ptr<Transition>;
using Severity = LoadEntry::Severity;

constexpr int kSoundChannels = 4;

bool NamesAny(const NarrowString &name, const std::vector<std::string_view> &words)
{
    for (std::size_t i = 0; i < name.size(); ++i)
        for (const std::string_view word : words)
            if (StartsWithWord(std::string_view(name).substr(i), word))
                return true;
    return false;
}

class EventMaker
{
public:
    explicit EventMaker(const ExchangeOptions &options) : options_(options) {}

    void Add(AbstractSequenceTrack &track, const EdlChannels &channels)
    {
        const std::vector<Object> objects = ObjectsOf(track);
        for (std::size_t i = 0; i < objects.size(); ++i) {
            TellLosses(*objects[i]);
            Object previous = i > 0 ? objects[i - 1] : nullptr;
            Object next = i + 1 < objects.size() ? objects[i + 1] : nullptr;
            AddEvent(previous, objects[i], next, channels);
            AddFade(objects[i], channels);
        }
    }

    /// In the order of the record, with the sounds of a picture in its event, and sounds that are alike in
    /// one.
    std::vector<EdlEvent> Take(const EditorSequence &sequence)
    {
        std::ranges::stable_sort(events_, {}, &EdlEvent::recordIn);
        std::vector<EdlEvent> merged;
        for (const EdlEvent &event : events_) {
            const auto isOther = [&](const EdlEvent &other) { return !Goes(event, other, sequence); };
            auto with = merged.end();
            for (auto at = merged.rbegin(); at != merged.rend() && at->recordIn == event.recordIn; ++at)
                if (!isOther(*at))
                    with = at.base() - 1;
            if (with == merged.end())
                merged.push_back(event);
            else
                with->channels.sound.insert(with->channels.sound.end(), event.channels.sound.begin(),
                                            event.channels.sound.end());
        }
        return merged;
    }

private:
    /// Whether a sound is said in another event.
    static bool Goes(const EdlEvent &sound, const EdlEvent &with, const EditorSequence &sequence)
    {
        if (sound.channels.picture || !sound.object || !with.object ||
            sound.object->AssetID() != with.object->AssetID() || sound.sourceIn != with.sourceIn ||
            sound.recordOut != with.recordOut || sound.object->Speed() != with.object->Speed() ||
            sound.object->Name() != with.object->Name())
            return false;
        if (sound.kind != with.kind || sound.length != with.length || sound.fromSource != with.fromSource ||
            !sound.from != !with.from || (sound.from && sound.from->AssetID() != with.from->AssetID()))
            return false;
        return !with.channels.picture || PartnerOf(sequence, *with.object) == sound.object;
    }

    /// Where the object is seen without the one before: from the start of the transition between them on.
    static long long Begin(const AbstractSequenceObject &object)
    {
        const TransitionPointer &in = object.IncomingTransition();
        return in && !in->FromObject().IsNull() ? std::int64_t{object.StartFrame()} + in->RelativeStartFrame()
                                                : object.StartFrame();
    }

    static long long End(const AbstractSequenceObject &object)
    {
        const TransitionPointer &out = object.OutgoingTransition();
        return out ? std::int64_t{object.EndFrame()} + out->RelativeStartFrame() : object.EndFrame();
    }

    void AddEvent(const Object &previous, const Object &object, const Object &next,
                  const EdlChannels &channels)
    {
        EdlEvent event;
        event.object = object;
        event.channels = channels;
        event.recordIn = Begin(*object);
        event.recordOut = End(*object);
        if (next && event.recordOut > Begin(*next) && !object->OutgoingTransition()) {
            Tell(options_, Severity::Loss, "what overlaps on a track is cut short", 0, {object->ID()});
            event.recordOut = Begin(*next);
        }
        if (event.recordOut <= event.recordIn) {
            Tell(options_, Severity::Loss, "what is not seen but in transitions is left out", 0,
                 {object->ID()});
            return;
        }
        event.sourceIn = SourceFrame(*object, event.recordIn);
        event.sourceOut = SourceFrame(*object, event.recordOut);
        if (object->IncomingTransition())
            SetTransition(event, *object->IncomingTransition(), previous);
        events_.push_back(event);
    }

    /// The frame of the asset that is shown on a frame of the sequence, which may lie outside of the object.
    long long SourceFrame(const AbstractSequenceObject &object, long long frame) const
    {
        const double passed = static_cast<double>(frame - object.StartFrame()) * object.Speed();
        const long long source =
            std::int64_t{object.AssetInstanceStart()} + Truncate<int>(std::floor(passed));
        // Of a still all frames are the same.
        if (source < 0 && HasFrames(object.AssetType()))
            Tell(options_, Severity::Warning,
                 "a transition begins before the first frame of " + ToUtf8(object.Name()), 0, {object.ID()});
        return std::max(0LL, source);
    }

    void SetTransition(EdlEvent &event, const Transition &transition, const Object &from)
    {
        if (from && transition.FromObject() == from->ID()) {
            event.from = from;
            event.fromSource = SourceFrame(*from, event.recordIn);
        }
        event.length = transition.Length();
        event.effect = NameOf(transition);
        event.kind = KindOf(transition);
    }

    /// A transition out of an object alone leads to black.
    void AddFade(const Object &object, const EdlChannels &channels)
    {
        const TransitionPointer &out = object->OutgoingTransition();
        if (!out || !out->ToObject().IsNull() || out->Length() < 1)
            return;
        EdlEvent event;
        event.channels = channels;
        event.recordIn = End(*object);
        event.recordOut = event.recordIn + out->Length();
        event.sourceOut = out->Length();
        SetTransition(event, *out, object);
        events_.push_back(event);
    }

    static NarrowString NameOf(const Transition &transition)
    {
        const auto plugin = transition.Plugin();
        return plugin ? ToUtf8(plugin->Name()) : NarrowString();
    }

    EdlKind KindOf(const Transition &transition)
    {
        const auto plugin = transition.Plugin();
        const auto isOf = [&](const std::shared_ptr<AbstractPlugin> &other) {
            return plugin && other && plugin->ID() == other->ID();
        };
        const NarrowString name = NameOf(transition);
        const bool isWipe = isOf(options_.wipe) || NamesAny(name, {"wipe"});
        if (isWipe)
            Tell(options_, Severity::Warning, "a wipe is written as the first pattern, whatever its shape", 0,
                 {transition.ID()});
        else if (!isOf(options_.dissolve) && !NamesAny(name, {"dissolve", "fade", "mix"}))
            Tell(options_, Severity::Warning, "the transition " + name + " is written as a dissolve", 0,
                 {transition.ID()});
        return isWipe ? EdlKind::Wipe : EdlKind::Dissolve;
    }

    /// What no list can say.
    void TellLosses(const AbstractSequenceObject &object)
    {
        std::vector<NarrowString> lost;
        const PropertyManager &properties = object.Properties();
        for (const NarrowString &name : properties.PropertyNames())
            if (properties.HasExpression(name.c_str()) ||
                (name == "speed" ? !properties.IsStatic("speed") : !properties.IsDefault(name.c_str())))
                lost.push_back(name);
        if (!object.Effects().empty())
            lost.push_back("effects");
        if (const auto *sound = dynamic_cast<const AudioObject *>(&object); sound && sound->IsMuted())
            lost.push_back("mute");
        if (lost.empty())
            return;
        NarrowString text = lost.front();
        for (std::size_t i = 1; i < lost.size(); ++i)
            text += ", " + lost[i];
        Tell(options_, Severity::Loss, "a list has no word for " + text + " of " + ToUtf8(object.Name()), 0,
             {object.ID()});
    }

    const ExchangeOptions &options_;
    std::vector<EdlEvent> events_;
};

} // namespace

std::vector<EdlEvent> EdlEventsOf(const EditorSequence &sequence, const ExchangeOptions &options)
{
    EventMaker maker(options);
    const auto leaveOut = [&](const AbstractSequenceTrack &track, const NarrowString &what) {
        Tell(options, Severity::Loss, "track " + ToUtf8(track.Name()) + what, 0, {track.ID()});
    };
    bool hasPicture = false;
    for (const auto &track : sequence.VideoTracks()) {
        if (!track || track->Objects().IsEmpty())
            continue;
        if (!std::exchange(hasPicture, true))
            maker.Add(*track, {true, {}});
        else
            leaveOut(*track, " is left out: a list has one of pictures");
        if (!track->IsVisible())
            leaveOut(*track, " is hidden, which a list cannot say");
    }
    int channel = 0;
    for (const auto &track : sequence.AudioTracks()) {
        ++channel;
        if (!track || track->Objects().IsEmpty())
            continue;
        if (channel <= kSoundChannels)
            maker.Add(*track, {false, {channel}});
        else
            leaveOut(*track, " is left out: a list has four of sound");
        if (track->IsMuted() || track->Level() != 0)
            leaveOut(*track, " has a level or is muted, which a list cannot say");
    }
    return maker.Take(sequence);
}

} // namespace marlet::project
