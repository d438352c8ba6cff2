#include <marlet/recovery/RecoveredPaths.h>

#include <marlet/foundation/xml/ElementPath.h>

#include <utility>

namespace marlet::project
{

namespace
{

std::string_view NameOf(const RecoveredElement &element)
{
    const RecoveredElement *name = element.Child("Name");
    if (const RecoveredElement *const base = element.Child("LayerBase"); base && !name)
        name = base->Child("Name");
    return name && element.name != "LayerBase" ? name->content : std::string_view();
}

} // namespace

int RecoveredPaths::PlaceAmongEqual(const RecoveredElement &element)
{
    if (!element.parent)
        return 0;
    if (numbered_.insert(element.parent).second) {
        std::unordered_map<std::string_view, int> counts;
        for (const RecoveredElement *child : element.parent->children)
            places_[child] = ++counts[child->name];
        for (const RecoveredElement *child : element.parent->children)
            if (counts[child->name] == 1)
                places_.erase(child);
    }
    const auto place = places_.find(&element);
    return place == places_.end() ? 0 : place->second;
}

const NarrowString &RecoveredPaths::PathTo(const RecoveredElement &element)
{
    const auto [entry, isNew] = paths_.try_emplace(&element);
    if (!isNew)
        return entry->second;
    const std::string_view name = NameOf(element);
    NarrowString path = PathStep(element.name, name, name.empty() ? PlaceAmongEqual(element) : 0);
    if (element.parent)
        path = PathTo(*element.parent) + "/" + path;
    return paths_[&element] = std::move(path);
}

} // namespace marlet::project
