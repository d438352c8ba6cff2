#include "ToolTest.h"
#include "plugins/PluginManager.h"
#include "plugins/Plugins.h"
#include "plugins/Ribbon.h"

#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/SolidAsset.h>
#include <marlet/tracking/Tracker.h>

namespace marlet::test
{

namespace
{

/// A layer "Map" that a child, an effect, a tracker and, over its parent, a 3D effect refer to.
class CloneAndDeleteTest : public ToolTest
{
protected:
    CloneAndDeleteTest()
    {
        map_ = AddPoint(u"Map");
        child_ = AddPoint(u"Child");
        child_->SetParentLayer(map_);
        const auto grade = GradeLayer::Create(u"Grade", 64, 64);
        const auto effect = EffectInstance::Create(tool::Plugins()->FindPlugin(tool::kDisplacementID));
        effect->SetName(u"Shift");
        effect->SetParent(grade->ID(), composition_->ID());
        effect->Properties().StaticValue("map") = map_->ID();
        grade->Effects().Add(effect);
        composition_->Layers().Add(grade);
        const auto ribbon = std::make_shared<tool::Ribbon>();
        ribbon->Properties().StaticValue(tool::Ribbon::kFollowed) = child_->ID();
        composition_->Layers().Add(Effect3DLayer::Create(ribbon, u"Ribbon"));
        const auto sky = SolidAsset::Create(u"Sky", {}, 64, 64, PAR::Square);
        project_->Assets().All().Add(sky);
        const auto tracked = AssetLayer::Create(sky);
        tracked->Trackers().Add(Tracker::Create(u"Cloud", {}, {}, 8, 16));
        tracked->Trackers().back()->SetParentLayerID(tracked->ID());
        tracked->Trackers().back()->SetDestinationLayerID(map_->ID());
        composition_->Layers().Add(tracked);
        sky->Instances().Add(tracked);
        for (const auto &layer : composition_->Layers())
            layer->SetParentComposition(composition_);
        Save("a.xml");
    }

    ToolRun Delete(const std::string &layer) const
    {
        return Run({"delete", "a.xml", "b.xml", "--composition=Main", "--layer", layer});
    }

    std::shared_ptr<AbstractLayer> map_;
    std::shared_ptr<AbstractLayer> child_;
};

TEST_F(CloneAndDeleteTest, AClonedCompositionRefersToItsOwnLayersAndStandsBesideItsSource)
{
    EXPECT_EQ(Run({"clone", "a.xml", "no-folder.xml", "--composition=Main"}).exitCode, 0);
    EXPECT_EQ(Run({"check", "no-folder.xml"}).exitCode, 0);
    const auto folder = BinFolder::Create(u"Folder");
    project_->Assets().Bin().Folders().Add(folder);
    folder->Assets().Add(composition_);
    composition_->SetParentFolderID(folder->ID());
    Save("a.xml");
    const ToolRun run = Run({"clone", "a.xml", "b.xml", "--composition=Main", "--name=Second"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    // A reference that went to a layer of the source would not be found in the clone.
    EXPECT_EQ(Run({"check", "b.xml"}).exitCode, 0);
    EXPECT_THAT(Run({"info", "b.xml"}).out,
                testing::HasSubstr("\n      \"Main\"  composition, 1280x720, 100 frames\n"
                                   "      \"Second\"  composition, 1280x720, 100 frames\n"));
}

TEST_F(CloneAndDeleteTest, DeletingSaysWhatReferredToTheLayerAndClearsIt)
{
    const ToolRun run = Delete("Map");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "referred to by layer \"Child\", parent layer\n"
                       "referred to by layer \"Grade\", effect \"Shift\", property map\n"
                       "referred to by layer \"Ribbon\", over parents\n"
                       "referred to by layer \"Sky\", tracker \"Cloud\", destination\n"
                       "cleared layer \"Child\", parent layer\n"
                       "cleared layer \"Grade\", effect \"Shift\", property map\n"
                       "cleared layer \"Sky\", tracker \"Cloud\", destination\n"
                       "Layer \"Map\" is deleted\n");
    EXPECT_EQ(Read("b.xml").find(map_->ID().ToNarrowString()), std::string::npos);
    EXPECT_EQ(Delete("Child").out,
              "referred to by layer \"Ribbon\", 3D effect \"Ribbon\", property followedLayer\n"
              "cleared layer \"Ribbon\", 3D effect \"Ribbon\", property followedLayer\n"
              "Layer \"Child\" is deleted\n");
    EXPECT_EQ(Delete("Grade").out, "Layer \"Grade\" is deleted\n");
    EXPECT_EQ(Delete("Gone").err, "marlet: a.xml: There is no layer \"Gone\", only \"Map\", \"Child\", "
                                  "\"Grade\", \"Ribbon\", \"Sky\"\n");
}

TEST_F(CloneAndDeleteTest, DeletingOpensACircleOfParentsAndIsNotHeldUpByAnother)
{
    map_->SetParentLayer(child_);
    AddPoint(u"Free");
    Save("a.xml");
    EXPECT_EQ(Delete("Free").out, "Layer \"Free\" is deleted\n");
    ASSERT_EQ(Delete("Map").exitCode, 0);
    EXPECT_EQ(Run({"check", "b.xml"}).exitCode, 0);
}

TEST_F(CloneAndDeleteTest, CheckFindsWhatEffectsReferToInVain)
{
    composition_->Layers().pop_front();
    composition_->Layers().pop_front();
    Save("a.xml");
    const std::string out = Run({"check", "a.xml"}).out;
    for (const std::string &line :
         {"layer \"Grade\" of composition \"Main\", effect \"Shift\", property map: the layer " +
              map_->ID().ToNarrowString(),
          "layer \"Ribbon\" of composition \"Main\", 3D effect, property followedLayer: the layer " +
              child_->ID().ToNarrowString(),
          "layer \"Sky\" of composition \"Main\", tracker \"Cloud\": the destination layer " +
              map_->ID().ToNarrowString()})
        EXPECT_THAT(out, testing::HasSubstr("warning: " + line + " does not exist [dangling ID]\n"));
}

} // namespace

} // namespace marlet::test
