#include <tests/support/FontFolder.h>

#include <marlet/layers/FontCache.h>

#include <gmock/gmock.h>

using namespace marlet::project;
using testing::ElementsAre;
using Charset = FontCache::Charset;

namespace
{

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
    const marlet::test::FontFolder folder;
    for (const char *style : {"Sans-Bold", "Sans", "Serif-Bold"})
        folder.Add(style, "Zebras");
    folder.Add("Sans", "apples");
    folder.Add("Sans", "@Tokyo");

    const FontCache cache(Charset(0));
    EXPECT_EQ(ToUtf8(cache.FontsPath()), folder.Path());
    const auto families = ElementsAre("Zebras Sans", "Zebras Serif Bold", "apples Sans");
    EXPECT_THAT(FullNames(cache.FontFamilies()), families);
    EXPECT_THAT(FullNames(FontCache(Charset(128)).FontFamilies()), families);
    EXPECT_THAT(FullNames(cache.FontStyles(u"")), families);

    const FontCache::FontList styles = cache.FontStyles(u"Zebras Sans");
    EXPECT_THAT(FullNames(styles), ElementsAre("Zebras Sans", "Zebras Sans Bold"));
    EXPECT_EQ(ToUtf8(styles.back().fileName), folder.Path() + "/ZebrasSans-Bold.ttf");
    EXPECT_EQ(styles.back().family, u"Zebras Sans");
    for (const char16_t *unknown :
         {u"zebras sans", u"@Tokyo Sans", u"A family of more than thirty-two units"})
        EXPECT_TRUE(cache.FontStyles(unknown).IsEmpty()) << ToUtf8(unknown);

    folder.Add("Sans-Bold", "apples");
    EXPECT_EQ(cache.FontStyles(u"apples Sans").Count(), 2u);
}

TEST(FontCache, NeedsAFolder)
{
    const marlet::test::FontFolder folder;
    folder.Configure({folder.Path() + "/missing"});
    try {
        const FontCache cache(Charset(0));
        FAIL();
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "Cannot get system fonts path");
    }
}

TEST(FontCache, KnowsCollectionsAndNamedStylesButOutlinesOfOtherTypesNot)
{
    const char *material = std::getenv("MARLET_MATERIAL");
    if (!material)
        GTEST_SKIP() << "MARLET_MATERIAL is not set";
    const marlet::test::FontFolder folder;
    folder.Configure({std::string(material) + "/fonts"});
    const FontCache cache(Charset(0));
    std::vector<std::string> families;
    for (const FontCache::Font &font : cache.FontFamilies())
        families.push_back(ToUtf8(font.family));
    EXPECT_THAT(families, ElementsAre("Aref Ruqaa", "Bungee Color", "Karla", "Open Sans", "Test"));
    EXPECT_THAT(FullNames(cache.FontStyles(u"Karla")),
                ElementsAre("Karla Bold", "Karla ExtraBold", "Karla ExtraLight", "Karla Light",
                            "Karla Medium", "Karla Regular"));
    EXPECT_THAT(FullNames(cache.FontStyles(u"Test")), ElementsAre("Test", "Test"));
}
