#include <tests/support/LayerStage.h>
#include <tests/support/LayerTexts.h>

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

TEST(LayerVersions, AreReadAndWrittenInTheNewest)
{
    const struct {
        std::string layer;
        int newest;
    } kCases[] = {{"TextLayer", 1}, {"Effect3DLayer", 1}};
    for (const auto &[layer, newest] : kCases) {
        const std::string expected = Document(layer, newest);
        ASSERT_FALSE(expected.empty());
        for (int version = 0; version <= newest; ++version) {
            const auto read = ReadLayer(Document(layer, version));
            ASSERT_NE(read, nullptr);
            EXPECT_EQ(TextOf(*read), expected) << layer << " " << version;
        }
    }
}

TEST(LayerVersions, BringShadowsOfDisabledLayersAndTheirColour)
{
    for (const std::string layer : {"TextLayer", "Effect3DLayer"}) {
        const std::string old = Document(layer, 0);
        EXPECT_EQ(Get<kytl::KyColorRGBA_32f>(*ReadLayer(old), "shadowColor"),
                  (kytl::KyColorRGBA_32f{0, 0, 0, 1}));
        EXPECT_FALSE(ReadLayer(old)->Animation().CanAnimate("castShadowsIfLayerDisabled"));
        // What is missing of both versions counts first.
        EXPECT_EQ(FailureOf(Replaced(old, "Version=\"0\"", "Version=\"1\"")), "9 shadowColor");
        EXPECT_EQ(FailureOf(Without(old, "matEmissiveColor")), "9 matEmissiveColor");
        EXPECT_EQ(FailureOf(Without(Replaced(old, "Version=\"0\"", "Version=\"1\""), "matEmissiveColor")),
                  "9 matEmissiveColor");
        EXPECT_EQ(FailureOf(Without(Document(layer, 1), "castShadowsIfLayerDisabled")),
                  "9 castShadowsIfLayerDisabled");
    }
}

} // namespace
} // namespace marlet::test
