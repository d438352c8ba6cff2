#include <marlet/compare/Merge.h>

#include <marlet/compare/CompareElements.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <map>

namespace marlet::project
{

namespace
{

using Kind = Difference::Kind;

/// A path as one text. That of an element starts with those of all that it stands in.
NarrowString PathText(const std::vector<NarrowString> &path)
{
    NarrowString text;
    for (const NarrowString &step : path)
        text += step + '\n';
    return text;
}

/// Whether the order of an element's neighbours says nothing of its own: it follows from times, or nobody
/// reads it.
bool HasNoOrder(const Difference &difference)
{
    if (difference.path.size() < 2)
        return false;
    const NarrowString &owner = difference.path[difference.path.size() - 2];
    return owner == "Objects" || owner == "Animation" || owner == "Instances";
}

bool HaveSameResult(const Difference &a, const Difference &b)
{
    return a.kind == Kind::Moved ? a.behind == b.behind : a.newXml == b.newXml;
}

/// The differences of one side, by where they are.
class SideChanges
{
public:
    explicit SideChanges(const std::vector<Difference> &differences)
    {
        for (const Difference &difference : differences)
            byPath_.emplace(PathText(difference.path), &difference);
    }

    /// What of this side meets a difference of the other one; null if nothing does.
    const Difference *FindMet(const Difference &other) const
    {
        const NarrowString path = PathText(other.path);
        if (const Difference *whole = FindWholeAround(other))
            return whole;
        for (auto [at, end] = byPath_.equal_range(path); at != end; ++at)
            if (Meets(*at->second, other))
                return at->second;
        if (other.kind == Kind::Moved)
            return FindMove(other.path, other.behind);
        return IsWhole(other) ? FindBelow(path) : nullptr;
    }

    /// The neighbour in front of a place as this side has it: what is gone does not count.
    NarrowString NeighbourOf(std::vector<NarrowString> path, NarrowString behind) const
    {
        while (!behind.empty()) {
            path.back() = behind;
            const auto [first, last] = byPath_.equal_range(PathText(path));
            const auto removed = std::find_if(
                first, last, [](const auto &entry) { return entry.second->kind == Kind::Removed; });
            if (removed == last)
                break;
            behind = removed->second->behind;
        }
        return behind;
    }

private:
    /// Whether what stands in the element goes or comes with it.
    static bool IsWhole(const Difference &difference)
    {
        return difference.kind != Kind::Moved && difference.attribute.empty();
    }

    static bool Meets(const Difference &own, const Difference &other)
    {
        if (own.kind == Kind::Moved || other.kind == Kind::Moved)
            return own.kind == other.kind;
        return own.attribute == other.attribute || IsWhole(own) || IsWhole(other);
    }

    const Difference *FindWholeAround(const Difference &other) const
    {
        NarrowString path;
        for (std::size_t i = 0; i + 1 < other.path.size(); ++i) {
            path += other.path[i] + '\n';
            for (auto [at, end] = byPath_.equal_range(path); at != end; ++at)
                if (IsWhole(*at->second))
                    return at->second;
        }
        return nullptr;
    }

    /// That of the neighbour behind which something is to stand.
    const Difference *FindMove(std::vector<NarrowString> path, const NarrowString &neighbour) const
    {
        path.back() = neighbour;
        for (auto [at, end] = byPath_.equal_range(PathText(path)); at != end; ++at)
            if (at->second->kind == Kind::Moved)
                return at->second;
        return nullptr;
    }

    const Difference *FindBelow(const NarrowString &path) const
    {
        for (auto at = byPath_.upper_bound(path); at != byPath_.end() && at->first.starts_with(path); ++at)
            if (at->second->kind != Kind::Moved)
                return at->second;
        return nullptr;
    }

    std::multimap<NarrowString, const Difference *> byPath_;
};

MergeResult MergeElements(const TextElement &base, const TextElement &ours, const TextElement &theirs)
{
    const std::vector<Difference> own = CompareElements(base, ours);
    const SideChanges side(own);
    MergeResult result;
    for (Difference &other : CompareElements(base, theirs)) {
        const Difference *met = side.FindMet(other);
        if (met == nullptr) {
            if (other.kind == Kind::Added || other.kind == Kind::Moved)
                other.behind = side.NeighbourOf(other.path, other.behind);
            result.changes.push_back(std::move(other));
            continue;
        }
        const bool areBothGone = met->kind == Kind::Removed && other.kind == Kind::Removed;
        const bool isSame = met->path == other.path && met->kind == other.kind && HaveSameResult(*met, other);
        const bool isOrder = other.kind == Kind::Moved && met->kind == Kind::Moved && HasNoOrder(other);
        if (!areBothGone && !isSame && !isOrder)
            result.conflicts.push_back({*met, std::move(other)});
    }
    return result;
}

} // namespace

MergeResult Merge(const Project &base, const Project &ours, const Project &theirs)
{
    const DocumentText old(base.SerializeUtf8());
    const DocumentText own(ours.SerializeUtf8(old.Text().size()));
    const DocumentText other(theirs.SerializeUtf8(old.Text().size()));
    return MergeElements(old.Root(), own.Root(), other.Root());
}

MergeResult MergeTexts(const WideString &base, const WideString &ours, const WideString &theirs)
{
    const DocumentText old(WholeText(base));
    const DocumentText own(WholeText(ours));
    const DocumentText other(WholeText(theirs));
    return MergeElements(old.Root(), own.Root(), other.Root());
}

} // namespace marlet::project
