#include "ToolTest.h"

namespace marlet::test
{

using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

namespace
{

class UsageTest : public ToolTest
{
protected:
    /// The first words of the lines that are indented and start like this.
    std::vector<std::string> ListedIn(const std::vector<std::string> &help, const std::string &start) const
    {
        std::vector<std::string> words;
        for (const std::string &line : Run(help).OutLines())
            if (line.rfind("  " + start, 0) == 0 && line[2] != ' ')
                words.push_back(line.substr(2, line.find(' ', 2) - 2));
        return words;
    }

    std::vector<std::string> Verbs() const { return ListedIn({"help"}, ""); }

    /// What bash offers for a line whose last word is being typed.
    std::vector<std::string> Completed(const std::string &line, int lastWord) const
    {
        Write("completion", Run({"help", "--completion"}).out);
        return Shell("bash -c '. ./completion; COMP_WORDS=(" + line + "); COMP_CWORD=" +
                     std::to_string(lastWord) + "; _marlet; printf \"%s\\n\" \"${COMPREPLY[@]}\"'")
            .OutLines();
    }
};

} // namespace

TEST_F(UsageTest, EveryVerbShowsAnExampleThatWorks)
{
    ASSERT_EQ(Shell("ln -s '" MARLET_EXAMPLES "' examples").exitCode, 0);
    const std::string heading = "\nexample:\n  marlet ";
    const std::vector<std::string> verbs = Verbs();
    ASSERT_THAT(verbs, Not(IsEmpty()));
    for (const std::string &verb : verbs) {
        SCOPED_TRACE(verb);
        const std::string help = Run({"help", verb}).out;
        EXPECT_EQ(Run({verb, "--help"}).out, help);
        const std::size_t place = help.find(heading + verb + " ");
        ASSERT_NE(place, std::string::npos) << help;
        const std::string example = help.substr(place + heading.size());
        // The others are about files that the user brings.
        if (example.find("examples/") != std::string::npos) {
            const ToolRun run = Shell("\"$MARLET\" " + example);
            EXPECT_EQ(run.exitCode, 0) << run.err;
        }
    }
}

TEST_F(UsageTest, ManualAndCompletionTellOfEveryVerbAndItsOptions)
{
    const std::string manual = Run({"help", "--man"}).out;
    std::vector<std::string> verbs = Verbs();
    for (const std::string &verb : verbs) {
        EXPECT_THAT(manual, HasSubstr("\n.SS " + verb + " "));
        std::vector<std::string> options = ListedIn({"help", verb}, "-");
        options.push_back("--help");
        EXPECT_THAT(Completed("marlet " + verb + " -", 2), ElementsAreArray(options)) << verb;
    }
    verbs.push_back("help");
    verbs.push_back("--version");
    EXPECT_THAT(Completed("marlet \"\"", 1), ElementsAreArray(verbs));
    EXPECT_THAT(Completed("marlet help rep", 2), testing::ElementsAre("report"));
}

TEST_F(UsageTest, NamesItsVersion)
{
    EXPECT_THAT(Run({"--version"}).out, MatchesRegex("marlet [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

} // namespace marlet::test
