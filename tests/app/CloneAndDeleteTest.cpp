#include "ToolTest.h"
#include "plugins/PluginManager.h"
#include "plugins/Plugins.h"
#include "plugins/Ribbon.h"

#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>

namespace marlet::test
{

namespace
{

using namespace project;

/// A layer "Map" that a child, an effect and, over its parent, a 3D effect refer to.
class CloneAndDeleteTest : public ToolTest
{
protected:
    CloneAndDeleteTest()
    {
        map_ = AddPoint(u"Map", {});
        child_ = AddPoint(u"Child", {});
        child_->SetParentLayer(map_);
        const auto grade = GradeLayer::Create(u"Grade", 64, 64);
        const auto effect = EffectInstance::Create(tool::Plugins()->FindPlugin(tool::kDisplacementID));
        effect->SetName(u"Shift");
        effect->SetParent(grade->ID(), composition_->ID());
        effect->Properties().StaticValue("map") = map_->ID();
        grade->Effects().Add(effect);
        Add(grade);
        const auto ribbon = std::make_shared<tool::Ribbon>();
        ribbon->Properties().StaticValue(tool::Ribbon::kFollowed) = child_->ID();
        Add(Effect3DLayer::Create(ribbon, u"Ribbon"));
        Save("a.xml");
    }

    void Add(const std::shared_ptr<AbstractLayer> &layer)
    {
        layer->SetParentComposition(composition_);
        composition_->Layers().Add(layer);
    }

    ToolRun Delete(const std::string &layer) const
    {
        return Run({"delete", "a.xml", "b.xml", "--composition=Main", "--layer", layer});
    }

    /// The lines of "info" that name the layers of references, without what stands before.
    std::vector<std::string> References(const std::string &file) const
    {
        std::vector<std::string> references;
        for (const std::string &line : Run({"info", file}).OutLines()) {
            if (const std::size_t at = line.find("refers to "); at != std::string::npos)
                references.push_back(line.substr(at));
            else if (const std::size_t on = line.find(", on \""); on != std::string::npos)
                references.push_back(line.substr(on + 2));
        }
        return references;
    }

    std::shared_ptr<AbstractLayer> map_;
    std::shared_ptr<AbstractLayer> child_;
};

TEST_F(CloneAndDeleteTest, AClonedCompositionRefersToItsOwnLayers)
{
    const auto folder = BinFolder::Create(u"Folder");
    project_->Assets().Bin().Folders().Add(folder);
    folder->Assets().Add(composition_);
    composition_->SetParentFolderID(folder->ID());
    Save("a.xml");
    const ToolRun run = Run({"clone", "a.xml", "b.xml", "--composition=Main", "--name=Second"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out.find("Composition \"Main\" is cloned as \"Second\"  "), 0u);
    // A reference that went to a layer of the source would not be found in the clone.
    EXPECT_EQ(Run({"check", "b.xml"}).exitCode, 0) << Run({"check", "b.xml"}).out;
    std::vector<std::string> twice = References("a.xml");
    EXPECT_EQ(twice.size(), 3u);
    const std::vector<std::string> once = twice;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(References("b.xml"), twice);
    const std::string info = Run({"info", "b.xml"}).out;
    EXPECT_NE(info.find("    \"Folder\"  folder\n      \"Main\"  composition, 1280x720, 100 frames\n"
                        "      \"Second\"  composition, 1280x720, 100 frames\n"),
              std::string::npos)
        << info;
    EXPECT_EQ(info.find("in no folder"), std::string::npos);
}

TEST_F(CloneAndDeleteTest, ACompositionInNoFolderHasACloneInNone)
{
    ASSERT_EQ(Run({"clone", "a.xml", "b.xml", "--composition=Main"}).exitCode, 0);
    const std::string info = Run({"info", "b.xml"}).out;
    const std::string line = "  \"Main\"  composition, 1280x720, 100 frames, in no folder\n";
    const std::size_t first = info.find(line);
    ASSERT_NE(first, std::string::npos) << info;
    EXPECT_EQ(info.find(line, first + 1), first + line.size());
    EXPECT_EQ(Run({"check", "b.xml"}).exitCode, 0);
}

TEST_F(CloneAndDeleteTest, DeletingSaysWhatReferredToTheLayerAndClearsIt)
{
    const ToolRun run = Delete("Map");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "referred to by layer \"Child\", parent layer\n"
                       "referred to by layer \"Grade\", effect \"Shift\", property map\n"
                       "referred to by layer \"Ribbon\", over parents\n"
                       "cleared layer \"Child\", parent layer\n"
                       "cleared layer \"Grade\", effect \"Shift\", property map\n"
                       "Layer \"Map\" is deleted\n");
    EXPECT_EQ(
        References("b.xml"),
        std::vector<std::string>{"refers to \"Child\" by 3D effect \"Ribbon\", property followedLayer"});
    EXPECT_EQ(Read("b.xml").find(map_->ID().ToNarrowString()), std::string::npos);
    EXPECT_EQ(Run({"check", "b.xml"}).exitCode, 0);

    EXPECT_EQ(Delete("Child").out,
              "referred to by layer \"Ribbon\", 3D effect \"Ribbon\", property followedLayer\n"
              "cleared layer \"Ribbon\", 3D effect \"Ribbon\", property followedLayer\n"
              "Layer \"Child\" is deleted\n");
    EXPECT_EQ(Delete("Grade").out, "Layer \"Grade\" is deleted\n");
    EXPECT_EQ(Delete("Gone").err,
              "marlet: a.xml: There is no layer \"Gone\", only \"Map\", \"Child\", \"Grade\", \"Ribbon\"\n");
}

TEST_F(CloneAndDeleteTest, DeletingOpensACircleOfParentsAndIsNotHeldUpByAnother)
{
    map_->SetParentLayer(child_);
    AddPoint(u"Free", {});
    Save("a.xml");
    EXPECT_EQ(Delete("Free").out, "Layer \"Free\" is deleted\n");
    ASSERT_EQ(Delete("Map").exitCode, 0);
    EXPECT_EQ(Run({"check", "b.xml"}).exitCode, 0);
}

TEST_F(CloneAndDeleteTest, CheckFindsWhatEffectsReferToInVain)
{
    composition_->Layers().erase(
        std::find(composition_->Layers().begin(), composition_->Layers().end(), map_));
    composition_->Layers().erase(
        std::find(composition_->Layers().begin(), composition_->Layers().end(), child_));
    Save("a.xml");
    const ToolRun run = Run({"check", "a.xml"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out,
              "dangling ID     layer \"Grade\" of composition \"Main\": the effect \"Shift\", property map: "
              "the layer " +
                  map_->ID().ToNarrowString() +
                  " does not exist\n"
                  "dangling ID     layer \"Ribbon\" of composition \"Main\": the 3D effect \"Ribbon\", "
                  "property followedLayer: the layer " +
                  child_->ID().ToNarrowString() + " does not exist\n");
}

} // namespace

} // namespace marlet::test
