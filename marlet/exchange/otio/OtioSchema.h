#pragma once

#include <marlet/exchange/JsonText.h>

#include <optional>
#include <string_view>

namespace marlet::project
{

// The objects of a timeline in JSON, as all versions of their schemas have them. Whatever is not of the type
// that it should be is an ExchangeException or, where something can stand in its place, counts as absent.

/// The key under which the metadata of an object hold what is this library's.
inline constexpr char kOwnKey[] = "marlet";
/// Among these, says that the object is another program's all the same.
inline constexpr char kForeignKey[] = "foreign";

/// Of times, in frames a second.
inline constexpr double kHighestRate = 1e6;

/// "Clip" of "Clip.2"; empty for what is no object of a schema.
std::string_view SchemaOf(const Json &object);
/// What the metadata of an object hold of this library's; null for nothing.
const Json &OwnMetadataOf(const Json &object);
/// The children of a stack, a track or a collection; an empty list for anything else.
const Json &ChildrenOf(const Json &object);
bool IsEnabled(const Json &item);

struct OtioRange {
    double start = 0;
    double duration = 0;
};

/// Times of the text as frames of one rate, and back. Frames of the text at another rate may lie between
/// those.
class OtioClock
{
public:
    /// @param rate frames a second, above 0
    explicit OtioClock(double rate) : rate_(rate) {}

    /// 0 for null. @throws ExchangeException
    double FramesOf(const Json &time) const;
    /// Nothing for null. @throws ExchangeException, also for a negative duration
    std::optional<OtioRange> RangeOf(const Json &range) const;

    Json Time(double frames) const;
    Json Range(const OtioRange &range) const;

private:
    double rate_;
};

/// The first rate in a text, of a range of a clip or a gap if there is one.
std::optional<double> FirstRateIn(const Json &object);

/// The reference to media that counts for a clip, whichever version its schema has.
struct OtioReference {
    NarrowString key; ///< of a clip with several
    const Json *json = nullptr;
};
OtioReference ActiveReferenceOf(const Json &clip);

/// How long an item is in a track. @throws ExchangeException
double DurationOf(const Json &item, const OtioClock &clock);

/// What the effects of an item come to.
struct OtioEffects {
    double speed = 1;
    Json others = Json::array(); ///< that this library has no word for
};
OtioEffects EffectsOf(const Json &item);

} // namespace marlet::project
