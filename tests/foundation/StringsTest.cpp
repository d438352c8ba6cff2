#include <marlet/foundation/Strings.h>

#include <QString>
#include <gtest/gtest.h>

namespace
{

using marlet::project::FromUtf8;
using marlet::project::ToUtf8;

std::string QtUtf8(std::u16string_view text)
{
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size())).toStdString();
}

TEST(StringsTest, EveryCharacterConvertsBothWays)
{
    std::u16string all;
    for (char32_t c = 1; c <= 0x10FFFF; c += c < 0x3000 ? 1 : 61) {
        if (c >= 0xD800 && c < 0xE000)
            continue;
        if (c < 0x10000) {
            all += static_cast<char16_t>(c);
        } else {
            all += static_cast<char16_t>(0xD800 + (c - 0x10000) / 0x400);
            all += static_cast<char16_t>(0xDC00 + (c - 0x10000) % 0x400);
        }
    }
    const std::string utf8 = ToUtf8(all);
    EXPECT_TRUE(utf8 == QtUtf8(all));
    EXPECT_TRUE(FromUtf8(utf8) == all);
}

TEST(StringsTest, AsciiOfAnyLengthConvertsBothWays)
{
    std::string narrow;
    std::u16string wide;
    for (int length = 0; length < 70; ++length) {
        EXPECT_EQ(ToUtf8(wide), narrow);
        EXPECT_EQ(FromUtf8(narrow), wide);
        // With one other character at the end, which the faster way over ASCII must stop at.
        EXPECT_EQ(ToUtf8(wide + u'\u00E9'), narrow + "\xC3\xA9");
        EXPECT_EQ(FromUtf8(narrow + "\xC3\xA9"), wide + u'\u00E9');
        narrow += static_cast<char>('0' + length);
        wide += static_cast<char16_t>(u'0' + length);
    }
}

TEST(StringsTest, LoneSurrogatesBecomeReplacements)
{
    const std::u16string high(1, char16_t(0xD83D));
    const std::u16string low(1, char16_t(0xDE00));
    EXPECT_EQ(ToUtf8(high + u"z"), "\xEF\xBF\xBDz");
    EXPECT_EQ(ToUtf8(high + high + low), "\xEF\xBF\xBD\xF0\x9F\x98\x80");
    EXPECT_EQ(ToUtf8(low + high), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(StringsTest, EachMaximalPartOfABrokenSequenceBecomesOneReplacement)
{
    const std::pair<const char *, const char16_t *> cases[] = {
        {"\x80", u"\uFFFD"},
        {"a\xFFz", u"a\uFFFDz"},
        {"\xC3(", u"\uFFFD("},
        {"\xC0\xAF", u"\uFFFD\uFFFD"},
        {"\xE2\x82", u"\uFFFD"},
        {"\xE2\x82z", u"\uFFFDz"},
        {"\xE0\x9F\xBF", u"\uFFFD\uFFFD\uFFFD"},
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
        {"\xF0\x8F\xBF\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xF0\x9F\x98\xC3\xA9", u"\uFFFD\u00E9"},
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xEF\xBB\xBFz", u"\uFEFFz"}};
    for (const auto &[bytes, text] : cases)
        EXPECT_EQ(FromUtf8(bytes), text) << QString::fromUtf8(bytes).toStdString();
}

} // namespace
