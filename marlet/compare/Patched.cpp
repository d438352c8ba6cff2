#include <marlet/compare/CompareElements.h>
#include <marlet/compare/ElementNames.h>
#include <marlet/operations/OperationException.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <unordered_map>
#include <unordered_set>

namespace marlet::project
{

namespace
{

using Kind = Difference::Kind;

/// The differences of one element, and those of the elements in it.
struct Changes {
    const Difference *whole = nullptr; ///< the element is another one
    std::vector<const Difference *> attributes;
    std::vector<const Difference *> placed;   ///< children that are added or moved
    std::unordered_set<NarrowString> removed; ///< children
    std::map<NarrowString, Changes> children;

    void Add(const Difference &difference)
    {
        const bool isOfOwner = difference.kind != Kind::Changed;
        Changes *at = this;
        for (std::size_t i = 0; i + (isOfOwner ? 1 : 0) < difference.path.size(); ++i)
            at = &at->children[difference.path[i]];
        if (difference.kind == Kind::Removed)
            at->removed.insert(difference.path.back());
        else if (isOfOwner)
            at->placed.push_back(&difference);
        else if (difference.attribute.empty())
            at->whole = &difference;
        else
            at->attributes.push_back(&difference);
    }

    const Difference *AnyChange() const
    {
        if (whole != nullptr)
            return whole;
        if (!attributes.empty())
            return attributes.front();
        for (const auto &[key, changes] : children)
            if (const Difference *change = changes.AnyChange())
                return change;
        return nullptr;
    }
};

struct Child {
    NarrowString key;
    NarrowString xml;
};

[[noreturn]] void RefuseMissing(const Difference &difference)
{
    NarrowString place;
    for (const NarrowString &step : difference.place)
        place += (place.empty() ? "" : ", ") + step;
    throw OperationException("\"" + place + (difference.what.empty() ? "" : ": " + difference.what) +
                             "\" is not there to be changed");
}

/// The start tag of an element without its end.
NarrowString StartTag(const TextElement &element, const std::vector<const Difference *> &changes)
{
    std::vector<std::pair<NarrowString, NarrowString>> attributes;
    for (const auto &[name, value] : element.AllAttributes())
        attributes.emplace_back(name, NarrowString(name) + "=\"" + NarrowString(value) + "\"");
    const auto find = [&](const NarrowString &name) {
        return std::find_if(attributes.begin(), attributes.end(),
                            [&](const auto &attribute) { return attribute.first == name; });
    };
    for (const Difference *change : changes) {
        const auto found = find(change->attribute);
        if (found == attributes.end() && !change->newXml.empty()) {
            const auto front = find(change->behind);
            attributes.emplace(front == attributes.end() ? attributes.begin() : front + 1, change->attribute,
                               change->newXml);
        } else if (found != attributes.end() && change->newXml.empty()) {
            attributes.erase(found);
        } else if (found != attributes.end()) {
            found->second = change->newXml;
        }
    }
    NarrowString tag = "<" + NarrowString(element.Tag());
    for (const auto &attribute : attributes)
        tag += " " + attribute.second;
    return tag;
}

/// Children in their order, with those that are placed behind the ones that they name.
class Arrangement
{
public:
    Arrangement(std::vector<Child> children, const std::vector<const Difference *> &placed)
        : children_(std::move(children))
    {
        for (std::size_t i = 0; i < children_.size(); ++i)
            places_.emplace(children_[i].key, i);
        for (const Difference *difference : placed)
            Place(*difference);
    }

    std::vector<Child> Take()
    {
        AppendThoseBehind("");
        for (std::size_t i = 0; i < children_.size(); ++i)
            if (!isPlaced_.contains(children_[i].key))
                Append(i);
        // Those whose neighbour is not there.
        for (std::size_t i = 0; i < children_.size(); ++i)
            Append(i);
        return std::move(result_);
    }

private:
    void Place(const Difference &difference)
    {
        const NarrowString &key = difference.path.back();
        const auto [place, isNew] = places_.try_emplace(key, children_.size());
        if (isNew && difference.kind == Kind::Moved) {
            places_.erase(place);
            return;
        }
        if (isNew)
            children_.push_back({key, difference.newXml});
        else if (difference.kind == Kind::Added)
            children_[place->second].xml = difference.newXml;
        isPlaced_.insert(key);
        behind_[difference.behind].push_back(place->second);
    }

