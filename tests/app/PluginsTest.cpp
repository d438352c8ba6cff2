#include "plugins/Plugins.h"
#include "ToolTest.h"
#include "plugins/PluginManager.h"

#include <marlet/plugins/AbstractPlugin2D.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/plugins/FilterSurface.h>

#include <limits>

namespace marlet::test
{

namespace
{

std::shared_ptr<EffectInstance> NewEffect(const kytl::KyID &plugin)
{
    return EffectInstance::Create(tool::Plugins()->FindPlugin(plugin));
}

/// Left, right, top, bottom.
std::vector<int> Margins(EffectInstance &effect, int time)
{
    std::vector<int> margins(4, -1);
    FilterSurface surface;
    dynamic_cast<AbstractPlugin2D &>(*effect.Plugin())
        .FilterMargins(&effect, &surface, 640, 360, 1, 0, false, time, &margins[0], &margins[1], &margins[2],
                       &margins[3]);
    return margins;
}

TEST(PluginsTest, EnlargeFramesByWhatTheyDraw)
{
    const auto blur = NewEffect(tool::kGaussianBlurID);
    PropertyManager &blurring = blur->Properties();
    blurring.KeyFrames("radius").Add(KeyFrame(0, 10.f));
    blurring.KeyFrames("radius").Add(KeyFrame(1000, 20.5f));
    EXPECT_EQ(Margins(*blur, 1000), (std::vector{21, 21, 21, 21}));
    blurring.StaticValue("direction") = 2;
    EXPECT_EQ(Margins(*blur, 0), (std::vector{0, 0, 10, 10}));

    // 12 pixels to the right, softened by 5.
    const auto shadow = NewEffect(tool::kDropShadowID);
    shadow->Properties().StaticValue("softness") = 5.f;
    shadow->Properties().StaticValue("angle") = 90.f;
    EXPECT_EQ(Margins(*shadow, 0)[0], 0);
    EXPECT_EQ(Margins(*shadow, 0)[1], 17);

    const auto shift = NewEffect(tool::kDisplacementID);
    shift->Properties().StaticValue("horizontal") = -7.25f;
    EXPECT_EQ(Margins(*shift, 0), (std::vector{8, 8, 20, 20}));
}

TEST(PluginsTest, StayInsideWhateverAFileBringsInTheirProperties)
{
    const auto blur = NewEffect(tool::kGaussianBlurID);
    blur->Properties().StaticValue("radius") = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(Margins(*blur, 0), (std::vector{0, 0, 0, 0}));
    blur->Properties().StaticValue("radius") = std::numeric_limits<float>::infinity();
    EXPECT_GT(Margins(*blur, 0)[0], 1000);
    // A value of another type counts as none.
    blur->Properties().StaticValue("radius") = kytl::KyID();
    EXPECT_EQ(Margins(*blur, 0), (std::vector{8, 8, 8, 8}));
}

TEST(PluginsTest, TheShadowShowsTheControlsOfALampWhenThereIsOne)
{
    const auto shadow = NewEffect(tool::kDropShadowID);
    shadow->Properties().StaticValue("pointLight") = true;
    shadow->NotifyPropertyChanged("distance");
    EXPECT_FALSE(shadow->PropertyUIState("light").visible);
    shadow->NotifyPropertyChanged("pointLight");
    EXPECT_TRUE(shadow->PropertyUIState("light").visible);
}

using PluginsCommandTest = ToolTest;

TEST_F(PluginsCommandTest, PrintsTheTreeAndThePanels)
{
    const std::string out = Run({"plugins"}).out;
    for (const char *line : {
             "\"Root\"  category\n  \"Effects\"  category\n    \"Blur\"  category\n"
             "      \"Gaussian Blur\"  filter, version 1.2.0.0, 8e1c4a50-52d7-4f0b-9a61-1d3f70c24e01\n"
             "        \"Radius\"  slider, property radius, 8, 0 to 500 px, 1 decimal place\n"
             "        \"Direction\"  menu, property direction, 0, 0 \"Both\", ",
             "\"Light\"  group\n          \"Light at a Point\"  check box, property pointLight, no\n"
             "          \"Position of the Light\"  point, property light, (50, -50), hidden at first\n",
         })
        EXPECT_THAT(out, testing::HasSubstr(line));
    EXPECT_THAT(Run({"plugins", "--json"}).out,
                testing::HasSubstr("\"type\":\"angle\",\"name\":\"Angle\",\"options\":0,\"property\":"
                                   "\"angle\",\"default\":135,\"turns\":true}\n"));
}

} // namespace

} // namespace marlet::test
