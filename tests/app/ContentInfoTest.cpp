#include "ToolTest.h"
#include "plugins/PluginManager.h"
#include "plugins/Plugins.h"

#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/EffectInstance.h>

namespace marlet::test
{

namespace
{

class ContentInfoTest : public ToolTest
{
protected:
    ContentInfoTest()
    {
        text_ = TextLayer::Create(u"Text", 100, 50);
        text_->SetParentComposition(composition_);
        composition_->Layers().Add(text_);
    }

    void Append(const WideString &characters, const std::shared_ptr<TextLayer::Format> &format)
    {
        for (const char16_t character : characters)
            text_->Text().Append(TextLayer::CreateCharToken(character, format, {}));
    }

    std::shared_ptr<TextLayer::Format> Format(int size)
    {
        return text_->TextFormat(u"Serif", u"Bold", size, {1, 0.5f, 0, 1}, {0, 0, 0, 1}, 2, 0, 12.5f);
    }

    void ExpectLines(const std::string &lines, const std::string &option = "--") const
    {
        Save("a.xml");
        EXPECT_THAT(Run({"info", "a.xml", option}).out, testing::HasSubstr(lines + "\n"));
    }

    std::shared_ptr<TextLayer> text_;
};

TEST_F(ContentInfoTest, ShowsTextByRunsAndFormats)
{
    Format(99); // in no use, so it is not saved
    Append(u"\u05D0\U0001D11E", Format(12));
    Append(u"b\n", Format(14));
    Append(u"d", nullptr);
    text_->Text().Append(TextLayer::CreateParagraphToken(TextLayer::JustificationType{-2}, {}));
    ExpectLines("         text in a frame of 100x50, 7 tokens, 1 paragraph break, 2 formats");
    ExpectLines("           format 1  \"Serif\" \"Bold\", size 12, fill (1, 0.5, 0, 1), "
                "stroke (0, 0, 0, 1) of 2, tracking 0, leading 12.5");
    ExpectLines("           run, format 1  \"\u05D0\U0001D11E\"\n"
                "           run, format 2  \"b\\n\"\n"
                "           run, no format  \"d\"\n"
                "           paragraph, justification -2");
    const std::string id = "\"layer\":\"" + text_->ID().ToNarrowString() + "\"";
    ExpectLines("{\"kind\":\"text\"," + id +
                    ",\"min_x\":-50,\"max_x\":50,\"min_y\":-25,\"max_y\":25,\"tokens\":7,"
                    "\"paragraph_breaks\":1,\"formats\":2,\"runs\":3}",
                "--json");
    ExpectLines("{\"kind\":\"text_run\"," + id + ",\"format\":1,\"text\":\"\u05D0\U0001D11E\"}", "--json");
}

TEST_F(ContentInfoTest, CutsALongRunForPeopleBetweenCharacters)
{
    Append(WideString(59, u'a') + u"\U0001D11E" + WideString(9, u'b'), Format(12));
    ExpectLines("           run, format 1  \"" + std::string(59, 'a') + "\"..., 70 tokens");
}

TEST_F(ContentInfoTest, ShowsControlCharactersAsEscapes)
{
    Append(u"a\n\x1B\x7F\x9B\u00A0\u00E9", Format(12));
    ExpectLines("           run, format 1  \"a\\n\\x1b\\x7f\\x9b\u00A0\u00E9\"");
}

TEST_F(ContentInfoTest, ShowsMasksWithTheirPoints)
{
    const auto mask = Mask::Create(u"Hole");
    for (const float x : {0.f, 10.f, 20.f})
        mask->Path().Points().Add(PathPoint::Create(x, 5, mask->Path().ID()));
    PathPoint &last = *mask->Path().Points().back();
    last.Animation().KeyFrames("position").Add(KeyFrame(40, kytl::matl::KyPoint<2, float>{30, 5}));
    last.SetLinear(false);
    mask->Path().SetClosed(true);
    mask->SetVisible(false);
    text_->Masks().Add(mask);
    ExpectLines("         mask \"Hole\"  closed path of 3 points, hidden\n"
                "           8 at their defaults\n"
                "           point 1   (0, 5), handles (0, 0) and (0, 0), linear\n"
                "           point 2   (10, 5), handles (0, 0) and (0, 0), linear\n"
                "           point 3   1 key frame, handles (0, 0) and (0, 0)");
    const std::string info = Run({"info", "a.xml"}).out;
    EXPECT_THAT(info, testing::HasSubstr(", 1 mask, 0 trackers, 38 properties (1 animated), 1 key frame, "));
}

TEST_F(ContentInfoTest, ShowsEffectsWithPluginVersionAndState)
{
    const auto blur = EffectInstance::Create(tool::Plugins()->FindPlugin(tool::kGaussianBlurID));
    blur->SetName(u"Fog");
    blur->SetEnabled(false);
    text_->Effects().Add(blur);
    text_->Effects().Add(EffectInstance::Create(tool::Plugins()->FindPlugin(tool::kDropShadowID)));
    ExpectLines("         effect \"Fog\"  Gaussian Blur 1.2.0.0, off\n"
                "           4 at their defaults\n"
                "         effect \"Drop Shadow\"  Drop Shadow 1.1.0.0, on\n"
                "           9 at their defaults\n"
                "           hidden in its panel: light, spread");
    ExpectLines("\"name\":\"Fog\",\"plugin\":\"8e1c4a50-52d7-4f0b-9a61-1d3f70c24e01\",\"plugin_name\":"
                "\"Gaussian Blur\",\"plugin_version\":\"1.2.0.0\",\"enabled\":false,\"private_bytes\":0,"
                "\"hidden\":[]}",
                "--json");
}

} // namespace

} // namespace marlet::test
