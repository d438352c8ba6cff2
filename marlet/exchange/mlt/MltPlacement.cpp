#include <marlet/exchange/mlt/MltPlacement.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/Transition.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/exchange/Telling.h>
#include <marlet/exchange/mlt/MltAnimation.h>
#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/operations/OperationException.h>
#include <marlet/project/AbstractAsset.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace marlet::project
{

namespace
{

using Point = kytl::matl::KyPoint<2, float>;

constexpr double kPercent = 100;
constexpr double kMsPerSecond = 1000;
constexpr double kPixelTolerance = 0.005;
constexpr double kDegreeTolerance = 0.001;
constexpr double kOpacityTolerance = 0.0005;
constexpr double kLevelTolerance = 0.01;
/// What no level comes below: nobody hears that.
constexpr double kSilence = -100;

int TimeOf(long long frame, const AudioVideoSettings &settings)
{
    return Truncate<int>(static_cast<double>(frame) * kMsPerSecond / settings.FrameRate());
}

template <class T> T ValueAt(const AbstractSequenceObject &object, const char *name, int time)
{
    return boost::get<T>(object.Properties().ValueAtTime(name, time));
}

bool IsAlone(const std::shared_ptr<Transition> &transition)
{
    return transition && transition->Length() > 0 &&
           (transition->FromObject().IsNull() || transition->ToObject().IsNull());
}

/// How much of an object transitions at its ends alone leave on a frame of it, from 0 to 1.
double Fade(const AbstractSequenceObject &object, long long frame)
{
    double left = 1;
    if (const auto &in = object.IncomingTransition(); IsAlone(in))
        left = std::clamp(static_cast<double>(frame) / in->Length(), 0.0, 1.0);
    if (const auto &out = object.OutgoingTransition(); IsAlone(out)) {
        const long long passed = frame - object.Length() + out->Length();
        left *= 1 - std::clamp(static_cast<double>(passed) / out->Length(), 0.0, 1.0);
    }
    return left;
}

/// How many frames have to be looked at: one where all are alike.
long long SampleCount(const AbstractSequenceObject &object, std::initializer_list<const char *> names,
                      const MltFrames &frames)
{
    const PropertyManager &properties = object.Properties();
    const bool isSteady = !IsAlone(object.IncomingTransition()) && !IsAlone(object.OutgoingTransition()) &&
                          std::ranges::all_of(names, [&](const char *name) {
                              return properties.IsStatic(name) && !properties.HasExpression(name);
                          });
    if (isSteady)
        return std::min(frames.count, 1LL);
    if (frames.count > kMostSamples)
        throw OperationException("Object \"" + ToUtf8(object.Name()) +
                                 "\" is too long to be written frame by frame");
    return frames.count;
}

std::optional<NarrowString> TextUnless(const FrameSamples<1> &samples, double usual, double tolerance)
{
    const bool isUsual = std::ranges::all_of(samples, [&](const auto &sample) { return sample[0] == usual; });
    return isUsual ? std::nullopt : std::optional(MltAnimationText(samples, tolerance));
}

} // namespace

MltPlacement MltPlacementOf(const AbstractSequenceObject &object, const AbstractAsset &asset,
                            const AudioVideoSettings &settings, const MltFrames &frames, double pixelAspect,
                            const ExchangeOptions &options)
{
    const double width = asset.Width() > 0 ? asset.Width() * pixelAspect : settings.Width();
    const double height = asset.Height() > 0 ? asset.Height() : settings.Height();
    FrameSamples<4> rectangles;
    FrameSamples<1> rotations;
    FrameSamples<1> opacities;
    bool isMirrored = false;
    const long long count =
        SampleCount(object, {"scale", "position", "anchorPoint", "rotationZ", "opacity"}, frames);
    for (long long i = 0; i < count; ++i) {
        const long long frame = frames.first + i;
        const int time = TimeOf(frame, settings);
        const auto scale = ValueAt<Scale3D>(object, "scale", time);
        const auto position = ValueAt<Point>(object, "position", time);
        const auto anchor = ValueAt<Point>(object, "anchorPoint", time);
        const double degrees = FiniteSample(ValueAt<float>(object, "rotationZ", time));
        isMirrored = isMirrored || scale.X < 0 || scale.Y < 0;
        // The middle of the picture lies opposite to the anchor point, which lies on the position. Y is up
        // here, and degrees run clockwise.
        const double x = -anchor.X * scale.X / kPercent;
        const double y = -anchor.Y * scale.Y / kPercent;
        const double turn = degrees * std::numbers::pi / 180;
        const double middleX = settings.Width() / 2.0 + position.X + x * std::cos(turn) + y * std::sin(turn);
        const double middleY = settings.Height() / 2.0 - position.Y + x * std::sin(turn) - y * std::cos(turn);
        const double shownWidth = width * std::abs(scale.X) / kPercent;
        const double shownHeight = height * std::abs(scale.Y) / kPercent;
        rectangles.push_back({FiniteSample(middleX - shownWidth / 2), FiniteSample(middleY - shownHeight / 2),
                              FiniteSample(shownWidth), FiniteSample(shownHeight)});
        rotations.push_back({degrees});
        opacities.push_back(
            {FiniteSample(ValueAt<float>(object, "opacity", time)) / kPercent * Fade(object, frame)});
    }
    if (isMirrored)
        Tell(options, LoadEntry::Severity::Loss, "what is mirrored by its scale is not", 0, {object.ID()});
    MltPlacement placement;
    const std::array<double, 4> whole{0, 0, double(settings.Width()), double(settings.Height())};
    placement.rotation = TextUnless(rotations, 0, kDegreeTolerance);
    if (placement.rotation || std::ranges::any_of(rectangles, [&](const auto &r) { return r != whole; }))
        placement.rectangle = MltAnimationText(rectangles, kPixelTolerance);
    placement.opacity = TextUnless(opacities, 1, kOpacityTolerance);
    return placement;
}

std::optional<NarrowString> MltLevelOf(const AbstractSequenceObject &object,
                                       const AudioVideoSettings &settings, const MltFrames &frames)
{
    FrameSamples<1> levels;
    const long long count = SampleCount(object, {"audioLevel"}, frames);
    for (long long i = 0; i < count; ++i) {
        const long long frame = frames.first + i;
        const double level = ValueAt<float>(object, "audioLevel", TimeOf(frame, settings));
        const double fade = 20 * std::log10(Fade(object, frame));
        levels.push_back({FiniteSample(std::max(level + fade, kSilence))});
    }
    return TextUnless(levels, 0, kLevelTolerance);
}

} // namespace marlet::project
