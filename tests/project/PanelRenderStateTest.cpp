#include "Loading.h"

#include <marlet/project/PanelRenderState.h>
#include <marlet/project/ProjectTextureImageCache.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace marlet::project;
using kytl::KyID;

namespace
{

using Layout = PanelRenderState::LayoutType;
using Splitter = PanelRenderState::SplitterType;
using View = PanelRenderState::ViewType;

std::vector<double> Splitters(const PanelRenderState &panel, Layout layout)
{
    return {panel.LayoutSplitterPosition(layout, Splitter(0)),
            panel.LayoutSplitterPosition(layout, Splitter(1)),
            panel.LayoutSplitterPosition(layout, Splitter(2))};
}

std::vector<KyID> Listed(const PanelRenderState &panel)
{
    std::vector<KyID> ids;
    for (const PanelRenderState::State *state : panel.ViewStates())
        ids.push_back(state->ID);
    return ids;
}

std::shared_ptr<CompositionAsset> Composition()
{
    return CompositionAsset::Create(u"Shot", AudioVideoSettings::Preset::Hd720At25, 10);
}

/// The text of a composition that has this in place of its viewer's state.
WideString TextWith(const std::string &viewer)
{
    ProjectTextureImageCache textures;
    std::string text = ToUtf8(Composition()->Serialize(textures));
    const std::string end = "</ViewerState>";
    const std::size_t from = text.find("<ViewerState");
    return FromUtf8(text.replace(from, text.find(end) + end.size() - from, viewer));
}

void Read(CompositionAsset &composition, const WideString &text)
{
    ProjectTextureImageCache textures;
    composition.Deserialize(text, nullptr, NoEffects(), textures);
}

} // namespace

TEST(PanelRenderState, PutsTheSplittersOfALayoutBack)
{
    const std::vector<double> defaults[] = {{0, 0, 0}, {0, 0, 0}, {.5, 0, 0}, {.5, 0, .5}, {.5, .5, .5}};
    PanelRenderState panel = PanelRenderState::Create();
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(Splitters(panel, Layout(i)), defaults[i]) << i;
        panel.SetLayoutSplitterPosition(Layout(i), Splitter(1), .25);
        EXPECT_EQ(Splitters(panel, Layout(i))[1], i < 2 ? 0 : .25) << i;
        panel.ResetLayout(Layout(i));
        EXPECT_EQ(Splitters(panel, Layout(i)), defaults[i]) << i;
    }
    for (const int wrong : {-1, 5})
        EXPECT_THROW(panel.ResetLayout(Layout(wrong)), std::out_of_range);
    EXPECT_THROW(panel.LayoutSplitterPosition(Layout(2), Splitter(3)), std::out_of_range);
}

TEST(PanelRenderState, GivesANewViewTheCameraOfItsType)
{
    const float pi = std::acos(-1.f);
    const struct {
        int type;
        kytl::matl::KyPoint<3, float> position;
        kytl::matl::KyVector<3, float> rotation;
    } cases[] = {{1, {}, {}},
                 {2, {0, 100, 1000}, {}},
                 {3, {0, 0, 1e6f}, {}},
                 {4, {0, 0, -1e6f}, {0, pi, 0}},
                 {5, {-1e6f, 0, 0}, {0, -pi / 2, 0}},
                 {6, {1e6f, 0, 0}, {0, pi / 2, 0}},
                 {7, {0, 1e6f, 0}, {-pi / 2, 0, 0}},
                 {8, {0, -1e6f, 0}, {pi / 2, 0, -pi}},
                 {9, {}, {}}};
    PanelRenderState panel = PanelRenderState::Create();
    for (const auto &test : cases) {
        const auto &view = panel.ViewState(panel.AddViewState(View(test.type), Layout(3)));
        EXPECT_EQ(view.CameraPosition, test.position) << test.type;
        EXPECT_EQ(view.initialCameraPosition, test.position) << test.type;
        EXPECT_EQ(view.CameraRotation, test.rotation) << test.type;
        EXPECT_EQ(view.Layout, Layout(3));
    }
    EXPECT_EQ(panel.ViewState(panel.AddViewState()).Layout, PanelRenderState::kNoLayout);
}

TEST(PanelRenderState, HandsOutTheLastViewThatStandsNowhere)
{
    PanelRenderState panel = PanelRenderState::Create();
    const KyID first = panel.GetOrAddViewState(View(3), Layout(2));
    EXPECT_EQ(panel.GetOrAddViewState(View(3), Layout(2)), first);
    const KyID second = panel.AddViewState(View(3), Layout(2));
    panel.AddViewState(View(3), Layout(4));
    panel.AddViewState(View(4), Layout(2));
    EXPECT_EQ(panel.GetOrAddViewState(View(3), Layout(2)), second);
    panel.SetViewStateForPosition(second, Layout(2), 1);
    EXPECT_EQ(panel.GetOrAddViewState(View(3), Layout(2)), first);
    panel.SetViewStateForPosition(first, Layout(2), 2); // which the layout does not have
    EXPECT_EQ(panel.ViewStateForPosition(Layout(2), 2), KyID());
    panel.SetViewStateForPosition(first, Layout(2), 0);
    const KyID third = panel.GetOrAddViewState(View(3), Layout(2));
    EXPECT_NE(third, first);
    EXPECT_NE(third, second);
}

