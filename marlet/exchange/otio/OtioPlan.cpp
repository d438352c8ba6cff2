#include <marlet/exchange/otio/OtioPlan.h>

#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/exchange/ExchangeException.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/foundation/xml/XmlText.h>
#include <marlet/project/Project.h>

#include <cmath>
#include <limits>

namespace marlet::project
{

namespace
{

constexpr double kUsualRate = 25;
constexpr int kUsualWidth = 1920;
constexpr int kUsualHeight = 1080;
/// What times may be beside a frame and still mean it.
constexpr double kTolerance = 1e-3;
constexpr char kIncoming[] = "InTrans";
constexpr char kOutgoing[] = "OutTrans";

NarrowString Element(const NarrowString &tag, const NarrowString &content)
{
    return "<" + tag + ">" + content + "</" + tag + ">";
}

NarrowString NewTrackText(TrackType type, const kytl::KyID &id, const NarrowString &objects)
{
    const bool isVideo = type == TrackType::Video;
    const NarrowString tag = isVideo ? "VideoTrack" : "AudioTrack";
    return "<" + tag + " Version=\"0\">" + Element("ID", id.ToNarrowString()) + "<Name></Name>" +
           (isVideo ? "<Visible>1</Visible>" : "<Muted>0</Muted><Level>0</Level>") +
           Element("Objects", objects) + "</" + tag + ">";
}

double RateFor(const Json &timeline, const Json &stack, const ExchangeOptions &options)
{
    if (const auto rate = FirstRateIn(stack))
        return *rate;
    if (const Json &start = MemberOf(timeline, "global_start_time"); !start.is_null())
        return FirstRateIn({{"source_range", {{"duration", start}}}}).value_or(kUsualRate);
    return options.frameRate > 0 && options.frameRate <= kHighestRate ? options.frameRate : kUsualRate;
}

NarrowString NewProjectText(double rate)
{
    const auto project = Project::Create(nullptr);
    const auto sequence = EditorSequence::Create(AudioVideoSettings::Preset::None, 0);
    AudioVideoSettings &settings = sequence->Settings();
    settings.SetFrameRate(rate);
    settings.SetWidth(kUsualWidth);
    settings.SetHeight(kUsualHeight);
    project->SetSequence(sequence);
    return project->SerializeUtf8();
}

/// The frames of an object that could not stand where it is.
bool TakePlace(const Json &place, OtioPlannedClip &clip)
{
    if (!place.is_array() || place.size() != 2 || !place[0].is_number_integer() ||
        !place[1].is_number_integer())
        return false;
    clip.start = Saturate(place[0].get<std::int64_t>());
    clip.end = Saturate(place[1].get<std::int64_t>());
    return true;
}

} // namespace

OtioPlan::OtioPlan(const Json &timeline, const ExchangeOptions &options)
    : stack_(MemberOf(timeline, "tracks"))
{
    TakeProject(timeline, options);
    const OtioClock clock(rate_);
    NarrowString video;
    NarrowString audio;
    std::vector<OtioLane> lanes = LanesOf(stack_, clock, options);
    tracks_.reserve(lanes.size());
    for (OtioLane &lane : lanes) {
        OtioPlannedTrack &track = tracks_.emplace_back();
        track.type = lane.type;
        track.lane = std::move(lane);
        (track.type == TrackType::Video ? video : audio) += TrackText(track);
    }
    const LoosePiece project(text_, "Project");
    const TextElement sequence = project.Child("EditorSequence");
    const TextElement videoList = sequence.Child("Video");
    const TextElement audioList = sequence.Child("Audio");
    if (videoList.IsNull() || audioList.IsNull())
        throw ExchangeException("The project in the metadata has no sequence");
    text_ = TextWith(project.Root(), {{videoList.Source(), Element("Video", video)},
                                      {audioList.Source(), Element("Audio", audio)}});
}

void OtioPlan::TakeProject(const Json &timeline, const ExchangeOptions &options)
{
    text_ = TextMemberOf(OwnMetadataOf(timeline), "project");
    hasProject_ = !text_.empty();
    if (!hasProject_) {
        rate_ = RateFor(timeline, stack_, options);
        text_ = NewProjectText(rate_);
        return;
    }
    const LoosePiece project(text_, "Project");
    rate_ = ParseDouble(project.Child("EditorSequence").Child("AudioVideoSettings").ChildText("FrameRate"));
    if (!(rate_ > 0 && rate_ <= kHighestRate))
        throw ExchangeException("The project in the metadata has no frame rate");
}

int OtioPlan::Whole(double frames)
{
    const double nearest = RoundHalfAway(frames);
    if (std::abs(frames - nearest) > kTolerance)
        ++rounded_;
    using Limits = std::numeric_limits<int>;
    if (!(nearest >= Limits::min() && nearest <= Limits::max()))
        throw ExchangeException("A clip is further from the start than timelines reach");
    return static_cast<int>(nearest);
}

NarrowString OtioPlan::TrackText(OtioPlannedTrack &track)
{
    for (const OtioSpan &span : track.lane.clips)
        track.clips.push_back(Planned(span, track));
    for (const OtioSpan &span : track.lane.transitions)
        PlanTransition(span, track);
    const auto piece = track.lane.track
                           ? PieceOf(*track.lane.track, "track",
                                     track.type == TrackType::Video ? "VideoTrack" : "AudioTrack")
                           : nullptr;
    track.id = piece ? piece->IDIn("ID") : kytl::KyID();
    const bool isNew = track.id.IsNull() || !used_.insert(track.id).second;
    if (isNew)
        track.id = kytl::KyID::Generate();
    NarrowString objects;
    for (OtioPlannedClip &clip : track.clips) {
        if (!clip.piece)
            continue;
        clip.piece->SetText("AssetInstanceStart", std::to_string(clip.source));
        clip.piece->SetText("StartFrame", std::to_string(clip.start));
        clip.piece->SetText("EndFrame", std::to_string(clip.end));
        if (TextMemberOf(OwnMetadataOf(*clip.item), "track") != track.id.ToNarrowString())
            clip.piece->SetText("ParentTrackID", track.id.ToNarrowString());
        for (const char *slot : {kIncoming, kOutgoing})
            if (clip.piece->HasEmptySlot(slot))
                clip.piece->Replace(slot, {});
        objects += clip.piece->Text();
        clip.piece.reset();
    }
    if (!piece || isNew)
        return NewTrackText(track.type, track.id, objects);
    piece->Replace("Objects", Element("Objects", objects));
    return piece->Text();
}

/// A text of an element of another tag is of an object that another program has put elsewhere, and is passed
/// over, as is one whose project did not come along.
std::unique_ptr<LoosePiece> OtioPlan::PieceOf(const Json &object, const char *what,
                                              std::string_view tag) const
{
    const NarrowString text = TextMemberOf(OwnMetadataOf(object), what);
    if (!hasProject_ || !text.starts_with("<" + NarrowString(tag)))
        return nullptr;
    return std::make_unique<LoosePiece>(text, tag);
}

OtioPlannedClip OtioPlan::Planned(const OtioSpan &span, const OtioPlannedTrack &track)
{
    OtioPlannedClip clip;
    clip.item = span.item;
    clip.start = Whole(span.start);
    clip.end = Whole(span.end);
    clip.source = Whole(span.source);
    clip.piece =
        PieceOf(*span.item, "object", track.type == TrackType::Video ? "VisualObject" : "AudioObject");
    if (!clip.piece)
        return clip;
    clip.id = clip.piece->IDIn("ID");
    if (!clip.id.IsNull() && used_.insert(clip.id).second) {
        TakePlace(MemberOf(OwnMetadataOf(*span.item), "place"), clip);
        return clip;
    }
    clip.copied = std::exchange(clip.id, {});
    clip.piece.reset();
    return clip;
}

void OtioPlan::PlanTransition(const OtioSpan &span, OtioPlannedTrack &track)
{
    const OtioClock clock(rate_);
    OtioPlannedTransition transition;
    transition.item = span.item;
    transition.before = Whole(clock.FramesOf(MemberOf(*span.item, "in_offset")));
    transition.after = Whole(clock.FramesOf(MemberOf(*span.item, "out_offset")));
    if (transition.before < 0 || transition.after < 0)
        throw ExchangeException("A transition has a negative duration");
    const auto &clips = track.lane.clips;
    if (span.next > 0 && clips[span.next - 1].end == span.start)
        transition.from = &track.clips[span.next - 1];
    if (span.next < clips.size() && clips[span.next].start == span.start)
        transition.to = &track.clips[span.next];
    if (const auto piece = PieceOf(*span.item, "transition", "Transition");
        piece && TakeTransition(*piece, transition))
        track.known.emplace_back(piece->IDIn("ID"), span.item);
    else
        track.transitions.push_back(transition);
}

/// Puts the text of a transition into the slots of the objects that it names. False if it names others than
/// those beside it.
bool OtioPlan::TakeTransition(LoosePiece &piece, const OtioPlannedTransition &transition)
{
    const kytl::KyID from = piece.IDIn("FromObjectID");
    const kytl::KyID to = piece.IDIn("ToObjectID");
    const auto isFree = [](const OtioPlannedClip *clip, const kytl::KyID &id, const char *slot) {
        return id.IsNull() || (clip && clip->id == id && clip->piece && clip->piece->HasEmptySlot(slot));
    };
    if ((from.IsNull() && to.IsNull()) || !isFree(transition.from, from, kOutgoing) ||
        !isFree(transition.to, to, kIncoming))
        return false;
    piece.SetText("Length", std::to_string(std::int64_t{transition.before} + transition.after));
    piece.SetText("RelativeStart", std::to_string(-transition.before));
    const NarrowString text = piece.Text();
    if (!from.IsNull())
        transition.from->piece->Replace(kOutgoing, Element(kOutgoing, text));
    if (!to.IsNull() && from.IsNull())
        transition.to->piece->Replace(kIncoming, Element(kIncoming, text));
    else if (!to.IsNull())
        transition.to->piece->Replace(kIncoming, NarrowString("<") + kIncoming + " ref=\"1\" transID=\"" +
                                                     piece.IDIn("ID").ToNarrowString() +
                                                     "\" fromObjectID=\"" + from.ToNarrowString() + "\"/>");
    return true;
}

} // namespace marlet::project
