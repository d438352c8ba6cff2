#include "Mirror.h"

#include <set>

namespace marlet::test
{

namespace
{

bool IsInside(const FactsByKey &facts, std::string key, const std::set<std::string> &ids)
{
    while (!key.empty()) {
        if (ids.contains(key.substr(key.find(' ') + 1)))
            return true;
        const auto found = facts.find(key);
        key = found == facts.end() ? "" : found->second.holder;
    }
    return false;
}

/// The values within the times; the others must be as they were.
void Read(PropertyFacts &known, const PropertyFacts &live, const PropertyChange &change)
{
    known.text = live.text;
    for (const auto &[time, value] : live.values)
        if (change.firstTime <= time && time <= change.lastTime)
            known.values[time] = value;
}

std::string DifferenceOf(const ObjectFacts &known, const ObjectFacts &live)
{
    for (const auto &[aspect, text] : live.texts)
        if (const auto found = known.texts.find(aspect); found == known.texts.end() || found->second != text)
            return "aspect " + std::to_string(static_cast<unsigned int>(aspect)) + "\n" +
                   (found == known.texts.end() ? "" : found->second) + "\n" + text;
    for (const auto &[name, property] : live.properties) {
        const auto found = known.properties.find(name);
        if (found == known.properties.end() || found->second.text != property.text)
            return "property " + name + "\n" + property.text;
        if (found->second.values != property.values)
            return "values of property " + name;
    }
    const bool isLess =
        live.texts.size() < known.texts.size() || live.properties.size() < known.properties.size();
    return isLess ? "that something went" : "";
}

} // namespace

void Mirror::Read(const ObjectChange &change, const ObjectFacts &live)
{
    ObjectFacts &known = facts_.try_emplace(KeyOf(change.kind, change.id), live).first->second;
    for (const Aspect aspect :
         {Aspect::Name, Aspect::Frames, Aspect::Settings, Aspect::Links, Aspect::Members, Aspect::Text,
          Aspect::File, Aspect::PrivateData, Aspect::View}) {
        if (!change.aspects.Has(aspect))
            continue;
        known.texts.erase(aspect);
        if (const auto text = live.texts.find(aspect); text != live.texts.end())
            known.texts.insert(*text);
    }
    for (const PropertyChange &property : change.properties) {
        if (const auto found = live.properties.find(property.name); found != live.properties.end())
            test::Read(known.properties[property.name], found->second, property);
        else
            known.properties.erase(property.name);
    }
}

/// What is named is read again; what came is taken with all that it holds, and what went goes with that.
/// Transitions have no list of their own: an object tells that its links are others. A track tells of the
/// frames of all its objects.
void Mirror::Take(const Project &project, const ChangeNotice &notice)
{
    const FactsByKey live = FactsOf(project);
    const FactsByKey before = facts_;
    std::set<std::string> moved;
    std::set<std::string> holders;
    std::set<std::string> shifted;
    for (const ObjectChange &change : notice.Changes()) {
        for (const std::vector<kytl::KyID> *ids : {&change.added, &change.removed})
            for (const kytl::KyID &id : *ids)
                moved.insert(id.ToNarrowString());
        const std::string key = KeyOf(change.kind, change.id);
        if (const auto found = live.find(key); found != live.end())
            Read(change, found->second);
        else
            facts_.erase(key);
        if (change.kind == ObjectKind::SequenceObject && change.aspects.Has(Aspect::Links))
            holders.insert(key);
        if (change.kind == ObjectKind::Track && change.aspects.Has(Aspect::Frames))
            shifted.insert(key);
    }
    for (const auto &[key, facts] : before)
        if (!live.contains(key) && (holders.contains(facts.holder) || IsInside(before, key, moved)))
            facts_.erase(key);
    for (const auto &[key, facts] : live) {
        const bool isTransition = key.starts_with(KeyOf(ObjectKind::Transition, {}).substr(0, 2));
        if ((isTransition && holders.contains(facts.holder) && !facts_.contains(key)) ||
            IsInside(live, key, moved))
            facts_[key] = facts;
        if (const auto known = facts_.find(key); shifted.contains(facts.holder) && known != facts_.end())
            known->second.texts[Aspect::Frames] = facts.texts.at(Aspect::Frames);
    }
    // Two objects hold a transition: it goes with the last of them.
    for (auto &[key, facts] : facts_)
        if (const auto found = live.find(key); found != live.end())
            facts.holder = found->second.holder;
}

std::string Mirror::DifferenceTo(const Project &project) const
{
    const FactsByKey live = FactsOf(project);
    for (const auto &[key, facts] : live) {
        const auto known = facts_.find(key);
        if (known == facts_.end())
            return "not told that it came: " + key;
        if (const std::string difference = DifferenceOf(known->second, facts); !difference.empty())
            return "not told of " + key + ": " + difference;
    }
    for (const auto &[key, facts] : facts_)
        if (!live.contains(key))
            return "not told that it went: " + key;
    return {};
}

} // namespace marlet::test
