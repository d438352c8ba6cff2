#include <tests/support/FontFolder.h>

#include <marlet/layers/FontCache.h>

#include <gmock/gmock.h>

using namespace marlet::project;
using marlet::test::FontFolder;
using testing::ElementsAre;

namespace
{

constexpr FontCache::Charset kAny{};

std::vector<std::string> FullNames(const FontCache::FontList &fonts)
{
    std::vector<std::string> names;
    for (const FontCache::Font &font : fonts)
        names.push_back(ToUtf8(font.fullName));
    return names;
}

} // namespace

TEST(FontCache, ListsTheRegularFaceOfEachFamilyAndAllOfOne)
{
    const FontFolder folder;
    for (const char *style : {"Sans-Bold", "Sans", "Serif-Bold"})
        folder.Add(style, "Zebras");
    folder.Add("Sans", "apples");
    folder.Add("Sans", "@Tokyo");
    const FontCache cache(kAny);
    EXPECT_EQ(ToUtf8(cache.FontsPath()), folder.path);
    const auto families = ElementsAre("Zebras Sans", "Zebras Serif Bold", "apples Sans");
    EXPECT_THAT(FullNames(cache.FontFamilies()), families);
    EXPECT_THAT(FullNames(cache.FontStyles(u"")), families);

    const FontCache::FontList styles = cache.FontStyles(u"Zebras Sans");
    EXPECT_THAT(FullNames(styles), ElementsAre("Zebras Sans", "Zebras Sans Bold"));
    EXPECT_EQ(ToUtf8(styles.back().fileName), folder.path + "/ZebrasSans-Bold.ttf");
    for (const char16_t *unknown : {u"@Tokyo Sans", u"A family of more than thirty-two units"})
        EXPECT_TRUE(cache.FontStyles(unknown).IsEmpty()) << ToUtf8(unknown);
    folder.Add("Sans-Bold", "apples");
    EXPECT_EQ(cache.FontStyles(u"apples Sans").Count(), 2u);

    folder.Use("/nowhere");
    EXPECT_THROW(FontCache{kAny}, std::runtime_error);
}

TEST(FontCache, KnowsCollectionsAndNamedStylesButNoOutlinesOfOtherTypes)
{
    const char *material = std::getenv("MARLET_MATERIAL");
    if (!material)
        GTEST_SKIP() << "MARLET_MATERIAL is not set";
    const FontFolder folder;
    folder.Use(std::string(material) + "/fonts");
    const FontCache cache(kAny);
    EXPECT_THAT(FullNames(cache.FontFamilies()),
                ElementsAre("Aref Ruqaa Regular", "Bungee Color Regular Regular", "Karla Regular",
                            "Open Sans Regular", "Test"));
    EXPECT_EQ(cache.FontStyles(u"Karla").Count(), 6u);
    EXPECT_EQ(cache.FontStyles(u"Test").Count(), 2u);
}
