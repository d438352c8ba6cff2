#include "plugins/Plugins.h"
#include "ToolTest.h"
#include "plugins/Displacement.h"
#include "plugins/PluginManager.h"

#include <marlet/plugins/EffectInstance.h>
#include <marlet/plugins/FilterSurface.h>
#include <marlet/plugins/PluginUIColorWheels.h>
#include <marlet/plugins/PluginUIHistogram.h>

#include <algorithm>
#include <map>
#include <set>

namespace marlet::test
{

namespace
{

using namespace project;
using tool::Displacement;

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

TEST(PluginsTest, KeepTheirIDs)
{
    const std::pair<const char *, const char16_t *> expected[] = {
        {"8e1c4a50-52d7-4f0b-9a61-1d3f70c24e01", u"Gaussian Blur"},
        {"27b9d6e3-0c48-4a95-8f32-6e5a91b4d702", u"Colour Balance"},
        {"f3605b1a-7e24-46cd-b50e-82c914a73b03", u"Levels"},
        {"5d72e08c-1b93-4e6f-a4d8-370be56c2804", u"Drop Shadow"},
        {"b04f9327-68ea-4d31-8c75-f15e09d3a605", u"Displacement"},
        {"14a6c7f9-d350-4b82-971f-40e86b2dc506", u"Cross Dissolve"},
        {"c98e25b4-3f07-4c1d-ae53-7d96f018b207", u"Wipe"},
    };
    for (const auto &[id, name] : expected) {
        const auto plugin = tool::Plugins()->FindPlugin(kytl::KyID::FromString(std::string_view(id)));
        ASSERT_TRUE(plugin) << id;
        EXPECT_EQ(plugin->Name(), name);
    }
    EXPECT_FALSE(tool::Plugins()->FindPlugin(kytl::KyID()));
}

/// Collects what the panels say of themselves.
class PanelReader
{
public:
    void Read(const AbstractPluginUITreeNode &node)
    {
        types.insert(static_cast<int>(node.Type()));
        if (*node.PropertyManagerName() != '\0')
            ++edited[node.PropertyManagerName()];
        if (const auto *wheels = dynamic_cast<const PluginUIColorWheels *>(&node)) {
            const auto &n = wheels->Names();
            for (const auto *name : {&n.shadowsHue, &n.shadowsSaturation, &n.shadowsLightness, &n.midtonesHue,
                                     &n.midtonesSaturation, &n.midtonesLightness, &n.highlightsHue,
                                     &n.highlightsSaturation, &n.highlightsLightness})
                ++edited[*name];
        }
        if (const auto *histogram = dynamic_cast<const PluginUIHistogram *>(&node))
            for (const auto *n : {&histogram->RGBPropertyNames(), &histogram->RedPropertyNames(),
                                  &histogram->GreenPropertyNames(), &histogram->BluePropertyNames(),
                                  &histogram->AlphaPropertyNames()})
                for (const auto *name :
                     {&n->inputBlack, &n->inputWhite, &n->gamma, &n->outputBlack, &n->outputWhite})
                    ++edited[*name];
        for (const auto &child : node.ChildNodes()) {
            EXPECT_EQ(child->ParentNode().get(), &node);
            Read(*child);
        }
    }

