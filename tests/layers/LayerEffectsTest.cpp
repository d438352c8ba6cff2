#include <tests/support/LayerStage.h>
#include <tests/support/LayerTexts.h>
#include <tests/support/TestPlugins.h>

#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/plugins/EffectInstance.h>

#include <gmock/gmock.h>

namespace marlet::test
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

/// The ID of the n-th of some layers.
KyID Numbered(std::uint32_t n)
{
    return {.Data1 = n};
}

/// Stands for each class of layers that owns effects and masks.
template <class Layer> class LayerEffects : public testing::Test
{
protected:
    using Effect = std::shared_ptr<EffectInstance>;

    LayerEffects() { manager->plugins = {plugin}; }

    Effect AddEffect(const KyID &picked = {})
    {
        const auto effect = EffectInstance::Create(plugin);
        Pick(*effect, picked);
        layer->Effects().Add(effect);
        return effect;
    }

    static void Pick(EffectInstance &effect, const KyID &picked)
    {
        effect.Properties().StaticValue("layer") = picked;
    }
    static KyID PickedBy(const EffectInstance &effect)
    {
        return boost::get<KyID>(effect.Properties().StaticValue("layer"));
    }

    // Plug-ins first, since they live as long as their effects.
    const std::shared_ptr<TestPlugin> plugin = std::make_shared<TestPlugin>();
    const std::shared_ptr<TestPluginManager> manager = std::make_shared<TestPluginManager>();
    const LayerStage stage;
    const std::shared_ptr<Layer> layer = stage.Add(Layer::Create(u"", 100, 100));
};

using Layers = testing::Types<GradeLayer, TextLayer>;
TYPED_TEST_SUITE(LayerEffects, Layers);

TYPED_TEST(LayerEffects, AreCopiedForTheCloneAndItsComposition)
{
    const auto effect = this->AddEffect();
    effect->SetName(u"First");
    this->AddEffect()->SetName(u"Second");
    const auto mask = Mask::Create(u"Round");
    this->layer->Masks().Add(mask);

    const KyID here = this->stage.composition->ID();
    for (const auto &[argument, composition] : {std::pair(Numbered(7), Numbered(7)), {KyID(), here}}) {
        const auto clone = std::static_pointer_cast<TypeParam>(this->layer->Clone(argument));
        ASSERT_EQ(clone->Effects().Count(), 2u);
        EXPECT_EQ(clone->Effects()[0]->Name(), u"First");
        EXPECT_EQ(clone->Effects()[1]->Name(), u"Second");
        for (const auto &copy : clone->Effects()) {
            EXPECT_EQ(copy->ParentID(), clone->ID());
            EXPECT_EQ(copy->ParentTimelineID(), composition);
        }
        EXPECT_NE(clone->Effects()[0]->ID(), effect->ID());
        ASSERT_EQ(clone->Masks().Count(), 1u);
        EXPECT_NE(clone->Masks()[0]->ID(), mask->ID());
        EXPECT_EQ(clone->Masks()[0]->Name(), u"Round");
        EXPECT_EQ(clone->Masks()[0]->ParentLayerID(), clone->ID());
    }
    EXPECT_EQ(effect->ParentID(), KyID());
    EXPECT_EQ(mask->ParentLayerID(), KyID());
}

TYPED_TEST(LayerEffects, AreNotClonedWithoutTheirPlugin)
{
    {
        const auto lost = std::make_shared<TestPlugin>();
        const auto effect = EffectInstance::Create(lost);
        // Nobody is there to free it later.
        delete &TestPlugin::Text(*effect);
        this->layer->Effects().Add(effect);
    }
    const auto effect = this->AddEffect();
    effect->SetName(u"Left");
    const auto clone = std::static_pointer_cast<TypeParam>(this->layer->Clone(KyID()));
    ASSERT_EQ(clone->Effects().Count(), 1u);
    EXPECT_EQ(clone->Effects()[0]->Name(), u"Left");
}

TYPED_TEST(LayerEffects, FailToBeClonedWithoutATrace)
{
    this->AddEffect();
    this->AddEffect();
    this->plugin->failing = "created";
    EXPECT_THROW(this->layer->Clone(KyID()), std::domain_error);
    this->plugin->failing.clear();
    EXPECT_EQ(this->layer->Effects().Count(), 2u);
}

