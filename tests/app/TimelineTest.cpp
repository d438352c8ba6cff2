#include "SequenceToolTest.h"

#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/project/PanelRenderState.h>

namespace marlet::test
{

namespace
{

using testing::HasSubstr;

class TimelineTest : public SequenceToolTest
{
protected:
    std::shared_ptr<AbstractSequenceObject> OnVideo(int frame) const
    {
        return sequence_->VideoTracks()[0]->Objects().FindOnFrame(frame);
    }
};

TEST_F(TimelineTest, TableHasObjectsGapsOverlapsAndTransitions)
{
    OnVideo(90)->SetEndFrame(110);
    sequence_->VideoTracks()[0]->Objects().Move(OnVideo(90), 70, false);
    Save("cut.xml");
    const std::string out = Run({"timeline", "cut.xml"}).out;
    for (const char *line : {"\n        0       40      40  00:00:00:00  \"Main\"  composition \"Main\" from "
                             "0, linked to track \"Audio 1\"\n",
                             "x Cross Dissolve from \"Main\" to \"Main\", 10 frames\n       40       80 ",
                             "\n       70      110      40  00:00:02:20  \"Red\"  solid \"Red\" from 0, "
                             "overlaps what is before it\n",
                             "x Wipe at the tail, 5 frames\n      110      250     140  00:00:04:10  - gap\n",
                             "\nTrack \"Spare\"  video, 0 objects\n"})
        EXPECT_THAT(out, HasSubstr(line));
}

TEST_F(TimelineTest, TellsWhatStandsOnAFrameAndAroundIt)
{
    EXPECT_THAT(Run({"timeline", "cut.xml", "--at", "44"}).out,
                testing::StartsWith("Frame 44  00:00:01:19, edit before it at 40, after it at 80\n"
                                    "  \"Video 1\": \"Main\", frame 4 of 40, the asset's 34\n"
                                    "      in Cross Dissolve from \"Main\" to \"Main\", 10 frames\n"
                                    "      behind \"Main\", which ends on 40\n"
                                    "      before \"Red\", which starts on 80\n"
                                    "  \"Spare\": nothing\n"
                                    "  \"Audio 1\": "));
    EXPECT_THAT(Run({"timeline", "cut.xml", "--at", "45"}).out, testing::Not(HasSubstr(" in Cross")));
    EXPECT_THAT(Run({"timeline", "cut.xml", "--at", "95", "--json"}).out,
                HasSubstr("\"frame_of_object\":15,\"transition\":{\"id\":\""));
    EXPECT_EQ(Run({"timeline", "cut.xml", "--at", "250"}).err,
              "marlet: cut.xml: Frame 250 is not in the sequence, which has frames 0 to 249\n");
}

TEST_F(TimelineTest, DrawsTheTracksToScale)
{
    sequence_->SetCurrentTimeIndicator(125);
    OnVideo(90)->SetName(u"<&>");
    Save("cut.xml");
    ASSERT_EQ(Run({"timeline", "cut.xml", "--svg", "cut.svg"}).exitCode, 0);
    const std::string svg = Read("cut.svg");
    // 250 frames take 1100 pixels from 146 on: 4.4 each.
    for (const char *part : {"x=\"322\" y=\"124\" width=\"176\"", "translate(300 145)",
                             "<rect class=\"transition\" width=\"44\"", "<title>gap of 150 frames</title>",
                             ">&lt;&amp;></text>", "<line x1=\"696\""})
        EXPECT_THAT(svg, HasSubstr(part));
}

TEST_F(TimelineTest, MatricesOfAnObjectNeedNoFrames)
{
    std::static_pointer_cast<VisualObject>(OnVideo(90))->SetPosition({7, -3});
    Save("cut.xml");
    EXPECT_EQ(Run({"matrix", "cut.xml", "--object", "Red", "--json"}).out,
              "{\"kind\":\"transformation\",\"matrix\":[1,0,0,7,0,1,0,-3,0,0,1,0,0,0,0,1]}\n"
              "{\"kind\":\"origin\",\"matrix\":[1,0,0,-32,0,1,0,-16,0,0,1,0,0,0,0,1]}\n"
              "{\"kind\":\"world\",\"matrix\":[1,0,0,-25,0,1,0,-19,0,0,1,0,0,0,0,1]}\n");
    EXPECT_EQ(Run({"matrix", "cut.xml", "--object", "Red", "--frames", "0"}).exitCode, 2);
    EXPECT_THAT(Run({"matrix", "cut.xml", "--object", "Audio 1@0"}).err, HasSubstr("is a sound"));
}

TEST_F(TimelineTest, InfoShowsTracksObjectsLinksAndViews)
{
    sequence_->ViewerPanelState().AddViewState();
    Save("cut.xml");
    const std::string out = Run({"info", "cut.xml"}).out;
    for (const char *line :
         {"\n  Track \"Video 1\"  video, 3 objects\n",
          "\n    2  \"Main\"  frames 40 to 80, of composition \"Main\" from 30, linked to \"Main\" of track "
          "\"Audio 1\"\n",
          "\n         transition Wipe 1.1.0.0  at the tail, 5 frames from -5\n",
          ", 1 view\n    view of type 0, ", "\n3 tracks in the sequence, 5 objects, 2 transitions\n"})
        EXPECT_THAT(out, HasSubstr(line));
}

TEST_F(TimelineTest, CheckFindsWhatIsOutOfStep)
{
    const kytl::KyID nowhere{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
    const std::string id = nowhere.ToNarrowString();
    OnVideo(0)->SetName(u"A");
    OnVideo(50)->SetName(u"B");
    OnVideo(50)->SetLinkedObjectID(OnVideo(90)->ID());
    OnVideo(90)->SetLinkedObjectID(nowhere);
    OnVideo(90)->OutgoingTransition()->SetToObject(nowhere);
    OnVideo(0)->SetEndFrame(39);
    project_->Assets().All().pop_back();
    Save("cut.xml");
    const ToolRun run = Run({"check", "cut.xml"});
    const std::string lines[] = {
        "warning: object \"B\" of track \"Video 1\": the linked object \"Red\" is not linked to it",
        "warning: object \"Main\" of track \"Audio 1\": the linked object \"B\" is not linked to it",
        "warning: object \"A\" of track \"Video 1\": the outgoing transition Cross Dissolve is shared "
        "with \"B\", which does not meet it",
        "warning: object \"Red\" of track \"Video 1\": the linked object " + id + " does not exist",
        "the outgoing transition Wipe: the object " + id + " does not exist",
        "the asset " + OnVideo(90)->AssetID().ToNarrowString() + " does not exist",
    };
    const ToolRun table = Run({"timeline", "cut.xml"});
    EXPECT_EQ(table.exitCode, 0);
    for (const std::string &line : lines) {
        EXPECT_THAT(run.out, HasSubstr(line + " ["));
        EXPECT_THAT(table.err,
                    HasSubstr(line.starts_with("warning") ? "cut.xml: " + line + "\n" : line + "\n"));
    }
    EXPECT_EQ(run.err, "marlet: cut.xml: 7 problems\n") << run.out;
}

} // namespace

} // namespace marlet::test
