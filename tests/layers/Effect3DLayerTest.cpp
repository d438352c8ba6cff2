#include <tests/support/LayerStage.h>
#include <tests/support/LayerTexts.h>

#include <marlet/foundation/Exceptions.h>
#include <marlet/layers/Effect3DLayer.h>

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
    EXPECT_EQ(layer->Effect(), ball);
    EXPECT_THAT(ball->toldLayerIDs, ElementsAre(layer->ID()));

    const auto clone = layer->Clone(Numbered(1));
    EXPECT_NE(BallOf(*clone), ball);
    EXPECT_EQ(BallOf(*clone)->colour, "red");
    EXPECT_EQ(BallOf(*clone)->toldLayerIDs.back(), clone->ID());
    EXPECT_THAT(ball->toldLayerIDs, ElementsAre(layer->ID()));

    EXPECT_THAT(BallOf(*ReadLayer(TextOf(*layer)))->toldLayerIDs, IsEmpty());
}

TEST(Effect3DLayer, DoesNotStandWithoutAnEffect)
{
    struct Single : PlainBall {
        using PlainBall::PlainBall;
        std::shared_ptr<Abstract3DEffect> Clone() const override { return nullptr; }
    };
    EXPECT_THROW(Effect3DLayer::Create(nullptr, u""), std::invalid_argument);
    EXPECT_THROW(Effect3DLayer::Create(std::make_shared<Single>("red"), u"")->Clone({}), std::logic_error);
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

TEST(Effect3DLayer, LetsFailuresOfTheHostThrough)
{
    struct Broken : PlainBall {
        using PlainBall::PlainBall;
        void Serialize(void *, void *, const ProjectTextureImageCache &) const override
        {
            throw std::domain_error("no ball");
        }
    };
    struct BrokenFactory : Abstract3DEffectFactory {
        std::shared_ptr<Abstract3DEffect> Create(void *, ProjectTextureImageCache &) const override
        {
            throw std::domain_error("no ball");
        }
    };
    EXPECT_THROW(TextOf(*Effect3DLayer::Create(std::make_shared<Broken>("red"), u"")), std::domain_error);
    const auto layer = Effect3DLayer::Create(std::make_shared<PlainBall>("red"), u"");
    ProjectTextureImageCache textures;
    EXPECT_THROW(Effect3DLayer::CreateFromXml(layer->Serialize(textures), BrokenFactory(), textures),
                 std::domain_error);
}

TEST(Effect3DLayer, HasNoReferencesIfItsEffectHasNone)
{
    const auto layer = Effect3DLayer::Create(std::make_shared<PlainBall>("red"), u"");
    layer->ChangeLayerReferences({{KyID().ToNarrowString(), Numbered(1).ToNarrowString()}});
    layer->ClearInvalidLayerReferences({});
    EXPECT_FALSE(layer->IsLayerReferenced(nullptr, KyID()));
    EXPECT_THAT(layer->LayerReferencePropertyNames(), IsEmpty());
    EXPECT_FALSE(layer->Effect()->IsTextureListReferenced(KyID()));
}

TEST(Effect3DLayer, AsksItsEffectForReferences)
{
    const auto composition = CompositionAsset::Create(u"", {}, 1);
    const auto ball = std::make_shared<Ball>("red", Numbered(1));
    const auto layer = Effect3DLayer::Create(ball, u"");
    EXPECT_TRUE(layer->IsLayerReferenced(composition, Numbered(1)));
    EXPECT_FALSE(layer->IsLayerReferenced(composition, Numbered(2)));
    ASSERT_EQ(layer->LayerReferencePropertyNames().size(), 1u);
    EXPECT_THAT(layer->LayerReferencePropertyNames()[0].propertyNames, ElementsAre("target"));

    layer->ChangeLayerReferences({{Numbered(1).ToNarrowString(), Numbered(2).ToNarrowString()}});
    EXPECT_EQ(ball->target, Numbered(2));
    layer->ClearInvalidLayerReferences({{Numbered(2).ToNarrowString(), false}});
    EXPECT_EQ(ball->target, Numbered(2));
    layer->ClearInvalidLayerReferences({{Numbered(1).ToNarrowString(), true}});
    EXPECT_EQ(ball->target, KyID());
}

class Ancestry : public testing::Test, public PlainBall
{
protected:
    Ancestry() : PlainBall("") {}

    bool IsAncestor(const AbstractLayer &layer, const AbstractLayer &ancestor) const
    {
        return IsAncestorOfReferencedLayer(stage_.composition, layer.ID(), ancestor.ID());
    }

    const LayerStage stage_;
    const std::shared_ptr<PointLayer> root_ = stage_.AddPoint();
    const std::shared_ptr<PointLayer> parent_ = stage_.AddPoint();
    const std::shared_ptr<PointLayer> layer_ = stage_.AddPoint();
};

TEST_F(Ancestry, GoesUpTheParentsByTheirIDs)
{
    layer_->SetParentLayer(parent_->ID());
    parent_->SetParentLayer(root_->ID());
    EXPECT_TRUE(IsAncestor(*layer_, *parent_));
    EXPECT_TRUE(IsAncestor(*layer_, *root_));
    EXPECT_FALSE(IsAncestor(*layer_, *layer_));
    EXPECT_FALSE(IsAncestor(*root_, *layer_));
    EXPECT_FALSE(IsAncestorOfReferencedLayer(stage_.composition, root_->ID(), KyID()));
    const auto elsewhere = PointLayer::Create(u"");
    EXPECT_FALSE(IsAncestor(*elsewhere, *root_));
    elsewhere->SetParentLayer(layer_->ID());
    root_->SetParentLayer(elsewhere->ID());
    EXPECT_TRUE(IsAncestor(*layer_, *elsewhere));
    EXPECT_FALSE(IsAncestor(*layer_, *layer_));
}

TEST_F(Ancestry, EndsWhereParentsRunInACircle)
{
    layer_->SetParentLayer(parent_->ID());
    parent_->SetParentLayer(root_->ID());
    root_->SetParentLayer(parent_->ID());
    EXPECT_TRUE(IsAncestor(*layer_, *root_));
    EXPECT_TRUE(IsAncestor(*parent_, *parent_));
    EXPECT_THROW(IsAncestor(*layer_, *layer_), std::logic_error);
}

TEST_F(Ancestry, MayBeHundredThousandLayersLong)
{
    std::shared_ptr<PointLayer> last = layer_;
    for (int i = 0; i < 100'000; ++i) {
        const auto next = stage_.AddPoint();
        next->SetParentLayer(last->ID());
        last = next;
    }
    EXPECT_TRUE(IsAncestor(*last, *layer_));
    EXPECT_FALSE(IsAncestor(*last, *root_));
}

} // namespace
} // namespace marlet::test
