#include "ToolTest.h"

#include <limits>

namespace marlet::test
{

namespace
{

using ValueTest = ToolTest;
using MatrixTest = ToolTest;

TEST_F(ValueTest, WritesTypesAndValuesWithAllTheirDigits)
{
    const struct {
        PropertyValue value;
        const char *type;
        const char *json;
        const char *text;
    } cases[] = {
        {-7, "int32_t", "-7", "-7"},
        {static_cast<unsigned char>(200), "uint8_t", "200", "200"},
        {0.1f, "float", "0.100000001", "0.1"},
        {0.1, "double", "0.10000000000000001", "0.1"},
        {std::numeric_limits<float>::infinity(), "float", "\"inf\"", "inf"},
        {std::numeric_limits<double>::quiet_NaN(), "double", "\"nan\"", "nan"},
        {true, "bool", "true", "yes"},
        {Scale3D{100, 50.5, 25}, "Scale3D", "[100,50.5,25]", "(100, 50.5, 25)"},
        {kytl::matl::KyPoint<3, float>{1, 2, 1e20f}, "KyPoint3_32f", "[1,2,1.00000002e+20]", "(1, 2, 1e+20)"},
    };
    for (const auto &row : cases) {
        PropertyManager properties;
        properties.CreateProperty("value", row.value, PropertyManager::Type::Animatable, nullptr);
        Write("properties.xml", ToUtf8(properties.Serialize()));
        EXPECT_EQ(Run({"value", "properties.xml", "--property=value", "--times=-3", "--json"}).out,
                  std::string("{\"time\":-3,\"type\":\"") + row.type + "\",\"value\":" + row.json + "}\n");
        EXPECT_THAT(Run({"value", "properties.xml", "--property=value", "--times=-3"}).out,
                    testing::EndsWith(std::string(" ") + row.text + "\n"));
    }
}

TEST_F(ValueTest, NamesWhatItDoesNotFind)
{
    AddPoint(u"Twin");
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
    EXPECT_EQ(Run({"value", "alone.xml", "--property=p", "--times=0"}).err,
              "marlet: alone.xml: There is no property \"p\"\n");
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
    KeyFrameList &keys = AddPoint(u"Mover")->Animation().KeyFrames("position");
    keys.Add(KeyFrame(0, kytl::matl::KyPoint<3, float>{0, 0, 0}));
    keys.Add(KeyFrame(80, kytl::matl::KyPoint<3, float>{8, 0, 0}));
    Save("a.xml");
    for (const char *when : {"--frames=-1..1", "--times=-40,0,40"})
        EXPECT_EQ(Run({"matrix", "a.xml", "--composition=Main", "--layer=Mover", when, "--json"}).out,
                  "{\"frame\":-1,\"time\":-40,\"matrix\":[1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1]}\n"
                  "{\"frame\":0,\"time\":0,\"matrix\":[1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1]}\n"
                  "{\"frame\":1,\"time\":40,\"matrix\":[1,0,0,4,0,1,0,0,0,0,1,0,0,0,0,1]}\n");
}

TEST_F(MatrixTest, AParentThatIsMissingOrRunsInACircleIsAFailure)
{
    AddPoint(u"Lost")->SetParentLayer(kytl::KyID::Generate());
    const auto ring = AddPoint(u"Ring");
    ring->SetParentLayer(ring);
    Save("a.xml");
    for (const std::string layer : {"Lost", "Ring"})
        EXPECT_THAT(Run({"matrix", "a.xml", "--composition=Main", "--layer", layer, "--frames=0"}).err,
                    testing::MatchesRegex("marlet: a.xml: .*" + layer + ".*\n"));
}

} // namespace

} // namespace marlet::test
