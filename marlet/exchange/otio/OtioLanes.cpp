#include <marlet/exchange/otio/OtioLanes.h>

#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/exchange/Telling.h>

#include <algorithm>
#include <deque>
#include <map>
#include <tuple>

namespace marlet::project
{

namespace
{

/// A part of an item, in frames from the item's own start.
struct Part {
    double start = 0;
    double duration = 0;
};

/// Where a part comes to stand.
struct Place {
    std::size_t lane = 0;
    double frame = 0;
};

NarrowString Called(const Json &item)
{
    const NarrowString name = TextMemberOf(item, "name");
    return NarrowString(SchemaOf(item)) + (name.empty() ? "" : " \"" + name + "\"");
}

bool IsTrack(const Json &item)
{
    const std::string_view schema = SchemaOf(item);
    // What the first versions called it.
    return schema == "Track" || schema == "Sequence";
}

class Flattening
{
public:
    Flattening(const OtioClock &clock, const ExchangeOptions &options) : clock_(clock), options_(options) {}

    std::vector<OtioLane> Run(const Json &stack)
    {
        const auto range = clock_.RangeOf(MemberOf(stack, "source_range"));
        const Part whole{range ? range->start : 0, DurationOf(stack, clock_)};
        for (const Json &child : ChildrenOf(stack))
            if (const auto type = TypeOf(child, TrackType::Video))
                PlaceShown(child, 0, whole, {AddLane(*type, child), 0});
            else
                TellLeftOut(child);
        if (nested_ > 0)
            Tell(options_, LoadEntry::Severity::Warning,
                 std::to_string(nested_) + " nested stacks and tracks became clips of the timeline itself");
        std::ranges::stable_sort(lanes_, {},
                                 [](const Lane &lane) { return std::pair(lane.root, lane.layer); });
        std::vector<OtioLane> result;
        for (Lane &lane : lanes_)
            result.push_back(std::move(lane));
        return result;
    }

private:
    struct Lane : OtioLane {
        std::size_t root = 0;
        std::size_t layer = 0; ///< above that
    };

    /// Of a track by its kind, otherwise that of what it stands in.
    std::optional<TrackType> TypeOf(const Json &item, TrackType around) const
    {
        if (!IsTrack(item))
            return around;
        const NarrowString kind = TextMemberOf(item, "kind");
        if (kind == "Audio")
            return TrackType::Audio;
        return kind == "Video" || kind.empty() ? std::optional(TrackType::Video) : std::nullopt;
    }

    void TellLeftOut(const Json &item) const
    {
        Tell(options_, LoadEntry::Severity::Loss, Called(item) + " is neither picture nor sound");
    }

    std::size_t AddLane(TrackType type, const Json &item)
    {
        Lane lane;
        lane.type = type;
        lane.track = IsTrack(item) ? &item : nullptr;
        lane.name = lane.track ? TextMemberOf(item, "name") : NarrowString();
        lane.root = lanes_.size();
        lanes_.push_back(std::move(lane));
        return lanes_.size() - 1;
    }

    /// That of a layer of what is nested in a lane of the timeline itself.
    std::size_t LaneOfLayer(std::size_t root, std::size_t layer, TrackType type)
    {
        if (layer == 0 && type == lanes_[root].type)
            return root;
        const auto [found, isNew] = layers_.try_emplace({root, layer, type}, lanes_.size());
        if (isNew) {
            Lane above;
            above.type = type;
            above.name = lanes_[root].name + " " + std::to_string(layer + 1);
            above.root = root;
            above.layer = layer;
            lanes_.push_back(std::move(above));
        }
        return found->second;
    }

    /// What is nested deeper may have used it.
    static bool IsTaken(const Lane &lane, double frame)
    {
        constexpr double kTolerance = 1e-6;
        return !lane.clips.empty() && lane.clips.back().end > frame + kTolerance;
    }

