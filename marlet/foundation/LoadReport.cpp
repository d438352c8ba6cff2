#include <marlet/foundation/LoadReport.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

namespace marlet::project
{

std::size_t LoadReport::Count() const
{
    return std::accumulate(counts_.begin(), counts_.end(), std::size_t{0});
}

const LoadEntry *LoadReport::FirstLoss() const
{
    return First(LoadEntry::Severity::Loss);
}

const LoadEntry *LoadReport::FirstError() const
{
    return First(LoadEntry::Severity::Error);
}

const LoadEntry *LoadReport::First(LoadEntry::Severity least) const
{
    const auto found =
        std::ranges::find_if(entries_, [least](const LoadEntry &entry) { return entry.severity >= least; });
    return found == entries_.end() ? nullptr : &*found;
}

void LoadReport::Add(LoadEntry entry)
{
    ++counts_[static_cast<std::size_t>(entry.severity)];
    dropped_ += entry.isDropped || (entry.severity == LoadEntry::Severity::Loss && !entry.isKept);
    // An error ends the load, so it is told however much came before.
    if (entries_.size() < kMostEntries)
        entries_.push_back(std::move(entry));
    else if (entry.severity == LoadEntry::Severity::Error)
        entries_.back() = std::move(entry);
}

void LoadReport::AddUse(const UnresolvedPlugin &plugin)
{
    const auto found = std::ranges::find_if(plugins_, [&plugin](const UnresolvedPlugin &known) {
        return known.id == plugin.id && known.version == plugin.version;
    });
    if (found == plugins_.end())
        plugins_.push_back(plugin);
    else
        found->uses += plugin.uses;
}

void LoadReport::Sort()
{
    std::ranges::stable_sort(entries_, {}, [](const LoadEntry &entry) {
        return entry.line == 0 ? std::numeric_limits<std::uint64_t>::max() : entry.offset;
    });
}

void LoadReport::Clear()
{
    *this = LoadReport();
}

const char *SeverityName(LoadEntry::Severity severity)
{
    constexpr const char *kNames[LoadEntry::kSeverities] = {"note", "warning", "loss", "error"};
    return kNames[static_cast<std::size_t>(severity)];
}

} // namespace marlet::project
