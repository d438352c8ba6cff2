// Fewer key frames within a tolerance: what Ramer, Douglas and Peucker do with the points of a line, one
// point after the other where the line is furthest off, with pieces that are fitted to what they replace.

#include <marlet/operations/curves/KeyFrameOperations.h>

#include <marlet/history/Edit.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/curves/ValueComponents.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_set>

namespace marlet::project
{

namespace
{

using Vector = kytl::matl::KyVector<2, float>;

struct Sample {
    int time = 0;
    PropertyValue value;
};

/// What a piece says at its two ends.
struct PieceShape {
    KeyFrameType type = KeyFrameType::Linear;
    Vector outgoing;
    Vector incoming;
};

/// The offsets of the two inner control values of a cubic curve, whose time runs evenly, that come nearest to
/// numbers by the sum of squares: the step of Schneider's fitting of curves to digitized points (Graphics
/// Gems, 1990), without the search for parameters, since time gives these.
class CubicFit
{
public:
    CubicFit(double first, double last) : first_(first), last_(last) {}

    /// T runs from 0 to 1.
    void Add(double t, double value)
    {
        const double u = 1 - t;
        const double outgoing = 3 * t * u * u;
        const double incoming = 3 * t * t * u;
        const double rest = value - first_ * (u * u * u + outgoing) - last_ * (incoming + t * t * t);
        a_ += outgoing * outgoing;
        b_ += outgoing * incoming;
        c_ += incoming * incoming;
        x_ += outgoing * rest;
        y_ += incoming * rest;
    }

    std::optional<PieceShape> Shape(double span) const
    {
        const double determinant = a_ * c_ - b_ * b_;
        if (!(determinant > 1e-12))
            return std::nullopt;
        const float third = static_cast<float>(span / 3);
        return PieceShape{KeyFrameType::Bezier,
                          {third, static_cast<float>((x_ * c_ - y_ * b_) / determinant)},
                          {-third, static_cast<float>((y_ * a_ - x_ * b_) / determinant)}};
    }

private:
    double first_;
    double last_;
    double a_ = 0;
    double b_ = 0;
    double c_ = 0;
    double x_ = 0;
    double y_ = 0;
};

class Reduction
{
public:
    Reduction(const AnimatedProperty &property, const TimeSpan &span, double tolerance)
        : property_(property), tolerance_(tolerance), keys_(CopyKeyFrames(property, KeyFramesIn(property)))
    {
        const auto isIn = [&](const KeyFrame &key) {
            return key.Time() >= span.first && key.Time() <= span.last;
        };
        for (const KeyFrame &key : keys_)
            isKept_.push_back(!isIn(key));
        std::size_t first = Next(false, 0);
        if (first == keys_.size())
            return;
        std::size_t last = Next(true, first) - 1;
        isKept_[first] = isKept_[last] = true;
        // The tangents of a path reach one piece further.
        if (property.Keys().IsSpatial()) {
            first -= first > 0 ? 1 : 0;
            last += last + 1 < keys_.size() ? 1 : 0;
        }
        TakeSamples(keys_[first], keys_[last]);
        CreateTrial();
    }

    /// The key frames that stay, with their handles.
    std::vector<KeyFrame> Run()
    {
        std::vector<KeyFrame> result = Trial();
        while (!samples_.empty() && KeepWhereItIsOff(result))
            result = Trial();
        return result;
    }

private:
    const char *Name() const { return property_.Name().c_str(); }

    void TakeSamples(const KeyFrame &first, const KeyFrame &last)
    {
        constexpr std::int64_t kMost = 20000;
        std::vector<int> times;
        for (const KeyFrame &key : keys_)
            if (key.Time() >= first.Time() && key.Time() <= last.Time())
                times.push_back(key.Time());
        const std::int64_t span = std::int64_t{last.Time()} - first.Time();
        for (std::int64_t at = 0; at < span; at += 1 + span / kMost)
            times.push_back(static_cast<int>(first.Time() + at));
        std::ranges::sort(times);
        times.erase(std::unique(times.begin(), times.end()), times.end());
        for (const int time : times)
            samples_.push_back({time, property_.ValueAt(time)});
    }

    void CreateTrial()
    {
        const PropertyValue &value = property_.Properties()->DefaultValue(Name());
        constexpr auto kType = PropertyManager::Type::Animatable;
        if (property_.Properties()->IsSpatial(Name()))
            trial_.CreateSpatialProperty(Name(), value, kType, nullptr);
        else
            trial_.CreateProperty(Name(), value, kType, nullptr);
        trial_.KeyFrames(Name()).SetSpatialType(property_.Keys().SpatialType());
    }

    /// The kept key frames with the shapes of the pieces between them.
    std::vector<KeyFrame> Trial() const
    {
        std::vector<KeyFrame> trial;
        std::size_t former = 0;
        for (std::size_t i = 0; i < keys_.size(); ++i) {
            if (!isKept_[i])
                continue;
            if (!trial.empty()) {
                const PieceShape shape = ShapeOf(former, i);
                trial.back().SetType(shape.type);
                trial.back().SetOutgoingPoint(shape.outgoing);
                trial.push_back(keys_[i]);
                trial.back().SetIncomingPoint(shape.incoming);
            } else {
                trial.push_back(keys_[i]);
            }
            former = i;
        }
        return trial;
    }

