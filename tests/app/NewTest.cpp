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

TEST_F(NewTest, TitlesAreSoundAndTheSameAfterASaveAtAnyFormatAndLength)
{
    const std::vector<std::string> options[] = {{}, {"--preset=3", "--frames=1"}, {"--frames=100000"}};
    for (std::vector<std::string> words : options) {
        words.insert(words.begin(), {"new", "a.xml", "--titles"});
        ASSERT_EQ(Run(words).exitCode, 0);
        EXPECT_EQ(Run({"check", "a.xml"}).exitCode, 0) << Run({"check", "a.xml"}).out;
        ASSERT_EQ(Run({"save", "a.xml", "b.xml"}).exitCode, 0);
        EXPECT_EQ(Read("a.xml"), Read("b.xml"));
    }
}

TEST_F(NewTest, TitlesHaveWhatHangsOnLayers)
{
    ASSERT_EQ(Run({"new", "a.xml", "--titles", "--texture=none.png"}).exitCode, 0);
    const std::string out = Run({"info", "a.xml"}).out;
    for (const char *words :
         {"run, format 1  \"The Long Way Home \U0001D11E\"\n",
          "run, format 2  \"\u05D4\u05D1\u05D9\u05EA\u05D4\"\n",
          "effect \"Shimmer\"  Displacement 1.0.0.1, on, 256 bytes of its own\n",
          "refers to \"Title\" by effect \"Shimmer\", property map\n", "point 1   3 key frames, handles ",
          "\"Vignette\"  grade, ", "3D effect Ribbon\n", "texture none.png, not there\n",
          "2 compositions, 11 layers, 7 effects, 3 masks, "})
        EXPECT_NE(out.find(words), std::string::npos) << words << out;
    EXPECT_EQ(Run({"check", "a.xml"}).out,
              "missing file    layer \"Ribbon\" of composition \"Opening\", 3D effect: the texture none.png "
              "cannot be read as an image\n");
    EXPECT_EQ(Run({"new", "a.xml", "--texture=none.png"}).exitCode, 2);
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
