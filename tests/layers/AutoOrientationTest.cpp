#include <tests/support/LayerStage.h>
#include <tests/support/MatrixMatchers.h>

#include <gtest/gtest.h>

#include <limits>

namespace marlet::test
{
namespace
{

Vector Turned(const Matrix &matrix, Vector v)
{
    matrix.RotateVector(v);
    return v;
}

/// Moves a layer along a line, 1 pixel a millisecond along X, Y and Z each times the given factors.
void MoveAlong(AbstractLayer &layer, const Vector &way)
{
    SetAt(layer, "position", 0, Point{});
    SetAt(layer, "position", 1000, Point{1000 * way.X, 1000 * way.Y, 1000 * way.Z});
}

TEST(AutoOrientation, TurnsACameraTowardsItsTargetAndKeepsItUpright)
{
    const auto camera = CameraLayer::Create(u"", 1, 1, 1, 1);
    camera->SetAutoOrientation(AutoOrient::TowardsTarget);
    for (const Vector &way : {Vector{0, 0, -5}, {3, 4, 0}, {-300, 10, 25}, {0.1f, -90, 0.1f}}) {
        Set(*camera, "position", Point{10, 20, 30});
        Set(*camera, "target", Point{10 + way.X, 20 + way.Y, 30 + way.Z});
        const Matrix m = camera->AutoOrientAtTime(0);
        const float length = Length(way);
        EXPECT_THAT(Turned(m, {0, 0, -1}), IsPointNear(way.X / length, way.Y / length, way.Z / length, 1e-5));
        EXPECT_NEAR(Turned(m, {1, 0, 0}).Y, 0, 1e-5);
        EXPECT_GT(Turned(m, {0, 1, 0}).Y, 0);
        EXPECT_NEAR(m.Determinant(), 1, 1e-5);
    }
}

TEST(AutoOrientation, TakesAnotherUpForATargetStraightAboveOrBelow)
{
    const auto light = LightLayer::Create(u"", {});
    light->SetAutoOrientation(AutoOrient::TowardsTarget);
    Set(*light, "position", Point{});
    Set(*light, "target", Point{0, -100, 0});
    EXPECT_EQ(Turned(light->AutoOrientAtTime(0), {1, 0, 0}), (Vector{0, 0, -1}));
    EXPECT_EQ(Turned(light->AutoOrientAtTime(0), {0, 0, 1}), (Vector{0, 1, 0}));
    Set(*light, "target", Point{0, 100, 0});
    EXPECT_EQ(Turned(light->AutoOrientAtTime(0), {1, 0, 0}), (Vector{0, 0, 1}));
    EXPECT_EQ(Turned(light->AutoOrientAtTime(0), {0, 0, 1}), (Vector{0, -1, 0}));
}

TEST(AutoOrientation, TurnsUpOntoTheWayOfMotionAboutWhereItStands)
{
    const LayerStage stage;
    const std::shared_ptr<CameraLayer> camera = stage.AddCamera();
    camera->SetAutoOrientation(AutoOrient::AlongPath);
    MoveAlong(*camera, {1, 0, 0});
    const Matrix world = camera->WorldTransformationAtTime(500, stage.project, false);
    EXPECT_THAT(world.TransformPoint({0, 10, 0}), IsPointNear(510, 0, 0, 1e-3));
    EXPECT_THAT(world.TransformPoint({0, 0, 10}), IsPointNear(500, 0, 10, 1e-3));

    // A child follows the path, but is not turned.
    const auto child = stage.AddPoint();
    child->SetParentLayer(camera);
    EXPECT_THAT(child->WorldTransformationAtTime(500, stage.project, false),
                IsMatrixNear(Matrix::Translation(500, 0, 0), 1e-5));
}

TEST(AutoOrientation, ReflectsWhatMovesStraightAgainstItsTurnedYAxis)
{
    const LayerStage stage;
    const auto camera = stage.AddCamera();
    camera->SetAutoOrientation(AutoOrient::AlongPath);
    MoveAlong(*camera, {0, -1, 0});
    EXPECT_THAT(camera->WorldTransformationAtTime(500, stage.project, false),
                IsMatrixNear(Matrix::Translation(0, -500, 0) * Matrix::Scaling(1, -1, 1), 1e-5));
}

TEST(AutoOrientation, LeavesALayerAloneThatStandsOrGoesItsOwnWay)
{
    static const struct {
        const char *name;
        Vector way;
        float rotationZ;
        int time;
    } kCases[] = {
        {"stands", {0, 0, 0}, 30, 500},
        {"creeps", {5e-7f, 0, 0}, 30, 500},
        {"along its turned Y axis", {1, 0, 0}, 90, 500},
        {"at the end of time", {1, 0, 0}, 0, std::numeric_limits<int>::max()},
    };
    for (const auto &c : kCases) {
        SCOPED_TRACE(c.name);
        const LayerStage stage;
        const auto light = stage.AddLight();
        light->SetAutoOrientation(AutoOrient::AlongPath);
        Set(*light, "rotationZ", c.rotationZ);
        MoveAlong(*light, c.way);
        EXPECT_EQ(light->WorldTransformationAtTime(c.time, stage.project, false),
                  light->TransformationAtTime(c.time, stage.project, false));
    }
}

TEST(AutoOrientation, RefusesTheModesOfPictures)
{
    const auto camera = CameraLayer::Create(u"", 1, 1, 1, 1);
    const auto light = LightLayer::Create(u"", {});
    for (const auto &[mode, expected] : {std::pair(4, 4), {2, 4}, {3, 4}, {1, 1}, {7, 7}}) {
        camera->SetAutoOrientation(AutoOrient{mode});
        light->SetAutoOrientation(AutoOrient{mode});
        EXPECT_EQ(camera->AutoOrientation(), AutoOrient{expected});
        EXPECT_EQ(light->AutoOrientation(), AutoOrient{expected});
    }
}

} // namespace
} // namespace marlet::test
