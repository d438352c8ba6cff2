#include <tests/support/LayerStage.h>
#include <tests/support/MatrixMatchers.h>

#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>

#include <gtest/gtest.h>

namespace marlet::test
{
namespace
{

TEST(GradeLayer, HasItsOriginInTheMiddleOfItsFrame)
{
    const LayerStage stage;
    const auto layer = stage.Add(GradeLayer::Create(u"", 1920, 1080));
    EXPECT_EQ(layer->OriginAtTime(0, stage.project), Matrix::Translation(-960, -540, 0));
    layer->SetWidth(-3);
    layer->SetHeight(std::numeric_limits<int>::min());
    Set(*layer, "anchorPoint", Point{10, 0, 30});
    EXPECT_EQ(layer->OriginAtTime(0, stage.project), Matrix::Translation(-8.5f, 1073741824, 30));
    EXPECT_EQ(layer->Width(), -3);
    EXPECT_EQ(layer->Height(), std::numeric_limits<int>::min());
}

TEST(GradeLayer, GivesItsChildrenItsAnchorPointForTheirOrigin)
{
    const LayerStage stage;
    const auto parent = stage.Add(GradeLayer::Create(u"", 1920, 1080));
    const auto child = stage.AddPoint();
    child->SetParentLayer(parent->ID());
    Set(*parent, "position", Point{100, 0, 0});
    Set(*parent, "anchorPoint", Point{1, 2, 0});
    const Matrix expected = Matrix::Translation(99, -2, 0);
    EXPECT_EQ(parent->ParentingWorldTransformationAtTime(0, stage.project, false), expected);
    EXPECT_EQ(child->WorldTransformationAtTime(0, stage.project, false), expected);
    EXPECT_EQ(parent->WorldTransformationAtTime(0, stage.project, false),
              Matrix::Translation(99 - 960, -2 - 540, 0));
}

TEST(GradeLayer, IsPlacedLikeAPoint)
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
        EXPECT_EQ(layer->AlignToMotion({}, 0, stage.project, true), Matrix());
    }
}

} // namespace
} // namespace marlet::test
