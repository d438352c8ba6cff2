#include "ToolTest.h"

namespace marlet::test
{

namespace
{

using TimecodeTest = ToolTest;

TEST_F(TimecodeTest, GoesFromFramesToTextAndBack)
{
    EXPECT_EQ(Run({"timecode", "--frame", "1800", "--rate", "29.97"}).out,
              "00;01;00;02  frame 1800 at 29.97 frames per second, drop-frame\n");
    EXPECT_EQ(Run({"timecode", "--text", "01:00:00:00", "--rate", "25"}).out,
              "01:00:00:00  frame 90000 at 25 frames per second\n");
}

TEST_F(TimecodeTest, WritesJson)
{
    EXPECT_EQ(Run({"timecode", "--text", "-1:2:3:4", "--rate=25", "--json"}).out,
              "{\"text\":\"-01:02:03:04\",\"frame\":-93079,\"rate\":25,\"drop\":false,\"negative\":true,"
              "\"hours\":1,"
              "\"minutes\":2,\"seconds\":3,\"frames\":4,\"total_seconds\":3723}\n");
}

TEST_F(TimecodeTest, FailsForATextThatIsNone)
{
    const ToolRun run = Run({"timecode", "--text", "1:2:3", "--rate", "25"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "marlet: 1:2:3: Not a time code, such as 01:02:03:04\n");
}

} // namespace

} // namespace marlet::test
