#include <marlet/animation/TemporalCurve.h>

#include <marlet/foundation/Numbers.h>

#include <algorithm>
#include <bit>
#include <limits>
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

    /// Sorted by time, without those before and behind the piece, where nothing is looked up.
    std::vector<Entry> Entries() const
    {
        const auto first = std::ranges::lower_bound(entries_, inputs_.firstTime, {}, &Entry::time);
        const auto end = std::ranges::upper_bound(entries_, inputs_.secondTime, {}, &Entry::time);
        return {first, end};
    }

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

/// The entries of a table as they stand in memory: their times as offsets from the first one, in groups,
/// before them the first offset of each group, and behind them their parameters.
///
/// A lookup counts what is not after a time in the first offsets and then in one group. That takes no branch
/// and few instructions, which keeps the processor busy with the next lookups while memory answers.
template <class Offset, class Parameter> class EntryArrays
{
public:
    static std::size_t Size(std::size_t count)
    {
        const std::size_t offsets = Padded(Groups(count)) + Padded(count);
        return offsets * sizeof(Offset) + count * sizeof(Parameter);
    }

    /// Whether the entries lose nothing in this form. Parameters are sums of few powers of two.
    static bool Hold(const std::vector<Entry> &entries)
    {
        return OffsetOf(entries.back(), entries) <= kEnd &&
               std::ranges::all_of(entries, [](const Entry &entry) {
                   return static_cast<double>(static_cast<Parameter>(entry.parameter)) == entry.parameter;
               });
    }

    static void Write(void *memory, const std::vector<Entry> &entries)
    {
        const auto firsts = static_cast<Offset *>(memory);
        const auto offsets = firsts + Padded(Groups(entries.size()));
        const auto parameters = reinterpret_cast<Parameter *>(offsets + Padded(entries.size()));
        std::fill(firsts, reinterpret_cast<Offset *>(parameters), kEnd);
        for (std::size_t i = 0; i < entries.size(); ++i) {
            offsets[i] = static_cast<Offset>(OffsetOf(entries[i], entries));
            parameters[i] = static_cast<Parameter>(entries[i].parameter);
            if (i % kGroup == 0)
                firsts[i / kGroup] = offsets[i];
        }
    }

    static double Interpolate(const void *memory, std::size_t count, std::uint32_t offset)
    {
        const auto firsts = static_cast<const Offset *>(memory);
        const auto offsets = firsts + Padded(Groups(count));
        const auto parameters = reinterpret_cast<const Parameter *>(offsets + Padded(count));
        const auto sought = static_cast<Offset>(offset);
        const std::size_t group = CountNotAfter(firsts, Padded(Groups(count)), sought) - 1;
        const std::size_t begin = group * kGroup;
        const std::size_t high = begin + CountNotAfter(offsets + begin, kGroup, sought);
        const double lowTime = offsets[high - 1];
        const double lowParameter = parameters[high - 1];
        return lowParameter +
               (offset - lowTime) * ((parameters[high] - lowParameter) / (offsets[high] - lowTime));
    }

private:
    static constexpr std::size_t kGroup = 16;
    /// Fills up the groups: later than any time that is asked for.
    static constexpr Offset kEnd = std::numeric_limits<Offset>::max();

    static std::size_t Groups(std::size_t count) { return (count + kGroup - 1) / kGroup; }
    static std::size_t Padded(std::size_t count) { return Groups(count) * kGroup; }

    static std::uint32_t OffsetOf(const Entry &entry, const std::vector<Entry> &entries)
    {
        return std::uint32_t(entry.time) - std::uint32_t(entries.front().time);
    }

    static std::size_t CountNotAfter(const Offset *offsets, std::size_t count, Offset offset)
    {
        Offset result = 0;
        for (std::size_t i = 0; i < count; ++i)
            result = static_cast<Offset>(result + (offsets[i] <= offset));
        return result;
    }
};

using CompactEntries = EntryArrays<std::uint16_t, float>;
using WideEntries = EntryArrays<std::uint32_t, double>;

} // namespace

std::unique_ptr<TemporalTable> TemporalTable::Build(const TemporalInputs &inputs)
{
    const std::vector<Entry> entries = Subdivision(inputs).Entries();
    const bool isCompact = CompactEntries::Hold(entries);
    const std::size_t size =
        isCompact ? CompactEntries::Size(entries.size()) : WideEntries::Size(entries.size());
    void *memory = ::operator new(sizeof(TemporalTable) + size);
    std::unique_ptr<TemporalTable> table(new (memory) TemporalTable(inputs, entries.size(), isCompact));
    isCompact ? CompactEntries::Write(table.get() + 1, entries)
              : WideEntries::Write(table.get() + 1, entries);
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
    const std::uint32_t offset = std::uint32_t(time) - std::uint32_t(inputs_.firstTime);
    return isCompact_ ? CompactEntries::Interpolate(this + 1, count_, offset)
                      : WideEntries::Interpolate(this + 1, count_, offset);
}

} // namespace marlet::project
