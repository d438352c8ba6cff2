#include <tests/support/LayerStage.h>
#include <tests/support/MatrixMatchers.h>
#include <tests/support/TransformationModel.h>

#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/layers/TransformationHelper.h>
#include <marlet/masks/Mask.h>
#include <marlet/project/SolidAsset.h>

#include <gtest/gtest.h>

#include <random>

namespace marlet::test
{
namespace
{

Point ToPoint(const model::Triple &t)
{
    return {float(t[0]), float(t[1]), float(t[2])};
}

void Apply(const model::Layer &values, AbstractLayer &layer)
{
    layer.SetDimensions(values.flat ? LayerDimensions::TwoD : LayerDimensions::ThreeD);
    Set(layer, "position", ToPoint(values.position));
    Set(layer, "anchorPoint", ToPoint(values.anchor));
    Set(layer, "scale", Scale3D{values.scale[0], values.scale[1], values.scale[2]});
    const Point o = ToPoint(values.orientation);
    Set(layer, "orientation", Orientation3D{o.X, o.Y, o.Z});
    Set(layer, "rotationX", float(values.rotation[0]));
    Set(layer, "rotationY", float(values.rotation[1]));
    Set(layer, "rotationZ", float(values.rotation[2]));
}

/// A point, or a solid with wide pixels.
std::shared_ptr<AbstractLayer> AddLayer(const LayerStage &stage, bool isSolid)
{
    if (!isSolid)
        return stage.AddPoint();
    const auto solid = SolidAsset::Create(u"", {}, 100, 50, PAR::FourThirds);
    stage.project->Assets().All().Add(solid);
    return stage.Add(AssetLayer::Create(solid));
}

TEST(Transformation, ReplacesAScaleOfZeroWhenAsked)
{
    const LayerStage stage;
    const auto layer = stage.AddPoint();
    Set(*layer, "scale", Scale3D{100, -0.0, -50});
    EXPECT_EQ(TransformationHelper::Scale(layer.get(), stage.project, 0, false),
              Matrix::Scaling(1, 0, -0.5f));
    EXPECT_EQ(TransformationHelper::Scale(layer.get(), stage.project, 0, true),
              Matrix::Scaling(1, 0.00001f, -0.5f));
}

TEST(Transformation, AgreesWithThePlainModelDownToTheThirdGeneration)
{
    using model::operator*;
    std::mt19937 random(7);
    std::uniform_real_distribution<double> values(-300, 300);
    const auto triple = [&] { return model::Triple{values(random), values(random), values(random)}; };
    for (int round = 0; round < 50; ++round) {
        const LayerStage stage;
        std::vector<model::Layer> chain;
        std::shared_ptr<AbstractLayer> layer;
        for (int generation = 0; generation < 3; ++generation) {
            chain.push_back({round % 3 == generation, triple(), triple(), triple(), triple(), triple()});
            const auto child = AddLayer(stage, round % 2 == 1);
            Apply(chain.back(), *child);
            if (layer)
                child->SetParentLayer(layer->ID());
            layer = child;
        }
        const auto content = round % 2 == 1 ? model::Picture(100, 50, 4.0 / 3) : model::kIdentity;
        EXPECT_THAT(layer->WorldTransformationAtTime(0, stage.project, false),
                    IsMatrixNear(model::World(chain) * content, 5e-3));
        EXPECT_THAT(layer->ParentingWorldTransformationAtTime(0, stage.project, false),
                    IsMatrixNear(model::World(chain), 5e-3));
        EXPECT_THAT(TransformationHelper::WorldRotation(layer.get(), stage.project, 0),
                    IsMatrixNear(model::WorldRotation(chain), 1e-5));
        chain.pop_back();
        EXPECT_THAT(layer->ParentTransformationAtTime(0, stage.project, false),
                    IsMatrixNear(model::World(chain), 5e-3));
    }
}

TEST(Transformation, PlacesCamerasAndLightsWithoutScaleAndAnchor)
{
    const LayerStage stage;
    const std::shared_ptr<AbstractLayer> layers[] = {stage.AddCamera(), stage.AddLight()};
    for (const auto &layer : layers) {
        Set(*layer, "position", Point{1, 2, 3});
        Set(*layer, "orientation", Orientation3D{10, 20, 30});
        Set(*layer, "rotationY", 40.f);
        const model::Layer values{.position = {1, 2, 3}, .orientation = {10, 20, 30}, .rotation = {0, 40, 0}};
        EXPECT_THAT(layer->WorldTransformationAtTime(0, stage.project, true),
                    IsMatrixNear(model::World({values}), 1e-6));
    }
}

TEST(Transformation, OfAGradeHasItsOriginInTheMiddleOfItsFrame)
{
    const LayerStage stage;
    const auto layer = stage.Add(GradeLayer::Create(u"", 1920, 1080));
    EXPECT_EQ(layer->OriginAtTime(0, stage.project), Matrix::Translation(-960, -540, 0));
    layer->SetWidth(-3);
    layer->SetHeight(std::numeric_limits<int>::min());
    Set(*layer, "anchorPoint", Point{10, 0, 30});
    EXPECT_EQ(layer->OriginAtTime(0, stage.project), Matrix::Translation(-8.5f, 1073741824, 30));
}

TEST(Transformation, PlacesGradesAndTextsLikePoints)
{
    const LayerStage stage;
    const auto grade = stage.Add(GradeLayer::Create(u"", 0, 0));
    const auto text = stage.Add(TextLayer::Create(u"", 100, 100));
    const auto point = stage.AddPoint();
    const std::shared_ptr<AbstractLayer> layers[] = {point, grade, text};
    for (const auto &layer : layers) {
        layer->SetDimensions(LayerDimensions::ThreeD);
        Set(*layer, "position", Point{1, 2, 3});
        Set(*layer, "anchorPoint", Point{4, 5, 6});
        Set(*layer, "scale", Scale3D{10, 0, 30});
        Set(*layer, "orientation", Orientation3D{40, 50, 60});
        Set(*layer, "rotationX", 70.f);
    }
    for (const auto &layer : layers) {
        EXPECT_EQ(layer->WorldTransformationAtTime(0, stage.project, true),
                  point->WorldTransformationAtTime(0, stage.project, true));
    }
}

} // namespace
} // namespace marlet::test
