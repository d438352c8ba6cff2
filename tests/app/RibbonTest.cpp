#include "plugins/Ribbon.h"
#include "ToolTest.h"

#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/project/LoadOptions.h>
#include <marlet/project/ProjectTextureImageCache.h>
#include <marlet/project/TextureImage.h>

namespace marlet::test
{

namespace
{

using tool::Ribbon;

class RibbonTest : public testing::Test
{
protected:
    void ReadWith(const std::string &old, const std::string &replacement)
    {
        std::string text = ToUtf8(layer_->Serialize(textures_));
        text.replace(text.find(old), old.size(), replacement);
        Effect3DLayer::CreateFromXml(FromUtf8(text), tool::EffectFactory(), textures_);
    }

    ProjectTextureImageCache textures_;
    std::shared_ptr<Ribbon> ribbon_ = std::make_shared<Ribbon>();
    std::shared_ptr<Effect3DLayer> layer_ = Effect3DLayer::Create(ribbon_, u"Ribbon");
};

TEST_F(RibbonTest, NamesItsTextureRelativeToTheFolderWhileItIsInThere)
{
    const auto expect = [&](const std::string &texture) {
        EXPECT_THAT(ToUtf8(layer_->Serialize(textures_)), testing::HasSubstr("<Texture " + texture + "/>"));
    };
    textures_.SetTexturesFolderPath(u"/pictures/");
    ribbon_->SetTexture(textures_.CacheItem(u"paper.png", true), true);
    expect("File=\"paper.png\" Relative=\"1\"");
    textures_.RelinkCachedItem(u"/pictures/paper.png", u"/elsewhere/paper.png");
    expect("File=\"/elsewhere/paper.png\" Relative=\"0\"");
    ribbon_->SetTexture(textures_.CacheItem(u"/pictures/ink.png", false), false);
    expect("File=\"/pictures/ink.png\" Relative=\"0\"");
}

TEST_F(RibbonTest, LeavesWhatItDoesNotWriteToBeKept)
{
    const auto project = Project::Create(nullptr);
    const auto composition = CompositionAsset::Create(u"Main", {}, 10);
    composition->Layers().Add(layer_);
    project->Assets().All().Add(composition);
    std::string text = ToUtf8(project->Serialize());
    const std::size_t effect = text.find("<Effect ") + 7;
    text.insert(text.find(">", effect), " odd=\"1\"");
    text.insert(text.find("       <PropertyManager", effect), "       <Odd/>\n");
    LoadReport report;
    const auto load = [&](bool keeps) {
        return Project::CreateFromXml(FromUtf8(text), u"", nullptr, tool::EffectFactory(),
                                      {.report = &report, .keepUnknown = keeps});
    };
    load(false);
    EXPECT_EQ(report.CountDropped(), 2u);
    const auto kept = load(true);
    EXPECT_EQ(report.CountDropped(), 0u);
    EXPECT_EQ(ToUtf8(kept->Serialize()), text);
}

TEST_F(RibbonTest, RefusesWhatItCannotRead)
{
    EXPECT_THROW(ReadWith("Type=\"Ribbon\"", "Type=\"Balloon\""), ProjectException);
    // The effect's own version stands behind its type.
    EXPECT_THROW(ReadWith("\" Version=\"0\">\n  <PropertyManager", "\" Version=\"1\">\n  <PropertyManager"),
                 InvalidProjectVersionException);
    EXPECT_THROW(ReadWith(" LayerID=", " Layer="), XmlParseException);
}

} // namespace

} // namespace marlet::test
