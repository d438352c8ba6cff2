#include <marlet/project/PanelRenderState.h>

#include <marlet/project/PanelRenderState_Impl.h>

#include <algorithm>
#include <numbers>
#include <stdexcept>
#include <string>
#include <unordered_map>

namespace marlet::project
{

using kytl::KyID;

namespace
{

struct LayoutDefaults {
    std::size_t positionCount;
    std::array<double, 3> splitters;
};

constexpr std::array<LayoutDefaults, 5> kLayouts = {
    {{1, {}}, {1, {}}, {2, {0.5, 0, 0}}, {3, {0.5, 0, 0.5}}, {4, {0.5, 0.5, 0.5}}}};

/// An index of a table, which an enumeration came for.
/// @throws std::out_of_range
std::size_t Index(const char *name, int value, std::size_t count)
{
    if (value < 0 || static_cast<std::size_t>(value) >= count)
        throw std::out_of_range("There is no " + std::string(name) + " " + std::to_string(value));
    return static_cast<std::size_t>(value);
}

std::size_t LayoutIndex(PanelRenderState::LayoutType layout)
{
    return Index("layout", static_cast<int>(layout), kLayouts.size());
}

std::size_t SplitterIndex(PanelRenderState::SplitterType splitter)
{
    return Index("splitter", static_cast<int>(splitter), kLayouts[0].splitters.size());
}

bool HasPosition(const PanelLayout &layout, int position)
{
    return position >= 0 && static_cast<std::size_t>(position) < layout.positions.size();
}

/// Puts the camera of a new view where its type wants it.
void PlaceCamera(PanelRenderState::State &state)
{
    constexpr float kPi = std::numbers::pi_v<float>;
    constexpr float kFar = 1'000'000;
    constexpr int kFirstType = 2;
    static constexpr struct {
        kytl::matl::KyPoint<3, float> position;
        kytl::matl::KyVector<3, float> rotation;
    } kCameras[] = {
        {{0, 100, 1000}, {}},
        {{0, 0, kFar}, {}},
        {{0, 0, -kFar}, {0, kPi, 0}},
        {{-kFar, 0, 0}, {0, -kPi / 2, 0}},
        {{kFar, 0, 0}, {0, kPi / 2, 0}},
        {{0, kFar, 0}, {-kPi / 2, 0, 0}},
        {{0, -kFar, 0}, {kPi / 2, 0, -kPi}},
    };
    const int type = static_cast<int>(state.Type);
    if (type < kFirstType || type >= kFirstType + static_cast<int>(std::size(kCameras)))
        return;
    const auto &camera = kCameras[type - kFirstType];
    state.CameraPosition = camera.position;
    state.initialCameraPosition = camera.position;
    state.CameraRotation = camera.rotation;
}

} // namespace

PanelRenderState_Impl::PanelRenderState_Impl()
{
    for (std::size_t i = 0; i < layouts.size(); ++i) {
        layouts[i].splitters = kLayouts[i].splitters;
        layouts[i].positions.resize(kLayouts[i].positionCount);
    }
}

PanelRenderState_Impl::PanelRenderState_Impl(const PanelRenderState_Impl &other)
    : layout(other.layout), layouts(other.layouts), states(other.states)
{
    for (auto &[id, state] : states)
        viewStates.Add(&state);
}

PanelLayout &PanelRenderState_Impl::LayoutOf(LayoutType type)
{
    return layouts[LayoutIndex(type)];
}

const PanelLayout &PanelRenderState_Impl::LayoutOf(LayoutType type) const
{
    return layouts[LayoutIndex(type)];
}

PanelRenderState::State *PanelRenderState_Impl::FindState(const KyID &id) const
{
    const auto found = states.find(id);
    return found == states.end() ? nullptr : &found->second;
}

void PanelRenderState_Impl::AddState(const State &state)
{
    viewStates.Add(&states.insert_or_assign(state.ID, state).first->second);
}

void PanelRenderState_Impl::RemoveState(const KyID &id)
{
    const auto found = states.find(id);
    if (found == states.end())
        return;
    // A file in which an ID stands twice lists its view twice.
    std::erase(viewStates, &found->second);
    states.erase(found);
}

PanelRenderState::PanelRenderState() = default;

PanelRenderState::PanelRenderState(const XmlCursor &element) : PanelRenderState()
{
    Deserialize(element);
}

PanelRenderState PanelRenderState::Create()
{
    return PanelRenderState();
}

PanelRenderState::PanelRenderState(const PanelRenderState &other) = default;

PanelRenderState &PanelRenderState::operator=(PanelRenderState other)
{
    impl_.Swap(other.impl_);
    return *this;
}

PanelRenderState::~PanelRenderState() = default;

void PanelRenderState::Swap(PanelRenderState &other) noexcept
{
    impl_.Swap(other.impl_);
}

PanelRenderState PanelRenderState::WithNewViews() const
{
    PanelRenderState copy;
    copy.impl_->layout = impl_->layout;
    copy.impl_->layouts = impl_->layouts;

    // Hosts can change the ID in a view; positions name it by the one that it is stored under.
    std::unordered_map<const State *, KyID> storedIDs;
    for (const auto &[id, view] : impl_->states)
        storedIDs.emplace(&view, id);
    std::unordered_map<KyID, KyID> newIDs;
    for (const State *view : impl_->viewStates) {
        State state = *view;
        state.ID = KyID::Generate();
        // A file in which an ID stands twice lists its view twice.
        if (newIDs.try_emplace(storedIDs.at(view), state.ID).second)
            copy.impl_->AddState(state);
    }
    for (PanelLayout &layout : copy.impl_->layouts)
        for (std::optional<KyID> &place : layout.positions)
            if (const auto found = newIDs.find(place.value_or(KyID())); found != newIDs.end())
                place = found->second;
            else
                place.reset();
    return copy;
}

PanelRenderState::LayoutType PanelRenderState::Layout() const
{
    return impl_->layout;
}

void PanelRenderState::SetLayout(LayoutType layout)
{
    impl_->layout = layout;
}

double PanelRenderState::LayoutSplitterPosition(LayoutType layout, SplitterType splitter) const
{
    return impl_->LayoutOf(layout).splitters[SplitterIndex(splitter)];
}

void PanelRenderState::SetLayoutSplitterPosition(LayoutType layout, SplitterType splitter, double position)
{
    PanelLayout &changed = impl_->LayoutOf(layout);
    const std::size_t index = SplitterIndex(splitter);
    if (changed.HasSplitters())
        changed.splitters[index] = position;
}

KyID PanelRenderState::AddViewState()
{
    const State state;
    impl_->AddState(state);
    return state.ID;
}

KyID PanelRenderState::AddViewState(ViewType type, LayoutType layout)
{
    State state;
    state.Type = type;
    state.Layout = layout;
    PlaceCamera(state);
    impl_->AddState(state);
    return state.ID;
}

KyID PanelRenderState::GetOrAddViewState(ViewType type, LayoutType layout)
{
    const auto &taken = impl_->LayoutOf(layout).positions;
    const auto isFree = [&](const State *state) {
        return state->Type == type && state->Layout == layout &&
               std::ranges::find(taken, state->ID) == taken.end();
    };
    const StateList &views = impl_->viewStates;
    const auto last = std::find_if(views.rbegin(), views.rend(), isFree);
    return last == views.rend() ? AddViewState(type, layout) : (*last)->ID;
}

bool PanelRenderState::HasViewState(const KyID &id) const
{
    return impl_->FindState(id) != nullptr;
}

PanelRenderState::State &PanelRenderState::ViewState(const KyID &id)
{
    return impl_->states[id];
}

const PanelRenderState::State &PanelRenderState::ViewState(const KyID &id) const
{
    return impl_->states[id];
}

const PanelRenderState::StateList &PanelRenderState::ViewStates() const
{
    return impl_->viewStates;
}

void PanelRenderState::RemoveViewState(const KyID &id)
{
    impl_->RemoveState(id);
}

void PanelRenderState::SetViewStateForPosition(const KyID &id, LayoutType layout, int position)
{
    PanelLayout &changed = impl_->LayoutOf(layout);
    if (!HasPosition(changed, position))
        return;
    changed.positions[static_cast<std::size_t>(position)] = id;
    ViewState(id).Layout = layout;
}

KyID PanelRenderState::ViewStateForPosition(LayoutType layout, int position) const
{
    const PanelLayout &asked = impl_->LayoutOf(layout);
    if (!HasPosition(asked, position))
        return KyID();
    return asked.positions[static_cast<std::size_t>(position)].value_or(KyID());
}

bool PanelRenderState::HasViewStateForPosition(LayoutType layout, int position) const
{
    const PanelLayout &asked = impl_->LayoutOf(layout);
    return HasPosition(asked, position) && asked.positions[static_cast<std::size_t>(position)].has_value();
}

KyID PanelRenderState::ActiveViewInLayout(LayoutType layout) const
{
    return ViewStateForPosition(layout, ActivePositionInLayout(layout));
}

int PanelRenderState::ActivePositionInLayout(LayoutType layout) const
{
    int position = 0;
    for (const std::optional<KyID> &id : impl_->LayoutOf(layout).positions) {
        const State *state = id ? impl_->FindState(*id) : nullptr;
        if (state && state->Active)
            return position;
        ++position;
    }
    return -1;
}

void PanelRenderState::SetActiveViewInLayout(LayoutType layout, const KyID &id)
{
    for (const std::optional<KyID> &placed : impl_->LayoutOf(layout).positions)
        if (State *state = placed ? impl_->FindState(*placed) : nullptr)
            state->Active = *placed == id;
}

void PanelRenderState::SetActivePositionInLayout(LayoutType layout, int position)
{
    int current = 0;
    for (const std::optional<KyID> &placed : impl_->LayoutOf(layout).positions) {
        if (State *state = placed ? impl_->FindState(*placed) : nullptr)
            state->Active = current == position;
        ++current;
    }
}

void PanelRenderState::ResetLayout(LayoutType layout)
{
    PanelLayout &reset = impl_->LayoutOf(layout);
    for (std::optional<KyID> &id : reset.positions) {
        if (id)
            impl_->RemoveState(*id);
        id.reset();
    }
    reset.splitters = kLayouts[LayoutIndex(layout)].splitters;
}

void PanelRenderState::Clear()
{
    impl_->viewStates.Clear();
    impl_->states.clear();
    for (PanelLayout &layout : impl_->layouts)
        std::ranges::fill(layout.positions, std::nullopt);
}

} // namespace marlet::project
