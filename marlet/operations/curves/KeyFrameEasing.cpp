#include <marlet/operations/curves/KeyFrameOperations.h>

#include <marlet/history/Edit.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

/// The X of the two inner control points, as CSS Easing Functions Level 1 has them. Their Y are 0 and 1, so
/// that one handle serves values of any number of components.
struct Preset {
    Easing easing;
    const char *name;
    KeyFrameType type;
    double first;
    double second;
};

constexpr Preset kPresets[] = {
    {Easing::Linear, "linear", KeyFrameType::Linear, 0, 1},
    {Easing::EaseIn, "ease-in", KeyFrameType::Bezier, 0.42, 1},
    {Easing::EaseOut, "ease-out", KeyFrameType::Bezier, 0, 0.58},
    {Easing::EaseInOut, "ease-in-out", KeyFrameType::Bezier, 0.42, 0.58},
    {Easing::Hold, "hold", KeyFrameType::Hold, 0, 1},
};

const Preset &PresetOf(Easing easing)
{
    return kPresets[static_cast<std::size_t>(easing)];
}

/// Where the piece ends that begins at a key frame; null for the last one.
const KeyFrame *NextAfter(const KeyFrameList &list, const kytl::KyID &id)
{
    const KeyFrame *before = nullptr;
    const KeyFrame *after = nullptr;
    list.AdjacentKeyFrames(list.GetByID(id).Time(), &before, &after);
    return after;
}

} // namespace

const char *NameOf(Easing easing)
{
    return PresetOf(easing).name;
}

std::optional<Easing> FindEasing(std::string_view name)
{
    const auto *found = std::ranges::find(kPresets, name, &Preset::name);
    return found == std::end(kPresets) ? std::nullopt : std::optional(found->easing);
}

void EaseKeyFrames(const std::shared_ptr<Project> &project, const AnimatedProperty &property,
                   const std::vector<kytl::KyID> &keys, Easing easing)
{
    Edit edit(project, u"Ease key frames");
    std::vector<kytl::KyID> touched = keys;
    for (const kytl::KyID &id : keys)
        if (const KeyFrame *next = NextAfter(property.Keys(), id))
            touched.push_back(next->ID());
    property.Touch(edit, touched);

    const Preset &preset = PresetOf(easing);
    KeyFrameList &list = property.KeysToEdit();
    for (const kytl::KyID &id : keys) {
        KeyFrame &key = list.GetByID(id);
        key.SetType(preset.type);
        const KeyFrame *next = NextAfter(list, id);
        if (!next)
            continue;
        const double span = static_cast<double>(next->Time()) - key.Time();
        key.SetOutgoingPoint({static_cast<float>(preset.first * span), 0});
        list.GetByID(next->ID()).SetIncomingPoint({static_cast<float>((preset.second - 1) * span), 0});
    }
    edit.Commit();
}

} // namespace marlet::project
