#include <tests/support/LayerStage.h>
#include <tests/support/MatrixMatchers.h>

#include <marlet/layers/ParentHelper.h>

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

namespace marlet::test
{
namespace
{

/// A stage with a parent and a layer that is handed to ParentHelper.
struct Family : LayerStage {
    std::shared_ptr<PointLayer> parent = AddPoint(u"Parent");
    std::shared_ptr<AbstractLayer> layer = AddPoint(u"Layer");

    Matrix World(int time = 0) const { return layer->WorldTransformationAtTime(time, project, false); }
    void Parent(int time = 0) { ParentHelper::Parent(project, time, parent, layer); }
    void RemoveParent(int time = 0) { ParentHelper::RemoveParent(project, time, layer); }
};

/// Gives a layer odd values, with the same scale along all axes so that no parent shears its children.
void Scatter(AbstractLayer &layer, std::mt19937 &random)
{
    std::uniform_real_distribution<float> values(-150, 150);
    const auto point = [&] { return Point{values(random), values(random), values(random)}; };
    Set(layer, "position", point());
    Set(layer, "anchorPoint", point());
    const double scale = 150.5 + values(random);
    Set(layer, "scale", Scale3D{scale, scale, scale});
    Set(layer, "orientation", Orientation3D{values(random), values(random), values(random)});
    for (const char *rotation : {"rotationX", "rotationY", "rotationZ"})
        Set(layer, rotation, values(random));
}

TEST(ParentHelper, KeepsALayerWhereItIs)
{
    std::mt19937 random(5);
    for (const LayerDimensions dimensions : {LayerDimensions::TwoD, LayerDimensions::ThreeD}) {
        for (int round = 0; round < 20; ++round) {
            Family f;
            const auto grandparent = f.AddPoint();
            f.parent->SetParentLayer(grandparent);
            f.parent->SetStartFrame(20);
            const std::shared_ptr<AbstractLayer> layers[] = {f.layer, f.parent, grandparent};
            for (const auto &layer : layers) {
                layer->SetDimensions(dimensions);
                Scatter(*layer, random);
            }
            SetAt(*f.parent, "rotationZ", 0, 0.f);
            SetAt(*f.parent, "rotationZ", 1000, 77.f);
            const Matrix before = f.World(1000);
            f.Parent(1000);
            EXPECT_THAT(f.World(1000), IsMatrixNear(before, 2e-2));
            EXPECT_EQ(f.layer->ParentLayer(f.Assets()), f.parent);
            f.RemoveParent(1000);
            EXPECT_THAT(f.World(1000), IsMatrixNear(before, 2e-2));
            EXPECT_FALSE(f.layer->HasParentLayer());
        }
    }
}

TEST(ParentHelper, MovesAllKeyFramesByTheSameAmount)
{
    Family f;
    f.layer->SetDimensions(LayerDimensions::ThreeD);
    Set(*f.parent, "position", Point{10, 20, 30});
    Set(*f.parent, "rotationZ", -90.f);
    Set(*f.parent, "scale", Scale3D{50, 50, 50});
    SetAt(*f.layer, "position", 0, Point{0, 0, 0});
    SetAt(*f.layer, "position", 1000, Point{100, 0, 0});
    SetAt(*f.layer, "scale", 0, Scale3D{100, 100, 100});
    SetAt(*f.layer, "scale", 1000, Scale3D{300, 100, 40});
    SetAt(*f.layer, "orientation", 0, Orientation3D{0, 0, 10});
    const Matrix before = f.World(500);
    f.Parent(500);
    // At (50, 0, 0) the layer is (40, -20, -30) from the parent, whose frame is turned by 90 degrees and half
    // as large: (-40, -80, -60) there, so that key frames move by (-90, -80, -60).
    EXPECT_THAT(f.World(500), IsMatrixNear(before, 1e-4));
    EXPECT_THAT(Get<Point>(*f.layer, "position", 0), IsPointNear(-90, -80, -60, 1e-3));
    EXPECT_THAT(Get<Point>(*f.layer, "position", 1000), IsPointNear(10, -80, -60, 1e-3));
    EXPECT_THAT(Get<Scale3D>(*f.layer, "scale", 1000), IsPointNear(600, 200, 80, 1e-3));
    EXPECT_THAT(Get<Orientation3D>(*f.layer, "orientation", 0), IsPointNear(0, 0, 100, 1e-3));
}

TEST(ParentHelper, MultipliesByAHundredWhatIsZeroAtTheTime)
{
    Family f;
    SetAt(*f.layer, "scale", 0, Scale3D{0, 100, 100});
    SetAt(*f.layer, "scale", 1000, Scale3D{3, 50, 100});
    f.Parent(0);
    EXPECT_EQ(Get<Scale3D>(*f.layer, "scale", 0).X, 0);
    EXPECT_EQ(Get<Scale3D>(*f.layer, "scale", 1000).X, 300);
}

TEST(ParentHelper, TurnsACameraByItsOrientationAlone)
{
    Family f;
    f.layer = f.AddCamera();
    Set(*f.layer, "rotationX", 15.f);
    Set(*f.parent, "rotationZ", 20.f);
    f.Parent();
    EXPECT_THAT(Get<Orientation3D>(*f.layer, "orientation"), IsPointNear(0, 0, -20, 1e-4));
    EXPECT_EQ(Get<float>(*f.layer, "rotationX"), 15);
}

TEST(ParentHelper, LeavesTheLinkToWhoeverAsksForThePositionAlone)
{
    Family f;
    Set(*f.parent, "position", Point{30, 0, 0});
    ParentHelper::UpdatePosition(f.project, 0, f.layer, f.parent);
    EXPECT_EQ(Get<Point>(*f.layer, "position"), (Point{-30, 0, 0}));
    EXPECT_FALSE(f.layer->HasParentLayer());
    f.layer->SetParentLayer(f.parent);
    ParentHelper::UpdatePosition(f.project, 0, f.layer, nullptr);
    EXPECT_EQ(Get<Point>(*f.layer, "position"), (Point{0, 0, 0}));
    EXPECT_EQ(f.layer->ParentLayer(f.Assets()), f.parent);
}

TEST(ParentHelper, KeepsALayerWhereItIsWhenItGoesToAnotherParent)
{
    for (const LayerDimensions dimensions : {LayerDimensions::TwoD, LayerDimensions::ThreeD}) {
        Family f;
        const auto second = f.AddPoint();
        f.layer->SetDimensions(dimensions);
        Set(*f.parent, "position", Point{10, 20, 0});
        Set(*f.parent, "rotationZ", 30.f);
        Set(*second, "position", Point{-5, 7, 0});
        Set(*second, "rotationZ", 50.f);
        f.Parent();
        const Matrix before = f.World();
        f.parent = second;
        f.Parent();
        EXPECT_EQ(f.layer->ParentLayer(f.Assets()), second);
        EXPECT_THAT(f.World().TransformPoint({}), IsPointNear(0, 0, 0, 1e-4));
        if (dimensions == LayerDimensions::TwoD)
            EXPECT_THAT(f.World(), IsMatrixNear(before, 1e-4));
        else // the rotation of a parent that is left for another one stays behind: -30 less 50
            EXPECT_THAT(Get<Orientation3D>(*f.layer, "orientation"), IsPointNear(0, 0, -80, 1e-3));
    }
}

TEST(ParentHelper, ChangesNothingButTheLinkInAFrameThatCannotBeInverted)
{
    Family f;
    Set(*f.parent, "scale", Scale3D{1e-20, 1e-20, 1e-20});
    Set(*f.layer, "position", Point{1, 2, 3});
    f.Parent();
    EXPECT_EQ(f.layer->ParentLayer(f.Assets()), f.parent);
    EXPECT_EQ(Get<Point>(*f.layer, "position"), (Point{1, 2, 3}));
    EXPECT_EQ(Get<Scale3D>(*f.layer, "scale"), Scale3D{});
}

TEST(ParentHelper, TakesAFrameForOneThatCannotBeInvertedIfRoundingMayBeAllThatIsLeftOfIt)
{
    // Each flattens what the other one turns.
    Family f;
    const auto grandparent = f.AddPoint();
    f.parent->SetParentLayer(grandparent);
    for (const auto &layer : {f.parent, grandparent}) {
        Set(*layer, "scale", Scale3D{1e-6, 100, 100});
        Set(*layer, "rotationZ", 35.f);
    }
    Set(*f.layer, "position", Point{10, 20, 0});
    f.Parent();
    EXPECT_EQ(f.layer->ParentLayer(f.Assets()), f.parent);
    EXPECT_EQ(Get<Point>(*f.layer, "position"), (Point{10, 20, 0}));
}

TEST(ParentHelper, CannotTakeAParentFromALayerInSpaceThatHasNone)
{
    Family f;
    f.RemoveParent();
    f.layer->SetDimensions(LayerDimensions::ThreeD);
    Set(*f.layer, "scale", Scale3D{0, 0, 0});
    EXPECT_THROW(f.RemoveParent(), std::logic_error);
    EXPECT_EQ(Get<Scale3D>(*f.layer, "scale"), (Scale3D{0, 0, 0}));

    const KyID missing = KyID::Generate();
    f.layer->SetParentLayer(missing);
    EXPECT_THROW(f.RemoveParent(), std::logic_error);
    EXPECT_EQ(f.layer->ParentLayerID(), missing);
}

} // namespace
} // namespace marlet::test
