#include <tests/support/LayerStage.h>
#include <tests/support/LayerTexts.h>
#include <tests/support/TestDocuments.h>

#include <marlet/layers/TextLayer.h>

#include <fstream>
#include <iterator>

namespace marlet::test
{
namespace
{

std::string Document(const std::string &layer, int version)
{
    const std::string path =
        std::string(MARLET_TEST_DOCUMENTS) + "/layers/" + layer + "-" + std::to_string(version) + ".xml";
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(LayerXml, IsReadInAnyVersionAndWrittenInTheNewest)
{
    for (const auto &[layer, newest] : {std::pair("AssetLayer", 2),
                                        {"CameraLayer", 0},
                                        {"LightLayer", 0},
                                        {"TextLayer", 1},
                                        {"Effect3DLayer", 1}}) {
        const std::string expected = Document(layer, newest);
        ASSERT_FALSE(expected.empty());
        for (int version = 0; version <= newest; ++version)
            EXPECT_EQ(TextOf(*ReadLayer(Document(layer, version))), expected) << layer << " " << version;
    }
}

TEST(LayerXml, HasPropertiesByItsVersion)
{
    for (const std::string layer : {"AssetLayer", "TextLayer", "Effect3DLayer"}) {
        const std::string old = Document(layer, 0);
        EXPECT_FALSE(ReadLayer(old)->Animation().CanAnimate("castShadowsIfLayerDisabled"));
        // One that came later but stands in an older element is kept as it is.
        const std::string early = Replaced(TextOf(*ReadLayer(old)), "<" + layer + " Version=\"",
                                           "<" + layer + " Version=\"0\" Written=\"");
        EXPECT_EQ(TextOf(*ReadLayer(early)), TextOf(*ReadLayer(old)));
        // What is missing of both versions counts first.
        EXPECT_EQ(FailureOf(Replaced(old, "Version=\"0\"", "Version=\"1\"")), "9 shadowColor");
        EXPECT_EQ(FailureOf(Without(Replaced(old, "Version=\"0\"", "Version=\"1\""), "matEmissiveColor")),
                  "9 matEmissiveColor");
    }
    const std::string asset = Document("AssetLayer", 2);
    EXPECT_EQ(FailureOf(Without(asset, "AssetHadVideo")), "Missing element\nAssetHadVideo");
    EXPECT_EQ(FailureOf(Without(Without(asset, "AssetHadVideo"), "PromoteLights")),
              "Missing element\nPromoteLights");
}

TEST(LayerXml, StoresIntegersThatSettersRefuse)
{
    const std::string camera = Replaced(Document("CameraLayer", 0), "<AutoOrient>4", "<AutoOrient>3");
    const auto read = ReadLayer(Replaced(camera, "<Dimensions>1", "<Dimensions>0"));
    EXPECT_EQ(std::static_pointer_cast<CameraLayer>(read)->AutoOrientation(), AutoOrient{3});
    read->SetDimensions(LayerDimensions::ThreeD);
    EXPECT_EQ(read->Dimensions(), LayerDimensions::TwoD);

    const std::string text = TextOf(*TextLayer::Create(u"", 640, 360));
    const auto crossed = std::static_pointer_cast<TextLayer>(
        ReadLayer(Replaced(Replaced(text, "<MinX>-320", "<MinX>500"), "<Dimensions>0", "<Dimensions>2")));
    EXPECT_EQ(crossed->MinX(), 500);
    EXPECT_EQ(crossed->MaxX(), 320);
    EXPECT_EQ(crossed->Dimensions(), LayerDimensions::ThreeDContent);
    const std::string asset = Replaced(Document("AssetLayer", 2), "<AssetType>3", "<AssetType>0");
    EXPECT_EQ(ReadLayer(asset)->Dimensions(), LayerDimensions::ThreeDContent);
}

TEST(LayerXml, IsNoLayerForAnUnknownTagOrABrokenText)
{
    const std::string text = TextOf(*PointLayer::Create(u""));
    const std::string lower =
        Replaced(Replaced(text, "<PointLayer", "<pointlayer"), "</PointLayer", "</pointlayer");
    for (const std::string &bad : {std::string("<Project/>"), lower, text.substr(0, text.size() / 2),
                                   text + text, "<!DOCTYPE PointLayer>" + text})
        EXPECT_EQ(ReadLayer(bad), nullptr) << bad;
    EXPECT_NE(PointLayer::CreateFromXml(FromUtf8(lower)), nullptr);
    EXPECT_THROW(PointLayer::CreateFromXml(FromUtf8(Document("LightLayer", 0))), XmlParseException);
}

} // namespace
} // namespace marlet::test
