#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/LoadOptions.h>
#include <marlet/project/Project.h>
#include <marlet/recovery/Recovery.h>

#include "plugins/PluginManager.h"
#include "plugins/Ribbon.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <random>

using namespace marlet::project;
using marlet::tool::EffectFactory;
using marlet::tool::Plugins;
using testing::HasSubstr;
using testing::Not;

namespace
{

std::string ReadExample(const std::string &name)
{
    std::ifstream file(MARLET_EXAMPLES "/" + name + ".xml", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// What a text is recovered to, after it was loaded with and without plug-ins.
std::string Recovered(const std::string &text, LoadReport &report)
{
    const WideString recovered = RecoverProject(text, u"", Plugins(), EffectFactory(), report);
    LoadOptions options;
    options.keepUnknown = true;
    EXPECT_NO_THROW(Project::CreateFromXml(recovered, u"", Plugins(), EffectFactory(), options));
    EXPECT_NO_THROW(Project::CreateFromXml(recovered, u"", nullptr, EffectFactory(), options));
    return ToUtf8(recovered);
}

std::string Recovered(const std::string &text)
{
    LoadReport report;
    return Recovered(text, report);
}

struct Item {
    std::string bytes;
    std::size_t end;
};

/// The assets, layers and objects of a text that Marlet wrote, found by its lines alone.
std::vector<Item> ItemsOf(const std::string &text)
{
    std::vector<Item> items;
    for (const std::string tag : {"SolidAsset", "ImageAsset", "MediaAsset", "CompositionAsset", "AssetLayer",
                                  "TextLayer", "GradeLayer", "CameraLayer", "LightLayer", "PointLayer",
                                  "Effect3DLayer", "VisualObject", "AudioObject"}) {
        for (std::size_t at = text.find("<" + tag + " "); at != std::string::npos;
             at = text.find("<" + tag + " ", at + 1)) {
            const std::size_t line = text.rfind('\n', at);
            const std::string close = text.substr(line, at - line) + "</" + tag + ">";
            const std::size_t end = text.find(close, at) + close.size();
            items.push_back({text.substr(at, end - at), end});
        }
    }
    return items;
}

constexpr char kMainID[] = "00000000-0000-0000-0000-000000000001";
constexpr char kTwoID[] = "00000000-0000-0000-0000-000000000002";

void ReplaceAll(std::string &text, const std::string &from, const std::string &to)
{
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at))
        text.replace(at, from.size(), to);
}

/// A project with the layers One, Two and Three in the composition Main, without blanks between the lines.
std::string SmallProject()
{
    const auto project = Project::Create(nullptr);
    const auto composition = CompositionAsset::Create(u"Main", AudioVideoSettings::Preset::Hd720At25, 250);
    project->Assets().All().Add(composition);
    for (const char16_t *name : {u"One", u"Two", u"Three"}) {
        composition->Layers().Add(PointLayer::Create(name));
        composition->Layers().back()->SetParentComposition(composition);
    }
    std::string text = ToUtf8(project->Serialize());
    ReplaceAll(text, composition->ID().ToNarrowString(), kMainID);
    ReplaceAll(text, (*std::next(composition->Layers().begin()))->ID().ToNarrowString(), kTwoID);
    ReplaceAll(text, "\n ", "\n");
    return text;
}

} // namespace

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

TEST(Recovery, KeepsWhatStoodWholeBeforeACut)
{
    const auto cutAt = [](const std::string &text, const std::vector<Item> &items, std::size_t cut) {
        LoadReport report;
        const std::string recovered = Recovered(text.substr(0, cut), report);
        for (const Item &item : items) {
            if (item.end <= cut) {
                ASSERT_THAT(recovered, HasSubstr(item.bytes));
            }
        }
        ASSERT_GE(report.Count(LoadEntry::Severity::Loss), 1u);
        ASSERT_EQ(report.Entries().back().offset, cut);
    };
    // A step that comes to all kinds of places in the lines.
    constexpr std::size_t kStep = 1999;
    for (const char *name : {"orbit", "titles", "cut"}) {
        const std::string text = ReadExample(name);
        const std::vector<Item> items = ItemsOf(text);
        ASSERT_GT(items.size(), 10u);
        for (std::size_t cut = text.find('>') + 1; cut < text.rfind("</Project") && !HasFatalFailure();
             cut += kStep) {
            SCOPED_TRACE(name + std::string(" cut at ") + std::to_string(cut));
            cutAt(text, items, cut);
        }
    }
    const std::string titles = ReadExample("titles");
    // A 3D effect is read by the host, whose failures have no place in the text.
    cutAt(titles, ItemsOf(titles), titles.find("<radius Spatial=") + 50);
    const std::string small = SmallProject();
    for (std::size_t cut = small.find('>') + 1; cut < small.rfind("</Project") && !HasFatalFailure();
         cut += 31) {
        SCOPED_TRACE(cut);
        cutAt(small, ItemsOf(small), cut);
    }
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
