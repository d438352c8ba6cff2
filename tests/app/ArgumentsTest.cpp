#include "ToolTest.h"

namespace marlet::test
{

namespace
{

using ArgumentsTest = ToolTest;

struct WrongWords {
    const char *name;
    std::vector<std::string> words;
    std::string complaint;
};

const std::vector<std::string> kMatrix = {"matrix", "a.xml", "--composition", "Main", "--layer", "L"};

std::vector<std::string> Matrix(const std::vector<std::string> &more)
{
    std::vector<std::string> words = kMatrix;
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

TEST_F(ArgumentsTest, WrongOnesExitWith2AndShowTheUsage)
{
    Save("a.xml");
    const WrongWords cases[] = {
        WrongWords{"NoCommand", {}, "a command is missing"},
        WrongWords{"UnknownCommand", {"explode"}, "there is no command \"explode\""},
        WrongWords{"NoFile", {"info"}, "info: a file name is missing"},
        WrongWords{"TooManyFiles", {"save", "a.xml", "b", "c"}, "save: \"c\" is one too many"},
        WrongWords{"EmptyFile", {"info", ""}, "info: a name is empty"},
        WrongWords{"EmptyOut", {"tree", "a.xml", "-o", ""}, "tree: -o: a file name is empty"},
        WrongWords{"OutOverTheProject",
                   {"tree", "a.xml", "-o", "./a.xml"},
                   "tree: -o: \"./a.xml\" is a file that is read from"},
        WrongWords{"UnknownOption", {"info", "a.xml", "--jason"}, "info: there is no option --jason"},
        WrongWords{"ValueOfASwitch", {"info", "a.xml", "--json=1"}, "info: --json takes no value"},
        WrongWords{"TwoOfAnOption", {"info", "a.xml", "--json", "--json"}, "info: --json is given twice"},
        WrongWords{"NoValue", {"new", "b.xml", "--frames"}, "new: --frames needs a value"},
        WrongWords{"NumberOutOfRange",
                   {"new", "b.xml", "--frames=2147483648"},
                   "new: --frames: \"2147483648\" is not a whole number"},
        WrongWords{"NoFrames", {"new", "b.xml", "--frames=0"}, "new: --frames: at least one is needed"},
        WrongWords{"NoSuchPreset", {"new", "b.xml", "--preset=15"}, "new: --preset: there is no preset 15"},
        WrongWords{"NeitherFramesNorTimes", kMatrix,
                   "matrix: one of --frames, --times and --object is needed"},
        WrongWords{"FramesAndTimes", Matrix({"--frames=1", "--times=1"}),
                   "matrix: either --frames or --times is needed, not both"},
        WrongWords{
            "RangeThatRunsBack", Matrix({"--frames=5..1"}),
            "matrix: --frames: \"5..1\" is not a list of whole numbers and ranges, such as 0,5,7 or 0..100"},
        WrongWords{"UnknownKind", Matrix({"--frames=1", "--kind=inverse"}),
                   "matrix: --kind: there is no kind \"inverse\""},
        WrongWords{"ProjectWithoutLayer",
                   {"value", "a.xml", "--property=position", "--times=0"},
                   "value: --composition is missing"},
        WrongWords{
            "ParentAndRemove",
            {"parent", "a.xml", "b", "--composition=Main", "--layer=L", "--frame=0", "--to=P", "--remove"},
            "parent: either --to or --remove is needed, not both"},
        WrongWords{"OnePictureOfTwoFiles",
                   {"image", "a.png", "b.png", "-o", "c.png"},
                   "image: -o takes one FILE alone"},
        WrongWords{"SizeWithoutHeight",
                   {"image", "a.png", "--size", "640"},
                   "image: --size: \"640\" is not a size, such as 640x480"},
        WrongWords{"RateThatIsNoNumber",
                   {"timecode", "--frame=1", "--rate=nan"},
                   "timecode: --rate: \"nan\" is not a number"},
    };
    for (const WrongWords &wrong : cases) {
        SCOPED_TRACE(wrong.name);
        const ToolRun run = Run(wrong.words);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err, testing::StartsWith("marlet: " + wrong.complaint + "\n"));
        EXPECT_THAT(run.err, testing::HasSubstr("usage: marlet"));
    }
    EXPECT_THAT(FileNames(), testing::ElementsAre("a.xml"));
}

TEST_F(ArgumentsTest, HelpIsOnStandardOutput)
{
    const ToolRun general = Run({"--help"});
    EXPECT_EQ(general.exitCode, 0);
    EXPECT_EQ(general.err, "");
    EXPECT_THAT(general.out, testing::HasSubstr("\n  info "));
    EXPECT_THAT(Run({"info", "--help"}).out, testing::StartsWith("usage: marlet info"));
    EXPECT_EQ(Run({"info", "--help"}).out, Run({"help", "info"}).out);
}

TEST_F(ArgumentsTest, WordsBehindTwoDashesAreFiles)
{
    Save("--json");
    EXPECT_EQ(Run({"info", "--", "--json"}).exitCode, 0);
}

} // namespace

} // namespace marlet::test
