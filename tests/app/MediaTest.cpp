#include "ToolTest.h"
#include "plugins/PluginManager.h"
#include "plugins/Plugins.h"

#include <marlet/layers/AssetLayer.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/SolidAsset.h>

#include <QImage>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>

namespace marlet::test
{

namespace
{

using testing::HasSubstr;

class MediaTest : public ToolTest
{
protected:
    MediaTest()
    {
        Run({"clip", "a.mov", "--frames", "10", "--size", "160x120"});
        Run({"new", "a.xml", "--media", "a.mov"});
    }

    QImage Decode(const std::string &file, const std::vector<std::string> &options) const
    {
        std::vector<std::string> words = {"decode", file, "-o", "frame.png"};
        words.insert(words.end(), options.begin(), options.end());
        EXPECT_EQ(Run(words).err, "");
        return QImage(QString::fromStdString(Path("frame.png")));
    }
};

TEST_F(MediaTest, TellsWhatTheLibraryAnswers)
{
    Run({"clip", "silent.mov", "--frames", "2", "--size", "160x120", "--silent"});
    Write("text.mov", "no clip");
    const auto lines = Run({"media", "a.mov", "silent.mov", "text.mov", "gone.mov", "--json"}).OutLines();
    ASSERT_EQ(lines.size(), 4u);
    for (const char *part :
         {"\"status\":\"usable\"", "\"width\":160,\"height\":120,\"frames\":10,\"frame_rate\":25,",
          "\"kind\":\"MPEG4\"",
          "\"sample_rate\":48000,\"channels\":2,\"bits\":16,\"samples\":19200,\"duration\":\"00:00:00.40\","
          "\"milliseconds\":400,\"frame_rate\":30,\"frames\":12,"})
        EXPECT_THAT(lines[0], HasSubstr(part));
    EXPECT_THAT(lines[1], HasSubstr("\"audio\":null}"));
    EXPECT_THAT(lines[2], HasSubstr("\"status\":\"unreadable\",\"offline\":true"));
    EXPECT_THAT(lines[3], HasSubstr("\"status\":\"missing\",\"offline\":true"));
    EXPECT_THAT(Run({"info", "a.xml", "--json"}).out, HasSubstr("\"samples\":19200"));
}

TEST_F(MediaTest, AsksForAFrameInThreeWays)
{
    const QImage frame = Decode("a.mov", {"--frame", "6"});
    ASSERT_EQ(frame.size(), QSize(160, 120));
    EXPECT_NE(frame, Decode("a.mov", {"--frame", "7"}));
    EXPECT_EQ(frame, Decode("a.xml", {"--frame", "13", "--rate", "50"}));
    EXPECT_EQ(frame, Decode("a.xml", {"--frame", "6", "--size", "160x120", "--asset", "a.mov"}));
    EXPECT_EQ(Decode("a.mov", {"--frame", "13", "--rate", "50", "--size", "40x400"}).size(), QSize(40, 30));
}

TEST_F(MediaTest, CountsTheGapsOfASequence)
{
    for (const char *number : {"2", "5"})
        Run({"decode", "a.mov", "--frame", number, "-o", std::string("s.00") + number + ".png"});
    EXPECT_THAT(Run({"media", "s.005.png", "--sequence", "--rate", "12.5", "--json"}).out,
                HasSubstr("\"sequence\":true,\"video\":{\"width\":160,\"height\":120,\"frames\":4,"
                          "\"frame_rate\":12.5,"));
    EXPECT_EQ(Decode("s.005.png", {"--sequence", "--frame", "2"}), Decode("a.mov", {"--frame", "2"}));
}

TEST_F(MediaTest, WritesSamplesWithSilenceAround)
{
    constexpr double kPi = 3.14159265358979323846;
    EXPECT_THAT(Run({"samples", "a.mov", "--start=-3", "--count", "100", "-o", "a.wav", "--json"}).out,
                HasSubstr("\"count\":100,\"inside\":97}"));
    const std::string wav = Read("a.wav");
    ASSERT_EQ(wav.size(), 44u + 100 * 2 * 2);
    EXPECT_EQ(wav.substr(0, 36), std::string("RIFF\xB4\x01\0\0WAVEfmt \x10\0\0\0\1\0\2\0\x80\xBB\0\0"
                                             "\0\xEE\2\0\4\0\x10\0",
                                             36));
    for (int i = 0; i < 100; ++i) {
        std::int16_t left = 0;
        std::memcpy(&left, wav.data() + 44 + 4 * i, 2);
        EXPECT_EQ(left, i < 3 ? 0 : std::lround(8000 * std::sin(2 * kPi * 440 * (i - 3) / 48000))) << i;
    }
}

TEST_F(MediaTest, RelinksToAFileThatCanBeUsed)
{
    Run({"clip", "silent.mov", "--frames", "2", "--size", "160x120", "--silent"});
    EXPECT_EQ(Run({"relink", "a.xml", "b.xml", "--asset", "a.mov", "--to", "gone.mov"}).exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(Path("b.xml")));

    EXPECT_EQ(Run({"relink", "a.xml", "b.xml", "--asset", "a.mov", "--to", "./silent.mov"}).err, "");
    const std::string info = Run({"info", "b.xml", "--json"}).out;
    EXPECT_THAT(info, HasSubstr("\"name\":\"a.mov\""));
    EXPECT_THAT(info, HasSubstr("\"file\":\"" + Path("silent.mov") + "\""));
    EXPECT_THAT(Read("b.xml"), HasSubstr("<AssetHasAudio>0</AssetHasAudio>"));
    EXPECT_THAT(Read("b.xml"), HasSubstr("<AssetHadAudio>1</AssetHadAudio>"));

    std::filesystem::remove(Path("silent.mov"));
    EXPECT_THAT(Run({"check", "b.xml"}).out, HasSubstr("warning: asset \"a.mov\": " + Path("silent.mov") +
                                                       " is not there [missing file]\n"));
}

TEST_F(MediaTest, ShowsHowFarEffectsReach)
{
    const auto solid = SolidAsset::Create(u"Red", {1, 0, 0, 1}, 64, 32, PAR::Square);
    project_->Assets().All().Add(solid);
    const auto layer = AssetLayer::Create(solid);
    layer->SetParentComposition(composition_);
    layer->Effects().Add(EffectInstance::Create(tool::Plugins()->FindPlugin(tool::kGaussianBlurID)));
    layer->Effects()[0]->Properties().KeyFrames("radius").Add(KeyFrame(0, 8.f));
    layer->Effects()[0]->Properties().KeyFrames("radius").Add(KeyFrame(400, 18.f));
    composition_->Layers().Add(layer);
    Save("solid.xml");
    // 200 ms are half of the way.
    EXPECT_EQ(Run({"postfilter", "solid.xml", "--composition", "Main", "--layer", "Red", "--frame", "5"}).out,
              "frame 5: 64x32 of \"Red\" become 90x58, and lie at 13,13 in them\n");
}

TEST_F(MediaTest, EndsInGoodOrderWhileAProjectLoads)
{
    // So many names for one clip that the signal comes before they are opened.
    std::string text = Read("a.xml");
    const std::size_t start = text.find("<MediaAsset");
    const std::size_t end = text.find("<", text.find("</MediaAsset>") + 1);
    const std::string element = text.substr(start, end - start);
    std::string elements;
    for (int i = 0; i < 3000; ++i) {
        const std::string name = "link" + std::to_string(i) + ".mov";
        std::filesystem::create_hard_link(Path("a.mov"), Path(name));
        std::string other = element;
        other.replace(other.find(Path("a.mov")), Path("a.mov").size(), Path(name));
        elements += other;
    }
    Write("many.xml", text.insert(end, elements));
    for (const char *words :
         {"info many.xml", "check many.xml", "timeline many.xml", "report many.xml -o page"}) {
        // Before it has begun to take note of it, a signal would end the tool.
        const std::string isReady = "grep -q 'SigCgt:.*[4-7c-f][0-9a-f]\\{3\\}$' /proc/$!/status";
        const ToolRun run = Shell("\"$MARLET\" " + std::string(words) + " & i=0; until " + isReady +
                                  " || [ $i -eq 3000 ]; do i=$((i+1)); done; kill -TERM $!; wait $!");
        EXPECT_EQ(run.exitCode, 1) << words;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, "marlet: many.xml: Interrupted\n");
    }
    EXPECT_FALSE(std::filesystem::exists(Path("page")));
}

TEST_F(MediaTest, WhatCannotBeReadIsAFailureOfOneLine)
{
    Write("text.mov", "no clip");
    // A box of 60 bytes starts like the text of a project.
    Write("box.mp4", std::string("\0\0\0<ftypqt  ", 12) + std::string(48, '\0'));
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"decode", "a.mov", "--frame", "10"}, "a.mov: Frame 10: there is no such frame"},
        {{"decode", "gone.mov", "--frame", "0"}, "gone.mov: No such file or directory"},
        {{"decode", ".", "--frame", "0"}, ".: Is a directory"},
        {{"decode", "text.mov", "--frame", "0"}, "text.mov: Not a media file that can be read"},
        {{"samples", "box.mp4", "--start", "0", "--count", "1"},
         "box.mp4: Not a media file that can be read"},
        {{"samples", "a.mov", "--start", "0", "--count", "2000000000"},
         "a.mov: 2000000000 samples are more than fit into a WAV file"},
        {{"decode", "a.xml", "--frame", "0", "--asset", "b"},
         "a.xml: There is no media asset \"b\", only \"a.mov\""},
    };
    const std::size_t files = FileNames().size();
    for (auto [words, message] : cases) {
        words.insert(words.end(), {"-o", "out"});
        const ToolRun run = Run(words);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.err, "marlet: " + message + "\n");
    }
    EXPECT_EQ(FileNames().size(), files);
}

} // namespace

} // namespace marlet::test
