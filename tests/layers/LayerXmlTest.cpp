#include <tests/support/LayerStage.h>
#include <tests/support/LayerTexts.h>

#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>

#include <gmock/gmock.h>

namespace marlet::test
{
namespace
{

std::shared_ptr<CameraLayer> OddCamera()
{
    auto camera = CameraLayer::Create(u"A & B \u00e4", 1, 2, 3, 4);
    camera->SetDepthOfField(true);
    camera->SetAutoOrientation(AutoOrient::TowardsTarget);
    camera->SetNearClip(0.3f);
    camera->SetFarClip(1e6f);
    camera->SetParentComposition(KyID::FromString("0000000a-0000-0000-0000-000000000000"));
    camera->SetParentLayer(KyID::FromString("0000000b-0000-0000-0000-000000000000"));
    camera->SetStartFrame(-5);
    camera->SetEndFrame(70);
    camera->SetBlendMode(Blend{12});
    camera->SetVisible(false);
    camera->SetMuted(true);
    camera->SetMotionBlur(true);
    SetAt(*camera, "zoom", 40, 50.f);
    Set(*camera, "target", Point{1, 2, 3});
    return camera;
}

std::shared_ptr<LightLayer> OddLight()
{
    auto light = LightLayer::Create(u"", LightLayer::LightType{77});
    light->SetAutoOrientation(AutoOrient::AlongPath);
    light->SetLocked(true);
    return light;
}

std::shared_ptr<PointLayer> OddPoint()
{
    auto point = PointLayer::Create(u"Point");
    point->SetDimensions(LayerDimensions::ThreeD);
    return point;
}

std::shared_ptr<GradeLayer> OddGrade()
{
    auto grade = GradeLayer::Create(u"Grade", 1920, -7);
    grade->SetDimensions(LayerDimensions::ThreeD);
    grade->Masks().Add(Mask::Create(u"Round"));
    SetAt(*grade, "opacity", -40, 50.f);
    return grade;
}

std::shared_ptr<TextLayer> OddText()
{
    auto text = TextLayer::Create(u"Text", 640, 361);
    text->SetMaxX(0.1f);
    const auto &format = text->TextFormat(u"Serif", u"", 12, {}, {}, 1, 2, 3);
    text->Text().Append(TextLayer::CreateCharToken(u'a', format, {}));
    text->Masks().Add(Mask::Create(u"Round"));
    text->SetMuted(true);
    return text;
}

std::shared_ptr<Effect3DLayer> OddBall()
{
    return Effect3DLayer::Create(std::make_shared<PlainBall>("red"), u"Ball");
}

TEST(LayerXml, WritesChildrenInAFixedOrder)
{
    const auto camera = OddCamera();
    EXPECT_THAT(TextOf(*camera),
                testing::StartsWith("<CameraLayer Version=\"0\">\n"
                                    " <Dimensions>1</Dimensions>\n"
                                    " <HasDoF>1</HasDoF>\n"
                                    " <AutoOrient>4</AutoOrient>\n"
                                    " <NearClip>0.300000012</NearClip>\n"
                                    " <FarClip>1000000</FarClip>\n"
                                    " <LayerBase Version=\"0\">\n"
                                    "  <ID>" +
                                    camera->ID().ToNarrowString() +
                                    "</ID>\n"
                                    "  <Name>A &amp; B \u00e4</Name>\n"
                                    "  <CompID>0000000a-0000-0000-0000-000000000000</CompID>\n"
                                    "  <ParentLayerID>0000000b-0000-0000-0000-000000000000"
                                    "</ParentLayerID>\n"
                                    "  <StartFrame>-5</StartFrame>\n"
                                    "  <EndFrame>70</EndFrame>\n"
                                    "  <BlendMode>12</BlendMode>\n"
                                    "  <Visible>0</Visible>\n"
                                    "  <Muted>1</Muted>\n"
                                    "  <Locked>0</Locked>\n"
                                    "  <MotionBlurOn>1</MotionBlurOn>\n"
                                    "  <PropertyManager Version=\"0\">\n"));
    EXPECT_THAT(TextOf(*OddLight()), testing::StartsWith("<LightLayer Version=\"0\">\n"
                                                         " <LightType>77</LightType>\n"
                                                         " <AutoOrient>1</AutoOrient>\n"
                                                         " <LayerBase Version=\"0\">\n"));
    EXPECT_THAT(TextOf(*OddPoint()), testing::StartsWith("<PointLayer Version=\"0\">\n"
                                                         " <Dimensions>1</Dimensions>\n"
                                                         " <LayerBase Version=\"0\">\n"));
    EXPECT_THAT(TextOf(*OddGrade()), testing::StartsWith("<GradeLayer Version=\"0\">\n"
                                                         " <Dimensions>1</Dimensions>\n"
                                                         " <Width>1920</Width>\n"
                                                         " <Height>-7</Height>\n"
                                                         " <Effects/>\n"
                                                         " <Masks>\n"
                                                         "  <Mask Version=\"0\">\n"));
    EXPECT_THAT(TextOf(*OddText()), testing::StartsWith("<TextLayer Version=\"1\">\n"
                                                        " <Dimensions>0</Dimensions>\n"
                                                        " <MinX>-320</MinX>\n"
                                                        " <MaxX>0.100000001</MaxX>\n"
                                                        " <MinY>-180.5</MinY>\n"
                                                        " <MaxY>180.5</MaxY>\n"
                                                        " <Tokens>\n"));
    EXPECT_THAT(TextOf(*OddText()), testing::HasSubstr(" </Formats>\n"
                                                       " <Effects/>\n"
                                                       " <Masks>\n"
                                                       "  <Mask Version=\"0\">\n"));
    EXPECT_THAT(TextOf(*OddText()), testing::HasSubstr(" </Masks>\n"
                                                       " <LayerBase Version=\"0\">\n"));
}

TEST(LayerXml, ReadsWhatItWrote)
{
    const std::shared_ptr<AbstractLayer> layers[] = {OddCamera(), OddLight(), OddPoint(),
                                                     OddGrade(),  OddText(),  OddBall()};
    for (const auto &layer : layers) {
        layer->SetSelected(true);
        const std::string text = TextOf(*layer);
        const auto read = ReadLayer(text);
        ASSERT_NE(read, nullptr);
        EXPECT_EQ(TextOf(*read), text);
        EXPECT_EQ(read->Type(), layer->Type());
        EXPECT_EQ(read->ID(), layer->ID());
        EXPECT_FALSE(read->IsSelected());
    }
}

TEST(LayerXml, StoresIntegersThatSettersRefuse)
{
    const std::string camera =
        Replaced(TextOf(*OddCamera()), "<AutoOrient>4</AutoOrient>", "<AutoOrient>3</AutoOrient>");
    const auto read = ReadLayer(Replaced(camera, "<Dimensions>1</Dimensions>", "<Dimensions>0</Dimensions>"));
    EXPECT_EQ(std::static_pointer_cast<CameraLayer>(read)->AutoOrientation(), AutoOrient{3});
    EXPECT_EQ(read->Dimensions(), LayerDimensions::TwoD);
    read->SetDimensions(LayerDimensions::ThreeD);
    EXPECT_EQ(read->Dimensions(), LayerDimensions::TwoD);

    const std::string text = Replaced(TextOf(*OddText()), "<MinX>-320</MinX>", "<MinX>320</MinX>");
    const auto crossed = std::static_pointer_cast<TextLayer>(ReadLayer(text));
    EXPECT_EQ(crossed->MinX(), 320);
    EXPECT_EQ(crossed->MaxX(), 0.1f);
    for (const auto &layer : {TextOf(*OddText()), TextOf(*OddGrade())}) {
        const std::size_t at = layer.find("<Dimensions>") + 12;
        EXPECT_EQ(ReadLayer(std::string(layer).replace(at, 1, "2"))->Dimensions(),
                  LayerDimensions::ThreeDContent);
    }
}

TEST(LayerXml, IsNoLayerForAnUnknownTagOrABrokenText)
{
    const std::string text = TextOf(*OddPoint());
    const std::string lower =
        Replaced(Replaced(text, "<PointLayer", "<pointlayer"), "</PointLayer", "</pointlayer");
    for (const std::string &bad :
         {std::string(), std::string("no XML"), std::string("<Project/>"), lower,
          text.substr(0, text.size() / 2), text + text, "<!DOCTYPE PointLayer>" + text})
        EXPECT_EQ(ReadLayer(bad), nullptr) << bad;
    EXPECT_NE(PointLayer::CreateFromXml(FromUtf8(lower)), nullptr);
    EXPECT_THROW(PointLayer::CreateFromXml(FromUtf8(TextOf(*OddLight()))), XmlParseException);
}

/// Leaves the properties of masks alone, which have the same names.
std::string WithoutProperty(const std::string &text, const std::string &name)
{
    const std::size_t base = text.find("<LayerBase");
    return text.substr(0, base) + Without(text.substr(base), name);
}

TEST(LayerXml, NeedsItsChildrenAndProperties)
{
    const struct {
        std::string text;
        std::vector<std::string> children;
    } kCases[] = {
        {TextOf(*OddCamera()), {"Dimensions", "HasDoF", "AutoOrient", "NearClip", "FarClip"}},
        {TextOf(*OddLight()), {"LightType", "AutoOrient"}},
        {TextOf(*OddPoint()),
         {"Dimensions", "ID", "Name", "CompID", "ParentLayerID", "StartFrame", "EndFrame", "BlendMode",
          "Visible", "Muted", "Locked", "MotionBlurOn"}},
        {TextOf(*OddGrade()), {"Dimensions", "Width", "Height"}},
        {TextOf(*OddText()), {"Dimensions", "MinX", "MaxX", "MinY", "MaxY", "Tokens", "Formats"}},
        {TextOf(*OddBall()), {}},
    };
    for (const auto &c : kCases) {
        for (const std::string &child : c.children)
            EXPECT_EQ(FailureOf(Without(c.text, child)), "Missing element\n" + child);
        const auto layer = ReadLayer(c.text);
        const std::vector<NarrowString> names = layer->Animation().PropertyNames();
        for (const NarrowString &name : names)
            EXPECT_EQ(FailureOf(WithoutProperty(c.text, name)), "9 " + name);
        EXPECT_EQ(FailureOf(Without(c.text, "LayerBase")), "9 " + names.front());
        EXPECT_EQ(FailureOf(WithoutProperty(c.text, "PropertyManager")), "9 " + names.front());
    }
}

TEST(LayerXml, RefusesNewerVersionsAndMalformedValues)
{
    const std::string text = TextOf(*OddPoint());
    EXPECT_EQ(FailureOf(Replaced(text, "<PointLayer Version=\"0\"", "<PointLayer Version=\"1\"")), "version");
    EXPECT_EQ(FailureOf(Replaced(TextOf(*OddGrade()), "Version=\"0\"", "Version=\"1\"")), "version");
    EXPECT_EQ(FailureOf(Replaced(TextOf(*OddText()), "Version=\"1\"", "Version=\"2\"")), "version");
    EXPECT_EQ(FailureOf(Replaced(text, "<LayerBase Version=\"0\"", "<LayerBase Version=\"1\"")), "version");
    EXPECT_EQ(FailureOf(Replaced(text, "<LayerBase Version=\"0\"", "<LayerBase")),
              "LayerBase is missing attribute Version\n");
    EXPECT_EQ(FailureOf(Replaced(text, "<Muted>0", "<Muted>no")), "boolean");
    EXPECT_EQ(FailureOf(Replaced(text, "<CompID>0", "<CompID>x")), "Cannot construct KyID from string");
    EXPECT_EQ(FailureOf(Replaced(text, "<EndFrame>0", "<EndFrame>x")), "none");
}

TEST(LayerXml, DoesWithoutMasksAndEffects)
{
    for (const std::string &text : {TextOf(*OddText()), TextOf(*OddGrade())}) {
        const std::string bare = Without(Replaced(text, "<Effects/>", "<other/>"), "Masks");
        EXPECT_THAT(TextOf(*ReadLayer(bare)), testing::HasSubstr(" <Effects/>\n <Masks/>\n <LayerBase"));
    }
}

TEST(LayerXml, KeepsPropertiesThatTheClassDoesNotKnow)
{
    const auto point = OddPoint();
    point->Animation().CreateProperty("glow", 5, PropertyManager::Type::Animatable, nullptr);
    EXPECT_EQ(TextOf(*ReadLayer(TextOf(*point))), TextOf(*point));
}

} // namespace
} // namespace marlet::test
