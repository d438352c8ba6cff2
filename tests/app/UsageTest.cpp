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

/// zsh hands the words to functions of its own, which stand-ins print here; fish says what it would offer.
TEST_F(UsageTest, ZshAndFishOfferTheSameWithWordsBeside)
{
    Write("zsh", Run({"help", "--completion", "zsh"}).out);
    Write("fish", Run({"help", "--completion", "fish"}).out);
    const auto zsh = [this](const std::string &words, int current) {
        return Shell("zsh -fc 'compdef() { : }; _describe() { print -rl -- ${(P)2} }; _arguments() { print "
                     "-rl -- $@ };"
                     ". ./zsh; words=(" +
                     words + "); CURRENT=" + std::to_string(current) + "; _marlet'")
            .OutLines();
    };
    const auto fish = [this](const std::string &line) {
        return Shell("HOME=$PWD fish --no-config -c 'source fish; complete -C \"" + line + "\"'").OutLines();
    };
    for (const std::string &verb : Verbs()) {
        const std::vector<std::string> inZsh = zsh("marlet " + verb + " -", 3);
        const std::vector<std::string> inFish = fish("marlet " + verb + " -");
        for (const std::string &option : ListedIn({"help", verb}, "-")) {
            EXPECT_THAT(inZsh, testing::Contains(testing::StartsWith(option))) << verb;
            EXPECT_THAT(inFish, testing::Contains(testing::StartsWith(option + "\t"))) << verb;
        }
    }
    EXPECT_THAT(zsh("marlet \"\"", 2), testing::Contains("info:what is in a project"));
    EXPECT_THAT(zsh("marlet frame -", 3),
                testing::Contains("--frame=[the frame of the composition that becomes a PNG file]:N:_files"));
    EXPECT_THAT(fish("marlet inf"), testing::ElementsAre("info\twhat is in a project"));
    EXPECT_THAT(fish("marlet help rep"), testing::ElementsAre("report\ta project on one HTML page"));
    EXPECT_EQ(Run({"help", "--completion", "csh"}).exitCode, 2);
}

TEST_F(UsageTest, ColoursAreForTerminalsUnlessOneAsksForThem)
{
    AddPoint(u"Old");
    const std::string before = Save("before.xml");
    composition_->Layers().front()->SetName(u"New");
    const std::string after = Save("after.xml");
    const std::string escape = "\x1B[";
    for (const std::vector<std::string> &call :
         {std::vector<std::string>{"diff", before, after}, {"check", before}, {"info", "missing.xml"}}) {
        const ToolRun plain = Run(call);
        EXPECT_THAT(plain.out + plain.err, Not(HasSubstr(escape)));
        std::vector<std::string> asking = call;
        asking.insert(asking.begin(), "--color=always");
        const ToolRun colored = Shell("NO_COLOR=1 \"$MARLET\" '" + asking[0] + "' '" + asking[1] + "' '" +
                                      asking[2] + "' " + (asking.size() > 3 ? "'" + asking[3] + "'" : ""));
        EXPECT_EQ(colored.exitCode, plain.exitCode);
        if (call[0] != "check") {
            EXPECT_THAT(colored.out + colored.err, HasSubstr(escape)) << call[0];
        }
    }
    // script is a terminal to what it runs.
    const std::string terminal = "script -qec \"'$MARLET' diff before.xml after.xml\" /dev/null </dev/null";
    EXPECT_THAT(Shell("TERM=xterm " + terminal).out, HasSubstr(escape + "33m~"));
    EXPECT_THAT(Shell("TERM=xterm NO_COLOR=1 " + terminal).out, Not(HasSubstr(escape)));
    EXPECT_EQ(Run({"info", before, "--color=sometimes"}).exitCode, 2);
}

TEST_F(UsageTest, NamesItsVersion)
{
    EXPECT_THAT(Run({"--version"}).out, MatchesRegex("marlet [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

} // namespace marlet::test
