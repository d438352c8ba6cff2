#include <marlet/animation/TemporalCurve.h>

#include <marlet/animation/SortedTimes.h>
#include <marlet/foundation/Numbers.h>

#include <algorithm>
#include <bit>
#include <vector>

namespace marlet::project
{

namespace
{

struct Entry {
    int time;
    double parameter;
};

/// The control values of a stretch of the curve, which lies between the smallest and the largest of them.
struct Hull {
    double values[4];

    /// Allows a unit of time on either side for what rounding may add.
    bool LiesOutside(const TemporalInputs &inputs) const
    {
        return std::ranges::all_of(values, [&](double value) { return value > inputs.secondTime + 1.0; }) ||
               std::ranges::all_of(values, [&](double value) { return value < inputs.firstTime - 1.0; });
    }

    /// The two halves, by de Casteljau's construction.
    std::pair<Hull, Hull> Split() const
    {
        const auto middle = [](double a, double b) { return a * 0.5 + b * 0.5; };
        const double a = middle(values[0], values[1]);
        const double b = middle(values[1], values[2]);
        const double c = middle(values[2], values[3]);
        const double ab = middle(a, b);
        const double bc = middle(b, c);
        const double centre = middle(ab, bc);
        return {{{values[0], a, ab, centre}}, {{centre, bc, c, values[3]}}};
    }
};

/// Finds the points of the table by halving the parameter.
class Subdivision
{
public:
    explicit Subdivision(const TemporalInputs &inputs)
        : inputs_(inputs),
          p0_(inputs.firstTime),
          p1_(inputs.firstTime + static_cast<double>(inputs.outgoing)),
          p2_(static_cast<float>(inputs.secondTime) + inputs.incoming),
          p3_(inputs.secondTime)
    {
        const std::int64_t span = std::int64_t{inputs.secondTime} - inputs.firstTime;
        tolerance_ = Truncate<std::int64_t>(static_cast<double>(span) * 0.01);
        const Entry first{inputs.firstTime, 0.0};
        const Entry last{inputs.secondTime, 1.0};
        entries_ = {first, last};
        Subdivide(first, last, {{p0_, p1_, p2_, p3_}});
    }

    /// Sorted by time.
    const std::vector<Entry> &Entries() const { return entries_; }

private:
    double TimeAt(double t) const
    {
        const double u = 1 - t;
        return ((p3_ * t + 3 * p2_ * u) * t + 3 * p1_ * (u * u)) * t + p0_ * (u * u * u);
    }

    /// Ends where two points are near enough, or the middle falls on the time of another point: so it does at
    /// the latest when no parameter lies between them any more.
    void Subdivide(const Entry &low, const Entry &high, const Hull &hull)
    {
        if (std::int64_t{high.time} - low.time <= tolerance_ || hull.LiesOutside(inputs_))
            return;
        const double t = low.parameter + (high.parameter - low.parameter) * 0.5;
        const Entry middle{Truncate<int>(TimeAt(t)), t};
        const auto place = std::ranges::lower_bound(entries_, middle.time, {}, &Entry::time);
        if (place != entries_.end() && place->time == middle.time)
            return;
        entries_.insert(place, middle);
        const auto [lower, upper] = hull.Split();
        Subdivide(low, middle, lower);
        Subdivide(middle, high, upper);
    }

    const TemporalInputs &inputs_;
    // The widths in which the sums are taken are part of what a curve is.
    double p0_;
    double p1_;
    double p2_;
    double p3_;
    std::int64_t tolerance_;
    std::vector<Entry> entries_;
};

} // namespace

std::unique_ptr<TemporalTable> TemporalTable::Build(const TemporalInputs &inputs)
{
    const Subdivision subdivision(inputs);
    const std::vector<Entry> &entries = subdivision.Entries();
    void *memory = ::operator new(sizeof(TemporalTable) + entries.size() * (sizeof(double) + sizeof(int)));
    std::unique_ptr<TemporalTable> table(new (memory) TemporalTable(inputs));
    table->count_ = entries.size();
    std::ranges::transform(entries, table->Parameters(), &Entry::parameter);
    std::ranges::transform(entries, table->Times(), &Entry::time);
    return table;
}

bool TemporalTable::IsBuiltFrom(const TemporalInputs &inputs) const
{
    const auto bits = [](float value) { return std::bit_cast<std::uint32_t>(value); };
    return inputs_.firstTime == inputs.firstTime && inputs_.secondTime == inputs.secondTime &&
           bits(inputs_.outgoing) == bits(inputs.outgoing) && bits(inputs_.incoming) == bits(inputs.incoming);
}

double TemporalTable::Parameter(int time) const
{
    const int *times = Times();
    const std::size_t low = LastNotAfter(times, count_, time);
    const double *parameters = Parameters();
    const double lowTime = times[low];
    return parameters[low] +
           (time - lowTime) * ((parameters[low + 1] - parameters[low]) / (times[low + 1] - lowTime));
}

} // namespace marlet::project
