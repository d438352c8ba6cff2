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
using testing::IsEmpty;

const KyID kLayer = KyID::FromString("0000000a-0000-0000-0000-000000000000");
const KyID kOther = KyID::FromString("0000000b-0000-0000-0000-000000000000");

struct EffectInstanceTest : testing::Test {
    std::shared_ptr<TestPlugin> plugin = std::make_shared<TestPlugin>();
    std::shared_ptr<EffectInstance> effect = EffectInstance::Create(plugin);

    PropertyValue &Value(const char *name) const { return effect->Properties().StaticValue(name); }
};

TEST_F(EffectInstanceTest, StartsAsItsPluginSays)
{
    EXPECT_EQ(effect->Type(), AbstractPluginInstance::InstanceType::Effect);
    EXPECT_FALSE(effect->ID().IsNull());
    EXPECT_EQ(effect->Name(), u"Blur");
    EXPECT_EQ(effect->PluginID(), plugin->id);
    EXPECT_EQ(effect->Plugin(), plugin);
    EXPECT_TRUE(effect->Enabled());
    EXPECT_TRUE(effect->ParentID().IsNull());
    EXPECT_TRUE(effect->ParentTimelineID().IsNull());
    EXPECT_EQ(effect->HostInstanceData(), nullptr);
    EXPECT_EQ(&effect->Animation(), &effect->Properties());
    EXPECT_TRUE(effect->PropertyUIState("amount").visible);
    EXPECT_FALSE(effect->PropertyUIState("smooth").visible);

    Value("amount") = 20.f;
    EXPECT_EQ(plugin->properties.StaticValue("amount"), PropertyValue(10.f));
}

TEST_F(EffectInstanceTest, IsCompleteWhenItsPluginHearsOfIt)
{
    plugin->whenCreated = [&](AbstractPluginInstance *instance) {
        EXPECT_EQ(instance->Plugin(), plugin);
        EXPECT_TRUE(instance->Properties().HasProperty("amount"));
        EXPECT_FALSE(instance->PropertyUIState("smooth").visible);
        EXPECT_EQ(instance->InstanceData(), nullptr);
    };
    const WideString text = effect->Serialize();
    plugin->calls.clear();
    EffectInstance::Create(plugin);
    EffectInstance::CreateFromXml(plugin, text, {});
    EXPECT_THAT(plugin->calls, ElementsAre("created", "destroyed", "created", "destroyed"));
}

TEST_F(EffectInstanceTest, HasAPanelStateForControlsOnly)
{
    effect->SetPropertyUIState("amount", {.visible = false});
    EXPECT_FALSE(effect->PropertyUIState("amount").visible);
    for (const char *name : {"layer", "unknown", "", static_cast<const char *>(nullptr)}) {
        const auto fails = [&](auto call) {
            EXPECT_THAT(call,
                        testing::ThrowsMessage<std::runtime_error>("Property not found in UI state hashmap"));
        };
        fails([&] { effect->PropertyUIState(name); });
        fails([&] { effect->SetPropertyUIState(name, {}); });
    }
}

TEST_F(EffectInstanceTest, TellsItsPluginOfChanges)
{
    plugin->calls.clear();
    effect->NotifyPropertyChanged("amount");
    EXPECT_THAT(plugin->calls, ElementsAre("changed amount"));
}

TEST_F(EffectInstanceTest, CopiesWithAnIDPropertiesAndDataOfItsOwn)
{
    int hostData = 0;
    effect->SetName(u"Soft");
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
    EXPECT_EQ(copy->Name(), u"Soft");
    EXPECT_FALSE(copy->Enabled());
    EXPECT_FALSE(copy->PropertyUIState("amount").visible);
    EXPECT_TRUE(copy->ParentID().IsNull());
    EXPECT_TRUE(copy->ParentTimelineID().IsNull());
    EXPECT_EQ(copy->HostInstanceData(), nullptr);
    EXPECT_NE(copy->InstanceData(), effect->InstanceData());
    EXPECT_EQ(TestPlugin::Text(*copy), TestPlugin::Text(*effect));
    EXPECT_NE(copy->Properties().KeyFrames("amount").Identifiers(),
              effect->Properties().KeyFrames("amount").Identifiers());
    copy->Properties().StaticValue("smooth") = false;
    EXPECT_EQ(Value("smooth"), PropertyValue(true));
    EXPECT_EQ(effect->ParentID(), kLayer);
    EXPECT_EQ(effect->HostInstanceData(), &hostData);
}

TEST_F(EffectInstanceTest, LeavesAPluginWithoutPrivateDataAloneWhenCopied)
{
    plugin->calls.clear();
    EffectInstance::Copy(effect);
    EXPECT_THAT(plugin->calls, ElementsAre("created", "saved", "destroyed"));
}

TEST_F(EffectInstanceTest, OutlivesItsPlugin)
{
    delete &TestPlugin::Text(*effect);
    plugin.reset();
    EXPECT_EQ(effect->Plugin(), nullptr);
    EXPECT_EQ(EffectInstance::Copy(effect), nullptr);
    EXPECT_THAT(effect->LayerPickerProperties(), IsEmpty());
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
    EXPECT_THAT(effect->LayerPickerProperties(), ElementsAre("layer"));
    EXPECT_FALSE(effect->IsLayerReferenced(kLayer));
    Value("layer") = kLayer;
    effect->Properties().KeyFrames("layer").Add(KeyFrame(0, kOther));
    EXPECT_TRUE(effect->IsLayerReferenced(kLayer));
    EXPECT_FALSE(effect->IsLayerReferenced(kOther));

    effect->ChangeLayerReferences({{kOther.ToNarrowString(), KyID().ToNarrowString()}});
    EXPECT_EQ(Value("layer"), PropertyValue(kLayer));
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
    const struct {
        std::unordered_map<NarrowString, bool> valid;
        KyID expected;
    } kCases[] = {{{}, kLayer},
                  {{{kLayer.ToNarrowString(), false}}, kLayer},
                  {{{kOther.ToNarrowString(), true}}, KyID()}};
    for (const auto &c : kCases) {
        const auto read = EffectInstance::CreateFromXml(plugin, text, c.valid);
        EXPECT_EQ(read->Properties().StaticValue("layer"), PropertyValue(c.expected));
    }
}

} // namespace
} // namespace marlet::test
