#include <marlet/compare/CompareElements.h>

#include <marlet/compare/ElementNames.h>

#include <algorithm>
#include <unordered_map>

namespace marlet::project
{

namespace
{

using Kind = Difference::Kind;

/// The children of an element in one version of it.
struct Side {
    explicit Side(const TextElement &of) : owner(of), children(of.Children()) {}

    /// Whether all that is in it are elements.
    bool IsContainer() const { return !owner.HasEndTag() || !children.empty(); }
    void MakeKeys()
    {
        keys = KeysOf(owner, children);
        for (std::size_t i = 0; i < keys.size(); ++i)
            places.emplace(keys[i], i);
    }
    /// The child's place, or none.
    const std::size_t *Find(const NarrowString &key) const
    {
        const auto found = places.find(key);
        return found == places.end() ? nullptr : &found->second;
    }
    NarrowString KeyInFrontOf(std::size_t place) const
    {
        return place == 0 ? NarrowString() : keys[place - 1];
    }

    TextElement owner;
    std::vector<TextElement> children;
    std::vector<NarrowString> keys;
    std::unordered_map<NarrowString, std::size_t> places;
};

/// The attributes that another element has not alike: "(fromObjectID 7)".
NarrowString AttributesBeside(const TextElement &element, const TextElement &other)
{
    NarrowString text;
    for (const auto &[name, value] : element.AllAttributes())
        if (other.Attribute(name) != WithoutReferences(value))
            text += (text.empty() ? "(" : ", ") + NarrowString(name) + " " + WithoutReferences(value);
    return text.empty() ? text : text + ")";
}

/// Which of the numbers belong to a longest rising sequence (patience sorting).
std::vector<bool> LongestRise(const std::vector<std::size_t> &numbers)
{
    std::vector<std::size_t> tails; ///< the end of the best sequence of each length
    std::vector<std::size_t> previous(numbers.size(), numbers.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const auto at =
            std::lower_bound(tails.begin(), tails.end(), i, [&](std::size_t tail, std::size_t index) {
                return numbers[tail] < numbers[index];
            });
        if (at != tails.begin())
            previous[i] = *(at - 1);
        if (at == tails.end())
            tails.push_back(i);
        else
            *at = i;
    }
    std::vector<bool> isIn(numbers.size());
    for (std::size_t i = tails.empty() ? numbers.size() : tails.back(); i < numbers.size(); i = previous[i])
        isIn[i] = true;
    return isIn;
}

class Comparison
{
public:
    void Compare(const TextElement &before, const TextElement &after, const TextElement &owner)
    {
        Compare(Side(before), Side(after), owner);
    }

    std::vector<Difference> Take() { return std::move(differences_); }

private:
    /// A part of the path and of the place, for as long as it lives.
    class Step
    {
    public:
        Step(std::vector<NarrowString> &steps, const NarrowString &step)
            : steps_(steps), isOne_(!step.empty())
        {
            if (isOne_)
                steps_.push_back(step);
        }
        Step(const Step &) = delete;
        Step &operator=(const Step &) = delete;
        ~Step()
        {
            if (isOne_)
                steps_.pop_back();
        }

    private:
        std::vector<NarrowString> &steps_;
        bool isOne_;
    };

    Difference &Report(Kind kind, NarrowString what = {}, NarrowString before = {}, NarrowString after = {})
    {
        Difference difference;
        difference.kind = kind;
        difference.place = place_;
        difference.what = std::move(what);
        difference.before = std::move(before);
        difference.after = std::move(after);
        difference.path = path_;
        return differences_.emplace_back(std::move(difference));
    }

    void ReportChange(NarrowString what, const TextElement &before, const TextElement &after)
    {
        NarrowString was = ValueText(before);
        NarrowString is = ValueText(after);
        // What an element is called by may be the same while another attribute is not.
        if (was == is) {
            was = AttributesBeside(before, after);
            is = AttributesBeside(after, before);
        }
        Difference &change = Report(Kind::Changed, std::move(what), std::move(was), std::move(is));
        change.oldXml = before.Source();
        change.newXml = after.Source();
    }

    void Compare(Side before, Side after, const TextElement &owner)
    {
        const Step place(place_, NameOf(before.owner, owner));
        if (!before.IsContainer() || !after.IsContainer())
            return ReportChange("", before.owner, after.owner);
        CompareAttributes(before.owner, after.owner);
        CompareChildren(before, after);
    }

