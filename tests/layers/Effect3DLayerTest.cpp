#include <tests/support/LayerStage.h>
#include <tests/support/LayerTexts.h>

#include <marlet/foundation/Exceptions.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/KeptEffects3D.h>
#include <marlet/project/ProjectTextureImageCache.h>

#include <gmock/gmock.h>

#include <stdexcept>

namespace marlet::test
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

std::shared_ptr<PlainBall> BallOf(const AbstractLayer &layer)
{
    return std::dynamic_pointer_cast<PlainBall>(dynamic_cast<const Effect3DLayer &>(layer).Effect());
}

/// The ID of the n-th of some layers.
KyID Numbered(std::uint32_t n)
{
    return {.Data1 = n};
}

TEST(Effect3DLayer, TellsItsEffectWhichLayerHoldsIt)
{
    const auto ball = std::make_shared<PlainBall>("red");
    const auto layer = Effect3DLayer::Create(ball, u"Red");
    EXPECT_THAT(ball->toldLayerIDs, ElementsAre(layer->ID()));

    const auto clone = layer->Clone(Numbered(1));
    EXPECT_NE(BallOf(*clone), ball);
    EXPECT_EQ(BallOf(*clone)->toldLayerIDs.back(), clone->ID());
    EXPECT_THAT(ball->toldLayerIDs, ElementsAre(layer->ID()));

    EXPECT_THAT(BallOf(*ReadLayer(TextOf(*layer)))->toldLayerIDs, IsEmpty());
}

TEST(Effect3DLayer, WritesWhatItsEffectSaysBehindItsBase)
{
    const auto ball = std::make_shared<PlainBall>("\"red\"");
    const std::string text = TextOf(*Effect3DLayer::Create(ball, u"Red"));
    EXPECT_THAT(text, testing::StartsWith("<Effect3DLayer Version=\"1\">\n <LayerBase Version=\"0\">\n"));
    EXPECT_THAT(text, testing::EndsWith(" </LayerBase>\n"
                                        " <Effect colour=\"&quot;red&quot;\" shape=\"ball\">\n"
                                        "  <Size> 7 </Size>\n"
                                        " </Effect>\n"
                                        "</Effect3DLayer>\n"));
    EXPECT_TRUE(ball->stoodInItsDocument);
    EXPECT_EQ(TextOf(*ReadLayer(text)), text);
}

TEST(Effect3DLayer, IsKeptAsItWasReadByAHostWithoutEffects)
{
    const std::string text = Replaced(
        TextOf(*Effect3DLayer::Create(std::make_shared<PlainBall>("\"red\""), u"Red")), "<Size> 7 </Size>",
        "<Size> 7 </Size>\n  <List b=\"1\" c=\"2\">\n   <Item>&lt;\n</Item>\n   <Item/>\n  </List>");
    ProjectTextureImageCache textures;
    const auto layer = Effect3DLayer::CreateFromXml(FromUtf8(text), KeptEffects3D(), textures);
    EXPECT_EQ(TextOf(*layer), text);
    const std::string clone = TextOf(*layer->Clone(Numbered(1)));
    EXPECT_EQ(clone.substr(clone.find("<Effect ")), text.substr(text.find("<Effect ")));
}

TEST(Effect3DLayer, IsRefusedWithoutAnEffectBeforeItsPropertiesAreLookedFor)
{
    const std::string text = TextOf(*Effect3DLayer::Create(std::make_shared<PlainBall>("red"), u""));
    const std::string colourless = Replaced(text, " colour=", " color=");
    EXPECT_EQ(FailureOf(colourless), "10 ");
    EXPECT_EQ(FailureOf(Without(text, "Effect")), "10 ");
    EXPECT_EQ(FailureOf(Without(colourless, "LayerBase")), "10 ");
    EXPECT_EQ(FailureOf(Replaced(colourless, "<Muted>0", "<Muted>no")), "boolean");
    EXPECT_EQ(FailureOf(Replaced(colourless, "Version=\"1\"", "Version=\"2\"")), "version");
}

TEST(Effect3DLayer, AsksItsEffectForReferences)
{
    const auto composition = CompositionAsset::Create(u"", {}, 1);
    const auto ball = std::make_shared<Ball>("red", Numbered(1));
    const auto layer = Effect3DLayer::Create(ball, u"");
    EXPECT_TRUE(layer->IsLayerReferenced(composition, Numbered(1)));
    EXPECT_FALSE(layer->IsLayerReferenced(composition, Numbered(2)));
    EXPECT_THAT(layer->LayerReferencePropertyNames().at(0).propertyNames, ElementsAre("target"));

    layer->ChangeLayerReferences({{Numbered(1).ToNarrowString(), Numbered(2).ToNarrowString()}});
    EXPECT_EQ(ball->target, Numbered(2));
    layer->ClearInvalidLayerReferences({{Numbered(2).ToNarrowString(), false}});
    EXPECT_EQ(ball->target, Numbered(2));
    layer->ClearInvalidLayerReferences({{Numbered(1).ToNarrowString(), true}});
    EXPECT_EQ(ball->target, KyID());
}

struct Ancestry : testing::Test, PlainBall, LayerStage {
    Ancestry() : PlainBall("") {}

    bool IsAncestor(const AbstractLayer &l, const AbstractLayer &ancestor) const
    {
        return IsAncestorOfReferencedLayer(composition, l.ID(), ancestor.ID());
    }

    const std::shared_ptr<PointLayer> root = AddPoint();
    const std::shared_ptr<PointLayer> parent = AddPoint();
    const std::shared_ptr<PointLayer> layer = AddPoint();
};

TEST_F(Ancestry, GoesUpTheParentsByTheirIDs)
{
    layer->SetParentLayer(parent->ID());
    parent->SetParentLayer(root->ID());
    EXPECT_TRUE(IsAncestor(*layer, *parent));
    EXPECT_TRUE(IsAncestor(*layer, *root));
    EXPECT_FALSE(IsAncestor(*layer, *layer));
    EXPECT_FALSE(IsAncestor(*root, *layer));
    EXPECT_FALSE(IsAncestorOfReferencedLayer(composition, root->ID(), KyID()));
    const auto elsewhere = PointLayer::Create(u"");
    root->SetParentLayer(elsewhere->ID());
    EXPECT_TRUE(IsAncestor(*layer, *elsewhere));
}

TEST_F(Ancestry, EndsWhereParentsRunInACircle)
{
    layer->SetParentLayer(parent->ID());
    parent->SetParentLayer(root->ID());
    root->SetParentLayer(parent->ID());
    EXPECT_TRUE(IsAncestor(*layer, *root));
    EXPECT_TRUE(IsAncestor(*parent, *parent));
    EXPECT_THROW(IsAncestor(*layer, *layer), std::logic_error);
}

} // namespace
} // namespace marlet::test
