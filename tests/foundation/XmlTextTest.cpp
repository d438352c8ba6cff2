#include <marlet/foundation/xml/XmlText.h>

#include <QString>
#include <boost/lexical_cast.hpp>
#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <random>
#include <sstream>

namespace
{

using namespace marlet::project;

/// The same value, with all NaNs alike and the two zeros apart.
template <class Real> bool Same(Real a, Real b)
{
    return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b));
}

std::string Printf(const char *format, double value)
{
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

/// Numbers and things that look like numbers, with blanks between them.
const std::string kOddNumbers =
    "0 007 -1 -0 +1 ++1 +-1 + - . 1. .5 +.5 1..5 1,5 1,000 1'000 1_000 0x10 0x1p3 0b1 1e3 1E+3 1e-3 1e "
    "1e+ e3 .e3 1e3.5 1f 12abc 2147483647 2147483648 -2147483648 -2147483649 4294967295 4294967296 "
    "18446744073709551615 18446744073709551616 100000000000000000000000000000000000001 "
    "0000000000000000000000000000000000000001 inf -inf +inf iNf infinity nan NaN -nan nan(1) nanx 1e39 "
    "-1e39 1e-46 7e-46 1.5e-45 3.4028235e38 3.4028236e38 1e309 -1e309 1e-400 -1e-400 4.9e-324 2e-324 "
    "1e99999999999999999999 1e-99999999999999999999 0e99999999999999999999 0.00001e-320 1e000000000001 "
    "0.0000000000000000000000000000000000000000000001e400 1.7976931348623159e308 1e\xE2\x88\x92z";

/// The odd numbers with what may stand around them.
std::vector<std::string> OddTexts()
{
    std::vector<std::string> cores = {"", "- 1", "1e 3", "0." + std::string(400, '0') + "1"};
    std::istringstream stream(kOddNumbers);
    cores.insert(cores.end(), std::istream_iterator<std::string>(stream), {});
    const std::string paddings[][2] = {{"", ""},
                                       {" ", ""},
                                       {"\t\n\v\f\r ", "\r\n"},
                                       {"\x1F", ""},
                                       {"\xC2\xA0", "\xE3\x80\x80"},
                                       {"", "\xC2\x85"},
                                       {"\xE2\x88\x92", ""},
                                       {"", "\xE2\x80\x8B"},
                                       {"\xD9\xA1", ""}};
    std::vector<std::string> texts;
    for (const std::string &core : cores)
        for (const auto &[before, after] : paddings)
            texts.push_back(before + core + after);
    return texts;
}

TEST(XmlTextTest, NumbersAreReadAsQStringReadsThem)
{
    for (const std::string &text : OddTexts()) {
        const QString reference = QString::fromStdString(text);
        EXPECT_EQ(ParseInt(text), reference.toInt()) << '[' << text << ']';
        EXPECT_EQ(ParseUInt(text), reference.toUInt()) << '[' << text << ']';
        EXPECT_EQ(ParseUInt64(text), reference.toULongLong()) << '[' << text << ']';
        EXPECT_TRUE(Same(ParseFloat(text), reference.toFloat()))
            << '[' << text << "] " << ParseFloat(text) << ", not " << reference.toFloat();
        EXPECT_TRUE(Same(ParseDouble(text), reference.toDouble()))
            << '[' << text << "] " << ParseDouble(text) << ", not " << reference.toDouble();
    }
}

TEST(XmlTextTest, BooleansAreReadAsALexicalCastReadsThem)
{
    for (const char *text : {"0", "1", "+1", "-0", "01"})
        EXPECT_EQ(ParseBool(text), boost::lexical_cast<bool>(text)) << text;
    for (const char *text : {"", "true", "2", "-1", " 1", "1.0", "+", "1\n"})
        EXPECT_THROW(ParseBool(text), boost::bad_lexical_cast) << text;
}

/// Values of every magnitude, those around which the form changes, and halves between two roundings.
std::vector<double> OddDoubles()
{
    std::vector<double> values = {0.0,      DBL_MAX, DBL_MIN, DBL_TRUE_MIN,
                                  INFINITY, 0.1,     1e23,    9007199254740993.0};
    for (int exponent = -12; exponent <= 22; ++exponent) {
        const double power = std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);
        for (const double factor : {1.0, 1.5, 9.99999995, 9.9999999949, 9.9999999999999982})
            for (const double towards : {0.0, power * factor, double(INFINITY)})
                values.push_back(std::nextafter(power * factor, towards));
    }
    for (int i = 1; i < 4000; ++i)
        values.push_back((i * 2 + 1) / 1024.0 / 1024.0 * (i % 3 == 0 ? 1000 : 1));
    std::mt19937_64 generator(3);
    std::uniform_real_distribution<double> fractions(0.5, 1);
    for (int i = 0; i < 10000; ++i) {
        values.push_back(std::bit_cast<double>(generator()));
        values.push_back(std::ldexp(fractions(generator), i % 70 - 20));
    }
    return values;
}