    void CompareAttributes(const TextElement &before, const TextElement &after)
    {
        const TextElement::Attributes old = before.AllAttributes();
        const TextElement::Attributes current = after.AllAttributes();
        if (old == current)
            return;
        const auto find = [](const TextElement::Attributes &attributes, std::string_view name) {
            return std::find_if(attributes.begin(), attributes.end(),
                                [&](const auto &attribute) { return attribute.first == name; });
        };
        const auto xml = [](const auto &attribute) {
            return NarrowString(attribute.first) + "=\"" + NarrowString(attribute.second) + "\"";
        };
        for (const auto &attribute : old)
            if (find(current, attribute.first) == current.end())
                ReportAttribute(attribute.first, before, after).oldXml = xml(attribute);
        for (std::size_t i = 0; i < current.size(); ++i) {
            const auto same = find(old, current[i].first);
            if (same != old.end() && same->second == current[i].second)
                continue;
            Difference &change = ReportAttribute(current[i].first, before, after);
            change.oldXml = same == old.end() ? NarrowString() : xml(*same);
            change.newXml = xml(current[i]);
            change.behind = i == 0 ? NarrowString() : NarrowString(current[i - 1].first);
        }
    }

    Difference &ReportAttribute(std::string_view name, const TextElement &before, const TextElement &after)
    {
        Difference &change =
            Report(Kind::Changed, NarrowString(name), before.Attribute(name), after.Attribute(name));
        change.attribute = name;
        return change;
    }

    void CompareChildren(Side &before, Side &after)
    {
        before.MakeKeys();
        after.MakeKeys();
        for (std::size_t i = 0; i < before.keys.size(); ++i) {
            const Step step(path_, before.keys[i]);
            if (const std::size_t *place = after.Find(before.keys[i])) {
                CompareChild(before.children[i], after.children[*place], before.owner);
                continue;
            }
            Difference &removed = ReportWhole(Kind::Removed, before.children[i], before.owner);
            removed.oldXml = before.children[i].Source();
            removed.behind = before.KeyInFrontOf(i);
        }
        for (std::size_t i = 0; i < after.keys.size(); ++i) {
            if (before.Find(after.keys[i]))
                continue;
            const Step step(path_, after.keys[i]);
            Difference &added = ReportWhole(Kind::Added, after.children[i], after.owner);
            added.newXml = after.children[i].Source();
            added.behind = after.KeyInFrontOf(i);
        }
        ReportMoves(before, after);
    }

    void CompareChild(const TextElement &before, const TextElement &after, const TextElement &owner)
    {
        if (before == after)
            return;
        Side old(before);
        Side current(after);
        const bool isField =
            old.children.empty() && current.children.empty() && owner.Tag() != "PropertyManager";
        const bool isValue = IsValue(before) && owner.Tag() != "PropertyManager";
        if (!isField && !isValue)
            return Compare(std::move(old), std::move(current), owner);
        ReportChange(isValue ? NameOf(before, {}) : FieldNameOf(before, owner), before, after);
    }

    Difference &ReportWhole(Kind kind, const TextElement &element, const TextElement &owner)
    {
        const bool isField = !element.HasChildren() && owner.Tag() != "PropertyManager";
        const bool isRemoved = kind == Kind::Removed;
        if (isField)
            return Report(kind, FieldNameOf(element, owner), isRemoved ? ValueText(element) : "",
                          isRemoved ? "" : ValueText(element));
        // The place of a transition says already what it is.
        if (element.Tag() == "Transition")
            return Report(kind);
        const NarrowString name = NameOf(element, owner) + SpanOf(element);
        const Step place(place_, name.empty() ? NarrowString(element.Tag()) : name);
        return Report(kind);
    }

    /// Of what both have, the longest run that is still in order stays; the rest was moved.
    void ReportMoves(const Side &before, const Side &after)
    {
        std::vector<std::size_t> kept;
        std::vector<std::size_t> targets;
        for (std::size_t i = 0; i < before.keys.size(); ++i) {
            if (const std::size_t *place = after.Find(before.keys[i])) {
                kept.push_back(i);
                targets.push_back(*place);
            }
        }
        const std::vector<bool> stays = LongestRise(targets);
        for (std::size_t i = 0; i < kept.size(); ++i) {
            if (stays[i])
                continue;
            const Step step(path_, before.keys[kept[i]]);
            const NarrowString name = NameOf(before.children[kept[i]], before.owner);
            const Step place(place_, name.empty() ? NarrowString(before.children[kept[i]].Tag()) : name);
            Difference &move =
                Report(Kind::Moved, "", std::to_string(kept[i] + 1), std::to_string(targets[i] + 1));
            move.behind = after.KeyInFrontOf(targets[i]);
        }
    }

    std::vector<NarrowString> place_;
    std::vector<NarrowString> path_;
    std::vector<Difference> differences_;
};

} // namespace

std::vector<Difference> CompareElements(const TextElement &before, const TextElement &after)
{
    Comparison comparison;
    if (!(before == after))
        comparison.Compare(before, after, {});
    return comparison.Take();
}

} // namespace marlet::project
