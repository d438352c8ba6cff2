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

TEST(XmlReaderTest, AWholeTextHasARoot)
{
    const std::u16string_view texts[] = {
        u"<a/>",
        u" \r\n\t<a/>\n ",
        u"\uFEFF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a></a>",
        u"<!-- before --><?instruction x?><a/><!-- behind --> <?end?>\n",
        u"<a><![CDATA[<!DOCTYPE a> &#0;]]></a>",
        u"<a><!-- &#0; --></a>",
        u"<\u00E9t\u00E9/>",
    };
    for (const std::u16string_view text : texts)
        EXPECT_TRUE(HasRoot(text)) << ToUtf8(text);
}

TEST(XmlReaderTest, AnyOtherTextHasNone)
{
    using namespace std::string_view_literals;
    const std::u16string_view texts[] = {
        u"",
        u" ",
        u"text",
        u"<a",
        u"<a>",
        u"<a></b>",
        u"<a/><b/>",
        u"<a/>text",
        u"text<a/>",
        u"<a/><",
        u"<a/>x",
        u"<a/></a>",
        u"<a><b></a></b>",
        u"<a x=1/>",
        u"<a x=\"1/>",
        u"<![CDATA[ ]]><a/>",
        u"<a/><![CDATA[x]]>",
        u"<!-- only -->",
        u"<a/><!-- open",
        u"<!DOCTYPE a><a/>",
        u"<!DOCTYPE a [<!ENTITY e \"ha\">]><a>&e;</a>",
        u"<a/><!DOCTYPE a>",
        u"<a><!DOCTYPE a></a>",
        u"<a/>\0"sv,
        u"<a/>\0<b/>"sv,
        u"\0<a/>"sv,
        u"<a>x\0y</a>"sv,
        u"<a>x&#0;y</a>",
        u"<a x=\"&#x000;\"/>",
        u"<a>&#4294967296;</a>",
        u"<a><![CDATA[&#0;]]>&#0;</a>",
        u"<a><!-- <![CDATA[ -->&#0;<!-- ]]> --></a>",
        u"<1/>",
    };
    for (const std::u16string_view text : texts)
        EXPECT_FALSE(HasRoot(text)) << ToUtf8(text);
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
    EXPECT_EQ(WordsOf<XmlParseException>(parse(Nested(1'000'000))), "Nesting too deep");
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
        {u"<a></a>", u""},
        {u"<a>text</a>", u"text"},
        {u"<a>  </a>", u"  "},
        {u"<a> \n\t</a>", u" \n\t"},
        {u"<a>  text  </a>", u"  text  "},
        {u"<a>one<!-- not --> two</a>", u"one two"},
        {u"<a>one<!-- not --> <!-- nor -->two</a>", u"one two"},
        {u"<a><!-- not --> </a>", u" "},
        {u"<a>one<?not this?>two</a>", u"onetwo"},
        {u"<a>one<![CDATA[ <two> & ]]>three</a>", u"one <two> & three"},
        {u"<a><![CDATA[ ]]></a>", u" "},
        {u"<a>one<b>two<c>three</c></b>four</a>", u"onetwothreefour"},
        {u"<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x1F600;</a>", u"<>&\"'A\U0001F600"},
        {u"<a>1\r\n2\r3\n4&#13;</a>", u"1\n2\n3\n4\r"},
        {u"<a>]]&gt;</a>", u"]]>"},
    };
    for (const auto &[text, expected] : cases) {
        const XmlDocument document(text);
        WideString value = u"untouched";
        document.Root().Get(value);
        EXPECT_EQ(ToUtf8(value), ToUtf8(expected)) << ToUtf8(text);
        EXPECT_EQ(document.Root().Text(), ToUtf8(expected));
    }
    const WideString lone = WideString(u"<a>x") + char16_t(0xD800) + u"y</a>";
    EXPECT_EQ(XmlDocument(lone).Root().Text(), "x\xEF\xBF\xBDy");
}

TEST(XmlReaderTest, ElementsAreFoundByName)
{
    const XmlDocument document(
        u"<Root>text<A n='1'/><!-- c --><B/><A n='2'><C n='3'/></A><![CDATA[x]]><D/></Root>");
    const XmlCursor root = document.Root();
    EXPECT_TRUE(root.Is("Root"));
    EXPECT_FALSE(root.Is("root"));
    EXPECT_EQ(root.Find("A").AttributeText("n"), "1");
    EXPECT_EQ(root.Find("A").Next("A").AttributeText("n"), "2");
    EXPECT_TRUE(root.Find("A").Next("A").Next("A").IsNull());
    EXPECT_TRUE(root.Find("a").IsNull());
    EXPECT_TRUE(root.Find("C").IsNull());

    std::string names;
    for (XmlCursor child = root.FirstChild(); !child.IsNull(); child = child.Next())
        names += child.Name();
    EXPECT_EQ(names, "ABAD");
    EXPECT_TRUE(root.Find("D").FirstChild().IsNull());
    EXPECT_TRUE(root.Next().IsNull());
}

