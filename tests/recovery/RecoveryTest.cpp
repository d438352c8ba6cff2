#include "Recovering.h"

#include <marlet/foundation/Exceptions.h>

#include <gmock/gmock.h>

#include <random>

using testing::HasSubstr;
using testing::Not;

TEST(Recovery, GivesBackWhatIsNotDamagedAsItIs)
{
    for (const char *name : {"orbit", "titles", "cut"}) {
        LoadReport report;
        EXPECT_EQ(Recovered(ReadExample(name), report), ReadExample(name));
        EXPECT_EQ(report.Count(), 0u);
    }
    LoadReport report;
    const std::string small = SmallProject();
    EXPECT_EQ(Recovered(small, report), small);
    EXPECT_EQ(report.Count(), 0u);
}

TEST(Recovery, KeepsWhatStandsBehindADamage)
{
    struct Damage {
        const char *name;
        std::string from;
        std::string to;
        std::string line; ///< what stands in the line of the first entry, or empty
        std::vector<std::string> there;
        std::vector<std::string> gone;
        std::string what = {}; ///< what the first entry says, or empty
    };
    const std::vector<std::string> all = {"<Name>One</Name>", "<Name>Two</Name>", "<Name>Three</Name>"};
    const std::string two = "<Name>Two</Name>";
    const std::string twoBase = "<LayerBase Version=\"0\">\n<ID>" + std::string(kTwoID) + "</ID>";
    constexpr char kSection[] = "a comment or an instruction that XML cannot hold there is left out";
    const Damage damages[] = {
        {"a value without its end tag", "<CTI>0</CTI>", "<CTI>0", "<InPoint>", {all[0], "<CTI>0</CTI>"}, {}},
        {"a value with another end tag", two, "<Name>Two</Nome>", "Two</Nome>", all, {}},
        {"a value without its start tag", "<CTI>0</CTI>", "0</CTI>", "", {all[2], "<CTI>0</CTI>"}, {}},
        {"a value that is gone", "<CTI>0</CTI>\n", "", "", {all[0], all[1], all[2], "<CTI>"}, {}},
        {"an ID that is gone",
         "<ID>" + std::string(kMainID) + "</ID>\n",
         "",
         "",
         {all[0], "<Name>Main</Name>", "<ID>" + std::string(kMainID) + "</ID>"},
         {}},
        {"an ID that is none", "<ID>" + std::string(kTwoID), "<ID>xyz", "", all, {"xyz"}},
        {"a boolean that is none", "<Visible>1</Visible>", "<Visible>yes</Visible>", "", all, {"yes"}},
        {"a layer without its end tag",
         "</PointLayer>\n<PointLayer Version=\"0\">\n<Dimensions>0</Dimensions>\n" + twoBase,
         "<PointLayer Version=\"0\">\n<Dimensions>0</Dimensions>\n" + twoBase,
         "",
         all,
         {}},
        {"a layer without its start tag",
         "<PointLayer Version=\"0\">\n<Dimensions>0</Dimensions>\n" + twoBase,
         "<Dimensions>0</Dimensions>\n" + twoBase,
         "",
         all,
         {}},
        {"a list without its start tag", "<Layers>\n", "", "", all, {}},
        {"a list without its end tag", "</Layers>\n", "", "", all, {}},
        {"a list with the end tag of the project",
         "</Layers>",
         "</Project>",
         "",
         {all[2], "<Name>Root</Name>"},
         {}},
        {"an end tag that is no tag", "</Layers>", "</Lay#ers>", "", {all[2], "<Name>Root</Name>"}, {}},
        {"an attribute without its second quote",
         "<PointLayer Version=\"0\">\n<Dimensions>0</Dimensions>\n" + twoBase,
         "<PointLayer Version=\"0>\n<Dimensions>0</Dimensions>\n" + twoBase,
         "",
         all,
         {}},
        {"an attribute without quotes",
         "<AssetList Version=\"0\">",
         "<AssetList Version=0>",
         "<AssetList",
         all,
         {}},
        {"a tag that does not end", "<BinFolder Version=\"0\">", "<BinFolder Version=\"0\"", "", all, {}},
        {"bytes that are no UTF-8",
         two,
         "<Name>T\xFFw\xC0o</Name>",
         "T\xFFw",
         all,
         {"\xFF", "\xC0"},
         "characters that XML cannot hold are left out of a text"},
        {"a control character", two, "<Name>Two\x01</Name>", "Two\x01", all, {"\x01"}},
        {"a character that stands for itself",
         two,
         "<Name>Two & <</Name>",
         "Two & <",
         {all[0], "<Name>Two &amp; &lt;</Name>", all[2]},
         {},
         "a character of markup that stands for itself is written as a reference"},
        {"two hyphens in a comment",
         "<Layers>\n",
         "<Layers>\n<!-- a -- b -->",
         "<!--",
         all,
         {"-- b"},
         kSection},
        {"a declaration in a value",
         two,
         "<Name>Two<?xml version=\"1.0\"?></Name>",
         "<?xml",
         all,
         {"?"},
         kSection},
        {"a control character in a CDATA section",
         two,
         "<Name><![CDATA[Two & \x01]]></Name>",
         "<![",
         {all[0], "<Name>Two &amp; </Name>", all[2]},
         {"\x01"},
         "characters that XML cannot hold are left out of a text"},
        {"two hyphens in front", "<Project ", "<!-- a -- b --><Project ", "<!--", all, {"-- b"}, kSection},
        {"a late declaration",
         "<Project ",
         "\n<?xml version=\"1.0\"?><Project ",
         "<?xml",
         all,
         {"?"},
         kSection},
        {"a run of garbage between elements",
         "<Layers>\n",
         "<Layers>\n\x02<<&>\xFE</x>\x7F<!-- ",
         "",
         all,
         {"\xFE"}},
        {"a run of garbage over a start",
         "<PointLayer Version=\"0\">\n<Dimensions>0</Dimensions>\n" + twoBase,
         "\x02<<&>\xFE\x7F",
         "",
         {all[0], all[2]},
         {"\xFE"}},
        {"a property that is gone", "<position Type", "<posi Type", "", all, {}},
        {"a version that is gone", "<BinFolder Version=\"0\">", "<BinFolder>", "<BinFolder", all, {}},
        {"something behind the end", "</Project>\n", "</Project>\n<Project/>", "", all, {"<Project/>"}},
        {"something behind a comment behind the end",
         "</Project>\n",
         "</Project>\n<!-- end -->\n<x/>",
         "<x/>",
         all,
         {"<x/>"}},
    };
    for (const Damage &damage : damages) {
        SCOPED_TRACE(damage.name);
        std::string text = SmallProject();
        const std::size_t at = text.find(damage.from);
        ASSERT_NE(at, std::string::npos);
        text.replace(at, damage.from.size(), damage.to);
        LoadReport report;
        const std::string recovered = Recovered(text, report);
        for (const std::string &there : damage.there)
            EXPECT_THAT(recovered, HasSubstr(there));
        for (const std::string &gone : damage.gone)
            EXPECT_THAT(recovered, Not(HasSubstr(gone)));
        ASSERT_GE(report.Count(), 1u);
        if (!damage.what.empty()) {
            EXPECT_EQ(report.Entries()[0].what, damage.what);
        }
        if (!damage.line.empty()) {
            const auto place = static_cast<std::ptrdiff_t>(text.find(damage.line));
            EXPECT_EQ(report.Entries()[0].line, 1 + std::count(text.begin(), text.begin() + place, '\n'));
        }
    }
}

