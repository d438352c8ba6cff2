#include <tests/support/PropertyValuePrinter.h>
#include <tests/support/TestPlugins.h>

#include <marlet/animation/KeyFrameList.h>
#include <marlet/plugins/EffectInstance.h>

#include <gmock/gmock.h>

namespace marlet::test
{
namespace
{

using testing::ElementsAre;

const KyID kLayer = KyID::FromString("0000000a-0000-0000-0000-000000000000");
const KyID kOther = KyID::FromString("0000000b-0000-0000-0000-000000000000");

struct EffectInstanceTest : testing::Test {
    std::shared_ptr<TestPlugin> plugin = std::make_shared<TestPlugin>();
    std::shared_ptr<EffectInstance> effect = EffectInstance::Create(plugin);

    PropertyValue &Value(const char *name) const { return effect->Properties().StaticValue(name); }
};

TEST_F(EffectInstanceTest, IsCompleteWhenItsPluginHearsOfIt)
{
    plugin->whenCreated = [&](AbstractPluginInstance *instance) {
        EXPECT_EQ(instance->Plugin(), plugin);
        EXPECT_TRUE(instance->Properties().HasProperty("amount"));
        EXPECT_FALSE(instance->PropertyUIState("smooth").visible);
        EXPECT_EQ(instance->InstanceData(), nullptr);
    };
    plugin->calls.clear();
    EffectInstance::Create(plugin);
    EXPECT_THAT(plugin->calls, ElementsAre("created", "destroyed"));
}

TEST_F(EffectInstanceTest, HasAPanelStateForControlsOnly)
{
    effect->SetPropertyUIState("amount", {.visible = false});
    EXPECT_FALSE(effect->PropertyUIState("amount").visible);
    const auto fails = testing::ThrowsMessage<std::runtime_error>("Property not found in UI state hashmap");
    for (const char *name : {"layer", "unknown", static_cast<const char *>(nullptr)}) {
        EXPECT_THAT([&] { effect->PropertyUIState(name); }, fails);
        EXPECT_THAT([&] { effect->SetPropertyUIState(name, {}); }, fails);
    }
}

TEST_F(EffectInstanceTest, CopiesWithAnIDPropertiesAndDataOfItsOwn)
{
    int hostData = 0;
    effect->SetEnabled(false);
    effect->SetPropertyUIState("amount", {.visible = false});
    effect->SetParent(kLayer, kOther);
    effect->SetHostInstanceData(&hostData);
    effect->Properties().KeyFrames("amount").Add(KeyFrame(5, 1.f));
    TestPlugin::Text(*effect) = NarrowString("\0\xff private", 10);
    plugin->calls.clear();
    plugin->whenCreated = [&](AbstractPluginInstance *copy) {
        EXPECT_EQ(copy->ID(), effect->ID());
        EXPECT_EQ(&copy->Properties(), &effect->Properties());
        EXPECT_EQ(copy->InstanceData(), effect->InstanceData());
    };

    const auto copy = EffectInstance::Copy(effect);
    EXPECT_THAT(plugin->calls, ElementsAre("created", "saved", "read"));
    EXPECT_NE(copy->ID(), effect->ID());
    EXPECT_FALSE(copy->Enabled());
    EXPECT_FALSE(copy->PropertyUIState("amount").visible);
    EXPECT_TRUE(copy->ParentID().IsNull());
    EXPECT_EQ(copy->HostInstanceData(), nullptr);
    EXPECT_NE(copy->InstanceData(), effect->InstanceData());
    EXPECT_EQ(TestPlugin::Text(*copy), TestPlugin::Text(*effect));
    EXPECT_NE(copy->Properties().KeyFrames("amount").Identifiers(),
              effect->Properties().KeyFrames("amount").Identifiers());
}

TEST_F(EffectInstanceTest, OutlivesItsPlugin)
{
    plugin.reset();
    EXPECT_EQ(effect->Plugin(), nullptr);
    EXPECT_EQ(EffectInstance::Copy(effect), nullptr);
    EXPECT_FALSE(effect->IsLayerReferenced({}));
    const auto gone = testing::ThrowsMessage<std::logic_error>("The plug-in of the effect \"Blur\" is gone");
    EXPECT_THAT([&] { effect->Serialize(); }, gone);
    EXPECT_THAT([&] { effect->NotifyPropertyChanged("amount"); }, gone);
}

TEST(EffectInstance, NeedsAPlugin)
{
    EXPECT_THROW(EffectInstance::Create(nullptr), std::invalid_argument);
    EXPECT_THROW(EffectInstance::CreateFromXml(nullptr, u"", {}), std::invalid_argument);
}

TEST_F(EffectInstanceTest, RefersToTheLayersThatItsPickersHold)
{
    Value("layer") = kLayer;
    effect->Properties().KeyFrames("layer").Add(KeyFrame(0, kOther));
    EXPECT_TRUE(effect->IsLayerReferenced(kLayer));
    EXPECT_FALSE(effect->IsLayerReferenced(kOther));

    effect->ChangeLayerReferences({{kLayer.ToNarrowString(), kOther.ToNarrowString()}});
    EXPECT_EQ(Value("layer"), PropertyValue(kOther));
    EXPECT_THROW(effect->ChangeLayerReferences({{kOther.ToNarrowString(), "none"}}), std::runtime_error);

    effect->ClearInvalidLayerReferences({{kOther.ToNarrowString(), false}});
    EXPECT_EQ(Value("layer"), PropertyValue(kOther));
    effect->ClearInvalidLayerReferences({{kLayer.ToNarrowString(), true}});
    EXPECT_EQ(Value("layer"), PropertyValue(KyID()));
}

TEST_F(EffectInstanceTest, PassesOverPickersThatHoldNoID)
{
    plugin->panel->ChildNodes().Add(std::make_shared<PluginUILayerPicker>(plugin->panel, u"Lost", "lost", 0));
    Value("layer") = 7;
    EXPECT_THAT(effect->LayerPickerProperties(), ElementsAre("layer", "lost"));
    EXPECT_FALSE(effect->IsLayerReferenced({}));
    effect->ClearInvalidLayerReferences({});
    effect->ChangeLayerReferences({{KyID().ToNarrowString(), kLayer.ToNarrowString()}});
    EXPECT_EQ(Value("layer"), PropertyValue(7));
}

TEST_F(EffectInstanceTest, ReadsReferencesAgainstTheLayersAtHand)
{
    Value("layer") = kLayer;
    const WideString text = effect->Serialize();
    const auto read = [&](const std::unordered_map<NarrowString, bool> &valid) {
        return EffectInstance::CreateFromXml(plugin, text, valid)->Properties().StaticValue("layer");
    };
    EXPECT_EQ(read({}), PropertyValue(kLayer));
    EXPECT_EQ(read({{kLayer.ToNarrowString(), false}}), PropertyValue(kLayer));
    EXPECT_EQ(read({{kOther.ToNarrowString(), true}}), PropertyValue(KyID()));
}

} // namespace
} // namespace marlet::test
