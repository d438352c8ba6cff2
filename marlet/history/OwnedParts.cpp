// The parts of what layers and objects own: masks, trackers, effects and transitions.

#include <marlet/editor/Transition.h>
#include <marlet/history/Fields.h>
#include <marlet/history/Parts.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

namespace marlet::project
{

namespace
{

constexpr std::tuple
    kMaskFields(Setting(Aspect::Name, &Mask::Name, &Mask::SetName),
                Setting(Aspect::Settings, &Mask::IsVisible, &Mask::SetVisible),
                Setting(Aspect::Links, &Mask::ParentLayerID, &Mask::SetParentLayerID),
                Field{Aspect::Links, [](const Mask &mask) { return mask.Path().ParentID(); },
                      [](Mask &mask, const kytl::KyID &id) { mask.Path().SetParentID(id); }},
                Field{Aspect::Members, [](const Mask &mask) { return mask.Path().Points(); },
                      [](Mask &mask, const MotionPath::PointList &points) { mask.Path().Points() = points; }},
                Field{Aspect::Settings, [](const Mask &mask) { return mask.Path().WantsToBeClosed(); },
                      [](Mask &mask, bool closed) { mask.Path().SetWantsToBeClosed(closed); }});

// What is made linear becomes locked, too.
constexpr std::tuple kPathPointFields(Setting(Aspect::Links, &PathPoint::ParentPathID,
                                              &PathPoint::SetParentPathID),
                                      Setting(Aspect::Settings, &PathPoint::IsLinear, &PathPoint::SetLinear),
                                      Setting(Aspect::Settings, &PathPoint::IsLocked, &PathPoint::SetLocked));

constexpr std::tuple kTrackerFields(
    Setting(Aspect::Name, &Tracker::Name, &Tracker::SetName),
    Setting(Aspect::Settings, &Tracker::Type, &Tracker::SetType),
    Setting(Aspect::Settings, &Tracker::Method, &Tracker::SetMethod),
    Setting(Aspect::Settings, &Tracker::Purpose, &Tracker::SetPurpose),
    Setting(Aspect::Settings, &Tracker::TransformationOptions, &Tracker::SetTransformationOptions),
    Setting(Aspect::Links, &Tracker::ParentLayerID, &Tracker::SetParentLayerID),
    Setting(Aspect::Links, &Tracker::DestinationLayerID, &Tracker::SetDestinationLayerID),
    Held(Aspect::Members, &Tracker::PrimaryTrackingPoint, &Tracker::PrimaryTrackingPoint),
    Held(Aspect::Members, &Tracker::SecondaryTrackingPoint, &Tracker::SecondaryTrackingPoint));

constexpr std::tuple kTrackingPointFields(Setting(Aspect::Settings, &TrackingPoint::IsVisible,
                                                  &TrackingPoint::SetVisible));

struct Parents {
    kytl::KyID parent;
    kytl::KyID timeline;

