#include "ToolTest.h"

#include <sys/stat.h>

#include <filesystem>

namespace marlet::test
{

namespace
{

namespace fs = std::filesystem;
using FileFailuresTest = ToolTest;

std::string Utf16(const std::u16string &text, bool bigEndian)
{
    std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char16_t unit : text) {
        bytes += static_cast<char>(bigEndian ? unit >> 8 : unit & 0xFF);
        bytes += static_cast<char>(bigEndian ? unit & 0xFF : unit >> 8);
    }
    return bytes;
}

TEST_F(FileFailuresTest, EveryFailureNamesTheFile)
{
    const std::string project = ToUtf8(project_->Serialize());
    Write("empty.xml", "");
    Write("latin.xml", "<Project Version=\"0\"><Name>caf\xE9</Name></Project>");
    Write("cut.xml", project.substr(0, project.size() / 2));
    Write("odd.xml", Utf16(u"<Project/>", false) + "x");
    Write("bare.xml", "<Project/>");

    const struct {
        const char *file;
        const char *place;
        const char *message;
    } cases[] = {
        {"gone.xml", "", "No such file or directory"},
        {".", "", "Is a directory"},
        {"empty.xml", ":1:1", "The text is no XML"},
        {"latin.xml", ":1:31", "The text is not UTF-8"},
        {"cut.xml", ":32:27", "The text is no XML"},
        {"odd.xml", "", "The text is cut off in the middle of a character"},
        {"bare.xml", ":1:1", "Project is missing attribute Version: "},
        {"/dev/null", ":1:1", "The text is no XML"},
    };
    for (const auto &[file, place, message] : cases) {
        const ToolRun run = Run({"info", file});
        EXPECT_EQ(run.exitCode, 1) << file;
        EXPECT_THAT(run.err,
                    testing::EndsWith(std::string("marlet: ") + file + place + ": " + message + "\n"));
    }
}

TEST_F(FileFailuresTest, ReadsUtf8AndUtf16WithAByteOrderMark)
{
    project_->SetName(u"M\u00E4r\U0001F419");
    const std::u16string text = project_->Serialize();
    const std::string plain = ToUtf8(text);
    for (const std::string &bytes : {"\xEF\xBB\xBF" + plain, Utf16(text, false), Utf16(text, true)}) {
        Write("in.xml", bytes);
        EXPECT_EQ(Run({"save", "in.xml", "out.xml"}).exitCode, 0);
        EXPECT_EQ(Read("out.xml"), plain);
    }
}

TEST_F(FileFailuresTest, AFailedSaveLeavesTheOldFileWholeAndNothingElse)
{
    AddPoint(u"Point");
    Save("a.xml");
    Write("old.xml", "old");
    // 512 bytes are less than the project has.
    const ToolRun run = Shell("ulimit -f 1; \"$MARLET\" save a.xml old.xml");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "marlet: old.xml: File too large\n");
    EXPECT_EQ(Read("old.xml"), "old");

    EXPECT_EQ(Run({"save", "a.xml", "no/such/folder.xml"}).err,
              "marlet: no/such/folder.xml: No such file or directory\n");
    EXPECT_EQ(Run({"save", "a.xml", "old.xml/b.xml"}).err, "marlet: old.xml/b.xml: Not a directory\n");
    EXPECT_EQ(Run({"report", "old.xml", "-o", "report"}).exitCode, 1);
    EXPECT_EQ(Run({"save", "a.xml", "/dev/full"}).err, "marlet: /dev/full: No space left on device\n");
    EXPECT_EQ(FileNames().size(), 2u);
}

TEST_F(FileFailuresTest, ASaveKeepsPermissionsAndFollowsLinks)
{
    Save("a.xml");
    fs::create_directory(Path("sub"));
    Write("sub/real.xml", "old");
    ::chmod(Path("sub/real.xml").c_str(), 0640);
    fs::create_symlink("sub/real.xml", Path("link.xml"));

    EXPECT_EQ(Run({"save", "a.xml", "link.xml"}).exitCode, 0);
    EXPECT_TRUE(fs::is_symlink(Path("link.xml")));
    EXPECT_EQ(Read("sub/real.xml"), Read("a.xml"));
    struct stat status {
    };
    ::stat(Path("sub/real.xml").c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777u, 0640u);

    EXPECT_EQ(Shell("\"$MARLET\" save a.xml /dev/stdout").out, Read("a.xml"));
}

TEST_F(FileFailuresTest, AClipThatIsInterruptedLeavesNothingBehind)
{
    // A shell lets its background jobs ignore Ctrl-C, so they are asked to end.
    const ToolRun run =
        Shell("\"$MARLET\" clip clip.mov --frames 100000 & "
              "while [ -z \"$(find . -name '.marlet-*')\" ]; do sleep 0.01; done; kill $!; wait $!");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "marlet: clip.mov: Interrupted\n");
    EXPECT_TRUE(FileNames().empty());
}

TEST_F(FileFailuresTest, LostOutputIsAFailure)
{
    AddPoint(u"Point");
    Save("a.xml");
    EXPECT_EQ(Shell("\"$MARLET\" info a.xml >/dev/full").err,
              "marlet: standard output: No space left on device\n");
    EXPECT_EQ(Shell("\"$MARLET\" help >&-").exitCode, 1);
    const ToolRun closed = Shell("{ \"$MARLET\" matrix a.xml --composition Main --layer Point "
                                 "--frames 0..2147483647; echo $? >code; } | head -n 1 >/dev/null; cat code");
    EXPECT_EQ(closed.out, "1\n");
    EXPECT_EQ(closed.err, "marlet: standard output: Broken pipe\n");
}

} // namespace

} // namespace marlet::test
