#pragma once

#include <marlet/project/PanelRenderState.h>

#include <array>
#include <map>
#include <optional>

namespace marlet::project
{

/// One way to divide the panel. Internal.
struct PanelLayout {
    std::array<double, 3> splitters{};
    std::vector<std::optional<kytl::KyID>> positions; ///< the views, as many as the layout has positions

    bool HasSplitters() const { return positions.size() > 1; }
};

/// Any fixed order of IDs will do: copies list their views in it.
struct OrderByText {
    bool operator()(const kytl::KyID &a, const kytl::KyID &b) const
    {
        return a.ToCharacters() < b.ToCharacters();
    }
};

struct PanelRenderState_Impl {
    using LayoutType = PanelRenderState::LayoutType;
    using State = PanelRenderState::State;

    PanelRenderState_Impl();
    PanelRenderState_Impl(const PanelRenderState_Impl &other);

    /// @throws std::out_of_range
    PanelLayout &LayoutOf(LayoutType type);
    const PanelLayout &LayoutOf(LayoutType type) const;
    /// Null if the ID is not there.
    State *FindState(const kytl::KyID &id) const;
    /// Stores a view under its ID, in place of one that was there, and lists it.
    void AddState(const State &state);
    void RemoveState(const kytl::KyID &id);

    LayoutType layout{};
    std::array<PanelLayout, 5> layouts;
    /// Also the entries that are not in viewStates, which const look-ups make.
    mutable std::map<kytl::KyID, State, OrderByText> states;
    PanelRenderState::StateList viewStates;
};

} // namespace marlet::project
