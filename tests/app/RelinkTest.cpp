#include "ToolTest.h"

#include <marlet/project/ImageAsset.h>

#include <filesystem>

namespace marlet::test
{

namespace
{

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

class RelinkTest : public ToolTest
{
protected:
    void AddImage(const char16_t *path) { project_->Assets().All().Add(ImageAsset::Create(path)); }

    void Put(const std::string &name, const std::string &bytes)
    {
        fs::create_directories(fs::path(Path(name)).parent_path());
        Write(name, bytes);
    }
};

TEST_F(RelinkTest, FindsFilesByNameThenByWhatTheyAre)
{
    AddImage(u"/gone/shots/plain.png");
    AddImage(u"/gone/shots/Case.PNG");
    AddImage(u"/gone/shots/folder.png");
    AddImage(u"/gone/shots/copies.png");
    AddImage(u"/gone/shots/unclear.png");
    AddImage(u"/gone/shots/nowhere.png");
    Run({"clip", "clip.mov", "--frames", "3", "--size", "160x120"});
    ASSERT_EQ(Run({"new", "film.xml", "--media", "clip.mov"}).exitCode, 0);
    Save("a.xml");
    Put("found/x/plain.png", "1");
    Put("found/x/case.png", "2");
    Put("found/shots/folder.png", "3");
    Put("found/other/folder.png", "4");
    Put("found/x/copies.png", "5");
    Put("found/y/copies.png", "5");
    Put("found/x/unclear.png", "6");
    Put("found/y/unclear.png", "7");

    const ToolRun run = Run({"relink", "a.xml", "b.xml", "--search", "found"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "marlet: a.xml: 2 files not found\n");
    const std::string out = Read("b.xml");
    for (const char *path : {"x/plain.png", "x/case.png", "shots/folder.png", "x/copies.png"})
        EXPECT_THAT(out, HasSubstr("<Filename>" + Path("found") + "/" + path + "</Filename>"));
    for (const char *path : {"/gone/shots/unclear.png", "/gone/shots/nowhere.png"})
        EXPECT_THAT(out, HasSubstr(std::string("<Filename>") + path + "</Filename>"));
    EXPECT_THAT(run.out, HasSubstr("ambiguous \"unclear.png\" /gone/shots/unclear.png\n"
                                   "          found/x/unclear.png\n          found/y/unclear.png\n"));
    EXPECT_THAT(run.out, HasSubstr("missing   \"nowhere.png\""));

    // Of two clips of one name the one that has what the document shows of it.
    fs::create_directories(Path("clips/a"));
    Put("clips/a/clip.mov", "no clip");
    fs::create_directories(Path("clips/b"));
    fs::rename(Path("clip.mov"), Path("clips/b/clip.mov"));
    const ToolRun clip = Run({"relink", "film.xml", "out.xml", "--search", "clips"});
    EXPECT_EQ(clip.exitCode, 0) << clip.err;
    EXPECT_THAT(clip.out, HasSubstr("clips/b/clip.mov\n"));
    EXPECT_THAT(Run({"info", "out.xml"}).out, Not(HasSubstr("missing")));
    EXPECT_EQ(Run({"relink", "a.xml", "c.xml", "--search", "no-folder"}).exitCode, 1);
}

} // namespace

} // namespace marlet::test
