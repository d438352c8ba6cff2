#include "ToolTest.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace marlet::test
{

namespace
{

using testing::HasSubstr;

struct Place {
    int frame = -1;
    double x = 0;
    double y = 0;
};

class TrackTest : public ToolTest
{
protected:
    TrackTest()
    {
        path_ = Places(Run({"clip", "a.mov", "--frames", "40", "--size", "320x240", "--json"}));
        Run({"new", "a.xml", "--media", "a.mov", "--at=" + Position(path_.at(32))});
    }

    static std::string Position(const Place &place)
    {
        return std::to_string(place.x) + "," + std::to_string(place.y);
    }

    static std::vector<Place> Places(const ToolRun &run)
    {
        std::vector<Place> places;
        for (const std::string &line : run.OutLines()) {
            Place place;
            if (std::sscanf(line.c_str(), R"({"frame":%d,"x":%lf,"y":%lf})", &place.frame, &place.x,
                            &place.y) == 3)
                places.push_back(place);
        }
        return places;
    }

    ToolRun Track(std::vector<std::string> words) const
    {
        words.insert(words.begin(), "track");
        words.insert(words.end(), {"--composition", "a.mov", "--layer", "a.mov", "--tracker", "Tracker"});
        return Run(words);
    }

    void ExpectOnPath(const std::vector<Place> &places, int first, int last) const
    {
        ASSERT_EQ(places.size(), static_cast<std::size_t>(std::abs(last - first) + 1));
        for (std::size_t i = 0; i < places.size(); ++i) {
            const int frame = first + static_cast<int>(i) * (last < first ? -1 : 1);
            EXPECT_EQ(places[i].frame, frame);
            const Place &truth = path_.at(static_cast<std::size_t>(frame));
            EXPECT_LT(std::hypot(places[i].x - truth.x, places[i].y - truth.y), 0.5) << frame;
        }
    }

    std::vector<Place> path_;
};

TEST_F(TrackTest, FollowsAFeatureAndKeepsItsPathInTheTracker)
{
    for (const char *method : {"flow", "template"}) {
        SCOPED_TRACE(method);
        const ToolRun forwards = Track({"a.xml", "b.xml", "--from", "32", "--method", method, "--json"});
        EXPECT_EQ(forwards.err, "");
        ExpectOnPath(Places(forwards), 32, 39);
        EXPECT_EQ(forwards.OutLines().back(), "{\"finish\":\"LayerEndReached\"}");
        EXPECT_THAT(Run({"info", "b.xml"}).out,
                    HasSubstr("featurePosition      KyPoint2_32f  8 key frames, 1280 to 1560 ms\n"));
        // It starts from the last key frame, and writes over what is there.
        ExpectOnPath(Places(Track({"b.xml", "b.xml", "--backwards", "--one-frame", "--json"})), 39, 38);
        const std::string info = Run({"info", "b.xml", "--json"}).out;
        EXPECT_THAT(info, HasSubstr("\"key_frames\":8,"));
        EXPECT_THAT(info, HasSubstr("\"playhead\":39,"));
    }
}

TEST_F(TrackTest, TracksABareClipWithoutSaving)
{
    const auto files = FileNames();
    const ToolRun run = Run(
        {"track", "a.mov", "--at=" + Position(path_.at(36)), "--from", "36", "--feature", "40", "--json"});
    ExpectOnPath(Places(run), 36, 39);
    const ToolRun lost = Run({"track", "a.mov", "--at", "158,118", "--json"});
    EXPECT_EQ(lost.exitCode, 0);
    EXPECT_EQ(lost.OutLines().back(), "{\"finish\":\"TargetLost\"}");
    EXPECT_EQ(FileNames().size(), files.size());
}

TEST_F(TrackTest, AnInterruptionSavesWhatThereIs)
{
    Run({"new", "a.xml", "--media", "a.mov", "--at=" + Position(path_.at(0))});
    const ToolRun run = Shell("timeout -s INT --preserve-status 1 \"$MARLET\" track a.xml b.xml --json "
                              "--composition a.mov --layer a.mov --tracker Tracker");
    EXPECT_EQ(run.exitCode, 0);
    const std::vector<Place> places = Places(run);
    EXPECT_GT(places.size(), 1u);
    EXPECT_LT(places.size(), 25u);
    EXPECT_EQ(run.OutLines().back(), "{\"finish\":\"Stopped\"}");
    EXPECT_THAT(Run({"info", "b.xml", "--json"}).out,
                HasSubstr("\"key_frames\":" + std::to_string(places.size()) + ","));
}

TEST_F(TrackTest, WhatCannotStartIsAFailureOfOneLine)
{
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"a.xml", "b.xml", "--from", "39"}, "a.xml: Frame 39 is the last one: there is nothing to track"},
        {{"a.xml", "b.xml", "--from", "0", "--backwards"},
         "a.xml: Frame 0 is the first one: there is nothing to track"},
        {{"a.xml", "b.xml", "--from=-1"}, "a.xml: Frame -1 is not in layer \"a.mov\", which has 40"},
        {{"a.xml", "no/b.xml"}, "no/b.xml: No such file or directory"},
    };
    for (const auto &[words, message] : cases)
        EXPECT_EQ(Track(words).err, "marlet: " + message + "\n");
    EXPECT_EQ(Run({"track", "a.xml", "--at", "0,0"}).err,
              "marlet: a.xml: Not a media file that can be read\n");
    for (const auto &words : {std::vector<std::string>{"track", "a.xml"},
                              {"track", "a.mov", "--at", "0"},
                              {"track", "a.mov", "--at", "0,0", "--tracker", "T"},
                              {"track", "a.mov", "b.xml", "--at", "0,0"}})
        EXPECT_EQ(Run(words).exitCode, 2);
    EXPECT_EQ(FileNames().size(), 2u);
}

} // namespace

} // namespace marlet::test
