#include "ToolTest.h"
#include "plugins/PluginManager.h"
#include "plugins/Plugins.h"

#include <marlet/layers/GradeLayer.h>
#include <marlet/plugins/EffectInstance.h>

#include <filesystem>

namespace marlet::test
{

namespace
{

namespace fs = std::filesystem;

class SaveTest : public ToolTest
{
protected:
    SaveTest()
    {
        const auto grade = GradeLayer::Create(u"Grade", 64, 64);
        grade->SetParentComposition(composition_);
        grade->Effects().Add(EffectInstance::Create(tool::Plugins()->FindPlugin(tool::kLevelsID)));
        composition_->Layers().Add(grade);
        Save("a.xml");
    }
};

TEST_F(SaveTest, KeepsEffectsUnlessItIsToldToLeaveThemOut)
{
    ASSERT_EQ(Run({"save", "a.xml", "b.xml"}).exitCode, 0);
    EXPECT_EQ(Read("b.xml"), Read("a.xml"));
    ASSERT_EQ(Run({"save", "--without-plugins", "a.xml", "c.xml"}).exitCode, 0);
    EXPECT_THAT(Read("c.xml"), testing::HasSubstr("<Effects/>"));
}

TEST_F(SaveTest, LeavesNoEffectsOutOfTheFileThatItReads)
{
    const std::string before = Read("a.xml");
    fs::create_symlink("a.xml", Path("soft.xml"));
    fs::create_hard_link(Path("a.xml"), Path("hard.xml"));
    for (const std::string out : {"./a.xml", "soft.xml", "hard.xml"}) {
        EXPECT_EQ(Run({"save", "--without-plugins", "a.xml", out}).err,
                  "marlet: " + out +
                      ": Without plug-ins every effect gets lost: it is not saved over the "
                      "file that it was read from\n");
    }
    EXPECT_EQ(Shell("\"$MARLET\" save --without-plugins /dev/stdin a.xml <a.xml").exitCode, 1);
    EXPECT_EQ(Read("a.xml"), before);
    // Without the option the file may be its own target, and so may a stream.
    EXPECT_EQ(Run({"save", "a.xml", "soft.xml"}).exitCode, 0);
    EXPECT_EQ(Shell("cat a.xml | \"$MARLET\" save --without-plugins /dev/stdin /dev/stdout").exitCode, 0);
}

TEST_F(SaveTest, KeepsWhatPluginsMadeThatItDoesNotHave)
{
    std::string text = Read("a.xml");
    const std::string start = "<PluginID>" + tool::kLevelsID.ToNarrowString().substr(0, 1);
    Write("bad.xml", text.replace(text.find(start), start.size(), "<PluginID>0"));
    EXPECT_EQ(Run({"save", "bad.xml", "out.xml"}).err, "");
    EXPECT_EQ(Read("out.xml"), text);
    const std::string missing = "the plug-in \"Levels\" 2.0.0.0 is missing, for 1 use\n";
    EXPECT_EQ(Run({"info", "bad.xml"}).err, "bad.xml: warning: " + missing);
    EXPECT_THAT(Run({"check", "bad.xml"}).out, testing::HasSubstr("\n" + missing));
    EXPECT_THAT(Run({"check", "bad.xml", "--json"}).out,
                testing::HasSubstr("\"isOlder\":false,\"uses\":1}\n"));
    EXPECT_EQ(Run({"save", "--without-plugins", "bad.xml", "out.xml"}).exitCode, 0);
    EXPECT_THAT(Read("out.xml"), testing::HasSubstr("<Effects/>"));
}

TEST_F(SaveTest, LeavesTheFileThatItReadBesideWhereSomethingOfItIsLost)
{
    std::string text = Read("a.xml");
    text.insert(text.find("<Layers>"), "<Odd/>");
    Write("kept.xml", text);
    EXPECT_EQ(Run({"save", "kept.xml", "kept.xml"}).exitCode, 0);
    text.replace(text.find("<CTI>0"), 6, "<CTI>x");
    Write("lossy.xml", text);
    EXPECT_THAT(Run({"save", "lossy.xml", "./lossy.xml"}).err,
                testing::EndsWith("\n./lossy.xml: warning: what was lost when it was read stays in "
                                  "./lossy.xml.~1~\n"));
    EXPECT_EQ(Read("lossy.xml.~1~"), text);
    EXPECT_THAT(Read("lossy.xml"), testing::HasSubstr("<CTI>0"));
    EXPECT_THAT(FileNames(),
                testing::UnorderedElementsAre("a.xml", "kept.xml", "lossy.xml", "lossy.xml.~1~"));
}

} // namespace

} // namespace marlet::test
