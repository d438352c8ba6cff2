#include "Loading.h"

#include <marlet/project/PanelRenderState.h>
#include <marlet/project/ProjectTextureImageCache.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace marlet::project;
using kytl::KyID;

namespace
{

using Layout = PanelRenderState::LayoutType;
using Splitter = PanelRenderState::SplitterType;
using View = PanelRenderState::ViewType;

struct PanelRenderStateTest : testing::Test {
    PanelRenderState panel = PanelRenderState::Create();
    std::shared_ptr<CompositionAsset> composition =
        CompositionAsset::Create(u"Shot", AudioVideoSettings::Preset::Hd720At25, 10);
    ProjectTextureImageCache textures;

    /// Reads the composition again with this in place of its viewer's state.
    void ReadWith(const std::string &viewer)
    {
        std::string text = ToUtf8(composition->Serialize(textures));
        const std::string end = "</ViewerState>";
        const std::size_t from = text.find("<ViewerState");
        text.replace(from, text.find(end) + end.size() - from, viewer);
        composition->Deserialize(FromUtf8(text), nullptr, NoEffects(), textures);
    }
};

} // namespace

TEST_F(PanelRenderStateTest, PutsTheSplittersOfALayoutBack)
{
    const double defaults[] = {0, 0, 0, .5, .5};
    for (int i = 0; i < 5; ++i) {
        panel.SetLayoutSplitterPosition(Layout(i), Splitter(2), .25);
        EXPECT_EQ(panel.LayoutSplitterPosition(Layout(i), Splitter(2)), i < 2 ? 0 : .25) << i;
        panel.ResetLayout(Layout(i));
        EXPECT_EQ(panel.LayoutSplitterPosition(Layout(i), Splitter(2)), defaults[i]) << i;
    }
    for (const int wrong : {-1, 5})
        EXPECT_THROW(panel.ResetLayout(Layout(wrong)), std::out_of_range);
    EXPECT_THROW(panel.LayoutSplitterPosition(Layout(2), Splitter(3)), std::out_of_range);
}

TEST_F(PanelRenderStateTest, GivesANewViewTheCameraOfItsType)
{
    using Point = kytl::matl::KyPoint<3, float>;
    using Vector = kytl::matl::KyVector<3, float>;
    constexpr float kFar = 1e6f;
    const float pi = std::acos(-1.f);
    const struct {
        Point position;
        Vector rotation;
    } cameras[] = {
        {{}, {}},
        {{}, {}},
        {{0, 100, 1000}, {}},
        {{0, 0, kFar}, {}},
        {{0, 0, -kFar}, {0, pi, 0}},
        {{-kFar, 0, 0}, {0, -pi / 2, 0}},
        {{kFar, 0, 0}, {0, pi / 2, 0}},
        {{0, kFar, 0}, {-pi / 2, 0, 0}},
        {{0, -kFar, 0}, {pi / 2, 0, -pi}},
        {{}, {}},
    };
    int type = 0;
    for (const auto &[position, rotation] : cameras) {
        SCOPED_TRACE(type);
        const auto &view = panel.ViewState(panel.AddViewState(View(type), Layout(3)));
        EXPECT_EQ(view.Type, View(type++));
        EXPECT_EQ(view.Layout, Layout(3));
        EXPECT_EQ(view.CameraPosition, position);
        EXPECT_EQ(view.initialCameraPosition, position);
        EXPECT_EQ(view.CameraRotation, rotation);
    }
}

TEST_F(PanelRenderStateTest, StartsViewsWithTheirDefaults)
{
    EXPECT_EQ(panel.Layout(), Layout(0));
    EXPECT_TRUE(panel.ViewStates().IsEmpty());
    const KyID id = panel.AddViewState();
    const auto &view = panel.ViewState(id);
    EXPECT_EQ(view.ID, id);
    EXPECT_FALSE(id.IsNull());
    EXPECT_EQ(view.Type, View(0));
    EXPECT_EQ(view.Layout, Layout(5));
    EXPECT_EQ(view.CameraScale, 1);
    EXPECT_EQ(view.TextureScale, 1);
    EXPECT_EQ(view.cameraVector, (kytl::matl::KyVector<3, float>{0, 0, 0}));
    EXPECT_EQ(view.TexturePosition, (kytl::matl::KyPoint<2, float>{0, 0}));
    EXPECT_EQ(std::tuple(view.viewOption, view.Gz, view.Ch, view.Qu), std::tuple(1, 0, 0, 2));
    EXPECT_TRUE(view.Li && view.Sh && view.MB && view.DOF && view.Vol && view.WoAx && view.displayOption);
    EXPECT_FALSE(view.TrCb || view.Active);
    EXPECT_EQ(view.BGColor, (kytl::KyColorRGBA_32f{0, 0, 0, 0}));
}

