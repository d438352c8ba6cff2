// Out to another program and in again: what it has left alone is the same to the byte, what it has changed is
// as it says.

#include "OtioWorld.h"

#include <tests/support/TestDocuments.h>

#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/history/EditHistory.h>
#include <marlet/operations/sequence/Timeline.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/MediaAsset.h>

#include <gmock/gmock.h>

namespace marlet::test
{

namespace
{

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kCut[] = MARLET_EXAMPLES "/cut.xml";

/// Whether all that one value says stands in another, which may say more.
testing::AssertionResult Has(const Json &whole, const Json &part, const std::string &path = "")
{
    if (part.is_object() && whole.is_object()) {
        for (const auto &[key, value] : part.items())
            if (!whole.contains(key))
                return testing::AssertionFailure() << path << "/" << key << " is missing";
            else if (auto result = Has(whole[key], value, path + "/" + key); !result)
                return result;
        return testing::AssertionSuccess();
    }
    if (part.is_array() && whole.is_array() && part.size() == whole.size()) {
        for (std::size_t i = 0; i < part.size(); ++i)
            if (auto result = Has(whole[i], part[i], path + "/" + std::to_string(i)); !result)
                return result;
        return testing::AssertionSuccess();
    }
    return part == whole ? testing::AssertionSuccess()
                         : testing::AssertionFailure() << path << ": " << part << " is " << whole;
}

TEST(OtioRoundTrip, GivesTheSameProjectToTheByte)
{
    OtioWorld world;
    for (const char *file : {kCut, MARLET_TEST_DOCUMENTS "/good/noise.xml"})
        for (const bool hasPlugins : {true, false}) {
            SCOPED_TRACE(file + std::string(hasPlugins ? "" : " without its plug-ins"));
            world.options.plugins =
                hasPlugins ? OtioWorld().options.plugins : std::make_shared<TestPluginManager>();
            const auto project = world.Load(file);
            const auto again = world.Read(world.Write(project));
            EXPECT_EQ(again->SerializeUtf8(), project->SerializeUtf8());
        }
}

TEST(OtioRoundTrip, WritesWhatOtherProgramsReadAndTellsWhatTheyDoNotSee)
{
    OtioWorld world;
    const Json json = ParseJson(world.Write(world.Load(kCut)));
    EXPECT_THAT(world.Told(), AllOf(Contains("loss kept: the layers of composition \"Opening\""),
                                    Contains("loss kept: position, scale, effects of object \"Interview\""),
                                    Contains("loss kept: the level of track \"Audio 2\""),
                                    Contains("loss kept: audioLevel of object \"Music\"")));
    const Json &track = json["tracks"]["children"][0];
    std::string schemas;
    for (const Json &child : track["children"])
        schemas += child["OTIO_SCHEMA"].get<std::string>() + " ";
    EXPECT_EQ(schemas,
              "Transition.1 Clip.2 Transition.1 Clip.2 Transition.1 Clip.2 Gap.1 Clip.2 Transition.1 ");
    const Json &dissolve = track["children"][2];
    EXPECT_EQ(dissolve["transition_type"], "SMPTE_Dissolve");
    EXPECT_EQ(dissolve["in_offset"]["value"], 5);
    EXPECT_EQ(dissolve["out_offset"]["value"], 5);
    const Json &sea = track["children"][5];
    EXPECT_EQ(sea["source_range"]["start_time"]["value"], 5);
    EXPECT_EQ(sea["source_range"]["duration"]["value"], 60);
    EXPECT_EQ(sea["source_range"]["duration"]["rate"], 25);
    EXPECT_EQ(sea["effects"][0]["OTIO_SCHEMA"], "LinearTimeWarp.1");
    EXPECT_EQ(sea["effects"][0]["time_scalar"], 0.5);
    EXPECT_EQ(sea["media_references"]["DEFAULT_MEDIA"]["target_url"], "footage/sea.mov");
}

TEST(OtioRoundTrip, KeepsWhatOtherProgramsWrote)
{
    const Json foreign = ParseJson(BytesOf(MARLET_TEST_DOCUMENTS "/exchange/cut.otio"));
    for (const bool hasDissolve : {true, false}) {
        SCOPED_TRACE(hasDissolve);
        OtioWorld world;
        if (!hasDissolve)
            world.options.dissolve = nullptr;
        const auto project = world.Read(foreign);
        EXPECT_EQ(Drawing(*project),
                  hasDissolve ? "V1: 0-48 boats@10x2>6+4 48-72 gulls@5<6+4 82-94 board@0\nA1: 0-94 wind@0\n"
                              : "V1: 0-48 boats@10x2 48-72 gulls@5 82-94 board@0\nA1: 0-94 wind@0\n");
        EXPECT_THAT(world.Told(),
                    AllOf(Contains("loss kept: effects or markers of clip \"boats\""),
                          Contains("loss kept: that clip \"boats\" is switched off"),
                          Contains("warning: the generator \"SMPTEBars\" of \"board\" is a black solid")));
        EXPECT_TRUE(Has(ParseJson(world.Write(project)), foreign));
        // Also by way of a project's own file, and of another timeline.
        const auto loaded = world.Read(world.Write(project));
        EXPECT_EQ(loaded->SerializeUtf8(), project->SerializeUtf8());
        EXPECT_TRUE(Has(ParseJson(world.Write(loaded)), foreign));
    }
}

/// What another program does to the first track of the cut, and how the track is drawn then.
struct Change {
    const char *name;
    void (*change)(Json &items);
    std::string drawing;
};

TEST(OtioRoundTrip, TakesOverWhatOtherProgramsChange)
{
    const std::string intro = "Video 1: 0-40 Opening@0<0+5";
    const Change changes[] = {
        {"nothing", [](Json &) {},
         intro +
             ">5+5 40-100 Interview@10<5+5>5+5 100-160 Sea@5x0.5<5+5 180-230 Interview, the end@100>15+0"},
        {"a trim",
         [](Json &items) {
             items[3]["source_range"]["start_time"]["value"] = 12;
             items[3]["source_range"]["duration"]["value"] = 50;
         },
         intro + ">5+5 40-90 Interview@12<5+5>5+5 90-150 Sea@5x0.5<5+5 170-220 Interview, the end@100>15+0"},
        {"another speed and name",
         [](Json &items) {
             items[5]["effects"][0]["time_scalar"] = 0.25;
             items[5]["name"] = "Slow sea";
         },
         intro + ">5+5 40-100 Interview@10<5+5>5+5 100-160 Slow sea@5x0.25<5+5 180-230 Interview, the "
                 "end@100>15+0"},
        {"a longer transition", [](Json &items) { items[2]["in_offset"]["value"] = 8; },
         intro +
             ">8+5 40-100 Interview@10<8+5>5+5 100-160 Sea@5x0.5<5+5 180-230 Interview, the end@100>15+0"},
        {"no transition", [](Json &items) { items.erase(2); },
         intro + " 40-100 Interview@10>5+5 100-160 Sea@5x0.5<5+5 180-230 Interview, the end@100>15+0"},
        {"a clip and the transitions beside it gone",
         [](Json &items) {
             items.erase(4);
             items.erase(3);
             items.erase(2);
         },
         intro + " 40-100 Sea@5x0.5 120-170 Interview, the end@100>15+0"},
        {"a clip twice", [](Json &items) { items.push_back(items[5]); },
         intro + ">5+5 40-100 Interview@10<5+5>5+5 100-160 Sea@5x0.5<5+5 180-230 Interview, the end@100>15+0"
                 " 230-290 Sea@5x0.5"},
        {"a clip of its own", [](Json &items) { items[6] = ClipJson("new", 3, 20); },
         intro + ">5+5 40-100 Interview@10<5+5>5+5 100-160 Sea@5x0.5<5+5 160-180 new@3"
                 " 180-230 Interview, the end@100>15+0"},
    };
    for (const Change &change : changes) {
        SCOPED_TRACE(change.name);
        OtioWorld world;
        const auto project = world.Load(kCut);
        Json json = ParseJson(world.Write(project));
        change.change(json["tracks"]["children"][0]["children"]);
        const auto changed = world.Read(json);
        const std::string drawing = Drawing(*changed);
        EXPECT_EQ(drawing.substr(0, drawing.find('\n')), change.drawing);
        // The rest is what it was.
        const std::string before = Drawing(*project);
        EXPECT_EQ(drawing.substr(drawing.find('\n')), before.substr(before.find('\n')));
        const auto first = ObjectsOf(*changed->Sequence()).front();
        EXPECT_EQ(first->ID(), ObjectsOf(*project->Sequence()).front()->ID());
        EXPECT_EQ(changed->Sequence()->FindObjectByID(first->ID()), first);
    }
}

TEST(OtioRoundTrip, FollowsClipsToOtherMedia)
{
    OtioWorld world;
    const auto project = world.Load(kCut);
    Json json = ParseJson(world.Write(project));
    json["tracks"]["children"][0]["children"][5]["media_references"]["DEFAULT_MEDIA"]["target_url"] =
        "file:///new%20disk/sea.mov";
    const auto changed = world.Read(json);
    const auto sea = ObjectsOf(*changed->Sequence()->VideoTracks()[0])[2];
    const auto asset = std::dynamic_pointer_cast<MediaAsset>(sea->Asset(changed->Assets()));
    ASSERT_TRUE(asset);
    EXPECT_EQ(asset->Filename(), u"/new disk/sea.mov");
    EXPECT_EQ(changed->Assets().All().size(), project->Assets().All().size() + 1);
}

TEST(OtioRoundTrip, TakesThePlaceOfASequenceInOneStep)
{
    OtioWorld world;
    const auto project = world.Load(kCut);
    const auto former = project->SerializeUtf8();
    EditHistory history(project);
    const Json foreign = TimelineJson({{ClipJson("footage/sea", 2, 10), ClipJson("new", 0, 5)}});
    ExchangeFormat::ByName("otio")->ReadInto(project, JsonTextOf(foreign), world.options);
    EXPECT_EQ(Drawing(*project), "V1: 0-10 footage/sea@2 10-15 new@0\n");
    // One of the files is the project's already.
    EXPECT_EQ(project->Assets().All().size(), world.Load(kCut)->Assets().All().size() + 1);
    history.Undo();
    EXPECT_EQ(project->SerializeUtf8(), former);
}

} // namespace

} // namespace marlet::test
