#include "ToolTest.h"
#include "plugins/PluginManager.h"
#include "plugins/Plugins.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/CompositionAsset.h>

#include <algorithm>

namespace marlet::test
{

namespace
{

using namespace project;

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

    void AddParagraph(int justification)
    {
        text_->Text().Append(
            TextLayer::CreateParagraphToken(TextLayer::JustificationType(justification), {}));
    }

    std::shared_ptr<TextLayer::Format> Format(int size)
    {
        return text_->TextFormat(u"Serif", u"Bold", size, {1, 0.5f, 0, 1}, {0, 0, 0, 1}, 2, 0, 12.5f);
    }

    void AddMask()
    {
        const auto mask = Mask::Create(u"Hole");
        mask->SetParentLayerID(text_->ID());
        for (const float x : {0.f, 10.f, 20.f})
            mask->Path().Points().Add(PathPoint::Create(x, 5, mask->Path().ID()));
        PathPoint &last = *mask->Path().Points().back();
        last.Animation().KeyFrames("position").Add(KeyFrame(0, kytl::matl::KyPoint<2, float>{20, 5}));
        last.Animation().KeyFrames("position").Add(KeyFrame(40, kytl::matl::KyPoint<2, float>{30, 5}));
        last.SetLinear(false);
        mask->Path().SetClosed(true);
        mask->SetVisible(false);
        text_->Masks().Add(mask);
    }

    void ExpectLines(const std::string &out, const std::vector<std::string> &lines) const
    {
        for (const std::string &line : lines)
            EXPECT_NE(out.find(line + "\n"), std::string::npos) << line << "\n" << out;
    }

    std::shared_ptr<TextLayer> text_;
};

TEST_F(ContentInfoTest, ShowsTextByRunsAndFormats)
{
    Format(99); // in no use, so it is not saved
    Append(u"\u05D0\U0001D11E", Format(12));
    Append(u"b\n", Format(14));
    AddParagraph(1);
    Append(u"c", Format(12));
    Append(u"d", nullptr);
    AddParagraph(-2);
    Save("a.xml");
    ExpectLines(
        Run({"info", "a.xml"}).out,
        {
            "         text in a frame of 100x50, 9 tokens, 2 paragraph breaks, 2 formats",
            "           format 1  \"Serif\" \"Bold\", size 12, fill (1, 0.5, 0, 1), stroke (0, 0, 0, 1) "
            "of 2, tracking 0, leading 12.5",
            "           run, format 1  \"\u05D0\U0001D11E\"\n"
            "           run, format 2  \"b\\n\"\n"
            "           paragraph, justification 1\n"
            "           run, format 1  \"c\"\n"
            "           run, no format  \"d\"\n"
            "           paragraph, justification -2",
        });
    const std::string id = "\"layer\":\"" + text_->ID().ToNarrowString() + "\"";
    ExpectLines(Run({"info", "a.xml", "--json"}).out,
                {
                    "{\"kind\":\"text\"," + id +
                        ",\"min_x\":-50,\"max_x\":50,\"min_y\":-25,\"max_y\":25,\"tokens\":9,"
                        "\"paragraph_breaks\":2,\"formats\":2,\"runs\":4}",
                    "{\"kind\":\"text_run\"," + id + ",\"format\":1,\"text\":\"\u05D0\U0001D11E\"}",
                    "{\"kind\":\"text_run\"," + id + ",\"format\":null,\"text\":\"d\"}",
                    "{\"kind\":\"text_paragraph\"," + id + ",\"justification\":-2}",
                });
}

TEST_F(ContentInfoTest, CutsALongRunForPeopleBetweenCharacters)
{
    Append(WideString(59, u'a') + u"\U0001D11E" + WideString(20000, u'b'), Format(12));
    Save("a.xml");
    ExpectLines(Run({"info", "a.xml"}).out,
                {"           run, format 1  \"" + std::string(59, 'a') + "\"..., 20061 tokens"});
    ExpectLines(Run({"info", "a.xml", "--json"}).out,
                {"\"text\":\"" + std::string(59, 'a') + "\U0001D11E" + std::string(20000, 'b') + "\"}"});
}

TEST_F(ContentInfoTest, ShowsControlCharactersAsEscapes)
{
    Append(u"a\n\x1B\x7F\x9B\u00A0\u00E9", Format(12));
    Save("a.xml");
    ExpectLines(Run({"info", "a.xml"}).out,
                {"           run, format 1  \"a\\n\\x1b\\x7f\\x9b\u00A0\u00E9\""});
}

TEST_F(ContentInfoTest, ShowsMasksWithTheirPoints)
{
    AddMask();
    Save("a.xml");
    ExpectLines(Run({"info", "a.xml"}).out,
                {
                    "         mask \"Hole\"  closed path of 3 points, hidden\n"
                    "           8 at their defaults\n"
                    "           point 1   (0, 5), handles (0, 0) and (0, 0), linear\n"
                    "           point 2   (10, 5), handles (0, 0) and (0, 0), linear\n"
                    "           point 3   2 key frames, handles (0, 0) and (0, 0)",
                    "1 layer, 0 effects, 1 mask, 38 properties (1 animated), 2 key frames, 0 expressions, "
                    "0 metadata values",
                });
    const std::vector<std::string> lines = Run({"info", "a.xml", "--json"}).OutLines();
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [](const auto &line) { return line.find("{\"kind\":\"mask_point\"") == 0; }),
              3);
}

TEST_F(ContentInfoTest, ShowsEffectsWithPluginVersionAndState)
{
    const auto blur = EffectInstance::Create(tool::Plugins()->FindPlugin(tool::kGaussianBlurID));
    blur->SetName(u"Fog");
    blur->SetEnabled(false);
    blur->Properties().StaticValue("radius") = 2.f;
    text_->Effects().Add(blur);
    text_->Effects().Add(EffectInstance::Create(tool::Plugins()->FindPlugin(tool::kDropShadowID)));
    Save("a.xml");
    ExpectLines(Run({"info", "a.xml"}).out, {
                                                "         effect \"Fog\"  Gaussian Blur 1.2.0.0, off\n"
                                                "           radius               float         2\n"
                                                "           3 at their defaults\n"
                                                "         effect \"Drop Shadow\"  Drop Shadow 1.1.0.0, on\n"
                                                "           9 at their defaults\n"
                                                "           hidden in its panel: light, spread",
                                            });
    ExpectLines(Run({"info", "a.xml", "--json"}).out,
                {"{\"kind\":\"effect\",\"layer\":\"" + text_->ID().ToNarrowString() + "\",\"id\":\"" +
                 blur->ID().ToNarrowString() +
                 "\",\"name\":\"Fog\",\"plugin\":\"8e1c4a50-52d7-4f0b-9a61-1d3f70c24e01\",\"plugin_name\":"
                 "\"Gaussian Blur\",\"plugin_version\":\"1.2.0.0\",\"enabled\":false,\"private_bytes\":0,"
                 "\"hidden\":[]}"});
}

} // namespace

} // namespace marlet::test
