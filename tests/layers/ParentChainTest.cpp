#include <tests/support/FixedLayer.h>
#include <tests/support/LayerStage.h>
#include <tests/support/MatrixMatchers.h>

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

namespace marlet::test
{
namespace
{

using testing::HasSubstr;

std::string FailureOf(const std::function<void()> &action)
{
    try {
        action();
    } catch (const std::logic_error &error) {
        return error.what();
    }
    return "no std::logic_error";
}

TEST(ParentChain, EvaluatesEachParentAtTheSameMomentOfItsOwnTime)
{
    const LayerStage stage;
    const auto root = stage.AddPoint();
    const auto parent = stage.AddPoint();
    const auto child = stage.AddPoint();
    root->SetStartFrame(90);
    parent->SetStartFrame(30);
    child->SetStartFrame(60);
    parent->SetParentLayer(root);
    child->SetParentLayer(parent);
    for (const auto &layer : {root, parent}) {
        SetAt(*layer, "rotationZ", 0, 0.f);
        SetAt(*layer, "rotationZ", 10000, 100.f);
    }
    // Frame 120 is 2 s of the child, 3 s of its parent and 1 s of the root.
    const Matrix m = child->ParentTransformationAtTime(2000, stage.project, false);
    const double angle = -40 * 3.14159265358979 / 180;
    EXPECT_THAT(m.TransformPoint({1, 0, 0}), IsPointNear(std::cos(angle), std::sin(angle), 0, 1e-6));
}

TEST(ParentChain, HangsChildrenOfPicturesOnTheAnchorAlone)
{
    const LayerStage stage;
    for (const LayerType type : {LayerType::Asset, LayerType::Grade, LayerType::Text}) {
        const auto parent = stage.Add(std::make_shared<FixedLayer>(type));
        parent->Animation().CreateSpatialProperty("anchorPoint", Point{0, 5, 0},
                                                  PropertyManager::Type::Animatable, nullptr);
        parent->origin = Matrix::Translation(0, 0, 7);
        const bool isPicture = type != LayerType::Text;
        EXPECT_EQ(parent->ParentingWorldTransformationAtTime(0, stage.project, false),
                  isPicture ? Matrix::Translation(1, -5, 0) : Matrix::Translation(1, 0, 7));
        EXPECT_EQ(parent->WorldTransformationAtTime(0, stage.project, false), Matrix::Translation(1, 0, 7));
    }
}

TEST(ParentChain, MayBeAMillionLayersDeep)
{
    constexpr int kDepth = 1'000'000;
    const LayerStage stage;
    const auto root = stage.Add(std::make_shared<FixedLayer>());
    KyID parentID = root->ID();
    std::shared_ptr<FixedLayer> last;
    for (int i = 1; i < kDepth; ++i) {
        last = stage.Add(std::make_shared<FixedLayer>());
        last->SetParentLayer(parentID);
        parentID = last->ID();
    }
    EXPECT_EQ(last->WorldTransformationAtTime(0, stage.project, false), Matrix::Translation(kDepth, 0, 0));
    root->SetParentLayer(last);
    EXPECT_THAT(FailureOf([&] { last->WorldTransformationAtTime(0, stage.project, false); }),
                HasSubstr("run in a circle"));
}

TEST(ParentChain, FailsWhereParentsRunInACircle)
{
    const LayerStage stage;
    for (const int tail : {0, 1, 5}) {
        for (const int length : {1, 2, 3, 20}) {
            std::vector<std::shared_ptr<PointLayer>> layers;
            for (int i = 0; i < tail + length; ++i) {
                layers.push_back(stage.AddPoint(u"Number " + WideString(1, char16_t(u'a' + i))));
                if (i > 0)
                    layers[i - 1]->SetParentLayer(layers[i]->ID());
            }
            layers.back()->SetParentLayer(layers[tail]->ID());
            const std::string failure =
                FailureOf([&] { layers[0]->WorldTransformationAtTime(0, stage.project, false); });
            EXPECT_THAT(failure, HasSubstr("\"Number a\" (" + layers[0]->ID().ToNarrowString()));
            EXPECT_THAT(failure, HasSubstr("circle"));
        }
    }
}

TEST(ParentChain, FailsForAParentThatIsNotThereUntilItIsAdded)
{
    const LayerStage stage;
    const auto layer = stage.AddPoint(u"Orphan");
    const auto parent = PointLayer::Create(u"Late");
    layer->SetParentLayer(parent->ID());
    EXPECT_EQ(layer->ParentLayer(stage.Assets()), nullptr);
    const std::string failure =
        FailureOf([&] { layer->ParentTransformationAtTime(0, stage.project, false); });
    EXPECT_THAT(failure, HasSubstr("Orphan"));
    EXPECT_THAT(failure, HasSubstr(parent->ID().ToNarrowString()));

    stage.Add(parent);
    Set(*parent, "position", Point{3, 0, 0});
    EXPECT_EQ(layer->ParentLayer(stage.Assets()), parent);
    EXPECT_EQ(layer->ParentTransformationAtTime(0, stage.project, false), Matrix::Translation(3, 0, 0));
}

TEST(ParentChain, ForgetsAParentThatIsGone)
{
    const LayerStage stage;
    const auto layer = stage.AddPoint();
    auto parent = stage.AddPoint();
    layer->SetParentLayer(parent);
    stage.composition->Layers().remove(parent);
    EXPECT_EQ(layer->ParentLayer(stage.Assets()), parent);
    parent.reset();
    EXPECT_EQ(layer->ParentLayer(stage.Assets()), nullptr);
    EXPECT_THROW(layer->ParentTransformationAtTime(0, stage.project, false), std::logic_error);
}

TEST(ParentChain, NeedsTheCompositionOfTheLayer)
{
    const LayerStage stage;
    const auto layer = stage.AddPoint();
    const KyID id = KyID::FromString("0123abcd-0000-0000-0000-000000000000");
    layer->SetParentComposition(id);
    try {
        layer->WorldTransformationAtTime(0, stage.project, false);
        FAIL();
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "Composition not found for ID: 0123abcd-0000-0000-0000-000000000000");
    }
    layer->SetParentComposition(stage.composition);
    EXPECT_EQ(layer->ParentComposition(stage.Assets()), stage.composition);
    EXPECT_EQ(layer->WorldTransformationAtTime(0, stage.project, false), Matrix());
    layer->ClearParentComposition();
    EXPECT_THROW(layer->TransformationAtTime(0, stage.project, false), std::runtime_error);
}

} // namespace
} // namespace marlet::test
