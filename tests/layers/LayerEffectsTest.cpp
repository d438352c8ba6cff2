#include <tests/support/LayerStage.h>
#include <tests/support/LayerTexts.h>
#include <tests/support/TestPlugins.h>

#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/SolidAsset.h>

#include <gtest/gtest.h>

namespace marlet::test
{
namespace
{

/// The ID of the n-th of some layers.
KyID Numbered(std::uint32_t n)
{
    return {.Data1 = n};
}

template <class Layer> std::shared_ptr<Layer> Make()
{
    if constexpr (std::is_same_v<Layer, AssetLayer>)
        return AssetLayer::Create(SolidAsset::Create(u"", {}, 100, 100, {}));
    else
        return Layer::Create(u"", 100, 100);
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
        effect->Properties().StaticValue("layer") = picked;
        layer->Effects().Add(effect);
        return effect;
    }

    static KyID PickedBy(const EffectInstance &effect)
    {
        return boost::get<KyID>(effect.Properties().StaticValue("layer"));
    }

    // Plug-ins first, since they live as long as their effects.
    const std::shared_ptr<TestPlugin> plugin = std::make_shared<TestPlugin>();
    const std::shared_ptr<TestPluginManager> manager = std::make_shared<TestPluginManager>();
    const LayerStage stage;
    const std::shared_ptr<Layer> layer = stage.Add(Make<Layer>());
};

using Layers = testing::Types<AssetLayer, GradeLayer, TextLayer>;
TYPED_TEST_SUITE(LayerEffects, Layers);

TYPED_TEST(LayerEffects, AreCopiedForTheCloneAndItsComposition)
{
    const auto effect = this->AddEffect();
    this->AddEffect()->SetName(u"Second");
    const auto mask = Mask::Create(u"Round");
    this->layer->Masks().Add(mask);

    const KyID here = this->stage.composition->ID();
    for (const auto &[argument, composition] : {std::pair(Numbered(7), Numbered(7)), {KyID(), here}}) {
        const auto clone = std::static_pointer_cast<TypeParam>(this->layer->Clone(argument));
        ASSERT_EQ(clone->Effects().Count(), 2u);
        EXPECT_EQ(clone->Effects()[1]->Name(), u"Second");
        for (const auto &copy : clone->Effects()) {
            EXPECT_EQ(copy->ParentID(), clone->ID());
            EXPECT_EQ(copy->ParentTimelineID(), composition);
        }
        EXPECT_NE(clone->Effects()[0]->ID(), effect->ID());
        ASSERT_EQ(clone->Masks().Count(), 1u);
        EXPECT_NE(clone->Masks()[0]->ID(), mask->ID());
        EXPECT_EQ(clone->Masks()[0]->ParentLayerID(), clone->ID());
    }
    EXPECT_EQ(effect->ParentID(), KyID());
    EXPECT_EQ(mask->ParentLayerID(), KyID());
}

TYPED_TEST(LayerEffects, AreNotClonedWithoutTheirPlugin)
{
    this->layer->Effects().Add(EffectInstance::Create(std::make_shared<TestPlugin>()));
    this->AddEffect()->SetName(u"Left");
    const auto clone = std::static_pointer_cast<TypeParam>(this->layer->Clone(KyID()));
    ASSERT_EQ(clone->Effects().Count(), 1u);
    EXPECT_EQ(clone->Effects()[0]->Name(), u"Left");
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
    owner.ClearInvalidLayerReferences({{Numbered(3).ToNarrowString(), false}});
    EXPECT_EQ(this->PickedBy(*effect), KyID());
    EXPECT_EQ(this->PickedBy(*other), Numbered(3));
}

} // namespace
} // namespace marlet::test