TYPED_TEST(LayerEffects, AreReadWithTheirPluginsOrNotAtAll)
{
    this->AddEffect(Numbered(3));
    this->AddEffect();
    this->layer->Masks().Add(Mask::Create(u"Round"));
    const std::string text = TextOf(*this->layer);
    const auto read = std::static_pointer_cast<TypeParam>(ReadLayer(text, this->manager));
    ASSERT_EQ(read->Effects().Count(), 2u);
    EXPECT_EQ(this->PickedBy(*read->Effects()[0]), Numbered(3));
    EXPECT_EQ(TextOf(*read), text);

    const auto bare = std::static_pointer_cast<TypeParam>(ReadLayer(text, nullptr));
    EXPECT_TRUE(bare->Effects().IsEmpty());
    EXPECT_EQ(bare->Masks().Count(), 1u);
    this->manager->plugins.clear();
    EXPECT_THROW(ReadLayer(text, this->manager), MissingPluginException);
}

TYPED_TEST(LayerEffects, FailTheirLayerWhenOneOfThemDoes)
{
    this->AddEffect();
    const std::string text = TextOf(*this->layer);
    const int living = this->plugin->living;
    EXPECT_THROW(ReadLayer(Without(text, "LayerBase"), this->manager), ProjectException);
    EXPECT_EQ(this->plugin->living, living);
}

TYPED_TEST(LayerEffects, ReferToTheLayersThatTheyPick)
{
    const auto effect = this->AddEffect(Numbered(1));
    const auto other = this->AddEffect(Numbered(2));
    TypeParam &owner = *this->layer;
    EXPECT_TRUE(owner.IsLayerReferenced(nullptr, Numbered(2)));
    EXPECT_FALSE(owner.IsLayerReferenced(nullptr, Numbered(3)));

    owner.ChangeLayerReferences({{Numbered(2).ToNarrowString(), Numbered(3).ToNarrowString()}});
    EXPECT_EQ(this->PickedBy(*effect), Numbered(1));
    EXPECT_EQ(this->PickedBy(*other), Numbered(3));
    EXPECT_THROW(owner.ChangeLayerReferences({{Numbered(1).ToNarrowString(), Numbered(4).ToNarrowString()},
                                              {Numbered(3).ToNarrowString(), "no ID"}}),
                 std::runtime_error);
    EXPECT_EQ(this->PickedBy(*effect), Numbered(4));

    owner.ClearInvalidLayerReferences({{Numbered(3).ToNarrowString(), false}});
    EXPECT_EQ(this->PickedBy(*effect), KyID());
    EXPECT_EQ(this->PickedBy(*other), Numbered(3));
}

TYPED_TEST(LayerEffects, NameTheirPickersOneByOne)
{
    this->plugin->panel->ChildNodes().pop_back();
    const auto plain = this->AddEffect();
    this->manager->plugins.push_back(std::make_shared<TestPlugin>());
    const auto picker = EffectInstance::Create(this->manager->plugins.back());
    this->layer->Effects().Add(picker);
    const std::vector<ObjectPropertyList> names = this->layer->LayerReferencePropertyNames();
    ASSERT_EQ(names.size(), 2u);
    EXPECT_EQ(names[0].objectID, plain->ID());
    EXPECT_THAT(names[0].propertyNames, IsEmpty());
    EXPECT_EQ(names[1].objectID, picker->ID());
    EXPECT_THAT(names[1].propertyNames, ElementsAre("layer"));
}

TYPED_TEST(LayerEffects, FollowTheirLayersIntoACloneOfTheComposition)
{
    const auto target = this->stage.AddPoint(u"Target");
    const auto ball = std::make_shared<Ball>("red", target->ID());
    const auto ballLayer = this->stage.Add(Effect3DLayer::Create(ball, u"Ball"));
    this->layer->SetParentLayer(ballLayer->ID());
    const auto effect = this->AddEffect(target->ID());
    this->AddEffect(Numbered(9));

    const auto clone = CompositionAsset::Copy(this->stage.composition);
    ASSERT_EQ(clone->Layers().Count(), 3u);
    const auto layerCopy = std::static_pointer_cast<TypeParam>(clone->Layers().front());
    const auto targetCopy = *std::next(clone->Layers().begin());
    const auto ballCopy = std::static_pointer_cast<Effect3DLayer>(clone->Layers().back());
    EXPECT_EQ(layerCopy->ParentLayerID(), ballCopy->ID());
    EXPECT_EQ(this->PickedBy(*layerCopy->Effects()[0]), targetCopy->ID());
    EXPECT_EQ(layerCopy->Effects()[0]->ParentTimelineID(), clone->ID());
    EXPECT_EQ(this->PickedBy(*layerCopy->Effects()[1]), Numbered(9));
    EXPECT_EQ(std::static_pointer_cast<Ball>(ballCopy->Effect())->target, targetCopy->ID());

    EXPECT_EQ(this->PickedBy(*effect), target->ID());
    EXPECT_EQ(ball->target, target->ID());
    EXPECT_FALSE(layerCopy->IsLayerReferenced(clone, target->ID()));
    EXPECT_TRUE(ballCopy->IsLayerReferenced(clone, targetCopy->ID()));
}

} // namespace
} // namespace marlet::test
