#include <tests/support/TestDocuments.h>
#include <tests/support/TestPlugins.h>

#include <marlet/animation/KeyFrameList.h>
#include <marlet/editor/Transition.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/plugins/EffectInstance.h>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace marlet::test
{
namespace
{

std::string Replaced(std::string text, const std::string &what, const std::string &by)
{
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return at == std::string::npos ? text : text.replace(at, what.size(), by);
}

/// For the tag of either kind of instance.
struct InstanceVersions : testing::TestWithParam<std::string> {
    std::shared_ptr<TestPlugin> plugin = std::make_shared<TestPlugin>();

    InstanceVersions() { plugin->id = KyID::FromString("00000011-aaaa-4bbb-8ccc-0123456789ab"); }

    static std::string Document(int version)
    {
        std::ifstream file(std::string(MARLET_TEST_DOCUMENTS) + "/plugins/" + GetParam() + "-" +
                               std::to_string(version) + ".xml",
                           std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::shared_ptr<AbstractPluginInstance> Read(const std::string &text) const
    {
        if (GetParam() == "Transition")
            return Transition::CreateFromXml(plugin, FromUtf8(text));
        return EffectInstance::CreateFromXml(plugin, FromUtf8(text), {});
    }
};

TEST_P(InstanceVersions, AreReadAndWrittenInTheNewest)
{
    const std::string newest = Document(2);
    // Older ones know nothing of the panel, which then looks as the plug-in has it.
    const std::string untouched =
        Replaced(Replaced(newest, "name=\"amount\" vis=\"0\"", "name=\"amount\" vis=\"1\""),
                 "name=\"smooth\" vis=\"1\"", "name=\"smooth\" vis=\"0\"");
    const std::string expected[] = {untouched, untouched, newest};
    for (int version = 0; version <= 2; ++version) {
        const auto instance = Read(Document(version));
        EXPECT_EQ(ToUtf8(instance->Serialize()), expected[version]) << version;
        EXPECT_EQ(TestPlugin::Text(*instance), NarrowString("\0\xffprivate", 9)) << version;
    }
}

TEST_P(InstanceVersions, AskForAPluginAsNewAsTheFileFromOneOn)
{
    plugin->version.build = 3;
    EXPECT_NO_THROW(Read(Document(0)));
    EXPECT_THROW(Read(Document(1)), InvalidPluginVersionException);
    EXPECT_THROW(Read(Document(2)), InvalidPluginVersionException);
    EXPECT_THROW(Read(Replaced(Document(0), "Version=\"0\"", "Version=\"1\"")), XmlParseException);
    EXPECT_EQ(plugin->living, 0);
}

TEST_P(InstanceVersions, AboveTheNewestAreRefusedBeforeAnythingIsRead)
{
    EXPECT_THROW(Read("<" + GetParam() + " Version=\"3\"/>"), InvalidProjectVersionException);
}

TEST_P(InstanceVersions, TakeOverTheExpressionsOfTheFile)
{
    const auto instance = Read(Document(2));
    instance->Properties().Expression("amount") = "2 * x";
    plugin->properties.Expression("amount") = "of the plug-in";
    plugin->properties.Expression("smooth") = "of the plug-in";
    const auto read = Read(ToUtf8(instance->Serialize()));
    EXPECT_EQ(read->Properties().Expression("amount"), "2 * x");
    EXPECT_EQ(read->Properties().Expression("smooth"), "");
    EXPECT_EQ(read->Serialize(), instance->Serialize());
}

TEST_P(InstanceVersions, KnowTheirKindAndTellThePluginOfAChange)
{
    const auto instance = Read(Document(2));
    const bool isEffect = GetParam() == "Instance";
    EXPECT_EQ(static_cast<int>(instance->Type()), isEffect ? 0 : 1);
    plugin->calls.clear();
    instance->NotifyPropertyChanged("amount");
    EXPECT_EQ(plugin->calls, std::vector<NarrowString>{"changed amount"});
    EXPECT_THROW(instance->NotifyPropertyChanged(nullptr), std::invalid_argument);
}

INSTANTIATE_TEST_SUITE_P(Kinds, InstanceVersions, testing::Values("Instance", "Transition"));

} // namespace
} // namespace marlet::test
