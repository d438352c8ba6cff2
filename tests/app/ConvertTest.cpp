#include "ToolTest.h"

#include <filesystem>

namespace marlet::test
{

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace
{

class ConvertTest : public ToolTest
{
protected:
    ConvertTest() { std::filesystem::copy(MARLET_EXAMPLES "/cut.xml", Path("cut.xml")); }
};

TEST_F(ConvertTest, BringsAProjectBackFromATimeline)
{
    const ToolRun out = Run({"convert", "cut.xml", "cut.otio"});
    EXPECT_EQ(out.exitCode, 0) << out.err;
    EXPECT_THAT(out.err, HasSubstr("cut.otio: loss: the layers of composition \"Opening\", which is kept\n"));
    const ToolRun in = Run({"convert", "cut.otio", "again.xml"});
    EXPECT_EQ(in.exitCode, 0) << in.err;
    EXPECT_THAT(in.err, Not(HasSubstr("loss")));
    EXPECT_EQ(Read("again.xml"), Read("cut.xml"));
    // By its content, whatever it is called.
    EXPECT_EQ(Shell("cp cut.otio cut.txt && \"$MARLET\" convert cut.txt again.txt --to project").exitCode, 0);
    EXPECT_EQ(Read("again.txt"), Read("cut.xml"));
}

TEST_F(ConvertTest, PutsSubtitlesIntoAProject)
{
    Write("film.srt", "1\n00:00:01,000 --> 00:00:02,000\n<u>Hello</u>\n");
    const ToolRun run =
        Run({"convert", "film.srt", "film.xml", "--into", "cut.xml", "--composition", "Opening", "--json"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.OutLines(), ElementsAre("{\"file\":\"film.srt\",\"severity\":\"loss\",\"what\":\"the tag "
                                            "<u>\",\"isKept\":false,\"line\":2,\"column\":1}"));
    EXPECT_THAT(Read("film.xml"), HasSubstr("<Name>Hello</Name>"));
    EXPECT_EQ(Run({"convert", "film.srt", "new.xml", "--fps", "50"}).exitCode, 0);
    EXPECT_THAT(Run({"info", "new.xml"}).out, HasSubstr("50"));
}

TEST_F(ConvertTest, RefusesWhatItCannotConvert)
{
    Write("bad.otio", "{\"OTIO_SCHEMA\": 5}");
    Write("note.txt", "a note");
    const struct {
        std::vector<std::string> words;
        int exitCode;
        const char *error;
    } cases[] = {
        {{"note.txt", "a.xml"}, 1, "note.txt: Neither its content nor its ending tells the format"},
        {{"cut.xml", "a.foo"}, 1, "a.foo: Its ending tells no format"},
        {{"bad.otio", "a.xml"}, 1, "bad.otio: The text has no timeline"},
        {{"cut.xml", "a.srt"}, 1, "There is more than one composition"},
        {{"cut.xml", "a.otio", "--to", "foo"}, 1, "There is no format \"foo\""},
        {{"cut.xml", "cut.xml"}, 1, "It is not written over the file that it is made of"},
        {{"cut.xml", "a.xml", "--into", "cut.xml"}, 2, "--into takes something else than a project"},
        {{"cut.xml"}, 2, "OUT is missing"},
        {{}, 2, "either IN and OUT or --formats is needed"},
    };
    for (const auto &[words, exitCode, error] : cases) {
        std::vector<std::string> all{"convert"};
        all.insert(all.end(), words.begin(), words.end());
        const ToolRun run = Run(all);
        EXPECT_EQ(run.exitCode, exitCode);
        EXPECT_THAT(run.err, HasSubstr(error));
    }
    EXPECT_FALSE(std::filesystem::exists(Path("a.xml")));
    EXPECT_THAT(Run({"convert", "--formats"}).out, AllOf(HasSubstr("OpenTimelineIO"), HasSubstr(".srt")));
}

} // namespace

} // namespace marlet::test
