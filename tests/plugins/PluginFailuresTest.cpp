#include <tests/support/TestPlugins.h>

#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/plugins/EffectsHelper.h>

#include <gmock/gmock.h>

namespace marlet::test
{
namespace
{

using Failure = std::domain_error;

/// Two effects in a list, with private data.
struct PluginFailuresTest : testing::Test {
    std::shared_ptr<TestPluginManager> manager = std::make_shared<TestPluginManager>();
    std::shared_ptr<TestPlugin> plugin = std::make_shared<TestPlugin>();
    EffectsHelper::Effects effects;

    PluginFailuresTest()
    {
        manager->plugins = {plugin};
        for (const char *text : {"first", "second"}) {
            effects.Add(EffectInstance::Create(plugin));
            TestPlugin::Text(*effects.back()) = text;
        }
    }

    std::string Text() const
    {
        const NarrowString failing = std::exchange(plugin->failing, {});
        const auto text =
            ToUtf8(XmlText([&](XmlWriter &writer) { EffectsHelper::SerializeEffects(writer, effects); }));
        plugin->failing = failing;
        return text;
    }
};

TEST_F(PluginFailuresTest, ReachTheCallerAndLeaveEverythingAsItWas)
{
    const std::string before = Text();
    const XmlDocument list(FromUtf8("<Root>" + before + "</Root>"));
    const WideString text = effects[0]->Serialize();
    const struct {
        const char *failing;
        const char *name;
        std::function<void()> run;
    } kCases[] = {
        {"created", "Create", [&] { EffectInstance::Create(plugin); }},
        {"read", "CreateFromXml", [&] { EffectInstance::CreateFromXml(plugin, text, {}); }},
        {"saved", "Copy", [&] { EffectInstance::Copy(effects[0]); }},
        {"read", "Copy", [&] { EffectInstance::Copy(effects[0]); }},
        {"saved", "Serialize", [&] { static_cast<void>(effects[1]->Serialize()); }},
        {"read", "a list", [&] { EffectsHelper::DeserializeEffects(list.Root(), effects, manager); }},
    };
    for (const auto &c : kCases) {
        SCOPED_TRACE(std::string(c.name) + " where " + c.failing + " fails");
        plugin->failing = c.failing;
        EXPECT_THROW(c.run(), Failure);
        EXPECT_EQ(plugin->living, 2);
        EXPECT_EQ(Text(), before);
    }
}

TEST_F(PluginFailuresTest, OfTheSecondInstanceEndTheFirstOne)
{
    const XmlDocument list(FromUtf8("<Root>" + Text() + "</Root>"));
    int created = 0;
    plugin->whenCreated = [&](AbstractPluginInstance *) {
        if (++created == 2)
            throw Failure("The second one");
    };
    plugin->calls.clear();
    EXPECT_THROW(EffectsHelper::DeserializeEffects(list.Root(), effects, manager), Failure);
    EXPECT_THAT(plugin->calls, testing::ElementsAre("created", "read", "destroyed"));
    EXPECT_EQ(effects.Count(), 2u);
}

TEST_F(PluginFailuresTest, OfAnInstanceThatEndsAreDropped)
{
    plugin->failing = "destroyed";
    effects.Clear();
    EXPECT_EQ(plugin->living, 0);
    EXPECT_THAT(plugin->calls, testing::ElementsAre("created", "created", "destroyed", "destroyed"));
}

TEST_F(PluginFailuresTest, WhileAnotherOneIsUnderWayAreDropped)
{
    const WideString text = effects[0]->Serialize();
    plugin->whenSaved = [&](AbstractPluginInstance *, void *, void *) { throw Failure("Not saved"); };
    plugin->failing = "destroyed";
    EXPECT_THROW(EffectInstance::Copy(effects[0]), Failure);
    EXPECT_EQ(plugin->living, 2);
}

} // namespace
} // namespace marlet::test