TEST(Recovery, TellsOfAttributesThatAreGoneOrCut)
{
    const struct {
        const char *from;
        const char *to;
        const char *what; ///< of a loss in the line of the change
    } cases[] = {
        {"<FogColor R=\"", "<FogColor R\"", "is no attribute"},
        {"<Layout2 Sp0=\"0.5\" ", "<Layout2 Sp0=\"0.5 ",
         "the value of the attribute Sp0 in <Layout2> may be cut"},
        {"<Layout2 Sp0=\"0.5\" ", "<Layout2 ", "Sp0 is missing; 0 is read"},
        {"<BinFolder Version=\"0\">", "<BinFolder>", "the version is missing"},
    };
    for (const auto &one : cases) {
        SCOPED_TRACE(one.to);
        std::string text = SmallProject();
        const std::size_t at = text.find(one.from);
        ASSERT_NE(at, text.npos);
        text.replace(at, std::string(one.from).size(), one.to);
        text.insert(text.rfind("</Project"), "</Odd>"); // so that it does not load
        LoadReport report;
        Recovered(text, report);
        const auto line = 1 + std::count(text.begin(), text.begin() + std::ptrdiff_t(at), '\n');
        EXPECT_TRUE(std::ranges::any_of(report.Entries(), [&](const LoadEntry &entry) {
            return entry.severity == LoadEntry::Severity::Loss && entry.line == line &&
                   entry.what.find(one.what) != std::string::npos;
        }));
    }
}

TEST(Recovery, MakesSomethingThatLoadsOfAnythingWithAStart)
{
    for (const char *text : {"<Project Version=\"0\">", "no XML <Project Version=\"0\"/>",
                             "<html><AssetLayer Version=\"0\">x</html>"})
        Recovered(text);
    // As deep as no document is, in a time that grows with the text alone.
    for (const char *tag : {"<BinFolder Version=\"0\">", "<x>", "<Layers>"}) {
        std::string deep = "<Project Version=\"0\"><AssetList Version=\"0\">";
        for (int i = 0; i < 20'000; ++i)
            deep += tag;
        Recovered(deep);
    }

    const std::string small = SmallProject();
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        std::string text = small;
        for (std::uint_fast32_t damages = random() % 6 + 1; damages > 0; --damages) {
            const std::size_t at = random() % text.size();
            if (random() % 2 == 0)
                text.erase(at, random() % 40);
            else
                text[at] = "<>/\"=&\x01\xFF P"[random() % 10];
        }
        SCOPED_TRACE(round);
        Recovered(text);
    }
}

TEST(Recovery, RefusesWhatHasNothingOfAProject)
{
    const std::string files[] = {"",
                                 std::string("\0\0", 2),
                                 "no XML",
                                 std::string("\xFF\xFE<\0P\0", 6),
                                 std::string(5000, '<'),
                                 "<html><title>x</title><Name>x</Name><Point><Name>x</Name></Point></html>",
                                 "<project xmlns=\"http://other.org\"><version>1</version></project>",
                                 "<Project ToolsVersion=\"15\"><Asset/></Project>",
                                 "<Project Version=\"0\"",
                                 "</Project>"};
    for (const std::string &file : files) {
        LoadReport report;
        EXPECT_THROW(RecoverProject(file, u"", nullptr, EffectFactory(), report), MessageException) << file;
    }
}