TEST(XmlTextTest, NumbersAreWrittenAsPrintfWritesThem)
{
    for (const double magnitude : OddDoubles()) {
        for (const double value : {magnitude, -magnitude}) {
            if (std::isnan(value))
                continue;
            EXPECT_EQ(FormatDouble(value).View(), Printf("%.17g", value));
            const auto narrow = static_cast<float>(value);
            if (std::abs(narrow) < FLT_MAX || std::isinf(narrow)) {
                EXPECT_EQ(FormatFloat(narrow).View(), Printf("%.9g", narrow));
            }
        }
    }
    EXPECT_EQ(FormatInt(LLONG_MIN).View(), "-9223372036854775808");
    EXPECT_EQ(FormatUInt(ULLONG_MAX).View(), "18446744073709551615");
    for (const float nan : {NAN, -NAN}) {
        EXPECT_EQ(FormatFloat(nan).View(), "nan");
        EXPECT_EQ(FormatDouble(nan).View(), "nan");
        EXPECT_EQ(FormatFloatAttribute(nan).View(), "nan");
    }
}

TEST(XmlTextTest, DoublesInAttributesAreWrittenAsQtWritesThem)
{
    int halves = 0;
    for (const double value : OddDoubles()) {
        if (value == 0 || std::isnan(value))
            continue;
        EXPECT_EQ(FormatDoubleAttribute(value).View(), QString::number(value, 'g', 17).toStdString());
        halves += FormatDoubleAttribute(value).View() != FormatDouble(value).View();
    }
    EXPECT_GT(halves, 100);
}

TEST(XmlTextTest, EveryFloatReadsBackAsItself)
{
    std::mt19937 generator(5);
    std::vector<float> values = {0.0f, -0.0f, FLT_MAX, -FLT_MAX, FLT_TRUE_MIN, INFINITY, 16777216.0f};
    for (int i = 0; i < 30000; ++i) {
        values.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(generator())));
        values.push_back(static_cast<float>(generator()) / 1048576.0f - 2048.0f);
    }
    int nineDigits = 0;
    for (const float value : values) {
        const std::string attribute(FormatFloatAttribute(value).View());
        EXPECT_TRUE(Same(ParseFloat(attribute), value)) << attribute;
        EXPECT_TRUE(Same(ParseFloat(FormatFloat(value).View()), value)) << FormatFloat(value).View();
        EXPECT_TRUE(Same(ParseDouble(FormatDouble(value).View()), double(value)));
        if (std::abs(value) < FLT_MAX) {
            // But for zero, whose sign Qt drops.
            const std::string eight =
                value == 0 ? Printf("%g", value) : QString::number(value, 'g', 8).toStdString();
            const bool enough = QString::fromStdString(eight).toFloat() == value;
            EXPECT_EQ(attribute, enough ? eight : Printf("%.9g", value));
            nineDigits += !enough;
        }
    }
    EXPECT_GT(nineDigits, 100);
}

TEST(XmlTextTest, NamesAreThoseOfXml)
{
    for (const char *name :
         {"a",      "_x",     "a1-b.c:d", "\u00E9t\u00E9", "\U00020000", "a\u00B7",   ":",
          "\u0132", "\u02FF", "a\u0300",  "a\u036F",       "\u0370",     "\u200C",    "a\u2040",
          "\u218F", "\u3001", "\uD7FF",   "\uF900",        "\uFFFD",     "\U000EFFFF"})
        EXPECT_TRUE(IsXmlName(name)) << name;
    for (const char *name :
         {"",        "1a",      "-a",      ".a",      "a b",     "a<",         "a&b",          "a/",
          "\u00B7z", "\u00D7",  "a\xFF",   "a\n",     "\u0300",  "a\u037E",    "a\u200B",      "a\u200E",
          "\u203F",  "a\u2190", "a\u3000", "a\uFDD0", "a\uFFFE", "\U000F0000", "a\xED\xA0\x80"})
        EXPECT_FALSE(IsXmlName(name)) << name;
}

} // namespace
