#include "ToolTest.h"

namespace marlet::test
{

namespace
{

using NewTest = ToolTest;

TEST_F(NewTest, IsSoundAndTheSameAfterASaveAtAnyFormatAndLength)
{
    const std::vector<std::string> options[] = {
        {}, {"--preset=3", "--frames=1"}, {"--titles"}, {"--titles", "--preset=14", "--frames=100000"}};
    for (std::vector<std::string> words : options) {
        words.insert(words.begin(), {"new", "a.xml"});
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
         {"effect \"Shimmer\"  Displacement 1.0.0.1, on, 256 bytes of its own\n",
          "refers to \"Title\" by effect \"Shimmer\", property map\n", "texture none.png, not there\n",
          "\"Credits\"  composition, 1280x720, 250 frames, used 1 time\n",
          "2 compositions, 12 layers, 8 effects, 4 masks, "})
        EXPECT_THAT(out, testing::HasSubstr(words));
    EXPECT_THAT(Run({"check", "a.xml"}).out,
                testing::HasSubstr("warning: layer \"Ribbon\" of composition \"Opening\", 3D effect: the "
                                   "texture none.png cannot be read as an image [missing file]\n"));
    EXPECT_EQ(Run({"new", "a.xml", "--texture=none.png"}).exitCode, 2);
}

TEST_F(NewTest, CutLacksItsMediaFilesAndNothingElse)
{
    for (const char *frames : {"--frames=50", "--frames=99", "--frames=100000"}) {
        ASSERT_EQ(Run({"new", "a.xml", "--cut", frames}).exitCode, 0);
        EXPECT_EQ(Run({"check", "a.xml"}).err, "marlet: a.xml: 3 problems\n") << Run({"check", "a.xml"}).out;
        ASSERT_EQ(Run({"save", "a.xml", "b.xml"}).exitCode, 0);
        EXPECT_EQ(Read("a.xml"), Read("b.xml"));
    }
    EXPECT_EQ(Run({"new", "a.xml", "--cut", "--frames=49"}).exitCode, 2);
}

TEST_F(NewTest, TakesTheFormatOfThePreset)
{
    ASSERT_EQ(Run({"new", "a.xml", "--preset", "3", "--frames", "60"}).exitCode, 0);
    EXPECT_THAT(Run({"info", "a.xml"}).out,
                testing::HasSubstr("  720x480 interlaced-sd, pixel aspect ratio 0.9090909090909091, "
                                   "29.97 frames per second, 60 frames (00;00;02;00), 48000 Hz\n"));
}

} // namespace

} // namespace marlet::test
