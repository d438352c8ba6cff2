#include "ToolTest.h"

namespace marlet::test
{

namespace
{

using RecoverTest = ToolTest;
using testing::HasSubstr;
using testing::StartsWith;

TEST_F(RecoverTest, WritesWhatCanBeHadAndTellsWhatIsGone)
{
    AddPoint(u"First");
    AddPoint(u"Second");
    Save("a.xml");
    const std::string text = Read("a.xml");
    const std::size_t cut = text.find("<Name>Second") + 5;
    Write("cut.xml", text.substr(0, cut));
    EXPECT_EQ(Run({"info", "cut.xml"}).exitCode, 1);

    const ToolRun run = Run({"recover", "cut.xml", "out.xml"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, StartsWith("marlet: cut.xml: "));
    const ToolRun json = Run({"recover", "cut.xml", "json.xml", "--json"});
    EXPECT_EQ(json.exitCode, 1);
    EXPECT_EQ(Read("json.xml"), Read("out.xml"));
    EXPECT_THAT(json.OutLines(),
                testing::Each(testing::AllOf(StartsWith("{\"kind\":\""), testing::EndsWith("}"))));
    EXPECT_EQ(json.OutLines().size(), run.OutLines().size() + 1);
    EXPECT_THAT(json.OutLines().back(), StartsWith("{\"kind\":\"sums\",\"losses\":"));
    const std::size_t line =
        1 + static_cast<std::size_t>(std::count(text.begin(), text.begin() + std::ptrdiff_t(cut), '\n'));
    EXPECT_THAT(run.out, HasSubstr("cut.xml:" + std::to_string(line) + ":"));
    EXPECT_THAT(run.out, HasSubstr(" loss: the text is cut off here"));
    const std::string info = Run({"info", "out.xml"}).out;
    EXPECT_THAT(info, HasSubstr("First"));
    EXPECT_THAT(info, testing::Not(HasSubstr("Second")));

    const ToolRun same = Run({"recover", "a.xml", "same.xml"});
    EXPECT_EQ(same.exitCode, 0);
    EXPECT_THAT(same.out, StartsWith("Nothing is damaged"));
    EXPECT_EQ(Read("same.xml"), text);
    Write("mark.xml", "\xEF\xBB\xBF" + text);
    EXPECT_EQ(Run({"recover", "mark.xml", "same.xml"}).out,
              "Nothing is damaged; the copy is the same text in UTF-8\n");
    EXPECT_EQ(Read("same.xml"), text);
    Write("page.xml", "<html><title>No project</title></html>");
    const ToolRun page = Run({"recover", "page.xml", "none.xml"});
    EXPECT_EQ(page.exitCode, 1);
    EXPECT_EQ(page.err, "marlet: page.xml: There is nothing of a project in it\n");
    EXPECT_EQ(Run({"info", "none.xml"}).exitCode, 1);
    EXPECT_EQ(Run({"recover", "cut.xml", "./cut.xml"}).exitCode, 1);
    EXPECT_EQ(Read("cut.xml").size(), cut);
}

TEST_F(RecoverTest, EveryCommandTellsOfTheFirstLoss)
{
    Save("a.xml");
    std::string text = Read("a.xml");
    text.replace(text.find("<CTI>0"), 6, "<CTI>x");
    text.replace(text.find("<InPoint>0"), 10, "<InPoint>y");
    const std::size_t lineOfLoss =
        1 + static_cast<std::size_t>(
                std::count(text.begin(), text.begin() + std::ptrdiff_t(text.find("<CTI>")), '\n'));
    Write("lossy.xml", text);
    const std::string place = "lossy.xml:" + std::to_string(lineOfLoss) + ":";
    for (const std::vector<std::string> &words : {std::vector<std::string>{"info", "lossy.xml"},
                                                  {"save", "lossy.xml", "b.xml"},
                                                  {"tree", "lossy.xml", "-o", "t.svg"}}) {
        const ToolRun run = Run(words);
        EXPECT_EQ(run.exitCode, 0) << words[0];
        EXPECT_THAT(run.err, StartsWith(place)) << words[0];
        EXPECT_THAT(run.err, HasSubstr(" loss: CTI is no number"));
        EXPECT_THAT(run.err, HasSubstr("\nlossy.xml: 1 more loss\n"));
    }
    EXPECT_EQ(Run({"info", "a.xml"}).err, "");

    text.erase(text.find("<OutPoint>"), text.find("<TimelineZoom>") - text.find("<OutPoint>"));
    Write("broken.xml", text);
    const ToolRun broken = Run({"info", "broken.xml"});
    EXPECT_EQ(broken.exitCode, 1);
    EXPECT_THAT(broken.err,
                testing::ContainsRegex("broken.xml:[0-9]+:[0-9]+: error: Missing element OutPoint"));
    EXPECT_THAT(broken.err,
                testing::ContainsRegex("marlet: broken.xml:[0-9]+:[0-9]+: Missing element: OutPoint\n"));
}

} // namespace

} // namespace marlet::test
