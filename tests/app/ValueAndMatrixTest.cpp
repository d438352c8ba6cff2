#include "ToolTest.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/project/CompositionAsset.h>

#include <limits>

namespace marlet::test
{

namespace
{

using namespace project;
using ValueTest = ToolTest;
using MatrixTest = ToolTest;

constexpr float kInfinity = std::numeric_limits<float>::infinity();

TEST_F(ValueTest, WritesEveryAlternativeWithAllItsDigits)
{
    const struct {
        PropertyValue value;
        const char *type;
        const char *json;
        const char *text;
    } cases[] = {
        {-7, "int32_t", "-7", "-7"},
        {7u, "uint32_t", "7", "7"},
        {static_cast<unsigned char>(200), "uint8_t", "200", "200"},
        {0.1f, "float", "0.100000001", "0.1"},
        {0.1, "double", "0.10000000000000001", "0.1"},
        {kInfinity, "float", "\"inf\"", "inf"},
        {-kInfinity, "float", "\"-inf\"", "-inf"},
        {std::numeric_limits<double>::quiet_NaN(), "double", "\"nan\"", "nan"},
        {true, "bool", "true", "yes"},
        {Scale3D{100, 50.5, 25}, "Scale3D", "[100,50.5,25]", "(100, 50.5, 25)"},
        {Orientation3D{1, 2, 3}, "Orientation3D", "[1,2,3]", "(1, 2, 3)"},
        {kytl::KyColorRGBA_32f{1, 0, 0.5f, 1}, "MarletColor", "[1,0,0.5,1]", "(1, 0, 0.5, 1)"},
        {kytl::matl::KyPoint<2, float>{1, 2}, "KyPoint2_32f", "[1,2]", "(1, 2)"},
        {kytl::matl::KyPoint<3, float>{1, 2, 1e20f}, "KyPoint3_32f", "[1,2,1.00000002e+20]", "(1, 2, 1e+20)"},
        {kytl::matl::KyVector<2, float>{1, 2}, "KyVector2_32f", "[1,2]", "(1, 2)"},
        {kytl::matl::KyVector<3, float>{1, 2, 3}, "KyVector3_32f", "[1,2,3]", "(1, 2, 3)"},
        {kytl::KyID(), "KyID", "\"00000000-0000-0000-0000-000000000000\"",
         "00000000-0000-0000-0000-000000000000"},
    };
    for (const auto &row : cases) {
        PropertyManager properties;
        properties.CreateProperty("value", row.value, PropertyManager::Type::Animatable, nullptr);
        Write("properties.xml", ToUtf8(properties.Serialize()));
        EXPECT_EQ(Run({"value", "properties.xml", "--property=value", "--times=-3", "--json"}).out,
                  std::string("{\"time\":-3,\"type\":\"") + row.type + "\",\"value\":" + row.json + "}\n");
        const std::string text = Run({"value", "properties.xml", "--property=value", "--times=-3"}).out;
        EXPECT_NE(text.find(std::string(" ") + row.type + " "), std::string::npos) << text;
        EXPECT_EQ(text.substr(text.size() - std::string(row.text).size() - 2),
                  std::string(" ") + row.text + "\n");
    }
}

TEST_F(ValueTest, FollowsTheKeyFramesOfALayer)
{
    KeyFrameList &keys = AddPoint(u"Ünit", {})->Animation().KeyFrames("rotationZ");
    keys.Add(KeyFrame(0, 10.f));
    keys.Add(KeyFrame(100, 20.f));
    Save("a.xml");
    const ToolRun run = Run({"value", "a.xml", "--composition=Main", "--layer=Ünit", "--property=rotationZ",
                             "--times=-5,25..26,200", "--json"});
    EXPECT_EQ(run.out, "{\"time\":-5,\"type\":\"float\",\"value\":10}\n"
                       "{\"time\":25,\"type\":\"float\",\"value\":12.5}\n"
                       "{\"time\":26,\"type\":\"float\",\"value\":12.6000004}\n"
                       "{\"time\":200,\"type\":\"float\",\"value\":20}\n");
}

TEST_F(ValueTest, NamesWhatItDoesNotFind)
{
    AddPoint(u"Twin", {});
    const auto second = AddPoint(u"Twin", {7, 0, 0});
    Save("a.xml");
    const auto value = [&](const std::string &composition, const std::string &layer,
                           const std::string &property) {
        return Run({"value", "a.xml", "--composition", composition, "--layer", layer, "--property", property,
                    "--times=0", "--json"});
    };
    EXPECT_EQ(value("Other", "Twin", "position").err,
              "marlet: a.xml: There is no composition \"Other\", only \"Main\"\n");
    EXPECT_EQ(value("Main", "Single", "position").err,
              "marlet: a.xml: There is no layer \"Single\", only \"Twin\", \"Twin\"\n");
    EXPECT_EQ(value("Main", "Twin", "position").err,
              "marlet: a.xml: There are 2 layers of the name \"Twin\": give the ID\n");
    const std::string id = second->ID().ToNarrowString();
    EXPECT_EQ(value("Main", id, "size").err,
              "marlet: a.xml: There is no property \"size\", only \"anchorPoint\", \"position\", \"scale\", "
              "\"scaleLinked\", \"orientation\", \"rotationX\", \"rotationY\", \"rotationZ\"\n");
    EXPECT_EQ(value(composition_->ID().ToNarrowString(), id, "position").out,
              "{\"time\":0,\"type\":\"KyPoint3_32f\",\"value\":[7,0,0]}\n");
}

TEST_F(ValueTest, NamesAFewOfManyLayers)
{
    for (int i = 1; i <= 22; ++i)
        AddPoint(FromUtf8("L" + std::to_string(i)), {});
    Save("a.xml");
    const std::string error = Run({"matrix", "a.xml", "--composition=Main", "--layer=l1", "--frames=0"}).err;
    EXPECT_NE(error.find("There is no layer \"l1\", only \"L1\", \"L2\", "), std::string::npos) << error;
    EXPECT_NE(error.find(", \"L20\" and 2 more\n"), std::string::npos) << error;
}

TEST_F(ValueTest, ReadsPropertiesThatStandAloneAndTellsWhatIsWrongWithThem)
{
    Write("alone.xml", "<PropertyManager Version=\"0\"/>");
    Write("newer.xml", "<PropertyManager Version=\"1\"/>");
    Write("other.xml", "<Layer/>");
    const auto error = [&](const std::string &file) {
        return Run({"value", file, "--property=p", "--times=0"}).err;
    };
    EXPECT_EQ(error("alone.xml"), "marlet: alone.xml: There is no property \"p\"\n");
    EXPECT_EQ(error("newer.xml"), "marlet: newer.xml: The project file was saved by a newer version of the "
                                  "application than this one.\n");
    EXPECT_EQ(error("other.xml"), "marlet: other.xml: Wrong tag name: Project\n");
    EXPECT_EQ(Run({"value", "alone.xml", "--property=p", "--times=0", "--layer=L"}).exitCode, 2);
}

/// A parent that moves everything by (10, 20, 30) and doubles it, with a child at (1, 2, 3) whose anchor is
/// (4, 5, 6): world = T(10, 20, 30) S(2) T(1, 2, 3) T(-4, -5, 6).
TEST_F(MatrixTest, TellsTheKindsApart)
{
    const auto parent = AddPoint(u"Parent", {10, 20, 30});
    parent->Animation().StaticValue("scale") = Scale3D{200, 200, 200};
    const auto child = AddPoint(u"Child", {1, 2, 3});
    child->Animation().StaticValue("anchorPoint") = kytl::matl::KyPoint<3, float>{4, 5, 6};
    child->SetParentLayer(parent);
    child->SetStartFrame(2);
    Save("a.xml");
    const struct {
        const char *kind;
        const char *matrix;
    } cases[] = {
        {"world", "2,0,0,4,0,2,0,14,0,0,2,48,0,0,0,1"},
        {"parenting", "2,0,0,4,0,2,0,14,0,0,2,48,0,0,0,1"},
        {"set-parent", "2,0,0,4,0,2,0,14,0,0,2,48,0,0,0,1"},
        {"transformation", "1,0,0,1,0,1,0,2,0,0,1,3,0,0,0,1"},
        {"origin", "1,0,0,-4,0,1,0,-5,0,0,1,6,0,0,0,1"},
        {"parent", "2,0,0,10,0,2,0,20,0,0,2,30,0,0,0,1"},
    };
    for (const auto &row : cases)
        // Frame 5 is three frames of 40 ms behind the layer's start.
        EXPECT_EQ(Run({"matrix", "a.xml", "--composition=Main", "--layer=Child", "--frames=5", "--json",
                       std::string("--kind=") + row.kind})
                      .out,
                  std::string("{\"frame\":5,\"time\":120,\"matrix\":[") + row.matrix + "]}\n")
            << row.kind;
}

TEST_F(MatrixTest, TakesFramesRangesAndTimesOnBothSidesOfTheStart)
{
    KeyFrameList &keys = AddPoint(u"Mover", {})->Animation().KeyFrames("position");
    keys.Add(KeyFrame(0, kytl::matl::KyPoint<3, float>{0, 0, 0}));
    keys.Add(KeyFrame(80, kytl::matl::KyPoint<3, float>{8, 0, 0}));
    Save("a.xml");
    const std::vector<std::string> byFrame =
        Run({"matrix", "a.xml", "--composition=Main", "--layer=Mover", "--frames=-1..1,3", "--json"})
            .OutLines();
    const std::vector<std::string> byTime =
        Run({"matrix", "a.xml", "--composition=Main", "--layer=Mover", "--times=-40,0,40,120", "--json"})
            .OutLines();
    ASSERT_EQ(byFrame.size(), 4u);
    EXPECT_EQ(byFrame, byTime);
    EXPECT_EQ(byFrame[0], "{\"frame\":-1,\"time\":-40,\"matrix\":[1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1]}");
    EXPECT_EQ(byFrame[2], "{\"frame\":1,\"time\":40,\"matrix\":[1,0,0,4,0,1,0,0,0,0,1,0,0,0,0,1]}");
    EXPECT_EQ(byFrame[3], "{\"frame\":3,\"time\":120,\"matrix\":[1,0,0,8,0,1,0,0,0,0,1,0,0,0,0,1]}");
}

TEST_F(MatrixTest, AvoidsAScaleOfZeroOnRequest)
{
    AddPoint(u"Flat", {})->Animation().StaticValue("scale") = Scale3D{100, 0, 100};
    Save("a.xml");
    const std::vector<std::string> words = {"matrix",       "a.xml",     "--composition=Main",
                                            "--layer=Flat", "--times=0", "--kind=transformation"};
    std::vector<std::string> avoiding = words;
    avoiding.push_back("--avoid-zero-scale");
    EXPECT_EQ(Run(words).OutLines().at(2), "             0             0             0             0");
    EXPECT_EQ(Run(avoiding).OutLines().at(2), "             0         1e-05             0             0");
}

TEST_F(MatrixTest, AParentThatIsMissingOrRunsInACircleIsAFailure)
{
    const auto lost = AddPoint(u"Lost", {});
    lost->SetParentLayer(kytl::KyID::Generate());
    const auto ring = AddPoint(u"Ring", {});
    ring->SetParentLayer(ring->ID());
    Save("a.xml");
    for (const char *layer : {"Lost", "Ring"}) {
        const ToolRun run = Run({"matrix", "a.xml", "--composition=Main", "--layer", layer, "--frames=0"});
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.err.find("marlet: a.xml: "), 0u);
        EXPECT_NE(run.err.find(layer), std::string::npos) << run.err;
    }
}

} // namespace

} // namespace marlet::test