TEST_F(PanelRenderStateTest, GivesTheViewsOfACloneNewIDsAndLeavesOutWhatIsNotListed)
{
    for (PanelRenderState *state : {&composition->ViewerPanelState(), &composition->LayerPanelState()}) {
        state->SetLayout(Layout(3));
        state->SetLayoutSplitterPosition(Layout(3), Splitter(0), .25);
        for (const int position : {2, 0}) {
            const KyID id = state->AddViewState();
            state->ViewState(id).Gz = position;
            state->SetViewStateForPosition(id, Layout(3), position);
        }
        state->SetViewStateForPosition(KyID::Generate(), Layout(3),
                                       1); // looked up, and so there, but not listed
    }
    auto shot = composition;
    for (int round = 0; round < 4; ++round) {
        const auto clone = CompositionAsset::Copy(shot);
        for (const auto part : {+[](const CompositionAsset &c) { return &c.ViewerPanelState(); },
                                +[](const CompositionAsset &c) { return &c.LayerPanelState(); }}) {
            if (round > 0 && part(*shot) == &shot->LayerPanelState())
                continue; // which is not saved
            const PanelRenderState &copy = *part(*clone);
            ASSERT_EQ(copy.ViewStates().Count(), 2u);
            EXPECT_EQ(copy.LayoutSplitterPosition(Layout(3), Splitter(0)), .25);
            EXPECT_EQ(copy.Layout(), Layout(3));
            for (const int index : {0, 1}) {
                const auto *view = copy.ViewStates()[index];
                EXPECT_EQ(view->Gz, 2 - 2 * index);
                EXPECT_EQ(copy.ViewStateForPosition(Layout(3), view->Gz), view->ID);
                EXPECT_EQ(&copy.ViewState(view->ID), view);
                EXPECT_FALSE(part(*shot)->HasViewState(view->ID));
            }
            EXPECT_FALSE(copy.HasViewStateForPosition(Layout(3), 1));
        }
        shot = CompositionAsset::CreateFromXml(clone->Serialize(textures), nullptr, NoEffects(), textures);
    }
}

TEST_F(PanelRenderStateTest, HandsOutTheLastViewThatStandsNowhere)
{
    const auto get = [&] { return panel.GetOrAddViewState(View(3), Layout(2)); };
    const KyID first = get();
    EXPECT_EQ(get(), first);
    const KyID second = panel.AddViewState(View(3), Layout(2));
    panel.AddViewState(View(3), Layout(4));
    panel.AddViewState(View(4), Layout(2));
    EXPECT_EQ(get(), second);
    panel.SetViewStateForPosition(second, Layout(2), 1);
    panel.SetViewStateForPosition(first, Layout(2), 2); // which the layout does not have
    EXPECT_EQ(get(), first);
    panel.SetViewStateForPosition(first, Layout(2), 0);
    EXPECT_NE(get(), first);
    EXPECT_EQ(panel.ViewStates().Count(), 5u);
}

TEST_F(PanelRenderStateTest, ActivatesOnePositionOfALayout)
{
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
    EXPECT_TRUE(panel.ViewStates().IsEmpty());
}

TEST_F(PanelRenderStateTest, CopiesItsViewsAndWhatWasOnlyLookedUp)
{
    const KyID id = panel.AddViewState();
    const KyID unknown = KyID::Generate();
    EXPECT_NE(std::as_const(panel).ViewState(unknown).ID, unknown);
    EXPECT_EQ(panel.ViewStates().Count(), 1u);
    PanelRenderState copy(panel);
    EXPECT_EQ(copy.ViewStates().Count(), 2u);
    copy.ViewState(id).Gz = 9;
    EXPECT_EQ(panel.ViewStates().front()->Gz, 0);
    EXPECT_EQ(copy.ViewStates()[0]->Gz + copy.ViewStates()[1]->Gz, 9);
}

TEST_F(PanelRenderStateTest, IsReadWithPositionsThatNameNoView)
{
    const auto &read = std::as_const(*composition).ViewerPanelState();
    const std::string id = "c4e1b29d-7768-4f03-9e5c-0a0b0c0d0e0f";
    const std::string start =
        "<ViewerState Version='0'><CurrentLayout>9</CurrentLayout><Layout2 Sp1='.25' Pos0='' Pos1='" + id +
        "' Pos2='bad'/><Views><State ID='" + id +
        "' Type='4'><TexturePosition X='1' Y='2'/><CameraPosition X='1' Y='2' Z='3'/>"
        "<CameraRotation X='0' Y='0' Z='0'/>";
    const std::string end = "</State></Views></ViewerState>";
    ReadWith(start + end);
    EXPECT_EQ(read.Layout(), Layout(9));
    EXPECT_EQ(read.LayoutSplitterPosition(Layout(2), Splitter(0)), 0);
    EXPECT_FALSE(read.HasViewStateForPosition(Layout(2), 0));
    EXPECT_TRUE(read.ViewStates().IsEmpty());
    EXPECT_EQ(read.ViewState(read.ViewStateForPosition(Layout(2), 1)).Type, View(0));

    ReadWith(start + "<Options><BGColor R='1' G='0' B='0' A='0'/></Options>" + end);
    ASSERT_EQ(read.ViewStates().Count(), 1u);
    EXPECT_EQ(read.ViewStates().front(), &read.ViewState(KyID::FromString(id)));
    EXPECT_EQ(read.ViewStates().front()->Layout, Layout(0));
}

TEST_F(PanelRenderStateTest, StaysAsItWasWhenItsCompositionIsNotRead)
{
    const KyID id = composition->ViewerPanelState().AddViewState();
    const auto *view = composition->ViewerPanelState().ViewStates().front();
    composition->LayerPanelState().SetLayout(Layout(4));
    EXPECT_THROW(ReadWith("<ViewerState Version='0'/>"), std::exception);
    ReadWith("");
    EXPECT_EQ(&composition->ViewerPanelState().ViewState(id), view);
    EXPECT_EQ(CompositionAsset::Copy(composition)->LayerPanelState().Layout(), Layout(4));
}
