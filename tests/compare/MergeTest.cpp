// Documents are drawn as their name and their layers, each an ID and a name: "film: 1a 2b 3c".

#include <marlet/compare/Compare.h>
#include <marlet/compare/Merge.h>
#include <marlet/foundation/Exceptions.h>

#include <gtest/gtest.h>

#include <sstream>

namespace marlet::test
{

namespace
{

using namespace marlet::project;

WideString Document(const std::string &drawing)
{
    std::istringstream words(drawing);
    std::string name;
    std::getline(words, name, ':');
    std::string text = "<Project Version=\"0\">\n <Name>" + name + "</Name>\n <Layers";
    std::string layers;
    for (std::string word; words >> word;)
        layers += "  <PointLayer>\n   <LayerBase>\n    <ID>" + word.substr(0, 1) + "</ID>\n    <Name>" +
                  word.substr(1) + "</Name>\n   </LayerBase>\n  </PointLayer>\n";
    text += layers.empty() ? "/>\n" : ">\n" + layers + " </Layers>\n";
    return FromUtf8(text + "</Project>\n");
}

std::string Told(const MergeConflict &conflict)
{
    std::string text;
    for (const std::string &step : conflict.theirs.place)
        text += step + ", ";
    return text + conflict.theirs.what + " " + conflict.ours.after + "|" + conflict.theirs.after;
}

struct Case {
    const char *name;
    const char *base;
    const char *ours;
    const char *theirs;
    const char *merged;
    std::vector<std::string> conflicts;
};

TEST(Merge, TakesWhatOneSideChangedAndTellsOfWhatBothDid)
{
    const Case cases[] = {
        {"different objects", "f: 1a 2b", "f: 1x 2b", "g: 1a 2y", "g: 1x 2y", {}},
        {"the same change", "f: 1a", "f: 1x", "f: 1x", "f: 1x", {}},
        {"one fact", "f: 1a 2b", "f: 1x 2b", "f: 1y 2z", "f: 1x 2z", {"null point \"a\", Name x|y"}},
        {"removed by both", "f: 1a 2b", "f: 1a", "f: 1a", "f: 1a", {}},
        {"removed by one", "f: 1a 2b 3c", "f: 1a 2b", "f: 1a 3z", "f: 1a", {"null point \"c\", Name |z"}},
        {"removed by theirs", "f: 1a 2b", "f: 1a 2x", "f: 1a", "f: 1a 2x", {"null point \"b\",  x|"}},
        {"removed or moved", "f: 1a 2b 3c", "f: 3c 1a 2b", "f: 1a 2b", "f: 1a 2b", {}},
        {"added in one place", "f: 1a", "f: 1a 2b", "f: 1a 3c", "f: 1a 3c 2b", {}},
        {"added in order", "f: 1a 2b", "f: 0x 1a 2b", "f: 1a 3y 4z 2b", "f: 0x 1a 3y 4z 2b", {}},
        {"added to nothing", "f:", "f: 1a", "f: 2b", "f: 2b 1a", {}},
        {"added behind what is gone", "f: 0x 1a 2b 4d", "f: 0x 4d", "f: 0x 1a 2b 3c 4d", "f: 0x 3c 4d", {}},
        {"added alike", "f: 1a", "f: 1a 2b", "f: 1a 2b", "f: 1a 2b", {}},
        {"added with one ID", "f: 1a", "f: 1a 2b", "f: 1a 2c", "f: 1a 2b", {"null point \"c\",  |"}},
        {"different moves",
         "f: 1a 2b 3c 4d 5e",
         "f: 2b 1a 3c 4d 5e",
         "f: 1a 2b 3c 5e 4d",
         "f: 2b 1a 3c 5e 4d",
         {}},
        {"moved and changed", "f: 1a 2b 3c", "f: 3c 1a 2b", "f: 1a 2b 3z", "f: 3z 1a 2b", {}},
        {"one moved by both",
         "f: 1a 2b 3c 4d",
         "f: 4d 1a 2b 3c",
         "f: 1a 4d 2b 3c",
         "f: 4d 1a 2b 3c",
         {"null point \"d\",  1|2"}},
        {"moved behind one that ours moved",
         "f: 1a 2b 3c",
         "f: 3c 1a 2b",
         "f: 1a 3c 2b",
         "f: 3c 1a 2b",
         {"null point \"b\",  1|3"}},
    };
    for (const Case &row : cases) {
        const WideString ours = Document(row.ours);
        const MergeResult result = MergeTexts(Document(row.base), ours, Document(row.theirs));
        EXPECT_EQ(ToUtf8(ApplyToText(ours, result.changes)), ToUtf8(Document(row.merged))) << row.name;
        std::vector<std::string> told;
        for (const MergeConflict &conflict : result.conflicts)
            told.push_back(Told(conflict));
        EXPECT_EQ(told, row.conflicts) << row.name;
    }
}

TEST(Merge, OrderThatFollowsFromTimesIsNoConflict)
{
    const auto track = [](const std::string &starts) {
        std::istringstream words(starts);
        std::string text = "<VideoTrack>\n <Objects>\n";
        for (std::string id, start; words >> id >> start;)
            text += "  <VisualObject>\n   <ID>" + id + "</ID>\n   <StartFrame>" + start +
                    "</StartFrame>\n  </VisualObject>\n";
        return FromUtf8(text + " </Objects>\n</VideoTrack>\n");
    };
    const WideString ours = track("b 10 c 20 a 30");
    const MergeResult result = MergeTexts(track("a 0 b 10 c 20"), ours, track("c 5 a 6 b 10"));
    EXPECT_EQ(result.conflicts.size(), 1U) << "the start of a alone";
    EXPECT_EQ(ToUtf8(ApplyToText(ours, result.changes)), ToUtf8(track("c 5 b 10 a 30")));
}

TEST(Compare, NamesWhatIsAnotherOneWhereTheNameStays)
{
    const auto cut = [](const std::string &from) {
        return FromUtf8("<Project Version=\"0\">\n <InTrans ref=\"1\" transID=\"7\" fromObjectID=\"" + from +
                        "\"/>\n</Project>\n");
    };
    const std::vector<Difference> differences = CompareTexts(cut("a"), cut("b"));
    ASSERT_EQ(differences.size(), 1U);
    EXPECT_EQ(differences[0].what, "incoming transition");
    EXPECT_EQ(differences[0].before, "(fromObjectID a)");
    EXPECT_EQ(differences[0].after, "(fromObjectID b)");
    EXPECT_EQ(ApplyToText(cut("a"), differences), cut("b"));
}

TEST(Merge, ATextThatIsNotWholeIsRefused)
{
    EXPECT_THROW(CompareTexts(u"<a><b></a>", u"<a/>"), XmlParseException);
    EXPECT_THROW(ApplyToText(u"", {}), XmlParseException);
}

} // namespace

} // namespace marlet::test
