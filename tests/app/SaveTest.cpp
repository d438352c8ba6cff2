#include "ToolTest.h"
#include "plugins/PluginManager.h"
#include "plugins/Plugins.h"

#include <marlet/layers/GradeLayer.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/CompositionAsset.h>

#include <filesystem>

namespace marlet::test
{

namespace
{

using namespace project;
namespace fs = std::filesystem;

class SaveTest : public ToolTest
{
protected:
    SaveTest()
    {
        const auto grade = GradeLayer::Create(u"Grade", 64, 64);
        effect_ = EffectInstance::Create(tool::Plugins()->FindPlugin(tool::kLevelsID));
        effect_->SetParent(grade->ID(), composition_->ID());
        grade->SetParentComposition(composition_);
        grade->Effects().Add(effect_);
        composition_->Layers().Add(grade);
        Save("a.xml");
    }

    std::string Replaced(const std::string &old, const std::string &replacement) const
    {
        std::string text = Read("a.xml");
        return text.replace(text.find(old), old.size(), replacement);
    }

    std::shared_ptr<EffectInstance> effect_;
};

TEST_F(SaveTest, KeepsEffectsUnlessItIsToldToLeaveThemOut)
{
    ASSERT_EQ(Run({"save", "a.xml", "b.xml"}).exitCode, 0);
    EXPECT_EQ(Read("b.xml"), Read("a.xml"));
    ASSERT_EQ(Run({"save", "--without-plugins", "a.xml", "c.xml"}).exitCode, 0);
    EXPECT_NE(Read("c.xml").find("<Effects/>"), std::string::npos) << Read("c.xml");
    EXPECT_EQ(Read("c.xml").find("<Instance "), std::string::npos);
    // What has no effects may lose none.
    EXPECT_EQ(Run({"save", "c.xml", "c.xml"}).exitCode, 0);
}

TEST_F(SaveTest, LeavesNoEffectsOutOfTheFileThatItReads)
{
    const std::string before = Read("a.xml");
    fs::create_symlink("a.xml", Path("soft.xml"));
    fs::create_hard_link(Path("a.xml"), Path("hard.xml"));
    for (const std::string &out : {std::string("a.xml"), std::string("./a.xml"), Path("a.xml"),
                                   std::string("soft.xml"), std::string("hard.xml")}) {
        for (const char *file : {"a.xml", "soft.xml", "hard.xml"}) {
            const ToolRun run = Run({"save", "--without-plugins", file, out});
            EXPECT_EQ(run.exitCode, 1);
            EXPECT_EQ(run.err, "marlet: " + out +
                                   ": Without plug-ins every effect gets lost: it is not saved over the "
                                   "file that it was read from\n");
        }
    }
    EXPECT_EQ(Shell("\"$MARLET\" save --without-plugins /dev/stdin a.xml <a.xml").exitCode, 1);
    EXPECT_EQ(Read("a.xml"), before);
    // Without the option the file may be its own target, and so may a stream.
    EXPECT_EQ(Run({"save", "a.xml", "soft.xml"}).exitCode, 0);
    EXPECT_EQ(Shell("cat a.xml | \"$MARLET\" save --without-plugins /dev/stdin /dev/stdout").exitCode, 0);
}

TEST_F(SaveTest, SaysWhichPluginAFileLacksAndWhichIsTooOld)
{
    const std::string id = tool::kLevelsID.ToNarrowString();
    const std::pair<std::string, const char *> cases[] = {
        {Replaced("<PluginID>" + id, "<PluginID>0" + id.substr(1)),
         "This project uses the Levels plugin but it cannot be found."},
        {Replaced("Ma=\"2\"", "Ma=\"3\""),
         "The project file was saved with a newer version of the Levels plugin than what is currently "
         "loaded."},
        {Replaced("<PluginID>" + id, "<PluginID>levels"), "Cannot construct KyID from string"},
    };
    for (const auto &[text, words] : cases) {
        Write("bad.xml", text);
        EXPECT_EQ(Run({"save", "bad.xml", "out.xml"}).err, std::string("marlet: bad.xml: ") + words + "\n");
        EXPECT_EQ(Run({"save", "--without-plugins", "bad.xml", "out.xml"}).exitCode, 0);
    }
    Write("bytes.xml", Replaced("</UIState>", "</UIState><InstanceBytes Base64=\"no base64!\"/>"));
    ASSERT_EQ(Run({"save", "bytes.xml", "out.xml"}).exitCode, 0);
    EXPECT_EQ(Read("out.xml"), Read("a.xml"));
}

} // namespace

} // namespace marlet::test
