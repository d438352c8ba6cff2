#include <marlet/exchange/mlt/MltWriter.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/exchange/Telling.h>
#include <marlet/exchange/mlt/MltAnimation.h>
#include <marlet/exchange/mlt/MltEntries.h>
#include <marlet/exchange/mlt/MltXml.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/sequence/Timeline.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <optional>
#include <unordered_map>

namespace marlet::project
{

namespace
{

using Object = std::shared_ptr<AbstractSequenceObject>;
using Severity = LoadEntry::Severity;

constexpr char kBlack[] = "black";
constexpr char kDistort[] = "distort";

/// A piece of a track in time: an object alone, two of them that a transition mixes, or nothing.
struct Stretch {
    Object object;
    Object next; ///< into which the transition leads
    int start = 0;
    int end = 0;

    int Count() const { return end - start; }
    /// Those of an object that the stretch shows.
    MltFrames FramesOf(const AbstractSequenceObject &shown) const
    {
        return {std::int64_t{start} - shown.StartFrame(), Count()};
    }
};

class MltWriter
{
public:
    MltWriter(const Project &project, const EditorSequence &sequence, const ExchangeOptions &options)
        : sequence_(sequence),
          settings_(sequence.Settings()),
          options_(options),
          writer_(0),
          entries_(writer_, project, settings_, options)
    {
    }

    NarrowString Write()
    {
        {
            const XmlElement root(writer_, "mlt");
            writer_.Attribute("LC_NUMERIC", "C");
            writer_.Attribute("version", "7.0.0");
            writer_.Attribute("title", sequence_.Name());
            writer_.Attribute("producer", "sequence");
            MltProfile(writer_, settings_);
            WriteBlack();
            for (const auto &track : TracksOf(sequence_))
                WriteTrack(*track);
            WriteSequence();
        }
        return writer_.TakeUtf8();
    }

private:
    void WriteBlack()
    {
        const XmlElement element(writer_, "producer");
        writer_.Attribute("id", kBlack);
        writer_.Attribute("in", 0);
        writer_.Attribute("out", settings_.FrameCount() - 1);
        MltProperty(writer_, "length", std::to_string(settings_.FrameCount()));
        MltProperty(writer_, "mlt_service", "color");
        MltProperty(writer_, "resource", "#ff000000");
    }

    void WriteTrack(AbstractSequenceTrack &track)
    {
        const std::vector<Stretch> stretches = StretchesOf(track);
        const bool isLowest = trackCount_ == 0;
        WriteProducers(stretches);
        std::vector<NarrowString> mixes(stretches.size());
        for (std::size_t i = 0; i < stretches.size(); ++i)
            if (stretches[i].next)
                mixes[i] = WriteMix(stretches[i], track.Type(), isLowest);
        const XmlElement playlist(writer_, "playlist");
        writer_.Attribute("id", "track" + std::to_string(++trackCount_));
        MltProperty(writer_, "name", ToUtf8(track.Name()));
        int end = 0;
        for (std::size_t i = 0; i < stretches.size(); ++i) {
            const Stretch &stretch = stretches[i];
            WriteBlank(stretch.start - end);
            end = stretch.end;
            if (stretch.next)
                WriteMixEntry(mixes[i], stretch.Count());
            else
                entries_.WriteEntry(*stretch.object, stretch.FramesOf(*stretch.object));
        }
        WriteTrackLevel(track);
    }

