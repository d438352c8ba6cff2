#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/XmlReader.h>

#include <boost/lexical_cast.hpp>
#include <gtest/gtest.h>

#include <cmath>

namespace
{

using namespace marlet::project;

bool HasRoot(std::u16string_view text)
{
    return !XmlDocument(text).Root().IsNull();
}

WideString Nested(int depth)
{
    WideString text;
    for (int i = 0; i < depth; ++i)
        text += u"<a>";
    for (int i = 0; i < depth; ++i)
        text += u"</a>";
    return text;
}

template <class Exception, class Function> std::string WordsOf(Function &&function)
{
    try {
        function();
    } catch (const Exception &error) {
        return error.what();
    }
    return "nothing was thrown";
}

TEST(XmlReaderTest, AWholeTextHasARootAndAnyOtherTextHasNone)
{
    using namespace std::string_view_literals;
    const std::u16string_view whole[] = {
        u" \r\n\t<a/>\n ", u"\uFEFF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a></a>",
        u"<!-- before --><?instruction x?><a/><!-- behind --> <?end?>\n",
        u"<a><![CDATA[<!DOCTYPE a> &#0;]]><!-- &#0; --></a>", u"<\u00E9t\u00E9/>"};
    for (const std::u16string_view text : whole)
        EXPECT_TRUE(HasRoot(text)) << ToUtf8(text);
    const std::u16string_view others[] = {
        u"",         u"text", u"<a></b>",  u"<a/><b/>",     u"<a/>text", u"text<a/>",      u"<a/></a>",
        u"<a x=1/>", u"<1/>", u"<a/>\0"sv, u"<a/>\0<b/>"sv, u"\0<a/>"sv, u"<a>x\0y</a>"sv, u"<a>x&#0;y</a>"};
    for (const std::u16string_view text : others)
        EXPECT_FALSE(HasRoot(text)) << ToUtf8(text);
    EXPECT_FALSE(HasRoot(u"<!-- only -->") || HasRoot(u"<a/><!-- open"));
    EXPECT_FALSE(HasRoot(u"<![CDATA[ ]]><a/>") || HasRoot(u"<a/><![CDATA[x]]>"));
    EXPECT_FALSE(HasRoot(u"<!DOCTYPE a><a/>") || HasRoot(u"<a><!DOCTYPE a></a>"));
    EXPECT_FALSE(HasRoot(u"<a>&nbsp;</a>") || HasRoot(u"<a x='1' x='2'/>") || HasRoot(u"<a>]]></a>"));
    EXPECT_FALSE(HasRoot(u"<a x='<'/>") || HasRoot(u"<a>\u0001</a>") || HasRoot(u"<a>\uFFFF</a>"));
    EXPECT_FALSE(HasRoot(u"<a x='&#x00;'/>") || HasRoot(u"<a>&#4294967296;</a>"));
    EXPECT_FALSE(HasRoot(u"<a><![CDATA[&#0;]]>&#0;</a>"));
    EXPECT_FALSE(HasRoot(u"<a><!-- <![CDATA[ -->&#0;<!-- ]]> --></a>"));
}

TEST(XmlReaderTest, WhatStandsInManyCommentsTakesNoLongerEach)
{
    WideString text = u"<a>";
    for (int i = 0; i < 200'000; ++i)
        text += u"<!--&#0;-->";
    EXPECT_TRUE(HasRoot(text + u"</a>"));
    EXPECT_FALSE(HasRoot(text + u"&#0;</a>"));
}

TEST(XmlReaderTest, ATextThatIsCutOffAnywhereHasNoRoot)
{
    const WideString text =
        u"<?xml version=\"1.0\"?><!-- c --><Root Version=\"0\"><ID a='&lt;'>t&amp;\u00E9</ID>"
        u"<![CDATA[x]]><Empty/></Root>";
    ASSERT_TRUE(HasRoot(text));
    for (std::size_t length = 0; length < text.size(); ++length)
        EXPECT_FALSE(HasRoot(text.substr(0, length))) << ToUtf8(text.substr(0, length));
}

TEST(XmlReaderTest, NestingIsBounded)
{
    EXPECT_TRUE(HasRoot(Nested(kDeepestNesting)));
    const auto parse = [](const WideString &text) { return [&text] { HasRoot(text); }; };
    EXPECT_EQ(WordsOf<XmlParseException>(parse(Nested(kDeepestNesting + 1))), "Nesting too deep");
    // As deep as is allowed with a text in the middle, and one too deep behind that text.
    const WideString start = Nested(kDeepestNesting).substr(0, 3 * kDeepestNesting);
    const WideString end = Nested(kDeepestNesting).substr(3 * kDeepestNesting);
    EXPECT_TRUE(HasRoot(start + u"text<![CDATA[more]]>" + end));
    EXPECT_EQ(WordsOf<XmlParseException>(parse(start + u"<![CDATA[text]]><b/>" + end)), "Nesting too deep");
    EXPECT_FALSE(HasRoot(Nested(1'000'000).substr(0, 3'000'000)));
}

TEST(XmlReaderTest, TextIsAllTextAndCDataBelowTheElement)
{
    const std::pair<std::u16string_view, std::u16string> cases[] = {
        {u"<a/>", u""},
        {u"<a> \n\t</a>", u" \n\t"},
        {u"<a>  text  </a>", u"  text  "},
        {u"<a>one<!-- not --> <!-- nor -->two</a>", u"one two"},
        {u"<a><!-- not --> </a>", u" "},
        {u"<a>one<?not this?>two</a>", u"onetwo"},
        {u"<a>one<![CDATA[ <two> & ]]>three</a>", u"one <two> & three"},
        {u"<a><![CDATA[ ]]></a>", u" "},
        {u"<a>one<b>two<c>three</c></b>four</a>", u"onetwothreefour"},
        {u"<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x1F600;</a>", u"<>&\"'A\U0001F600"},
        {u"<a>1\r\n2\r3\n4&#13;</a>", u"1\n2\n3\n4\r"}};
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(XmlDocument(text).Root().Text(), ToUtf8(expected)) << ToUtf8(text);
    const WideString lone = WideString(u"<a>x") + char16_t(0xD800) + u"y</a>";
    EXPECT_EQ(XmlDocument(lone).Root().Text(), "x\xEF\xBF\xBDy");
}

TEST(XmlReaderTest, WhatIsMissingIsNamed)
{
    const XmlDocument document(u"<Root Version='2' a='x'><Child/></Root>");
    const XmlCursor root = document.Root();
    EXPECT_EQ(root.RequireHeader("rOOT", 2), 2u);
    EXPECT_THROW(root.RequireHeader("Root", 1), InvalidProjectVersionException);
    const std::pair<std::function<void()>, const char *> calls[] = {
        {[&] { root.RequireHeader("Roo", 2); }, "Wrong tag name\nRoo"},
        {[&] { XmlCursor().RequireTag("Root"); }, "Wrong tag name\nRoot"},
        {[&] { root.Require("Child").RequireHeader("Child", 0); }, "Child is missing attribute Version\n"},
        {[&] { root.RequireAttribute("A"); }, "Root is missing attribute A\n"},
        {[&] { root.Require("child"); }, "Missing element\nchild"}};
    for (const auto &[call, words] : calls)
        EXPECT_EQ(WordsOf<XmlParseException>(call), words);
}

TEST(XmlReaderTest, ElementsAndAttributesAreReadAsValues)
{
    const XmlDocument document(
        u"<r yes='2' big='18446744073709551615' s='&lt;&#10;\t\u00E9'><i> -5 </i><d>1e400</d><s>\u00E9 </s>"
        u"<split>1<!-- -->2</split><c R='0.5' G='inf' B='x' A='-1'/><bad>true</bad></r>");
    const XmlCursor root = document.Root();
    const auto child = [&root](const char *name, auto value) {
        root.Child(name, value);
        return value;
    };
    EXPECT_EQ(child("i", 1), -5);
    EXPECT_EQ(child("split", 1), 12);
    EXPECT_EQ(child("s", 1), 0);
    EXPECT_EQ(child("d", 1.0), INFINITY);
    EXPECT_EQ(child("s", WideString()), u"\u00E9 ");
    const kytl::KyColorRGBA_32f color;
    EXPECT_EQ(child("c", color), (kytl::KyColorRGBA_32f{0.5f, INFINITY, 0, -1}));
    EXPECT_EQ(WordsOf<XmlParseException>([&] { child("i", color); }), "i is missing attribute R\n");
    EXPECT_THROW(child("bad", true), boost::bad_lexical_cast);
    EXPECT_EQ(WordsOf<std::runtime_error>([&] { child("s", kytl::KyID()); }),
              "Cannot construct KyID from string");

    const auto attribute = [&root](const char *name, auto value) {
        root.Attribute(name, value);
        return value;
    };
    EXPECT_TRUE(attribute("yes", false));
    EXPECT_EQ(attribute("yes", std::byte(0)), std::byte(2));
    EXPECT_EQ(attribute("big", std::uint64_t(0)), 18446744073709551615u);
    EXPECT_EQ(attribute("big", 1), 0);
    EXPECT_EQ(attribute("s", WideString()), u"<\n \u00E9");
    EXPECT_EQ(attribute("none", 1), 0);
    EXPECT_EQ(attribute("none", WideString(u"x")), u"");
    EXPECT_THROW(attribute("none", kytl::KyID()), std::runtime_error);
}

} // namespace
