#include "ToolTest.h"

namespace marlet::test
{

namespace
{

using ArgumentsTest = ToolTest;
using testing::TestWithParam;

struct WrongWords {
    const char *name;
    std::vector<std::string> words;
    std::string complaint;
};

class WrongArgumentsTest : public ToolTest, public testing::WithParamInterface<WrongWords>
{
};

TEST_P(WrongArgumentsTest, ExitWith2AndShowTheUsage)
{
    Save("a.xml");
    const ToolRun run = Run(GetParam().words);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err.substr(0, run.err.find('\n')), "marlet: " + GetParam().complaint);
    EXPECT_NE(run.err.find("usage: marlet"), std::string::npos);
    EXPECT_EQ(FileNames(), std::vector<std::string>{"a.xml"});
}

const std::vector<std::string> kMatrix = {"matrix", "a.xml", "--composition", "Main", "--layer", "L"};

std::vector<std::string> Matrix(const std::vector<std::string> &more)
{
    std::vector<std::string> words = kMatrix;
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

INSTANTIATE_TEST_SUITE_P(
    Words, WrongArgumentsTest,
    testing::Values(
        WrongWords{"NoCommand", {}, "a command is missing"},
        WrongWords{"UnknownCommand", {"explode"}, "there is no command \"explode\""},
        WrongWords{"NoFile", {"info"}, "info: a file name is missing"},
        WrongWords{"TooManyFiles", {"save", "a.xml", "b", "c"}, "save: \"c\" is one too many"},
        WrongWords{"EmptyFile", {"info", ""}, "info: a file name is empty"},
        WrongWords{"UnknownOption", {"info", "a.xml", "--jason"}, "info: there is no option --jason"},
        WrongWords{
            "OptionOfAnotherCommand", {"info", "a.xml", "--rate=5"}, "info: there is no option --rate"},
        WrongWords{"ValueOfASwitch", {"info", "a.xml", "--json=1"}, "info: --json takes no value"},
        WrongWords{"TwoOfAnOption", {"info", "a.xml", "--json", "--json"}, "info: --json is given twice"},
        WrongWords{"NoValue", {"new", "b.xml", "--frames"}, "new: --frames needs a value"},
        WrongWords{"WordForANumber",
                   {"new", "b.xml", "--frames", "ten"},
                   "new: --frames: \"ten\" is not a whole number"},
        WrongWords{"NumberOutOfRange",
                   {"new", "b.xml", "--frames=2147483648"},
                   "new: --frames: \"2147483648\" is not a whole number"},
        WrongWords{"NoFrames", {"new", "b.xml", "--frames=0"}, "new: --frames: at least one is needed"},
        WrongWords{"NoSuchPreset", {"new", "b.xml", "--preset=15"}, "new: --preset: there is no preset 15"},
        WrongWords{"NeitherFramesNorTimes", kMatrix,
                   "matrix: either --frames or --times is needed, not both"},
        WrongWords{"FramesAndTimes", Matrix({"--frames=1", "--times=1"}),
                   "matrix: either --frames or --times is needed, not both"},
        WrongWords{
            "RangeThatRunsBack", Matrix({"--frames=5..1"}),
            "matrix: --frames: \"5..1\" is not a list of whole numbers and ranges, such as 0,5,7 or 0..100"},
        WrongWords{
            "EmptyItemOfAList", Matrix({"--times=1,,2"}),
            "matrix: --times: \"1,,2\" is not a list of whole numbers and ranges, such as 0,5,7 or 0..100"},
        WrongWords{"UnknownKind", Matrix({"--frames=1", "--kind=inverse"}),
                   "matrix: --kind: there is no kind \"inverse\""},
        WrongWords{
            "NoLayer", {"matrix", "a.xml", "--composition=Main", "--frames=1"}, "matrix: --layer is missing"},
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
                   "timecode: --rate: \"nan\" is not a number"}),
    [](const auto &words) { return std::string(words.param.name); });

TEST_F(ArgumentsTest, HelpIsOnStandardOutput)
{
    const ToolRun general = Run({"--help"});
    EXPECT_EQ(general.exitCode, 0);
    EXPECT_EQ(general.err, "");
    for (const char *command : {"info", "value", "matrix", "parent", "clone", "delete", "save", "image",
                                "timecode", "check", "new", "plugins"}) {
        EXPECT_NE(general.out.find(std::string("\n  ") + command + " "), std::string::npos) << command;
        const ToolRun own = Run({command, "--help"});
        EXPECT_EQ(own.exitCode, 0) << command;
        EXPECT_EQ(own.out.find(std::string("usage: marlet ") + command), 0u) << command;
        EXPECT_EQ(own.out, Run({"help", command}).out);
    }
}

TEST_F(ArgumentsTest, WordsBehindTwoDashesAreFiles)
{
    Save("--json");
    EXPECT_EQ(Run({"info", "--", "--json"}).exitCode, 0);
}

TEST_F(ArgumentsTest, AValueMayFollowAnEqualsSignOrStandAlone)
{
    EXPECT_EQ(Run({"timecode", "--frame", "-1", "--rate", "25"}).out,
              Run({"timecode", "--rate=25", "--frame=-1"}).out);
}

} // namespace

} // namespace marlet::test
