#include <tests/support/LayerStage.h>
#include <tests/support/LayerTexts.h>

#include <marlet/layers/AssetLayer.h>

#include <gtest/gtest.h>

#include <thread>

namespace marlet::test
{
namespace
{

constexpr int kThreads = 4;
constexpr int kTimes[] = {-100, 0, 33, 500, 1234, 3000};

/// What a reader learns of each layer, in terms that do not depend on the stage.
struct Findings {
    std::vector<Matrix> matrices;
    std::vector<WideString> parents;
    int compositionsFound = 0;
    int sounding = 0;

    bool operator==(const Findings &) const = default;
};

/// A layer of the composition itself as a file tells of it, which knows its asset by ID alone.
std::shared_ptr<AbstractLayer> AddNested(const LayerStage &stage)
{
    const std::string text =
        Replaced(TextOf(*AssetLayer::Create(stage.composition)), "<AssetHasAudio>1", "<AssetHasAudio>0");
    const auto layer = std::static_pointer_cast<AssetLayer>(ReadLayer(text));
    layer->SetAutoOrientation(AutoOrient::AlongPath);
    return stage.Add(layer);
}

/// Adds points, lights and nested compositions with curved animations that hang on one another by IDs not
/// looked up yet.
void Animate(const LayerStage &stage)
{
    KyID parentID;
    for (int i = 0; i < 12; ++i) {
        std::shared_ptr<AbstractLayer> layer = stage.AddLight();
        if (i % 6 == 3)
            layer = AddNested(stage);
        if (i % 2 == 0)
            layer = stage.AddPoint(u"Layer " + WideString(1, char16_t(u'a' + i)));
        layer->SetDimensions(LayerDimensions::ThreeD);
        layer->SetStartFrame(i);
        const auto number = static_cast<float>(i);
        for (const int time : {0, 900, 2000}) {
            const auto t = static_cast<float>(time);
            SetAt(*layer, "position", time, Point{t, number * t, t * t / 1000});
            SetAt(*layer, "orientation", time, Orientation3D{t / 50, number, t / 30});
            KeyFrame key(time, t / 20);
            key.SetOutgoingPoint({300, 5});
            layer->Animation().KeyFrames("rotationZ").Add(key);
        }
        if (auto light = std::dynamic_pointer_cast<LightLayer>(layer))
            light->SetAutoOrientation(i % 4 == 1 ? AutoOrient::AlongPath : AutoOrient::TowardsTarget);
        if (i % 5 != 0)
            layer->SetParentLayer(parentID);
        parentID = layer->ID();
    }
}

Findings Look(const LayerStage &stage)
{
    Findings findings;
    for (const std::shared_ptr<AbstractLayer> &layer : std::as_const(*stage.composition).Layers()) {
        for (const int time : kTimes) {
            findings.matrices.push_back(layer->WorldTransformationAtTime(time, stage.project, true));
            findings.matrices.push_back(layer->ParentTransformationAtTime(time, stage.project, false));
        }
        const auto parent = layer->ParentLayer(stage.Assets());
        findings.parents.push_back(parent ? parent->Name() : u"none");
        findings.sounding += layer->HasAudio();
        findings.compositionsFound += layer->ParentComposition(stage.Assets()) == stage.composition;
    }
    return findings;
}

TEST(LayerThreads, LearnFromAColdDocumentWhatOneThreadLearns)
{
    const LayerStage first;
    Animate(first);
    const Findings expected = Look(first);
    ASSERT_EQ(expected.compositionsFound, static_cast<int>(expected.parents.size()));
    for (int round = 0; round < 10; ++round) {
        const LayerStage stage;
        Animate(stage);
        std::vector<Findings> found(kThreads);
        std::vector<std::thread> threads;
        for (Findings &findings : found)
            threads.emplace_back([&] { findings = Look(stage); });
        for (std::thread &thread : threads)
            thread.join();
        for (const Findings &findings : found)
            EXPECT_TRUE(findings == expected);
    }
}

TEST(LayerThreads, FindLayersByIDAfterEachChangeOfTheList)
{
    const LayerStage stage;
    std::vector<KyID> ids;
    for (int round = 0; round < 30; ++round) {
        ids.push_back(stage.AddPoint()->ID());
        if (round % 3 == 2)
            stage.composition->Layers().pop_front();
        std::vector<std::vector<KyID>> found(kThreads);
        std::vector<std::thread> threads;
        for (std::vector<KyID> &own : found)
            threads.emplace_back([&] {
                for (const KyID &id : ids)
                    if (const auto layer = stage.composition->FindLayerByID(id))
                        own.push_back(layer->ID());
            });
        for (std::thread &thread : threads)
            thread.join();
        const std::vector<KyID> expected(ids.begin() + (round + 1) / 3, ids.end());
        for (const std::vector<KyID> &own : found)
            EXPECT_EQ(own, expected) << round;
    }
}

} // namespace
} // namespace marlet::test
