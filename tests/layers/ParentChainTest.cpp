#include <tests/support/FixedLayer.h>
#include <tests/support/LayerStage.h>
#include <tests/support/MatrixMatchers.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <functional>
#include <limits>
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
    } catch (const std::exception &error) {
        return error.what();
    }
    return "none";
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

TEST(ParentChain, FindsParentsThatStandFarDownALongList)
{
    // Of the processor's time, since others use it as well, and the least of some rounds, since the heap may
    // tidy up in one of them after what came before.
    std::clock_t least[2] = {std::numeric_limits<std::clock_t>::max(),
                             std::numeric_limits<std::clock_t>::max()};
    for (int round = 0; round < 4; ++round) {
        const LayerStage stage;
        const auto parent = std::make_shared<FixedLayer>();
        for (int i = 1; i < 20'000; ++i)
            stage.Add(std::make_shared<FixedLayer>())->SetParentLayer(parent->ID());
        stage.Add(parent);
        for (std::clock_t &time : least) {
            const std::clock_t start = std::clock();
            for (const auto &layer : std::as_const(*stage.composition).Layers())
                layer->WorldTransformationAtTime(0, stage.project, false);
            time = std::min(time, std::clock() - start);
        }
    }
    // Walking the list for each of them takes a thousand times as long.
    EXPECT_LT(least[0], 50 * least[1]);
}

TEST(ParentChain, FailsWhereParentsRunInACircle)
{
    const LayerStage stage;
    for (const int tail : {0, 5}) {
        for (const int length : {1, 2, 20}) {
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
    EXPECT_THAT(FailureOf([&] { layer->ParentTransformationAtTime(0, stage.project, false); }),
                HasSubstr("Orphan"));

    stage.Add(parent);
    Set(*parent, "position", Point{3, 0, 0});
    EXPECT_EQ(layer->ParentLayer(stage.Assets()), parent);
    EXPECT_EQ(layer->ParentTransformationAtTime(0, stage.project, false), Matrix::Translation(3, 0, 0));
}

TEST(ParentChain, NeedsTheCompositionOfTheLayer)
{
    const LayerStage stage;
    const auto layer = stage.AddPoint();
    const KyID id = KyID::FromString("0123abcd-0000-0000-0000-000000000000");
    layer->SetParentComposition(id);
    EXPECT_EQ(FailureOf([&] { layer->WorldTransformationAtTime(0, stage.project, false); }),
              "Composition not found for ID: 0123abcd-0000-0000-0000-000000000000");
    layer->SetParentComposition(stage.composition);
    EXPECT_EQ(layer->ParentComposition(stage.Assets()), stage.composition);
}

} // namespace
} // namespace marlet::test
