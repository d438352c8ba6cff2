#include <marlet/operations/curves/KeyFrameOperations.h>

#include <marlet/animation/Interpolation.h>
#include <marlet/history/Edit.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>
#include <marlet/operations/curves/ValueComponents.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace marlet::project
{

namespace
{

/// The control values of a curve on one axis.
struct Cubic {
    std::array<double, 4> p;

    double At(double t) const { return CubicBezier(p[0], p[1], p[2], p[3], t); }

    /// Where the curve, which begins before the value and ends behind it, has it.
    double ParameterOf(double value) const
    {
        double low = 0;
        double high = 1;
        for (int i = 0; i < 40; ++i) {
            const double middle = (low + high) / 2;
            (At(middle) < value ? low : high) = middle;
        }
        return high;
    }

    /// The two halves, by de Casteljau's construction.
    std::pair<Cubic, Cubic> Split(double t) const
    {
        const double a = std::lerp(p[0], p[1], t);
        const double b = std::lerp(p[1], p[2], t);
        const double c = std::lerp(p[2], p[3], t);
        const double ab = std::lerp(a, b, t);
        const double bc = std::lerp(b, c, t);
        const double centre = std::lerp(ab, bc, t);
        return {{{p[0], a, ab, centre}}, {{centre, bc, c, p[3]}}};
    }

    double Outgoing() const { return p[1] - p[0]; }
    double Incoming() const { return p[2] - p[3]; }
};

kytl::matl::KyVector<2, float> Handle(double time, double value)
{
    return {static_cast<float>(time), static_cast<float>(value)};
}

/// Handles for the two halves of a piece.
struct SplitHandles {
    kytl::matl::KyVector<2, float> firstOutgoing;
    kytl::matl::KyVector<2, float> firstIncoming;
    kytl::matl::KyVector<2, float> secondOutgoing;
    kytl::matl::KyVector<2, float> secondIncoming;
};

SplitHandles HandlesOf(const std::pair<Cubic, Cubic> &times, const std::pair<Cubic, Cubic> &values)
{
    return {Handle(times.first.Outgoing(), values.first.Outgoing()),
            Handle(times.first.Incoming(), values.first.Incoming()),
            Handle(times.second.Outgoing(), values.second.Outgoing()),
            Handle(times.second.Incoming(), values.second.Incoming())};
}

/// How far the value has got at some times of a piece, both from 0 to 1 and at equal distances.
using Progress = std::array<double, 31>;

double TimeOf(std::size_t sample)
{
    return static_cast<double>(sample + 1) / (std::tuple_size_v<Progress> + 1);
}

/// The lengths of handles without an offset in value, as parts of the piece.
struct Ease {
    double outgoing = 0.5;
    double incoming = 0.5;

    /// How far the curve with these handles is from a progress.
    double DeviationFrom(const Progress &progress) const
    {
        const Cubic times{{0, outgoing, 1 - incoming, 1}};
        const Cubic values{{0, 0, 1, 1}};
        double largest = 0;
        for (std::size_t i = 0; i < progress.size(); ++i)
            largest = std::max(largest, std::abs(values.At(times.ParameterOf(TimeOf(i))) - progress[i]));
        return largest;
    }
};

/// Searches in a grid that is drawn narrower around what was best.
Ease NearestEase(const Progress &progress)
{
    constexpr double kFinest = 0.002;
    // Never none at all, which would make the piece a straight one, whose rotations take another way.
    constexpr double kShortest = 0.001;
    Ease best;
    double deviation = best.DeviationFrom(progress);
    for (double width = 0.5; width > kFinest; width *= 0.6) {
        const Ease centre = best;
        for (int i = 0; i < 25; ++i) {
            const Ease ease{std::clamp(centre.outgoing + (i / 5 - 2) * width / 2, kShortest, 1.0),
                            std::clamp(centre.incoming + (i % 5 - 2) * width / 2, 0.0, 1.0)};
            if (const double other = ease.DeviationFrom(progress); other < deviation) {
                best = ease;
                deviation = other;
            }
        }
    }
    return best;
}

/// For components that go different ways, whose values no handle can follow.
SplitHandles EasedHandles(const Cubic &times, double time)
{
    const Cubic values{{0, 0, 1, 1}};
    const auto progressAt = [&](double at) { return values.At(times.ParameterOf(at)); };
    const double reached = progressAt(time);
    const double firstSpan = time - times.p[0];
    const double secondSpan = times.p[3] - time;
    Progress first;
    Progress second;
    for (std::size_t i = 0; i < first.size(); ++i) {
        first[i] = progressAt(times.p[0] + TimeOf(i) * firstSpan) / reached;
        second[i] = (progressAt(time + TimeOf(i) * secondSpan) - reached) / (1 - reached);
    }
    const Ease toMiddle = NearestEase(first);
    const Ease fromMiddle = NearestEase(second);
    return {Handle(toMiddle.outgoing * firstSpan, 0), Handle(-toMiddle.incoming * firstSpan, 0),
            Handle(fromMiddle.outgoing * secondSpan, 0), Handle(-fromMiddle.incoming * secondSpan, 0)};
}

/// Nothing where a piece without handles on both sides goes the same way.
std::optional<SplitHandles> Split(const KeyFrame &a, const KeyFrame &b, int time)
{
    const auto &outgoing = a.OutgoingPoint();
    const auto &incoming = b.IncomingPoint();
    const bool isStraight = outgoing.X == 0 && outgoing.Y == 0 && incoming.X == 0 && incoming.Y == 0;
    if (isStraight || a.Type() == KeyFrameType::Hold)
        return std::nullopt;
    // Counted from the first key frame, for the digits.
    const double span = static_cast<double>(b.Time()) - a.Time();
    const double at = static_cast<double>(time) - a.Time();
    const Cubic times{{0, outgoing.X, span + incoming.X, span}};
    const std::optional<double> rise = CommonRise(a.Value(), b.Value());
    if (!rise && outgoing.Y == 0 && incoming.Y == 0)
        return EasedHandles(times, at);
    const double end = rise.value_or(0);
    const Cubic values{{0, outgoing.Y, end + incoming.Y, end}};
    const double t = times.ParameterOf(at);
    return HandlesOf(times.Split(t), values.Split(t));
}

} // namespace

kytl::KyID InsertKeyFrame(const std::shared_ptr<Project> &project, const AnimatedProperty &property, int time)
{
    if (!property.Properties()->CanAnimate(property.Name().c_str()))
        throw OperationException(Quoted(FromUtf8(property.Name())) + " cannot be animated");
    Edit edit(project, u"Insert key frame");
    if (property.Keys().Exists(time))
        return property.Keys().At(time).ID();
    KeyFrame key(time, property.ValueAt(time));
    const KeyFrame *before = nullptr;
    const KeyFrame *after = nullptr;
    property.Keys().AdjacentKeyFrames(time, &before, &after);
    std::vector<kytl::KyID> touched{key.ID()};
    if (before && after) {
        key.SetType(before->Type());
        touched.insert(touched.end(), {before->ID(), after->ID()});
    }
    property.Touch(edit, touched);
    KeyFrameList &list = property.KeysToEdit();
    if (before && after) {
        if (const std::optional<SplitHandles> handles = Split(*before, *after, time)) {
            list.GetByID(before->ID()).SetOutgoingPoint(handles->firstOutgoing);
            list.GetByID(after->ID()).SetIncomingPoint(handles->secondIncoming);
            key.SetIncomingPoint(handles->firstIncoming);
            key.SetOutgoingPoint(handles->secondOutgoing);
        }
    }
    list.Add(key);
    edit.Commit();
    return key.ID();
}

} // namespace marlet::project
