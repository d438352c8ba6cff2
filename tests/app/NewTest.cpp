#include "ToolTest.h"

namespace marlet::test
{

namespace
{

using NewTest = ToolTest;

TEST_F(NewTest, IsSoundAndTheSameAfterASaveAtAnyFormatAndLength)
{
    const std::vector<std::string> options[] = {
        {}, {"--preset=3", "--frames=1"}, {"--preset=5", "--frames=7"}, {"--preset=14", "--frames=100000"}};
    for (std::vector<std::string> words : options) {
        words.insert(words.begin(), {"new", "a.xml"});
        ASSERT_EQ(Run(words).exitCode, 0);
        EXPECT_EQ(Run({"check", "a.xml"}).exitCode, 0);
        ASSERT_EQ(Run({"save", "a.xml", "b.xml"}).exitCode, 0);
        EXPECT_EQ(Read("a.xml"), Read("b.xml"));
        const ToolRun moon =
            Run({"matrix", "a.xml", "--composition=Orbit", "--layer=Moon", "--frames=0..20", "--json"});
        EXPECT_EQ(moon.exitCode, 0) << moon.err;
        EXPECT_EQ(moon.OutLines().size(), 21u);
    }
}

TEST_F(NewTest, HasAnAnimatedLayerOfEachKindOnAParentASolidAndAFolder)
{
    ASSERT_EQ(Run({"new", "a.xml"}).exitCode, 0);
    const ToolRun info = Run({"info", "a.xml"});
    for (const char *words :
         {"\"Camera\"  camera, 3d, frames 0 to 250, on \"Camera Rig\"",
          "\"Sunlight\"  light, 3d-content, frames 0 to 250, on \"Sun\"",
          "\"Moon\"  point, 3d, frames 0 to 250, on \"Planet\"",
          "\"Planet\"  point, 3d, frames 0 to 250, on \"Sun\"", "  solid, 1280x720", "  folder\n"})
        EXPECT_NE(info.out.find(words), std::string::npos) << words;
}

TEST_F(NewTest, TakesTheFormatOfThePreset)
{
    ASSERT_EQ(Run({"new", "a.xml", "--preset", "3", "--frames", "60"}).exitCode, 0);
    const std::string out = Run({"info", "a.xml"}).out;
    EXPECT_NE(
        out.find("  720x480 interlaced-sd, pixel aspect ratio 0.9090909090909091, 29.97 frames per second, "
                 "60 frames (00;00;02;00), 48000 Hz\n"),
        std::string::npos)
        << out;
}

} // namespace

} // namespace marlet::test
