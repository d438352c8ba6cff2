#include <tests/support/LayerStage.h>

#include <marlet/foundation/Exceptions.h>
#include <marlet/layers/Abstract3DEffect.h>
#include <marlet/layers/Abstract3DEffectFactory.h>

#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <gmock/gmock.h>

namespace marlet::test
{
namespace
{

class NoEffects : public Abstract3DEffectFactory
{
    std::shared_ptr<Abstract3DEffect> Create(void *, ProjectTextureImageCache &) const override
    {
        return nullptr;
    }
};

std::string Text(const AbstractLayer &layer)
{
    const ProjectTextureImageCache textures;
    return ToUtf8(layer.Serialize(textures));
}

std::shared_ptr<AbstractLayer> Read(const std::string &text)
{
    ProjectTextureImageCache textures;
    return AbstractLayer::CreateFromXml(FromUtf8(text), nullptr, NoEffects(), textures);
}

std::string Replaced(std::string text, const std::string &what, const std::string &by)
{
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return at == std::string::npos ? text : text.replace(at, what.size(), by);
}

/// The text without the first element of that name: it gets another name.
std::string Without(const std::string &text, const std::string &name)
{
    const std::size_t end = text.find("<" + name + " ") == std::string::npos ? 0 : 1;
    return Replaced(Replaced(text, "<" + name + (end ? " " : ">"), "<other" + std::string(end ? " " : ">")),
                    "</" + name + ">", "</other>");
}

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

TEST(LayerXml, WritesChildrenInAFixedOrder)
{
    const auto camera = OddCamera();
    EXPECT_THAT(Text(*camera), testing::StartsWith("<CameraLayer Version=\"0\">\n"
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
    EXPECT_THAT(Text(*OddLight()), testing::StartsWith("<LightLayer Version=\"0\">\n"
                                                       " <LightType>77</LightType>\n"
                                                       " <AutoOrient>1</AutoOrient>\n"
                                                       " <LayerBase Version=\"0\">\n"));
    EXPECT_THAT(Text(*OddPoint()), testing::StartsWith("<PointLayer Version=\"0\">\n"
                                                       " <Dimensions>1</Dimensions>\n"
                                                       " <LayerBase Version=\"0\">\n"));
}

TEST(LayerXml, ReadsWhatItWrote)
{
    const std::shared_ptr<AbstractLayer> layers[] = {OddCamera(), OddLight(), OddPoint()};
    for (const auto &layer : layers) {
        layer->SetSelected(true);
        const std::string text = Text(*layer);
        const auto read = Read(text);
        ASSERT_NE(read, nullptr);
        EXPECT_EQ(Text(*read), text);
        EXPECT_EQ(read->Type(), layer->Type());
        EXPECT_EQ(read->ID(), layer->ID());
        EXPECT_FALSE(read->IsSelected());
    }
}

TEST(LayerXml, StoresIntegersThatSettersRefuse)
{
    const std::string camera =
        Replaced(Text(*OddCamera()), "<AutoOrient>4</AutoOrient>", "<AutoOrient>3</AutoOrient>");
    const auto read = Read(Replaced(camera, "<Dimensions>1</Dimensions>", "<Dimensions>0</Dimensions>"));
    EXPECT_EQ(std::static_pointer_cast<CameraLayer>(read)->AutoOrientation(), AutoOrient{3});
    EXPECT_EQ(read->Dimensions(), LayerDimensions::TwoD);
    read->SetDimensions(LayerDimensions::ThreeD);
    EXPECT_EQ(read->Dimensions(), LayerDimensions::TwoD);
}

TEST(LayerXml, IsNoLayerForAnUnknownTagOrABrokenText)
{
    const std::string text = Text(*OddPoint());
    const std::string lower =
        Replaced(Replaced(text, "<PointLayer", "<pointlayer"), "</PointLayer", "</pointlayer");
    for (const std::string &bad :
         {std::string(), std::string("no XML"), std::string("<Project/>"), lower,
          text.substr(0, text.size() / 2), text + text, "<!DOCTYPE PointLayer>" + text})
        EXPECT_EQ(Read(bad), nullptr) << bad;
    EXPECT_NE(PointLayer::CreateFromXml(FromUtf8(lower)), nullptr);
    EXPECT_THROW(PointLayer::CreateFromXml(FromUtf8(Text(*OddLight()))), XmlParseException);
}

std::string FailureOf(const std::string &text)
{
    try {
        Read(text);
    } catch (const XmlParseException &failure) {
        return failure.what();
    } catch (const InvalidProjectVersionException &) {
        return "version";
    } catch (const ProjectException &failure) {
        return std::to_string(failure.Code()) + " " + failure.Detail();
    } catch (const boost::bad_lexical_cast &) {
        return "boolean";
    } catch (const std::runtime_error &failure) {
        return failure.what();
    }
    return "none";
}

TEST(LayerXml, NeedsItsChildrenAndProperties)
{
    const struct {
        std::string text;
        std::vector<std::string> children;
    } kCases[] = {
        {Text(*OddCamera()), {"Dimensions", "HasDoF", "AutoOrient", "NearClip", "FarClip"}},
        {Text(*OddLight()), {"LightType", "AutoOrient"}},
        {Text(*OddPoint()),
         {"Dimensions", "ID", "Name", "CompID", "ParentLayerID", "StartFrame", "EndFrame", "BlendMode",
          "Visible", "Muted", "Locked", "MotionBlurOn"}},
    };
    for (const auto &c : kCases) {
        for (const std::string &child : c.children)
            EXPECT_EQ(FailureOf(Without(c.text, child)), "Missing element\n" + child);
        const auto layer = Read(c.text);
        const std::vector<NarrowString> names = layer->Animation().PropertyNames();
        for (const NarrowString &name : names)
            EXPECT_EQ(FailureOf(Without(c.text, name)), "9 " + name);
        EXPECT_EQ(FailureOf(Without(c.text, "LayerBase")), "9 " + names.front());
        EXPECT_EQ(FailureOf(Without(c.text, "PropertyManager")), "9 " + names.front());
    }
}

TEST(LayerXml, RefusesNewerVersionsAndMalformedValues)
{
    const std::string text = Text(*OddPoint());
    EXPECT_EQ(FailureOf(Replaced(text, "<PointLayer Version=\"0\"", "<PointLayer Version=\"1\"")), "version");
    EXPECT_EQ(FailureOf(Replaced(text, "<LayerBase Version=\"0\"", "<LayerBase Version=\"1\"")), "version");
    EXPECT_EQ(FailureOf(Replaced(text, "<LayerBase Version=\"0\"", "<LayerBase")),
              "LayerBase is missing attribute Version\n");
    EXPECT_EQ(FailureOf(Replaced(text, "<Muted>0", "<Muted>no")), "boolean");
    EXPECT_EQ(FailureOf(Replaced(text, "<CompID>0", "<CompID>x")), "Cannot construct KyID from string");
    EXPECT_EQ(FailureOf(Replaced(text, "<EndFrame>0", "<EndFrame>x")), "none");
}

TEST(LayerXml, KeepsPropertiesThatTheClassDoesNotKnow)
{
    const auto point = OddPoint();
    point->Animation().CreateProperty("glow", 5, PropertyManager::Type::Animatable, nullptr);
    EXPECT_EQ(Text(*Read(Text(*point))), Text(*point));
}

} // namespace
} // namespace marlet::test