    /// What a track shows, in order. What cannot be shown is not among it.
    std::vector<Stretch> StretchesOf(AbstractSequenceTrack &track) const
    {
        std::vector<Stretch> stretches;
        Object previous;
        int end = 0;
        for (const Object &object : ObjectsOf(track)) {
            if (!entries_.CanShow(*object)) {
                previous = nullptr;
                continue;
            }
            int start = object->StartFrame();
            const auto &in = object->IncomingTransition();
            if (const auto mix = in && previous ? MixOf(*in, previous, object, stretches) : std::nullopt) {
                TellLooks(*in);
                if (!stretches.empty() && stretches.back().object == previous)
                    stretches.back().end = mix->start;
                if (!stretches.empty() && stretches.back().Count() < 1)
                    stretches.pop_back();
                stretches.push_back(*mix);
                start = mix->end;
            } else if (in && in->FromObject().IsNull()) {
                TellLooks(*in);
            } else if (in && in->Length() > 0) {
                Tell(options_, Severity::Loss, "the transition to " + ToUtf8(object->Name()) + " is left out",
                     0, {in->ID()});
            }
            if (const auto &out = object->OutgoingTransition(); out && out->ToObject().IsNull())
                TellLooks(*out);
            if (start < end)
                Tell(options_, Severity::Loss, "what overlaps on a track is cut short", 0, {object->ID()});
            start = std::max({start, end, 0});
            end = std::max(end, object->EndFrame());
            if (start < object->EndFrame())
                stretches.push_back({object, nullptr, start, object->EndFrame()});
            previous = object;
        }
        return stretches;
    }

    /// Nothing for what lies outside of its objects, or in what comes before those.
    static std::optional<Stretch> MixOf(const Transition &transition, const Object &from, const Object &to,
                                        const std::vector<Stretch> &before)
    {
        const std::int64_t start = std::int64_t{to->StartFrame()} + transition.RelativeStartFrame();
        const std::int64_t end = start + transition.Length();
        const bool isFromAlone = !before.empty() && before.back().object == from;
        const int first = before.empty() ? 0 : isFromAlone ? before.back().start : before.back().end;
        if (transition.FromObject() != from->ID() || start < std::max(first, from->StartFrame()) ||
            end > to->EndFrame() || start >= end)
            return std::nullopt;
        return Stretch{from, to, static_cast<int>(start), static_cast<int>(end)};
    }

    void TellLooks(const Transition &transition) const
    {
        const auto plugin = transition.Plugin();
        const bool isDissolve = plugin && options_.dissolve && plugin->ID() == options_.dissolve->ID();
        if (!isDissolve)
            Tell(options_, Severity::Warning,
                 "the transition " + (plugin ? ToUtf8(plugin->Name()) : NarrowString()) +
                     " is written as a dissolve",
                 0, {transition.ID()});
    }

    /// All frames that the stretches show of each object.
    void WriteProducers(const std::vector<Stretch> &stretches)
    {
        std::vector<std::pair<Object, MltFrames>> shown;
        std::unordered_map<const AbstractSequenceObject *, std::size_t> places;
        for (const Stretch &stretch : stretches)
            for (const Object &object : {stretch.object, stretch.next}) {
                if (!object)
                    continue;
                const MltFrames frames = stretch.FramesOf(*object);
                const auto [place, isNew] = places.try_emplace(object.get(), shown.size());
                if (isNew)
                    shown.emplace_back(object, frames);
                MltFrames &all = shown[place->second].second;
                all.count = frames.first + frames.count - all.first;
            }
        for (const auto &[object, frames] : shown)
            entries_.WriteProducer(*object, frames);
    }

    /// A transition between two tracks. On the lowest track both sides lie on black, so that what they leave
    /// free is mixed right, too.
    NarrowString WriteMix(const Stretch &stretch, TrackType type, bool isLowest)
    {
        const NarrowString id = "mix" + std::to_string(++mixCount_);
        const bool onBlack = type == TrackType::Video && isLowest;
        NarrowString sides[] = {id + "from", id + "to"};
        for (const bool isNext : {false, true}) {
            const AbstractSequenceObject &object = isNext ? *stretch.next : *stretch.object;
            {
                const XmlElement playlist(writer_, "playlist");
                writer_.Attribute("id", sides[isNext]);
                entries_.WriteEntry(object, stretch.FramesOf(object));
            }
            if (onBlack)
                sides[isNext] = WriteOnBlack(sides[isNext], stretch.Count());
        }
        const XmlElement tractor(writer_, "tractor");
        writer_.Attribute("id", id);
        writer_.Attribute("in", 0);
        writer_.Attribute("out", stretch.Count() - 1);
        for (const NarrowString &side : sides)
            WriteTrackOf(side, "");
        if (type == TrackType::Video)
            MltTransition(writer_, "luma", 0, 1, stretch.Count(), {});
        else
            MltTransition(writer_, "mix", 0, 1, stretch.Count(), {{"start", "0"}, {"end", "1"}});
        return id;
    }