TEST(XmlReaderTest, WhatIsMissingIsNamed)
{
    const XmlDocument document(u"<Root Version='2' a='x'><Child/></Root>");
    const XmlCursor root = document.Root();
    const XmlCursor child = root.Require("Child");

    EXPECT_NO_THROW(root.RequireTag("rOOT"));
    EXPECT_NO_THROW(root.RequireAttribute("a"));
    EXPECT_EQ(root.RequireHeader("Root", 2), 2u);
    EXPECT_THROW(root.RequireHeader("Root", 1), InvalidProjectVersionException);
    EXPECT_EQ(WordsOf<XmlParseException>([&] { root.RequireHeader("Roo", 2); }), "Wrong tag name\nRoo");
    EXPECT_EQ(WordsOf<XmlParseException>([&] { child.RequireHeader("Child", 0); }),
              "Child is missing attribute Version\n");
    EXPECT_EQ(WordsOf<XmlParseException>([&] { root.RequireAttribute("A"); }),
              "Root is missing attribute A\n");
    EXPECT_EQ(WordsOf<XmlParseException>([&] { root.Require("child"); }), "Missing element\nchild");
    int number = 0;
    EXPECT_EQ(WordsOf<XmlParseException>([&] { root.Child("Other", number); }), "Missing element\nOther");
}

TEST(XmlReaderTest, NoElementReadsLikeAnEmptyOne)
{
    const XmlCursor none;
    EXPECT_TRUE(none.IsNull());
    EXPECT_EQ(none.Name(), "");
    EXPECT_TRUE(none.Find("a").IsNull());
    EXPECT_TRUE(none.FirstChild().IsNull());
    EXPECT_TRUE(none.Next().IsNull());
    EXPECT_EQ(none.AttributeText("a"), "");
    EXPECT_EQ(none.Text(), "");
    int number = 5;
    none.Get(number);
    EXPECT_EQ(number, 0);
    EXPECT_EQ(WordsOf<XmlParseException>([&] { none.RequireTag("Project"); }), "Wrong tag name\nProject");
}

enum class Choice : int { First, Second };

TEST(XmlReaderTest, ElementTextIsReadAsValues)
{
    const XmlDocument document(
        u"<r><i> -5 </i><u>4000000000</u><f>0.1</f><d>1e400</d><b>1</b><e>1</e>"
        u"<id>01234567-089A-0bcd-0ef1-021324354657</id><s>\u00E9 </s><split>1<!-- -->2</split>"
        u"<c R='0.5' G='inf' B='x' A='-1'/><bad>true</bad></r>");
    const XmlCursor root = document.Root();
    int i = 0;
    root.Child("i", i);
    EXPECT_EQ(i, -5);
    root.Child("split", i);
    EXPECT_EQ(i, 12);
    root.Child("s", i);
    EXPECT_EQ(i, 0);
    unsigned int u = 0;
    root.Child("u", u);
    EXPECT_EQ(u, 4000000000u);
    float f = 0;
    root.Child("f", f);
    EXPECT_EQ(f, 0.1f);
    double d = 0;
    root.Child("d", d);
    EXPECT_EQ(d, INFINITY);
    bool b = false;
    root.Child("b", b);
    EXPECT_TRUE(b);
    Choice e = Choice::First;
    root.Child("e", e);
    EXPECT_EQ(e, Choice::Second);
    kytl::KyID id;
    root.Child("id", id);
    EXPECT_EQ(id.ToNarrowString(), "01234567-089a-0bcd-0ef1-021324354657");
    WideString s;
    root.Child("s", s);
    EXPECT_EQ(s, u"\u00E9 ");
    kytl::KyColorRGBA_32f c;
    root.Child("c", c);
    EXPECT_EQ(c, (kytl::KyColorRGBA_32f{0.5f, INFINITY, 0, -1}));

    EXPECT_THROW(root.Child("bad", b), boost::bad_lexical_cast);
    EXPECT_EQ(WordsOf<std::runtime_error>([&] { root.Child("s", id); }), "Cannot construct KyID from string");
    EXPECT_EQ(WordsOf<XmlParseException>([&] { root.Child("i", c); }), "i is missing attribute R\n");
}

TEST(XmlReaderTest, AttributesAreReadAsValues)
{
    const XmlDocument document(u"<r i='-7' big='18446744073709551615' f='0.1' d='1e-300' yes='2' "
                               u"id='01234567-089a-0bcd-0ef1-021324354657' s='&lt;&#10;\t\u00E9'/>");
    const XmlCursor root = document.Root();
    const auto read = [&root](const char *name, auto value) {
        root.Attribute(name, value);
        return value;
    };
    EXPECT_EQ(read("i", 1), -7);
    EXPECT_EQ(read("i", 1u), 0u);
    EXPECT_EQ(read("big", std::uint64_t(0)), 18446744073709551615u);
    EXPECT_EQ(read("f", 1.0f), 0.1f);
    EXPECT_EQ(read("d", 1.0), 1e-300);
    EXPECT_TRUE(read("yes", false));
    EXPECT_EQ(read("id", kytl::KyID()).Data1, 0x01234567u);
    EXPECT_EQ(read("s", WideString()), u"<\n \u00E9");
    EXPECT_EQ(read("yes", Choice::First), static_cast<Choice>(2));
    EXPECT_EQ(read("none", 1), 0);
    EXPECT_EQ(read("none", 1.0), 0);
    EXPECT_EQ(read("none", WideString(u"x")), u"");
    EXPECT_THROW(read("none", kytl::KyID()), std::runtime_error);
    EXPECT_TRUE(root.HasAttribute("i"));
    EXPECT_FALSE(root.HasAttribute("I"));
}

} // namespace