    bool operator==(const Parents &other) const = default;
};

constexpr std::tuple kEffectFields(Setting(Aspect::Name, &EffectInstance::Name, &EffectInstance::SetName),
                                   Setting(Aspect::Settings, &EffectInstance::Enabled,
                                           &EffectInstance::SetEnabled),
                                   Field{Aspect::Links,
                                         [](const EffectInstance &effect) {
                                             return Parents{effect.ParentID(), effect.ParentTimelineID()};
                                         },
                                         [](EffectInstance &effect, const Parents &parents) {
                                             effect.SetParent(parents.parent, parents.timeline);
                                         }});

constexpr std::tuple kTransitionFields(
    Setting(Aspect::Links, &Transition::FromObject, &Transition::SetFromObject),
    Setting(Aspect::Links, &Transition::ToObject, &Transition::SetToObject),
    Setting(Aspect::Frames, &Transition::Length, &Transition::SetLength),
    Setting(Aspect::Frames, &Transition::RelativeStartFrame, &Transition::SetRelativeStartFrame));

using UIState = PluginInstance::UIState;
using NamedState = std::pair<NarrowString, bool>;

/// In the order of their names.
std::vector<NamedState> PanelStates(const PluginInstance &instance)
{
    std::vector<NamedState> states;
    for (const auto &[name, state] : instance.PanelStates())
        states.emplace_back(name, state.visible);
    std::ranges::sort(states);
    return states;
}

void SetPanelStates(PluginInstance &instance, const std::vector<NamedState> &states)
{
    std::unordered_map<NarrowString, UIState> table;
    for (const auto &[name, visible] : states)
        table[name].visible = visible;
    instance.SetPanelStates(table);
}

bool IsAlive(const PluginInstance &instance)
{
    return instance.Plugin() != nullptr;
}

// An instance whose plug-in is gone has private data that nobody can name any more.
constexpr std::tuple kInstanceFields(
    Field{Aspect::View, [](const PluginInstance &instance) { return PanelStates(instance); },
          [](PluginInstance &instance, const std::vector<NamedState> &states) {
              SetPanelStates(instance, states);
          }},
    Field{Aspect::PrivateData,
          [](const PluginInstance &instance) {
              return IsAlive(instance) ? instance.PrivateBytes() : std::nullopt;
          },
          [](PluginInstance &instance, const std::optional<std::vector<unsigned char>> &bytes) {
              if (IsAlive(instance))
                  instance.SetPrivateBytes(bytes);
          }});

} // namespace

std::unique_ptr<EditedPart> MakePart(const std::shared_ptr<Mask> &mask)
{
    return Make<kMaskFields>(mask, ObjectKind::Mask);
}

std::unique_ptr<EditedPart> MakePart(const std::shared_ptr<PathPoint> &point)
{
    return Make<kPathPointFields>(point, ObjectKind::PathPoint);
}

std::unique_ptr<EditedPart> MakePart(const std::shared_ptr<Tracker> &tracker)
{
    return Make<kTrackerFields>(tracker, ObjectKind::Tracker);
}

std::unique_ptr<EditedPart> MakePart(const std::shared_ptr<TrackingPoint> &point)
{
    return Make<kTrackingPointFields>(point, ObjectKind::TrackingPoint);
}

void MakeParts(const std::shared_ptr<PluginInstance> &instance, const PartSink &sink)
{
    const bool isEffect = instance->Type() == AbstractPluginInstance::InstanceType::Effect;
    const ObjectKind kind = isEffect ? ObjectKind::Effect : ObjectKind::Transition;
    // First, and so exchanged last by an undo: a plug-in may look at what the library holds.
    sink(Make<kInstanceFields>(instance, kind));
    if (const auto effect = std::dynamic_pointer_cast<EffectInstance>(instance))
        sink(Make<kEffectFields>(effect, kind));
    else if (const auto transition = std::dynamic_pointer_cast<Transition>(instance))
        sink(Make<kTransitionFields>(transition, kind));
}

void TakeOver(Mask &mask, const Mask &other)
{
    TakeOverFields<kMaskFields>(mask, other);
}

void TakeOver(PathPoint &point, const PathPoint &other)
{
    TakeOverFields<kPathPointFields>(point, other);
}

void TakeOver(Tracker &tracker, const Tracker &other)
{
    TakeOverFields<kTrackerFields>(tracker, other);
}

void TakeOver(TrackingPoint &point, const TrackingPoint &other)
{
    TakeOverFields<kTrackingPointFields>(point, other);
}

void TakeOver(PluginInstance &instance, const PluginInstance &other)
{
    TakeOverFields<kInstanceFields>(instance, other);
    if (auto *effect = dynamic_cast<EffectInstance *>(&instance))
        TakeOverFields<kEffectFields>(*effect, dynamic_cast<const EffectInstance &>(other));
    else if (auto *transition = dynamic_cast<Transition *>(&instance))
        TakeOverFields<kTransitionFields>(*transition, dynamic_cast<const Transition &>(other));
}

} // namespace marlet::project