    /// Places what can be seen of a child that starts at a frame of its owner, of which a part is shown.
    void PlaceShown(const Json &child, double start, const Part &shown, const Place &place)
    {
        const double end = start + DurationOf(child, clock_);
        const double from = std::max(start, shown.start);
        const double to = std::min(end, shown.start + shown.duration);
        if (from < to || (start == end && from == to))
            PlacePart(child, {from - start, to - from}, {place.lane, place.frame + from - shown.start});
    }

    void PlacePart(const Json &item, const Part &part, const Place &place)
    {
        const OtioSpan span{&item, place.frame, place.frame + part.duration};
        const std::string_view schema = SchemaOf(item);
        if (schema == "Clip")
            PlaceClip(item, part, span, lanes_[place.lane]);
        else if (schema == "Gap" || schema == "Filler")
            lanes_[place.lane].gaps.push_back(span);
        else if (IsTrack(item))
            PlaceTrack(item, part, place);
        else if (schema == "Stack")
            PlaceLayers(item, part, place);
        else
            Tell(options_, LoadEntry::Severity::Loss, Called(item) + " is nothing that a track can hold");
    }

    void PlaceClip(const Json &clip, const Part &part, OtioSpan span, Lane &lane) const
    {
        const auto shown = clock_.RangeOf(MemberOf(clip, "source_range"));
        const auto available = clock_.RangeOf(MemberOf(*ActiveReferenceOf(clip).json, "available_range"));
        const double first = available ? available->start : 0;
        span.source = (shown ? shown->start : first) - first + part.start * EffectsOf(clip).speed;
        if (!shown && !available)
            Tell(options_, LoadEntry::Severity::Loss, Called(clip) + " does not say how long it is");
        else
            lane.clips.push_back(span);
    }

    void PlaceTrack(const Json &track, const Part &part, const Place &place)
    {
        if (lanes_[place.lane].track != &track)
            TellOfNested(track);
        const auto range = clock_.RangeOf(MemberOf(track, "source_range"));
        const Part shown{part.start + (range ? range->start : 0), part.duration};
        double at = 0;
        for (const Json &child : ChildrenOf(track)) {
            if (SchemaOf(child) != "Transition") {
                PlaceShown(child, at, shown, place);
                at += DurationOf(child, clock_);
            } else if (at >= shown.start && at <= shown.start + shown.duration) {
                const double cut = place.frame + at - shown.start;
                Lane &lane = lanes_[place.lane];
                lane.transitions.push_back({&child, cut, cut, 0, lane.clips.size()});
            }
        }
    }

    void PlaceLayers(const Json &stack, const Part &part, const Place &place)
    {
        TellOfNested(stack);
        const auto range = clock_.RangeOf(MemberOf(stack, "source_range"));
        const Part shown{part.start + (range ? range->start : 0), part.duration};
        const std::size_t root = lanes_[place.lane].root;
        std::size_t layer = lanes_[place.lane].layer;
        for (const Json &child : ChildrenOf(stack)) {
            if (const auto type = TypeOf(child, lanes_[place.lane].type)) {
                std::size_t lane = LaneOfLayer(root, layer, *type);
                while (IsTaken(lanes_[lane], place.frame))
                    lane = LaneOfLayer(root, ++layer, *type);
                PlaceShown(child, 0, shown, {lane, place.frame});
            } else {
                TellLeftOut(child);
            }
            ++layer;
        }
    }

    void TellOfNested(const Json &item)
    {
        ++nested_;
        const OtioEffects effects = EffectsOf(item);
        if (effects.speed != 1 || !effects.others.empty())
            Tell(options_, LoadEntry::Severity::Loss, "the effects of the nested " + Called(item));
        if (!IsEnabled(item))
            Tell(options_, LoadEntry::Severity::Loss, "that the nested " + Called(item) + " is switched off");
    }

    const OtioClock &clock_;
    const ExchangeOptions &options_;
    std::deque<Lane> lanes_;
    std::map<std::tuple<std::size_t, std::size_t, TrackType>, std::size_t> layers_;
    std::size_t nested_ = 0;
};

} // namespace

std::vector<OtioLane> LanesOf(const Json &stack, const OtioClock &clock, const ExchangeOptions &options)
{
    return Flattening(clock, options).Run(stack);
}

} // namespace marlet::project
