#include "OtioWorld.h"

#include <marlet/editor/EditorSequence.h>
#include <marlet/exchange/ExchangeException.h>
#include <marlet/operations/sequence/Timeline.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>

#include <gmock/gmock.h>

namespace marlet::test
{

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

Json RangeJson(double from, double frames, double rate = 25)
{
    return ClipJson("", from, frames, rate)["source_range"];
}

Json GapJson(double frames)
{
    return {{"OTIO_SCHEMA", "Gap.1"}, {"source_range", RangeJson(0, frames)}};
}

Json TransitionJson(double before, double after)
{
    return {{"OTIO_SCHEMA", "Transition.1"},
            {"name", "t"},
            {"transition_type", "SMPTE_Dissolve"},
            {"in_offset", RangeJson(before, 0)["start_time"]},
            {"out_offset", RangeJson(after, 0)["start_time"]}};
}

Json WithRange(Json item, double from, double frames)
{
    item["source_range"] = RangeJson(from, frames);
    return item;
}

Json Nested(const char *schema, const std::vector<Json> &children)
{
    return {{"OTIO_SCHEMA", schema}, {"kind", "Video"}, {"source_range", nullptr}, {"children", children}};
}

Json WithEffect(Json clip, const char *schema, double scalar)
{
    clip["effects"].push_back({{"OTIO_SCHEMA", schema}, {"time_scalar", scalar}});
    return clip;
}

Json AudioTrack(Json timeline, std::size_t track)
{
    timeline["tracks"]["children"][track]["kind"] = "Audio";
    return timeline;
}

struct Timeline {
    const char *name;
    Json json;
    std::string drawing;
    std::vector<std::string> told = {};
};

const std::string kNested = "warning: 1 nested stacks and tracks became clips of the timeline itself";
const std::string kSize = "warning: no clip can be asked how large the picture is: 1920 x 1080";

std::vector<Timeline> Timelines()
{
    const Json a = ClipJson("a", 10, 20);
    const Json b = ClipJson("b", 0, 30);
    Json whole = a;
    whole["source_range"] = nullptr;
    whole["media_reference"]["available_range"] = RangeJson(90000, 75);
    Json inside = a;
    inside["source_range"] = RangeJson(90010, 5);
    inside["media_reference"]["available_range"] = RangeJson(90000, 75);
    Json unknown = a;
    unknown["source_range"] = nullptr;
    Json second = a;
    second["OTIO_SCHEMA"] = "Clip.2";
    second["media_references"] = {{"x", second["media_reference"]}};
    second["active_media_reference_key"] = "x";
    second.erase("media_reference");
    Json other = TimelineJson({{a}});
    other["tracks"]["children"][0]["kind"] = "Subtitle";
    return {
        {"cuts and gaps", TimelineJson({{a, GapJson(5), b}, {GapJson(7), a}}),
         "V1: 0-20 a@10 25-55 b@0\nV2: 7-27 a@10\n"},
        {"a track of sound", AudioTrack(TimelineJson({{a}, {b}}), 0), "V2: 0-30 b@0\nV1: 0-20 a@10\n"},
        {"dissolves",
         TimelineJson({{TransitionJson(0, 4), a, TransitionJson(2, 3), b, TransitionJson(6, 0)}}),
         "V1: 0-20 a@10<0+4>2+3 20-50 b@0<2+3>6+0\n"},
        {"a dissolve at a gap", TimelineJson({{a, TransitionJson(2, 0), GapJson(5), b}}),
         "V1: 0-20 a@10>2+0 25-55 b@0\n"},
        {"the whole of the media", TimelineJson({{whole}}), "V1: 0-75 a@0\n"},
        {"time code of the media", TimelineJson({{inside}}), "V1: 0-5 a@10\n"},
        {"a later schema", TimelineJson({{second}}), "V1: 0-20 a@10\n"},
        {"speeds",
         TimelineJson({{WithEffect(WithEffect(a, "LinearTimeWarp.1", 2), "LinearTimeWarp.1", 1.5),
                        WithEffect(b, "FreezeFrame.1", 0)}}),
         "V1: 0-20 a@10x3 20-50 b@0x0\n"},
        {"no length",
         TimelineJson({{unknown, b}}),
         "V1: 0-30 b@0\n",
         {"loss: Clip \"a\" does not say how long it is"}},
        {"other rates",
         TimelineJson({{a, ClipJson("c", 0, 25, 24), b}}),
         "V1: 0-20 a@10 20-46 c@0 46-76 b@0\n",
         {"warning: 3 times lie between two frames of the sequence and are the nearest one"}},
        {"a nested track",
         TimelineJson({{b, WithRange(Nested("Track.1", {a, b}), 15, 20), a}}),
         "V1: 0-30 b@0 30-35 a@25 35-50 b@0 50-70 a@10\n",
         {kNested}},
        {"a nested stack",
         TimelineJson({{b, WithRange(Nested("Stack.1", {b, a, a}), 5, 20), a}, {b}}),
         "V1: 0-30 b@0 30-50 b@5 50-70 a@10\nV1 2: 30-45 a@15\nV1 3: 30-45 a@15\nV2: 0-30 b@0\n",
         {kNested}},
        {"a stack in a stack",
         TimelineJson({{Nested("Stack.1", {Nested("Stack.1", {a, b}), a})}}),
         "V1: 0-20 a@10\nV1 2: 0-30 b@0\nV1 3: 0-20 a@10\n",
         {"warning: 2 nested stacks and tracks became clips of the timeline itself"}},
        {"a clip in the stack",
         {{"OTIO_SCHEMA", "Stack.1"}, {"children", Json::array({a})}},
         ": 0-20 a@10\n"},
        {"a track alone", TimelineJson({{a}})["tracks"]["children"][0], "V1: 0-20 a@10\n"},
        {"a collection",
         {{"OTIO_SCHEMA", "SerializableCollection.1"},
          {"children", {a, TimelineJson({{b}}), TimelineJson({})}}},
         "V1: 0-30 b@0\n",
         {"loss: 2 of the collection's objects: its first timeline is taken"}},
        {"what is neither", other, "", {"loss: Track \"V1\" is neither picture nor sound"}},
        {"nothing", TimelineJson({}), ""},
    };
}

TEST(OtioRead, LoadsTimelinesOfOtherPrograms)
{
    for (const Timeline &timeline : Timelines()) {
        SCOPED_TRACE(timeline.name);
        OtioWorld world;
        const auto project = world.Read(timeline.json);
        EXPECT_EQ(Drawing(*project), timeline.drawing);
        std::vector<std::string> told = world.Told();
        std::erase(told, kSize);
        EXPECT_EQ(told, timeline.told);
    }
}

TEST(OtioRead, FindsTheFilesOfClips)
{
    const struct {
        const char *url;
        const char16_t *path;
    } cases[] = {
        {"file:///a/b%20c.mov", u"/a/b c.mov"},
        {"file://localhost/a.mov", u"/a.mov"},
        {"file:///C:/a%C3%A9.mov", u"C:/a\u00e9.mov"},
        {"file://server/a.mov", u"//server/a.mov"},
        {"clips/a.mov", u"/film/clips/a.mov"},
        {"/a/b.mov", u"/a/b.mov"},
        {"C:\\a.mov", u"C:\\a.mov"},
        {"100%.mov", u"/film/100%.mov"},
        {"https://a/b%20c.mov", u"https://a/b%20c.mov"},
        {"still.PNG", u"/film/still.PNG"},
    };
    for (const auto &[url, path] : cases) {
        SCOPED_TRACE(url);
        OtioWorld world;
        Json clip = ClipJson("a", 0, 5);
        clip["media_reference"]["target_url"] = url;
        const auto project = world.Read(TimelineJson({{clip, clip}}));
        ASSERT_EQ(project->Assets().All().size(), 1U);
        const auto asset = project->Assets().All()[0];
        const auto *media = dynamic_cast<const MediaAsset *>(asset.get());
        const auto *image = dynamic_cast<const ImageAsset *>(asset.get());
        ASSERT_EQ(image != nullptr, std::string(url) == "still.PNG");
        EXPECT_EQ(media ? media->Filename() : image->Filename(), path);
        const Json again = ParseJson(world.Write(project));
        EXPECT_EQ(
            again["tracks"]["children"][0]["children"][0]["media_references"]["DEFAULT_MEDIA"]["target_url"],
            url);
    }
}

TEST(OtioRead, FindsTheFirstImageOfASequence)
{
    OtioWorld world;
    Json clip = ClipJson("a", 0, 5);
    clip["media_reference"] = {{"OTIO_SCHEMA", "ImageSequenceReference.1"},
                               {"target_url_base", "file:///a"},
                               {"name_prefix", "b."},
                               {"name_suffix", ".png"},
                               {"start_frame", -5},
                               {"frame_zero_padding", 4},
                               {"rate", 25}};
    const auto project = world.Read(TimelineJson({{clip}}));
    ASSERT_EQ(project->Assets().All().size(), 1U);
    const auto media = std::dynamic_pointer_cast<MediaAsset>(project->Assets().All()[0]);
    ASSERT_TRUE(media);
    EXPECT_EQ(media->Filename(), u"/a/b.-0005.png");
}

TEST(OtioRead, RefusesWhatIsNoTimeline)
{
    const auto with = [](const char *pointer, const Json &value) {
        Json json = TimelineJson({{ClipJson("a", 0, 5), TransitionJson(1, 1), ClipJson("b", 0, 5)}});
        json[Json::json_pointer(pointer)] = value;
        return JsonTextOf(json);
    };
    std::string members = "{";
    for (int i = 0; i <= 10000; ++i)
        members += "\"\":0,";
    const std::string duration = "/tracks/children/0/children/0/source_range/duration/";
    const struct {
        std::string text;
        const char *words;
    } cases[] = {
        {"", "Line 1, column 1: the text is not JSON"},
        {"{\"OTIO_SCHEMA\": \"Timeline.1\",\n \"tracks\": {]}", "Line 2, column 13: the text is not JSON"},
        {std::string(300, '['), "Line 1, column 257: the JSON is nested too deep"},
        {members, "Line 1, column 50004: an object of the JSON has too many members"},
        {"[1e999]", "A number in the text is larger than numbers can be"},
        {"[1, 2]", "The text has no timeline"},
        {"{\"OTIO_SCHEMA\": \"Timeline.1\", \"tracks\": 5}", "The text has no timeline"},
        {with((duration + "value").c_str(), -5), "A range has a negative duration"},
        {with((duration + "value").c_str(), 1e300), "A time is further from the start than timelines reach"},
        {with((duration + "value").c_str(), nullptr), "A time has no value"},
        {with((duration + "rate").c_str(), 0), "A time has a rate that is not above 0, or too high"},
        {with((duration + "rate").c_str(), "25"), "A time has no rate"},
        {with("/tracks/children/0/children/1/in_offset/value", -3), "A transition has a negative duration"},
        {with("/metadata", {{"marlet", {{"project", "<Project>"}}}}),
         "The metadata have a text that is no Project of a project"},
        {with("/metadata", {{"marlet", {{"project", "<Project Version=\"0\"/>"}}}}),
         "The project in the metadata has no frame rate"},
    };
    for (const auto &[text, words] : cases) {
        SCOPED_TRACE(text.substr(0, 400));
        OtioWorld world;
        try {
            world.Read(text);
            ADD_FAILURE() << "is read";
        } catch (const ExchangeException &error) {
            EXPECT_STREQ(error.what(), words);
        }
    }
}

} // namespace

} // namespace marlet::test
