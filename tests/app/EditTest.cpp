#include "SequenceToolTest.h"

namespace marlet::test
{

namespace
{

using EditTest = SequenceToolTest;

TEST_F(EditTest, KeepsPartnersAndSharedTransitionsInStep)
{
    ASSERT_EQ(Layout("cut.xml"), "0-40@0*=40-80@30*|80-100@0> /  / 0-40@0*|40-80@30*");
    const struct {
        std::vector<std::string> words;
        const char *layout;
    } cases[] = {
        {{"remove", "Video 1@10"}, "40-80@30*|80-100@0> /  / 40-80@30*"},
        {{"remove", "Video 1@10", "--unlinked"}, "40-80@30*|80-100@0> /  / 0-40@0|40-80@30*"},
        {{"remove", "Red"}, "0-40@0*=40-80@30* /  / 0-40@0*|40-80@30*"},
        {{"split", "Video 1@10", "--at", "20"},
         "0-20@0*|20-40@20*=40-80@30*|80-100@0> /  / 0-20@0*|20-40@20*|40-80@30*"},
        {{"split", "Audio 1@50", "--at", "60", "--unlinked"},
         "0-40@0*=40-80@30*|80-100@0> /  / 0-40@0*|40-60@30*|60-80@50"},
        {{"split", "Video 1@10", "--at", "36"},
         "0-36@0*|36-40@36*|40-80@30*|80-100@0> /  / 0-36@0*|36-40@36*|40-80@30*"},
        {{"split", "Red", "--at", "95"}, "0-40@0*=40-80@30*|80-95@0|95-100@0> /  / 0-40@0*|40-80@30*"},
        {{"split", "Red", "--at", "96"}, "0-40@0*=40-80@30*|80-96@0|96-100@0 /  / 0-40@0*|40-80@30*"},
        {{"trim", "Video 1@50", "--start", "50"}, "0-40@0*|50-80@40*|80-100@0> /  / 0-40@0*|50-80@40*"},
        {{"trim", "Audio 1@50", "--end", "44"}, "0-40@0*|40-44@30*|80-100@0> /  / 0-40@0*|40-44@30*"},
        {{"trim", "Video 1@50", "--end", "60", "--unlinked"},
         "0-40@0*=40-60@30*|80-100@0> /  / 0-40@0*|40-80@30*"},
        {{"trim", "Red", "--start", "85", "--end", "120"},
         "0-40@0*=40-80@30*|85-120@0> /  / 0-40@0*|40-80@30*"},
        {{"move", "Red", "--by", "150"}, "0-40@0*=40-80@30*|230-250@0> /  / 0-40@0*|40-80@30*"},
        {{"move", "Video 1@50", "--to", "100"}, "0-40@0*|80-100@0>|100-140@30* /  / 0-40@0*|100-140@30*"},
        {{"move", "Video 1@50", "--track", "Spare", "--to", "41"},
         "0-40@0*|80-100@0> / 41-81@30* / 0-40@0*|41-81@30*"},
        {{"move", "Video 1@50", "--to", "40"}, "0-40@0*=40-80@30*|80-100@0> /  / 0-40@0*|40-80@30*"},
        {{"transition", "Video 1@50", "--side", "head", "--remove"},
         "0-40@0*|40-80@30*|80-100@0> /  / 0-40@0*|40-80@30*"},
        {{"transition", "Video 1@50", "--plugin", "Wipe", "--length", "30"},
         "0-40@0*=40-80@30*=80-100@0> /  / 0-40@0*|40-80@30*"},
        {{"transition", "Video 1@50", "--side", "head", "--one-sided"},
         "0-40@0*|<40-80@30*|80-100@0> /  / 0-40@0*|40-80@30*"},
        {{"insert", "Main", "--track", "Spare", "--sound", "Audio 1", "--at", "100", "--from", "10"},
         "0-40@0*=40-80@30*|80-100@0> / 100-190@10* / 0-40@0*|40-80@30*|100-190@10*"},
        {{"insert", "Main", "--track", "Video 1", "--at", "40", "--length", "10", "--ripple"},
         "0-40@0*|40-50@0|50-90@30*|90-110@0> /  / 0-40@0*|50-90@30*"},
        {{"copy", "Video 1@10", "--at", "110", "--track", "Spare"},
         "0-40@0*=40-80@30*|80-100@0> / 110-150@0* / 0-40@0*|40-80@30*|110-150@0*"},
        {{"remove", "Video 1@50", "--ripple", "--tracks", "Audio 1,Spare"}, "0-40@0*|40-60@0> /  / 0-40@0*"},
        {{"lift", "--start", "20", "--end", "60", "--tracks", "Video 1"},
         "0-20@0*|60-80@50*|80-100@0> /  / 0-40@0*|40-80@30*"},
        {{"roll", "Video 1@10", "--to", "30"}, "0-30@0*=30-80@20*|80-100@0> /  / 0-30@0*|30-80@20*"},
        {{"slip", "Video 1@50", "--by", "-5", "--unlinked"},
         "0-40@0*=40-80@25*|80-100@0> /  / 0-40@0*|40-80@30*"},
    };
    for (const auto &edit : cases) {
        SCOPED_TRACE(testing::PrintToString(edit.words));
        const ToolRun run = Edit("out.xml", edit.words);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        EXPECT_EQ(Layout("out.xml"), edit.layout);
        EXPECT_EQ(Run({"check", "out.xml"}).exitCode, 0) << Run({"check", "out.xml"}).out;
    }
}

TEST_F(EditTest, TellsOfTransitionsThatGo)
{
    EXPECT_THAT(Edit("out.xml", {"trim", "Video 1@10", "--start", "36"}).out,
                testing::EndsWith("\nremoved   transition Cross Dissolve from \"Main\" to \"Main\"\n"));
    EXPECT_THAT(Edit("out.xml", {"trim", "Video 1@10", "--start", "35"}).out,
                testing::Not(testing::HasSubstr("removed")));
}

TEST_F(EditTest, RefusesWhatDoesNotFitAndWritesNothing)
{
    const struct {
        std::vector<std::string> words;
        int exitCode;
        const char *message;
    } cases[] = {
        {{"move", "Red", "--to", "30"}, 1, "track \"Video 1\" are not free: \"Main\" has frames 0 to 40\n"},
        {{"move", "Video 1@50", "--to", "10"}, 1, "\"Main\" has frames 0 to 40\n"},
        {{"move", "Red", "--to", "231"},
         1,
         "The frames 231 to 251 are not all in the sequence, which has 250"},
        {{"move", "Red", "--by", "2147483647"}, 1, "The frames 2147483727 to 2147483747 are not all"},
        {{"move", "Red", "--track", "Audio 1"}, 1, "Track \"Audio 1\" is for sounds\n"},
        {{"trim", "Red", "--start", "100"}, 1, "No frame would be left: the start is 100, the end 100\n"},
        {{"split", "Red", "--at", "80"}, 1, "Frame 80 does not split \"Red\", which has frames 80 to 100\n"},
        {{"split", "Video 1@120", "--at", "80"}, 1, "There is nothing on frame 120 of track \"Video 1\"\n"},
        {{"remove", "Main"}, 1, "There are 4 objects of the name \"Main\": give the ID, or TRACK@FRAME\n"},
        {{"remove", "Blue"}, 1, "There is no object \"Blue\", only \"Main\", \"Red\"\n"},
        {{"transition", "Video 1@50", "--length", "72"}, 1, "does not fit: there is room for 30\n"},
        {{"insert", "Red", "--track", "Audio 1", "--at", "0", "--length", "9"}, 1, "\"Red\" has no sound\n"},
        {{"insert", "Red", "--track", "Spare", "--at", "0"}, 1, "\"Red\" has no length of its own"},
        {{"insert", "Main", "--track", "Spare", "--at", "0", "--from", "60", "--length", "41"},
         1,
         "The frames 60 to 101 of asset \"Main\" are not all there: it has 100 frames\n"},
        {{"insert", "Main", "--track", "Spare", "--at", "0", "--from", "100"},
         1,
         "\"Main\" has no frame 100, only 100"},
        {{"split", "Red", "--to", "90"}, 2, "edit: --to does not go with split\n"},
        {{"move", "Red", "--to", "1", "--by", "1"}, 2, "either --to or --by is needed, not both\n"},
        {{"turn", "Red"}, 2, "there is no operation \"turn\"\n"},
        {{"lift", "Red", "--start", "1", "--end", "2"}, 2, "\"Red\" is one too many\n"},
        {{"remove", "Red", "--tracks", "Spare"}, 2, "--tracks goes with --ripple\n"},
    };
    for (const auto &edit : cases) {
        SCOPED_TRACE(testing::PrintToString(edit.words));
        const ToolRun run = Edit("out.xml", edit.words);
        EXPECT_EQ(run.exitCode, edit.exitCode);
        EXPECT_THAT(run.err, testing::HasSubstr(edit.message));
    }
    EXPECT_THAT(FileNames(), testing::ElementsAre("cut.xml"));
}

TEST_F(EditTest, RunsAScriptOrNothingOfIt)
{
    Write("script", "# a shorter beginning\n"
                    "split \"Video 1@10\" --at 20   # in two\n"
                    "\n"
                    "remove 'Video 1'@10 --ripple\n");
    const ToolRun run = Edit("out.xml", {"--script", "script"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(Layout("out.xml"), "0-20@20*=20-60@30*|60-80@0> /  / 0-20@20*|20-60@30*");

    const struct {
        const char *lines;
        const char *message;
    } wrong[] = {
        {"remove Red\nmove \"Video 1@10\" --to 300\n", "marlet: wrong:2: The frames 300 to 340 are not all"},
        {"remove Red\nremove Red\n", "marlet: wrong:2: There is no object \"Red\""},
        {"\nturn Red\n", "marlet: wrong:2: there is no operation \"turn\"\n"},
        {"remove \"Red\n", "marlet: wrong:1: A quotation mark has no other one\n"},
        {"# nothing\n", "marlet: wrong: The script has nothing to do in it\n"},
    };
    for (const auto &script : wrong) {
        Write("wrong", script.lines);
        const ToolRun refused = Edit("not.xml", {"--script", "wrong"});
        EXPECT_EQ(refused.exitCode, 1);
        EXPECT_THAT(refused.err, testing::HasSubstr(script.message));
        EXPECT_EQ(refused.out, "");
    }
    EXPECT_EQ(Edit("not.xml", {"remove", "--script", "script"}).exitCode, 2);
    EXPECT_THAT(FileNames(), testing::UnorderedElementsAre("cut.xml", "out.xml", "script", "wrong"));
}

TEST_F(EditTest, TellsInADryRunWhatWouldChangeAndWritesNothing)
{
    const ToolRun run = Edit("out.xml", {"trim", "Red", "--end", "90", "--dry-run"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.OutLines(),
                testing::ElementsAre("step      \"Trim\"",
                                     "changed   picture \"Red\": frames 80 to 100 became 80 to 90",
                                     "stale     frames 80 to 100 of sequence \"Editor\"",
                                     testing::StartsWith("trimmed   \"Red\"  frames 80 to 90")));
    const ToolRun ripple = Edit("out.xml", {"insert", "Red", "--track", "Spare", "--at", "40", "--length",
                                            "7", "--ripple", "--tracks", "Video 1", "--dry-run"});
    EXPECT_THAT(ripple.out, testing::HasSubstr("\nchanged   video track \"Spare\": + picture \"Red\"\n"));
    EXPECT_THAT(ripple.out, testing::HasSubstr("\nchanged   picture \"Main\": moved from 40 to 47"));
    EXPECT_THAT(ripple.out, testing::HasSubstr("\nchanged   picture \"Red\": moved from 80 to 87\n"));
    const ToolRun json = Edit("out.xml", {"move", "Red", "--to", "120", "--dry-run", "--json"});
    EXPECT_THAT(
        json.OutLines(),
        testing::ElementsAre(testing::AllOf(
            testing::StartsWith("{\"step\":\"Move object\",\"changes\":[{\"kind\":\"object\",\"id\":"),
            testing::HasSubstr("\"name\":\"Red\",\"what\":[\"frames\"],\"framesBefore\":[80,100],"
                               "\"frames\":[120,140]}"))));
    EXPECT_THAT(FileNames(), testing::ElementsAre("cut.xml"));
}

/// Each line of the scripts, and what the tool says of the result.
TEST_F(EditTest, EditsAssetsLayersKeyFramesTextsAndMasks)
{
    const struct {
        const char *script;
        std::vector<std::string> question;
        const char *answer;
    } rows[] = {
        {"layer new Main Title --type text\ntext set Main Title 'Hello\\nyou'\n"
         "text replace Main Title Dear --from 0 --length 5\ntext insert Main Title ' all' --from 4",
         {"diff", "cut.xml", "out.xml"},
         "+ composition \"Main\", text layer \"Title\" added"},
        {"asset add Blue --size 32x16 --colour '#0000ff'\nlayer add Main Blue --at 10\n"
         "layer trim Main Blue --end 60\nlayer move Main Blue --by 5\nlayer split Main Blue --at 30",
         {"info", "out.xml"},
         "\"Blue\"  asset, 2d, frames 15 to 30"},
        {"layer add Main Red --place 1\nlayer new Main Grade --type grade\nasset nest Main Nest --layers "
         "Red,Grade",
         {"edit", "out.xml", "x.xml", "asset", "remove", "Nest"},
         "Asset \"Nest\" is used: layer \"Nest\" of composition \"Main\""},
        {"folder add Pictures\nasset move Red --folder Pictures\nfolder rename Pictures Stills\n"
         "folder add Deep --folder Stills\nfolder move Deep",
         {"diff", "cut.xml", "out.xml"},
         "folder \"Stills\" added"},
        {"asset duplicate Main Second\nasset replace Main --with Second\nasset remove Main",
         {"info", "out.xml"},
         "Second"},
        {"layer add Main Red\nkeys insert Main Red opacity --time 0\nkeys insert Main Red opacity --time "
         "1000\n"
         "keys move Main Red opacity --by 500 --times 1000..1000\nkeys ease Main Red opacity --easing hold",
         {"info", "out.xml"},
         "opacity              float         2 key frames, 0 to 1500 ms"},
        {"layer add Main Red\nmask ellipse Main Red Oval --size 20x10\n"
         "mask rectangle Main Red Box --size 8x8 --radius 2\nkeys insert Main Red opacity --mask Box --time "
         "40",
         {"info", "out.xml"},
         "mask \"Box\"  closed path of 8 points"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.script);
        Write("script", row.script);
        const ToolRun run = Edit("out.xml", {"--script", "script"});
        ASSERT_EQ(run.exitCode, 0) << run.err;
        const ToolRun asked = Run(row.question);
        EXPECT_THAT(asked.out + asked.err, testing::HasSubstr(row.answer)) << run.out;
    }
    EXPECT_THAT(Edit("not.xml", {"layer", "turn", "Main"}).err,
                testing::HasSubstr("There is no operation \"layer turn\", only \"add\", \"new\""));
    EXPECT_THAT(Edit("not.xml", {"layer", "remove", "Main"}).err,
                testing::HasSubstr("edit: layer remove needs LAYER\n"));
}

} // namespace

TEST_F(EditTest, SetsValuesAndStylesOfTexts)
{
    const std::string title = "layer new Main Title --type text --size 300x40\n"
                              "text set Main Title \"One\\nTwo\\n\"\n"
                              "keys insert Main Title opacity --time 0\n";
    Write("script",
          title + "value set Main Title position --value 10,-20,0\n"
                  "value set Main Title opacity --value 12.5 --time 400\n"
                  "text style Main Title --from 4 --length 3 --height 24 --colour '#ff0000' --face Bold\n"
                  "text style Main Title --align right --from 4\n");
    const ToolRun run = Edit("out.xml", {"--script", "script"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto valueOf = [&](const std::string &property) {
        return Run({"value", "out.xml", "--composition", "Main", "--layer", "Title", "--property", property,
                    "--times", "0,200,400"})
            .out;
    };
    EXPECT_THAT(valueOf("position"), testing::HasSubstr("(10, -20, 0)"));
    EXPECT_THAT(valueOf("opacity"), testing::HasSubstr("56.25"));
    EXPECT_THAT(Read("out.xml"), testing::HasSubstr("<MaxX>150</MaxX>"));
    EXPECT_THAT(Run({"info", "out.xml"}).out,
                testing::HasSubstr("\"DejaVu Sans\" \"Bold\", size 24, fill (1, 0, 0, 1)"));

    const struct {
        const char *line;
        const char *message;
    } wrong[] = {
        {"value set Main Title position --value 1,2", "\"1,2\" is no value of position, such as (0, 0, 0)"},
        {"value set Main Title position --value 1,2,3,4", "is no value of position"},
        {"value set Main Title scaleLinked --value 1", "is no value of scaleLinked, such as yes"},
        {"value set Main Title opacity --value 50", "opacity has key frames: --time says which"},
        {"value set Main Title size --value 50", "There is no property \"size\""},
        {"text style Main Title", "nothing of the style is given"},
        {"text style Main Title --colour red", "\"red\" is no colour, such as ff8000"},
        {"text style Main Title --align justified", "is none of left, centre, right"},
        {"text style Main Title --height 0", "a font is at least one pixel high"},
        {"text style Main Title --height 9 --from 99",
         "The range goes beyond the text, which has 8 characters"},
    };
    for (const auto &one : wrong) {
        SCOPED_TRACE(one.line);
        Write("script", title + one.line + "\n");
        const ToolRun refused = Edit("none.xml", {"--script", "script"});
        EXPECT_NE(refused.exitCode, 0);
        EXPECT_THAT(refused.err, testing::HasSubstr(one.message));
    }
}

} // namespace marlet::test
