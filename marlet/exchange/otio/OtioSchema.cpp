#include <marlet/exchange/otio/OtioSchema.h>

#include <marlet/exchange/ExchangeException.h>

#include <algorithm>
#include <cmath>

namespace marlet::project
{

namespace
{

constexpr char kDefaultKey[] = "DEFAULT_MEDIA";

/// Rates as 23.976 and 24000/1001 are one.
constexpr double kSameRate = 1e-5;
/// Further than any two frames of a timeline are apart, and exact as a double.
constexpr double kFarthest = 1LL << 33;

double NumberIn(const Json &object, const char *key)
{
    const Json &number = MemberOf(object, key);
    if (!number.is_number())
        throw ExchangeException(NarrowString("A time has no ") + key);
    return number.get<double>();
}

double RateOf(const Json &time)
{
    const double rate = NumberIn(time, "rate");
    if (!(rate > 0 && rate <= kHighestRate))
        throw ExchangeException("A time has a rate that is not above 0, or too high");
    return rate;
}

double InReach(double frames)
{
    if (!(std::abs(frames) <= kFarthest))
        throw ExchangeException("A time is further from the start than timelines reach");
    return frames;
}

} // namespace

std::string_view SchemaOf(const Json &object)
{
    const Json &schema = MemberOf(object, "OTIO_SCHEMA");
    if (!schema.is_string())
        return {};
    const std::string_view name = schema.get_ref<const NarrowString &>();
    return name.substr(0, name.find('.'));
}

const Json &OwnMetadataOf(const Json &object)
{
    return MemberOf(MemberOf(object, "metadata"), kOwnKey);
}

const Json &ChildrenOf(const Json &object)
{
    static const Json none = Json::array();
    const Json &children = MemberOf(object, "children");
    return children.is_array() ? children : none;
}

bool IsEnabled(const Json &item)
{
    const Json &enabled = MemberOf(item, "enabled");
    return !enabled.is_boolean() || enabled.get<bool>();
}

double OtioClock::FramesOf(const Json &time) const
{
    if (time.is_null())
        return 0;
    const double value = NumberIn(time, "value");
    const double rate = RateOf(time);
    const bool isSame = std::abs(rate - rate_) <= kSameRate * rate_;
    return InReach(isSame ? value : value * rate_ / rate);
}

std::optional<OtioRange> OtioClock::RangeOf(const Json &range) const
{
    if (range.is_null())
        return std::nullopt;
    const OtioRange frames{FramesOf(MemberOf(range, "start_time")), FramesOf(MemberOf(range, "duration"))};
    if (frames.duration < 0)
        throw ExchangeException("A range has a negative duration");
    return frames;
}

Json OtioClock::Time(double frames) const
{
    return {{"OTIO_SCHEMA", "RationalTime.1"}, {"rate", rate_}, {"value", frames}};
}

Json OtioClock::Range(const OtioRange &range) const
{
    return {{"OTIO_SCHEMA", "TimeRange.1"},
            {"duration", Time(range.duration)},
            {"start_time", Time(range.start)}};
}

std::optional<double> FirstRateIn(const Json &object)
{
    if (const Json &duration = MemberOf(MemberOf(object, "source_range"), "duration"); !duration.is_null())
        return RateOf(duration);
    for (const Json &child : ChildrenOf(object))
        if (const auto rate = FirstRateIn(child))
            return rate;
    if (SchemaOf(object) != "Clip")
        return std::nullopt;
    const OtioReference reference = ActiveReferenceOf(object);
    const Json &available = MemberOf(MemberOf(*reference.json, "available_range"), "duration");
    return available.is_null() ? std::nullopt : std::optional(RateOf(available));
}

OtioReference ActiveReferenceOf(const Json &clip)
{
    const Json &references = MemberOf(clip, "media_references");
    NarrowString key = TextMemberOf(clip, "active_media_reference_key");
    if (key.empty())
        key = kDefaultKey;
    if (references.is_object())
        return {key, &MemberOf(references, key)};
    return {key, &MemberOf(clip, "media_reference")};
}

double DurationOf(const Json &item, const OtioClock &clock)
{
    if (const auto range = clock.RangeOf(MemberOf(item, "source_range")))
        return range->duration;
    const std::string_view schema = SchemaOf(item);
    if (schema == "Clip") {
        const Json &available = MemberOf(*ActiveReferenceOf(item).json, "available_range");
        return clock.RangeOf(available).value_or(OtioRange()).duration;
    }
    double duration = 0;
    for (const Json &child : ChildrenOf(item)) {
        if (SchemaOf(child) == "Transition")
            continue;
        const double length = DurationOf(child, clock);
        duration = schema == "Stack" ? std::max(duration, length) : InReach(duration + length);
    }
    return duration;
}

OtioEffects EffectsOf(const Json &item)
{
    OtioEffects result;
    const Json &effects = MemberOf(item, "effects");
    if (!effects.is_array())
        return result;
    for (const Json &effect : effects) {
        const Json &scalar = MemberOf(effect, "time_scalar");
        if (SchemaOf(effect) == "FreezeFrame")
            result.speed = 0;
        else if (SchemaOf(effect) == "LinearTimeWarp" && scalar.is_number())
            result.speed *= scalar.get<double>();
        else
            result.others.push_back(effect);
    }
    return result;
}

} // namespace marlet::project