    PieceShape ShapeOf(std::size_t first, std::size_t last) const
    {
        const KeyFrame &a = keys_[first];
        const KeyFrame &b = keys_[last];
        if (last == first + 1)
            return {a.Type(), a.OutgoingPoint(), b.IncomingPoint()};
        const std::vector<double> from = ComponentsOf(a.Value());
        const std::vector<double> to = ComponentsOf(b.Value());
        if (from.size() != 1 || to.size() != 1)
            return {};
        const double span = static_cast<double>(b.Time()) - a.Time();
        CubicFit fit(from[0], to[0]);
        bool isLine = true;
        const auto end = std::ranges::lower_bound(samples_, b.Time(), {}, &Sample::time);
        for (auto sample = std::ranges::upper_bound(samples_, a.Time(), {}, &Sample::time); sample < end;
             ++sample) {
            const std::vector<double> value = ComponentsOf(sample->value);
            if (value.size() != 1)
                return {};
            const double t = (static_cast<double>(sample->time) - a.Time()) / span;
            isLine = isLine && std::abs(std::lerp(from[0], to[0], t) - value[0]) <= tolerance_;
            fit.Add(t, value[0]);
        }
        return isLine ? PieceShape() : fit.Shape(span).value_or(PieceShape());
    }

    /// Keeps one more key frame in each piece that is too far from what was there. False if none is.
    bool KeepWhereItIsOff(const std::vector<KeyFrame> &trial)
    {
        KeyFrameList &list = trial_.KeyFrames(Name());
        list.Clear();
        for (const KeyFrame &key : trial)
            list.Add(key);
        const PropertyManager::PropertyID property = trial_.GetPropertyID(Name());
        bool keptMore = false;
        auto sample = samples_.begin();
        for (std::size_t first = Next(true, 0); first < keys_.size() && sample != samples_.end();) {
            const std::size_t last = Next(true, first + 1);
            const Sample *worst = nullptr;
            double largest = tolerance_;
            for (; sample != samples_.end() && (last == keys_.size() || sample->time < keys_[last].Time());
                 ++sample) {
                const double deviation = Deviation(sample->value, trial_.ValueAtTime(property, sample->time));
                if (deviation > largest) {
                    largest = deviation;
                    worst = &*sample;
                }
            }
            if (worst)
                keptMore |= Keep(first, last, worst->time);
            first = last;
        }
        return keptMore;
    }

    /// The first key frame from one on that is kept or is not; their number if there is none.
    std::size_t Next(bool isKept, std::size_t from) const
    {
        while (from < keys_.size() && isKept_[from] != isKept)
            ++from;
        return from;
    }

    /// The one of the piece that is nearest to a time, or else those before and behind the piece, on which a
    /// path in space depends as well.
    bool Keep(std::size_t first, std::size_t last, int time)
    {
        const auto distance = [&](std::size_t i) { return std::abs(std::int64_t{keys_[i].Time()} - time); };
        std::size_t nearest = first;
        for (std::size_t i = first + 1; i < last; ++i)
            if (nearest == first || distance(i) < distance(nearest))
                nearest = i;
        if (nearest != first) {
            isKept_[nearest] = true;
            return true;
        }
        std::size_t before = first;
        while (before > 0 && isKept_[before])
            --before;
        const std::size_t behind = Next(false, last);
        const bool isBeforeLeft = !isKept_[before];
        isKept_[before] = true;
        if (behind < keys_.size())
            isKept_[behind] = true;
        return isBeforeLeft || behind < keys_.size();
    }

    const AnimatedProperty &property_;
    double tolerance_;
    std::vector<KeyFrame> keys_;
    std::vector<bool> isKept_;
    std::vector<Sample> samples_;
    PropertyManager trial_;
};

} // namespace

unsigned int SimplifyKeyFrames(const std::shared_ptr<Project> &project, const AnimatedProperty &property,
                               double tolerance, const TimeSpan &span)
{
    if (!(tolerance >= 0))
        throw OperationException("A tolerance is not below 0");
    Edit edit(project, u"Simplify key frames");
    const std::vector<KeyFrame> result = Reduction(property, span, tolerance).Run();
    const auto removed = static_cast<unsigned int>(property.Keys().Count() - result.size());
    if (removed == 0)
        return 0;
    property.Touch(edit);
    std::unordered_set<kytl::KyID> kept;
    for (const KeyFrame &key : result)
        kept.insert(key.ID());
    KeyFrameList &list = property.KeysToEdit();
    for (const kytl::KyID &id : list.Identifiers())
        if (!kept.contains(id))
            list.Remove(id);
    for (const KeyFrame &key : result)
        list.GetByID(key.ID()) = key;
    edit.Commit();
    return removed;
}

} // namespace marlet::project
