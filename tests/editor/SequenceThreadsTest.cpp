#include <marlet/editor/AudioObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>

#include <gtest/gtest.h>

#include <thread>

namespace marlet::test
{
namespace
{

using namespace marlet::project;

/// Objects as a file tells of them, which know their assets by ID alone.
template <class Object> std::shared_ptr<Object> Cold(const std::shared_ptr<AbstractAsset> &asset)
{
    const auto object = Object::Create(asset, EditorSequence::Create({}, 1));
    return Object::CreateFromXml(object->Serialize(), nullptr);
}

TEST(SequenceThreads, LearnFromColdObjectsWhatOneThreadLearns)
{
    constexpr int kRounds = 20;
    const auto project = Project::Create(nullptr);
    const auto solid = SolidAsset::Create(u"", {}, 200, 100, PAR::Square);
    const auto composition = CompositionAsset::Create(u"", AudioVideoSettings::Preset::Hd720At25, 10);
    project->Assets().All().Add(solid);
    project->Assets().All().Add(composition);
    for (int round = 0; round < kRounds; ++round) {
        const auto picture = Cold<VisualObject>(solid);
        const auto sound = Cold<AudioObject>(composition);
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&] {
                EXPECT_EQ(picture->AssetType(), AssetType::Solid);
                EXPECT_EQ(picture->WorldTransformation(project)[3], -100);
                EXPECT_EQ(picture->OriginTransformation(project)[7], -50);
                EXPECT_EQ(picture->Asset(project->Assets()), solid);
                EXPECT_EQ(sound->AudioFrameRate(project->Assets()), 25);
                EXPECT_EQ(sound->AssetType(), AssetType::Composition);
            });
        // Saving is reading too.
        threads.emplace_back([&] {
            EXPECT_NE(picture->Serialize(), u"");
            EXPECT_NE(sound->Serialize(), u"");
        });
        for (std::thread &thread : threads)
            thread.join();
        EXPECT_EQ(picture->AssetType(), AssetType::Solid);
    }
}

} // namespace
} // namespace marlet::test
