#include "plugins/Ribbon.h"
#include "ToolTest.h"

#include <marlet/foundation/Exceptions.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/ProjectTextureImageCache.h>
#include <marlet/project/TextureImage.h>

namespace marlet::test
{

namespace
{

using namespace project;
using tool::Ribbon;

class RibbonTest : public ToolTest
{
protected:
    RibbonTest()
    {
        textures_.SetTexturesFolderPath(u"/pictures/");
        ribbon_->Properties().StaticValue("turns") = 7.f;
        layer_ = Effect3DLayer::Create(ribbon_, u"Ribbon");
    }

    void Follow(const AbstractLayer &layer)
    {
        ribbon_->Properties().StaticValue(Ribbon::kFollowed) = layer.ID();
    }

    std::shared_ptr<Ribbon> Read(const WideString &text)
    {
        const auto layer = Effect3DLayer::CreateFromXml(text, tool::EffectFactory(), textures_);
        return std::dynamic_pointer_cast<Ribbon>(layer->Effect());
    }

    WideString TextWith(const std::string &old, const std::string &replacement) const
    {
        std::string text = ToUtf8(layer_->Serialize(textures_));
        text.replace(text.find(old), old.size(), replacement);
        return FromUtf8(text);
    }

    ProjectTextureImageCache textures_;
    std::shared_ptr<Ribbon> ribbon_ = std::make_shared<Ribbon>();
    std::shared_ptr<Effect3DLayer> layer_;
};

TEST_F(RibbonTest, IsReadAsItWasSaved)
{
    Follow(*AddPoint(u"Followed", {}));
    ribbon_->SetTexture(textures_.CacheItem(u"paper.png", true), true);
    const WideString text = layer_->Serialize(textures_);
    const auto read = Read(text);
    EXPECT_EQ(read->ID(), ribbon_->ID());
    EXPECT_EQ(read->FollowedLayer(), ribbon_->FollowedLayer());
    EXPECT_EQ(boost::get<float>(read->Properties().StaticValue("turns")), 7.f);
    EXPECT_EQ(read->Texture(), ribbon_->Texture());
    EXPECT_EQ(Effect3DLayer::CreateFromXml(text, tool::EffectFactory(), textures_)->Serialize(textures_),
              text);
}

TEST_F(RibbonTest, NamesItsTextureRelativeToTheFolderWhileItIsInThere)
{
    const auto element = [&](const char *texture) {
        return ToUtf8(layer_->Serialize(textures_)).find(std::string("<Texture ") + texture + "/>") !=
               std::string::npos;
    };
    ribbon_->SetTexture(textures_.CacheItem(u"paper.png", true), true);
    EXPECT_TRUE(element("File=\"paper.png\" Relative=\"1\""));
    textures_.RelinkCachedItem(u"/pictures/paper.png", u"/pictures/old/paper.png");
    EXPECT_TRUE(element("File=\"old/paper.png\" Relative=\"1\""));
    textures_.RelinkCachedItem(u"/pictures/old/paper.png", u"/elsewhere/paper.png");
    EXPECT_TRUE(element("File=\"/elsewhere/paper.png\" Relative=\"0\""));
    ribbon_->SetTexture(textures_.CacheItem(u"/pictures/ink.png", false), false);
    EXPECT_TRUE(element("File=\"/pictures/ink.png\" Relative=\"0\""));
}

TEST_F(RibbonTest, ACloneIsAnotherRibbonWithTheSamePicture)
{
    ribbon_->SetTexture(textures_.CacheItem(u"paper.png", true), true);
    const auto layer = std::dynamic_pointer_cast<Effect3DLayer>(layer_->Clone({}));
    const auto clone = std::dynamic_pointer_cast<Ribbon>(layer->Effect());
    EXPECT_NE(clone->ID(), ribbon_->ID());
    EXPECT_EQ(clone->Texture(), ribbon_->Texture());
    clone->Properties().StaticValue("turns") = 1.f;
    EXPECT_EQ(boost::get<float>(ribbon_->Properties().StaticValue("turns")), 7.f);
    const std::string text = ToUtf8(layer->Serialize(textures_));
    EXPECT_NE(text.find("LayerID=\"" + layer->ID().ToNarrowString() + "\""), std::string::npos);
    EXPECT_TRUE(clone->IsTextureListReferenced(ribbon_->Texture()->ID()));
    EXPECT_FALSE(clone->IsTextureListReferenced({}));
}

TEST_F(RibbonTest, RefersToTheFollowedLayerAndThoseAboveIt)
{
    const auto top = AddPoint(u"Top", {});
    const auto middle = AddPoint(u"Middle", {});
    const auto followed = AddPoint(u"Followed", {});
    const auto other = AddPoint(u"Other", {});
    middle->SetParentLayer(top);
    followed->SetParentLayer(middle);
    EXPECT_FALSE(layer_->IsLayerReferenced(composition_, {}));
    Follow(*followed);
    for (const auto &layer : {top, middle, followed})
        EXPECT_TRUE(layer_->IsLayerReferenced(composition_, layer->ID()));
    EXPECT_FALSE(layer_->IsLayerReferenced(composition_, other->ID()));
    EXPECT_FALSE(layer_->IsLayerReferenced(composition_, {}));

    ASSERT_EQ(layer_->LayerReferencePropertyNames().size(), 1u);
    EXPECT_EQ(layer_->LayerReferencePropertyNames()[0].objectID, ribbon_->ID());
    const std::string followedID = followed->ID().ToNarrowString();
    layer_->ChangeLayerReferences({{followedID, other->ID().ToNarrowString()}});
    EXPECT_EQ(ribbon_->FollowedLayer(), other->ID());
    layer_->ClearInvalidLayerReferences({{other->ID().ToNarrowString(), false}});
    EXPECT_EQ(ribbon_->FollowedLayer(), other->ID());
    layer_->ClearInvalidLayerReferences({{followedID, true}});
    EXPECT_TRUE(ribbon_->FollowedLayer().IsNull());
}

TEST_F(RibbonTest, RefusesWhatItCannotRead)
{
    EXPECT_THROW(Read(TextWith("Type=\"Ribbon\"", "Type=\"Balloon\"")), ProjectException);
    // The effect's own version stands behind its type.
    EXPECT_THROW(
        Read(TextWith("\" Version=\"0\">\n  <PropertyManager", "\" Version=\"1\">\n  <PropertyManager")),
        InvalidProjectVersionException);
    EXPECT_THROW(Read(TextWith(" LayerID=", " Layer=")), XmlParseException);
    const std::string id = "\"" + ribbon_->ID().ToNarrowString() + "\"";
    EXPECT_THROW(Read(TextWith(id, "\"\"")), std::runtime_error);
}

} // namespace

} // namespace marlet::test
