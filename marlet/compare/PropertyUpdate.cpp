#include <marlet/compare/Update.h>

#include <marlet/animation/KeyFrameList.h>
#include <marlet/animation/PropertyManager.h>
#include <marlet/history/Edit.h>

namespace marlet::project
{

namespace
{

/// Whether all that differs are values: the same properties in the same order, with their defaults.
bool HaveSameForm(const std::vector<TextElement> &before, const std::vector<TextElement> &after)
{
    return std::equal(before.begin(), before.end(), after.begin(), after.end(),
                      [](const TextElement &a, const TextElement &b) {
                          return a.Tag() == b.Tag() && a.AllAttributes() == b.AllAttributes() &&
                                 a.Child("Default") == b.Child("Default");
                      });
}

/// Those that stand at one time take over from one another in their order; what is left goes or comes.
void UpdateKeyFrames(KeyFrameList &keys, const KeyFrameList &fresh)
{
    std::vector<KeyFrame> wanted;
    fresh.ForEach([&](const KeyFrame &key) { wanted.push_back(key); });
    auto next = wanted.begin();
    for (const kytl::KyID &id : keys.Identifiers()) {
        KeyFrame &key = keys.GetByID(id);
        for (; next != wanted.end() && next->Time() < key.Time(); ++next)
            keys.Add(*next);
        if (next == wanted.end() || next->Time() > key.Time())
            keys.Remove(id);
        else if (KeyFrameList::SerializeKeyFrame(key) != KeyFrameList::SerializeKeyFrame(*next++))
            key = *(next - 1);
    }
    for (; next != wanted.end(); ++next)
        keys.Add(*next);
}

void UpdateProperty(const ElementPair &elements, PropertyManager &properties, PropertyManager &fresh,
                    const char *name)
{
    if (!elements.Child("Static").IsSame())
        properties.StaticValue(name) = fresh.StaticValue(name);
    if (!elements.Child("Expression").IsSame())
        properties.Expression(name) = fresh.Expression(name);
    if (!elements.Child("Animation").IsSame())
        UpdateKeyFrames(properties.KeyFrames(name), fresh.KeyFrames(name));
}

} // namespace

void UpdateProperties(const Update &update, const ElementPair &owner,
                      const std::shared_ptr<PropertyManager> &properties, PropertyManager &fresh,
                      ObjectKind kind, const kytl::KyID &id)
{
    const ElementPair elements = owner.Child("PropertyManager");
    if (elements.IsSame())
        return;
    const std::vector<TextElement> before = elements.before.Children();
    const std::vector<TextElement> after = elements.after.Children();
    if (!HaveSameForm(before, after)) {
        update.edit.TouchAll(properties, kind, id);
        properties->Swap(*PropertyManager::CopyWithIDs(fresh));
        return;
    }
    for (std::size_t i = 0; i < after.size(); ++i) {
        if (before[i] == after[i])
            continue;
        const NarrowString name(after[i].Tag());
        update.edit.Touch(properties, name.c_str(), kind, id);
        UpdateProperty({before[i], after[i]}, *properties, fresh, name.c_str());
    }
}

} // namespace marlet::project