    std::set<int> types;
    std::map<std::string, int> edited;
};

TEST(PluginsTest, PanelsEditEveryPropertyOnceAndHaveControlsOfEveryKind)
{
    std::set<int> types;
    for (const auto &id : {tool::kGaussianBlurID, tool::kColorBalanceID, tool::kLevelsID, tool::kDropShadowID,
                           tool::kDisplacementID, tool::kCrossDissolveID, tool::kWipeID}) {
        const auto plugin = tool::Plugins()->FindPlugin(id);
        PanelReader panel;
        panel.Read(*plugin->UITree());
        std::map<std::string, int> expected;
        for (const NarrowString &name : plugin->Properties().PropertyNames())
            expected[name] = 1;
        EXPECT_EQ(panel.edited, expected) << ToUtf8(plugin->Name());
        types.insert(panel.types.begin(), panel.types.end());
    }
    EXPECT_EQ(types.size(), 12u);
}

TEST(PluginsTest, EnlargeFramesByWhatTheyDraw)
{
    const auto blur = NewEffect(tool::kGaussianBlurID);
    PropertyManager &blurring = blur->Properties();
    blurring.KeyFrames("radius").Add(KeyFrame(0, 10.f));
    blurring.KeyFrames("radius").Add(KeyFrame(1000, 20.5f));
    EXPECT_EQ(Margins(*blur, 0), (std::vector{10, 10, 10, 10}));
    EXPECT_EQ(Margins(*blur, 1000), (std::vector{21, 21, 21, 21}));
    blurring.StaticValue("direction") = 2;
    EXPECT_EQ(Margins(*blur, 0), (std::vector{0, 0, 10, 10}));
    blurring.StaticValue("repeatEdges") = true;
    EXPECT_EQ(Margins(*blur, 0), (std::vector{0, 0, 0, 0}));

    // 12 pixels to the right, softened by 5.
    const auto shadow = NewEffect(tool::kDropShadowID);
    shadow->Properties().StaticValue("softness") = 5.f;
    shadow->Properties().StaticValue("angle") = 90.f;
    EXPECT_EQ(Margins(*shadow, 0)[0], 0);
    EXPECT_EQ(Margins(*shadow, 0)[1], 17);

    const auto shift = NewEffect(tool::kDisplacementID);
    shift->Properties().StaticValue("horizontal") = -7.25f;
    EXPECT_EQ(Margins(*shift, 0), (std::vector{8, 8, 20, 20}));
    shift->Properties().StaticValue("edges") = 1;
    EXPECT_EQ(Margins(*shift, 0), (std::vector{0, 0, 0, 0}));

    EXPECT_EQ(Margins(*NewEffect(tool::kLevelsID), 0), (std::vector{0, 0, 0, 0}));
}

TEST(PluginsTest, StayInsideWhateverAFileBringsInTheirProperties)
{
    const auto blur = NewEffect(tool::kGaussianBlurID);
    for (const PropertyValue &odd :
         {PropertyValue(-5.f), PropertyValue(std::numeric_limits<float>::quiet_NaN())}) {
        blur->Properties().StaticValue("radius") = odd;
        EXPECT_EQ(Margins(*blur, 0), (std::vector{0, 0, 0, 0}));
    }
    blur->Properties().StaticValue("radius") = std::numeric_limits<float>::infinity();
    EXPECT_GT(Margins(*blur, 0)[0], 1000);
    // A value of another type counts as none.
    blur->Properties().StaticValue("radius") = kytl::KyID();
    blur->Properties().StaticValue("direction") = 2.5;
    EXPECT_EQ(Margins(*blur, 0), (std::vector{8, 8, 8, 8}));
}

TEST(PluginsTest, TheShadowShowsTheControlsOfALampWhenThereIsOne)
{
    const auto shadow = NewEffect(tool::kDropShadowID);
    EXPECT_FALSE(shadow->PropertyUIState("light").visible);
    shadow->Properties().StaticValue("pointLight") = true;
    shadow->NotifyPropertyChanged("distance");
    EXPECT_FALSE(shadow->PropertyUIState("light").visible);
    shadow->NotifyPropertyChanged("pointLight");
    EXPECT_TRUE(shadow->PropertyUIState("light").visible);
    EXPECT_TRUE(shadow->PropertyUIState("spread").visible);
}

TEST(PluginsTest, TheHandDrawnCurveIsSavedReadAndCopied)
{
    const auto plugin = tool::Plugins()->FindPlugin(tool::kDisplacementID);
    const auto &displacement = dynamic_cast<const Displacement &>(*plugin);
    const auto shift = NewEffect(tool::kDisplacementID);
    EXPECT_TRUE(displacement.PrivateBytes(*shift).empty());
    EXPECT_EQ(shift->Serialize().find(u"InstanceBytes"), WideString::npos);

    Displacement::Response curve;
    for (std::size_t i = 0; i < curve.size(); ++i)
        curve[i] = static_cast<unsigned char>(255 - i);
    displacement.SetResponse(*shift, curve);
    const std::vector<unsigned char> bytes(curve.begin(), curve.end());
    const auto copy = EffectInstance::Copy(shift);
    const auto read = EffectInstance::CreateFromXml(plugin, shift->Serialize(), {});
    EXPECT_EQ(displacement.PrivateBytes(*copy), bytes);
    EXPECT_EQ(displacement.PrivateBytes(*read), bytes);

    // Each has its own.
    displacement.SetResponse(*copy, Displacement::Response{});
    EXPECT_EQ(displacement.PrivateBytes(*shift), bytes);

    unsigned char few[] = {1, 2, 3};
    plugin->DeserializeInstance(read.get(), few, 3);
    EXPECT_EQ(displacement.PrivateBytes(*read), bytes);
}

using PluginsCommandTest = ToolTest;

TEST_F(PluginsCommandTest, PrintsTheTreeAndThePanels)
{
    const std::string out = Run({"plugins"}).out;
    for (const char *line : {
             "\"Root\"  category\n  \"Effects\"  category\n    \"Blur\"  category\n"
             "      \"Gaussian Blur\"  filter, version 1.2.0.0, 8e1c4a50-52d7-4f0b-9a61-1d3f70c24e01\n"
             "        \"Radius\"  slider, property radius, 8, 0 to 500 px, 1 decimal place\n"
             "        \"Direction\"  menu, property direction, 0, 0 \"Both\", 1 \"Horizontal\", 2 "
             "\"Vertical\"\n",
             "\"Light\"  group\n          \"Light at a Point\"  check box, property pointLight, no\n"
             "          \"Position of the Light\"  point, property light, (50, -50), hidden at first\n",
             "\n    \"Wipe\"  transition, version 1.1.0.0, ",
             "colour wheels, properties shadowsHue shadowsSaturation ",
             "histogram, property channel, 0, properties rgbInputBlack ",
         })
        EXPECT_NE(out.find(line), std::string::npos) << line << out;
    const std::string json = Run({"plugins", "--json"}).out;
    for (const char *line : {
             "{\"kind\":\"plugin\",\"depth\":3,\"name\":\"Gaussian Blur\",\"type\":\"filter\",\"id\":"
             "\"8e1c4a50-52d7-4f0b-9a61-1d3f70c24e01\",\"version\":\"1.2.0.0\"}\n",
             "\"type\":\"layer picker\",\"name\":\"Map "
             "Layer\",\"options\":0,\"property\":\"map\",\"default\":"
             "\"00000000-0000-0000-0000-000000000000\"}\n",
             "\"type\":\"angle\",\"name\":\"Angle\",\"options\":0,\"property\":\"angle\",\"default\":135,"
             "\"turns\":true}\n",
         })
        EXPECT_NE(json.find(line), std::string::npos) << line;
}

} // namespace

} // namespace marlet::test