    NarrowString WriteOnBlack(const NarrowString &side, int count)
    {
        const NarrowString id = side + "OnBlack";
        const XmlElement tractor(writer_, "tractor");
        writer_.Attribute("id", id);
        writer_.Attribute("in", 0);
        writer_.Attribute("out", count - 1);
        WriteTrackOf(kBlack, "");
        WriteTrackOf(side, "");
        MltTransition(writer_, "affine", 0, 1, count, {{kDistort, "1"}});
        return id;
    }

    void WriteMixEntry(const NarrowString &mix, int count)
    {
        const XmlElement entry(writer_, "entry");
        writer_.Attribute("producer", mix);
        writer_.Attribute("in", 0);
        writer_.Attribute("out", count - 1);
    }

    void WriteBlank(int count)
    {
        if (count < 1)
            return;
        const XmlElement blank(writer_, "blank");
        writer_.Attribute("length", count);
    }

    void WriteTrackLevel(const AbstractSequenceTrack &track)
    {
        const auto *sound = dynamic_cast<const AudioTrack *>(&track);
        if (!sound || sound->Level() == 0)
            return;
        const XmlElement filter(writer_, "filter");
        MltProperty(writer_, "mlt_service", "volume");
        MltProperty(writer_, "level", MltNumber(sound->Level()));
    }

    void WriteTrackOf(const NarrowString &producer, std::string_view hide)
    {
        const XmlElement track(writer_, "track");
        writer_.Attribute("producer", producer);
        if (!hide.empty())
            writer_.Attribute("hide", hide);
    }

    /// Black below the pictures, each over those before it, and the sum of the sounds.
    void WriteSequence()
    {
        const XmlElement tractor(writer_, "tractor");
        writer_.Attribute("id", "sequence");
        writer_.Attribute("in", 0);
        writer_.Attribute("out", settings_.FrameCount() - 1);
        WriteTrackOf(kBlack, "");
        int number = 0;
        for (const auto &track : TracksOf(sequence_)) {
            const auto *video = dynamic_cast<const VideoTrack *>(track.get());
            const auto *audio = dynamic_cast<const AudioTrack *>(track.get());
            const bool isOff = video ? !video->IsVisible() : audio && audio->IsMuted();
            WriteTrackOf("track" + std::to_string(++number), isOff ? "both" : video ? "audio" : "video");
        }
        number = 0;
        for (const auto &track : TracksOf(sequence_)) {
            ++number;
            if (track->Type() == TrackType::Video)
                MltTransition(writer_, "affine", 0, number, 0, {{kDistort, "1"}});
            else
                MltTransition(writer_, "mix", 0, number, 0, {{"sum", "1"}});
        }
    }

    const EditorSequence &sequence_;
    const AudioVideoSettings &settings_;
    const ExchangeOptions &options_;
    XmlWriter writer_;
    MltEntries entries_;
    int trackCount_ = 0;
    int mixCount_ = 0;
};

} // namespace

NarrowString MltOfProject(const Project &project, const ExchangeOptions &options)
{
    const std::shared_ptr<EditorSequence> sequence = project.Sequence();
    if (!sequence)
        throw OperationException("The project has no sequence");
    const AudioVideoSettings &settings = sequence->Settings();
    if (settings.FrameCount() < 1 || settings.Width() < 1 || settings.Height() < 1 ||
        !(settings.FrameRate() > 0))
        throw OperationException("The sequence has no frames");
    if (settings.FrameRate() < 0.001 || settings.FrameRate() > 1e6)
        throw OperationException("The frame rate of the sequence is no fraction that can be written");
    if (settings.PixelAspectRatioValue() != 1)
        Tell(options, LoadEntry::Severity::Warning,
             "positions and sizes are those of square pixels, which the sequence does not have");
    return MltWriter(project, *sequence, options).Write();
}

} // namespace marlet::project