    /// In a loop, since each may be behind the one before it.
    void Append(std::size_t child)
    {
        std::vector<std::size_t> waiting{child};
        while (!waiting.empty()) {
            const std::size_t next = waiting.back();
            waiting.pop_back();
            if (!appended_.insert(next).second)
                continue;
            result_.push_back(std::move(children_[next]));
            children_[next].key = result_.back().key;
            if (const auto found = behind_.find(children_[next].key); found != behind_.end())
                waiting.insert(waiting.end(), found->second.rbegin(), found->second.rend());
        }
    }

    void AppendThoseBehind(const NarrowString &key)
    {
        if (const auto found = behind_.find(key); found != behind_.end())
            for (const std::size_t child : found->second)
                Append(child);
    }

    std::vector<Child> children_;
    std::vector<Child> result_;
    std::unordered_map<NarrowString, std::size_t> places_;
    std::unordered_set<NarrowString> isPlaced_;
    std::unordered_map<NarrowString, std::vector<std::size_t>> behind_;
    std::unordered_set<std::size_t> appended_;
};

/// The number by which the children of a sorted element stand in order.
int SortNumber(const TextElement &element)
{
    const NarrowString text =
        element.Tag() == "Key" ? element.Attribute("Time") : element.ChildText("StartFrame");
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

void Sort(std::vector<Child> &children)
{
    std::vector<std::pair<int, Child>> numbered;
    for (Child &child : children) {
        const DocumentText text(child.xml);
        numbered.emplace_back(SortNumber(text.Root()), std::move(child));
    }
    std::stable_sort(numbered.begin(), numbered.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    for (std::size_t i = 0; i < children.size(); ++i)
        children[i] = std::move(numbered[i].second);
}

NarrowString Patched(const TextElement &element, const Changes &changes, std::size_t depth)
{
    if (changes.whole != nullptr)
        return changes.whole->newXml;
    NarrowString xml = StartTag(element, changes.attributes);
    const std::vector<TextElement> elements = element.Children();
    const std::vector<NarrowString> keys = KeysOf(element, elements);
    std::vector<Child> children;
    std::size_t found = 0;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const auto below = changes.children.find(keys[i]);
        found += below == changes.children.end() ? 0 : 1;
        if (!changes.removed.contains(keys[i]))
            children.push_back({keys[i], below == changes.children.end()
                                             ? NarrowString(elements[i].Source())
                                             : Patched(elements[i], below->second, depth + 1)});
    }
    if (found < changes.children.size())
        for (const auto &[key, below] : changes.children)
            if (std::find(keys.begin(), keys.end(), key) == keys.end())
                if (const Difference *change = below.AnyChange())
                    RefuseMissing(*change);
    children = Arrangement(std::move(children), changes.placed).Take();
    if (IsSorted(element))
        Sort(children);
    const NarrowString endTag = "</" + NarrowString(element.Tag()) + ">";
    if (children.empty() && elements.empty() && element.HasEndTag())
        return xml.append(">").append(element.Content()) + endTag;
    if (children.empty())
        return xml + "/>";
    xml += ">\n";
    for (const Child &child : children)
        xml.append(depth + 1, ' ').append(child.xml) += '\n';
    return xml.append(depth, ' ') + endTag;
}

} // namespace

NarrowString Patched(const TextElement &root, const std::vector<Difference> &differences)
{
    Changes changes;
    for (const Difference &difference : differences)
        changes.Add(difference);
    return Patched(root, changes, 0) + "\n";
}

} // namespace marlet::project