TEST(PanelRenderState, ActivatesOnePositionOfALayout)
{
    PanelRenderState panel = PanelRenderState::Create();
    const KyID left = panel.AddViewState();
    const KyID right = panel.AddViewState();
    panel.SetViewStateForPosition(left, Layout(3), 0);
    panel.SetViewStateForPosition(right, Layout(3), 2);
    EXPECT_EQ(panel.ActivePositionInLayout(Layout(3)), -1);
    panel.SetActivePositionInLayout(Layout(3), 2);
    EXPECT_EQ(panel.ActiveViewInLayout(Layout(3)), right);
    panel.SetActiveViewInLayout(Layout(3), left);
    EXPECT_EQ(panel.ActivePositionInLayout(Layout(3)), 0);
    EXPECT_FALSE(panel.ViewState(right).Active);

    panel.RemoveViewState(left);
    EXPECT_TRUE(panel.HasViewStateForPosition(Layout(3), 0));
    EXPECT_EQ(panel.ActiveViewInLayout(Layout(3)), KyID());
    panel.ResetLayout(Layout(3));
    EXPECT_FALSE(panel.HasViewStateForPosition(Layout(3), 0));
    EXPECT_FALSE(panel.HasViewState(right));
    EXPECT_TRUE(panel.ViewStates().IsEmpty());
}

TEST(PanelRenderState, CopiesItsViewsAndWhatWasOnlyLookedUp)
{
    PanelRenderState panel = PanelRenderState::Create();
    const KyID id = panel.AddViewState();
    const PanelRenderState::State *address = &panel.ViewState(id);
    for (int i = 0; i < 1000; ++i)
        panel.AddViewState();
    EXPECT_EQ(panel.ViewStates().front(), address);

    const KyID unknown = KyID::Generate();
    EXPECT_NE(std::as_const(panel).ViewState(unknown).ID, unknown);
    EXPECT_TRUE(panel.HasViewState(unknown));
    EXPECT_EQ(panel.ViewStates().Count(), 1001u);

    PanelRenderState copy(panel);
    EXPECT_EQ(copy.ViewStates().Count(), 1002u);
    EXPECT_EQ(Listed(PanelRenderState(copy)), Listed(copy));
    copy.ViewState(id).Gz = 9;
    EXPECT_EQ(address->Gz, 0);
    for (const PanelRenderState::State *state : copy.ViewStates())
        EXPECT_EQ(std::ranges::count(panel.ViewStates(), state), 0);
}

TEST(PanelRenderState, IsReadWithPositionsThatNameNoView)
{
    const auto composition = Composition();
    const auto &panel = std::as_const(*composition).ViewerPanelState();
    const std::string id = "c4e1b29d-7768-4f03-9e5c-0a0b0c0d0e0f";
    const auto withView = [&](const std::string &options) {
        return TextWith("<ViewerState Version='0'><CurrentLayout>9</CurrentLayout><Layout2 Sp1='.25' Pos0=''"
                        " Pos1='" +
                        id + "' Pos2='bad'/><Views><State ID='" + id +
                        "' Type='4' Layout='0'>"
                        "<TexturePosition X='1' Y='2'/><CameraPosition X='1' Y='2' Z='3'/>"
                        "<CameraRotation X='0' Y='0' Z='0'/>" +
                        options + "</State></Views></ViewerState>");
    };
    Read(*composition, withView(""));
    EXPECT_EQ(panel.Layout(), Layout(9));
    EXPECT_EQ(Splitters(panel, Layout(2)), (std::vector<double>{0, .25, 0}));
    EXPECT_FALSE(panel.HasViewStateForPosition(Layout(2), 0));
    EXPECT_EQ(panel.ViewStateForPosition(Layout(2), 1), KyID::FromString(id));
    EXPECT_TRUE(panel.ViewStates().IsEmpty());
    EXPECT_EQ(panel.ViewState(KyID::FromString(id)).Type, View(0));

    Read(*composition, withView("<Options><BGColor R='1' G='0' B='0' A='0'/></Options>"));
    ASSERT_EQ(panel.ViewStates().Count(), 1u);
    EXPECT_EQ(panel.ViewStates().front(), &panel.ViewState(KyID::FromString(id)));
    EXPECT_EQ(panel.ViewStates().front()->Layout, Layout(0));
    EXPECT_FALSE(panel.ViewStates().front()->Li);
}

TEST(PanelRenderState, StaysAsItWasWhenItsCompositionIsNotRead)
{
    const auto composition = Composition();
    const KyID id = composition->ViewerPanelState().AddViewState();
    const auto *view = composition->ViewerPanelState().ViewStates().front();
    composition->SetCurrentTimeIndicator(5);
    EXPECT_THROW(Read(*composition, TextWith("<ViewerState Version='0'/>")), std::exception);
    EXPECT_EQ(composition->CurrentTimeIndicator(), 5);
    Read(*composition, TextWith(""));
    EXPECT_EQ(composition->CurrentTimeIndicator(), 0);
    EXPECT_EQ(&composition->ViewerPanelState().ViewState(id), view);

    composition->LayerPanelState().SetLayout(Layout(4));
    const auto clone = CompositionAsset::Copy(composition);
    EXPECT_TRUE(clone->ViewerPanelState().HasViewState(id));
    EXPECT_EQ(clone->LayerPanelState().Layout(), Layout(4));
    ProjectTextureImageCache textures;
    Read(*clone, composition->Serialize(textures));
    EXPECT_EQ(clone->Serialize(textures), composition->Serialize(textures));
}
