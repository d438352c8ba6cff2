#include <tests/support/TestPlugins.h>

#include <marlet/animation/KeyFrameList.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/plugins/EffectInstance.h>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace marlet::test
{
namespace
{

std::string Document(int version)
{
    std::ifstream file(std::string(MARLET_TEST_DOCUMENTS) + "/plugins/Instance-" + std::to_string(version) +
                           ".xml",
                       std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string Replaced(std::string text, const std::string &what, const std::string &by)
{
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return at == std::string::npos ? text : text.replace(at, what.size(), by);
}

struct EffectVersions : testing::Test {
    std::shared_ptr<TestPlugin> plugin = std::make_shared<TestPlugin>();

    EffectVersions() { plugin->id = KyID::FromString("00000011-aaaa-4bbb-8ccc-0123456789ab"); }

    std::shared_ptr<EffectInstance> Read(const std::string &text) const
    {
        return EffectInstance::CreateFromXml(plugin, FromUtf8(text), {});
    }
};

TEST_F(EffectVersions, AreReadAndWrittenInTheNewest)
{
    const std::string newest = Document(2);
    // Older ones know nothing of the panel, which then looks as the plug-in has it.
    const std::string untouched =
        Replaced(Replaced(newest, "name=\"amount\" vis=\"0\"", "name=\"amount\" vis=\"1\""),
                 "name=\"smooth\" vis=\"1\"", "name=\"smooth\" vis=\"0\"");
    const std::string expected[] = {untouched, untouched, newest};
    for (int version = 0; version <= 2; ++version) {
        const auto effect = Read(Document(version));
        EXPECT_EQ(ToUtf8(effect->Serialize()), expected[version]) << version;
        EXPECT_EQ(TestPlugin::Text(*effect), NarrowString("\0\xffprivate", 9)) << version;
    }
}

TEST_F(EffectVersions, AskForAPluginAsNewAsTheFileFromOneOn)
{
    plugin->version.build = 3;
    EXPECT_NO_THROW(Read(Document(0)));
    EXPECT_THROW(Read(Document(1)), InvalidPluginVersionException);
    EXPECT_THROW(Read(Document(2)), InvalidPluginVersionException);
    EXPECT_THROW(Read(Replaced(Document(0), "Version=\"0\"", "Version=\"1\"")), XmlParseException);
    EXPECT_EQ(plugin->living, 0);
}

} // namespace
} // namespace marlet::test
