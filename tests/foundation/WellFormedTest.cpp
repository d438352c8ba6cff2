#include <marlet/foundation/Strings.h>
#include <marlet/foundation/xml/WellFormed.h>
#include <marlet/foundation/xml/XmlReader.h>

#include <QStringList>
#include <QXmlStreamReader>
#include <gtest/gtest.h>

#include <random>
#include <span>

namespace
{

using namespace marlet::project;

/// A text without its marks: "@" is where the fault is, "~" the other place that has to do with it.
struct Marked {
    std::string text;
    std::size_t fault = std::string::npos;
    std::size_t other = std::string::npos;

    explicit Marked(std::string_view marked)
    {
        for (const char c : marked) {
            if (c == '@')
                fault = text.size();
            else if (c == '~')
                other = text.size();
            else
                text += c;
        }
        if (other == std::string::npos)
            other = fault;
    }
};

struct Case {
    const char *marked;
    const char *what;
};

/// Of texts that are wrong inside an element.
const Case kFaultsInside[] = {
    {"<a>@<!DOCTYPE a></a>", "a document type stands inside an element"},
    {"<a>@<!x></a>", "what is no comment stands inside an element"},
    {"<a><b>~<c>@</b></c></a>", "the end tag is one of \"b\", the element is \"c\""},
    {"~<ab>@</a>", "the end tag is one of \"a\", the element is \"ab\""},
    {"~<a>@</ab>", "the end tag is one of \"ab\", the element is \"a\""},
    {"~<a>@</A>", "the end tag is one of \"A\", the element is \"a\""},
    {"<a></@ a>", "an end tag has no name"},
    {"<a></a @b>", "an end tag does not end in \">\""},
    {"<@1/>", "\"<\" begins no tag"},
    {"<a><@ b/></a>", "\"<\" begins no tag"},
    {"<a><@\xC2\xB7/></a>", "\"<\" begins no tag"},
    {"<a\xC3\xA9@\xC3\x97/>", "a start tag goes on with what is no attribute"},
    {"<a @1='x'/>", "a start tag goes on with what is no attribute"},
    {"<a x='1'@y='2'/>", "a start tag goes on with what is no attribute"},
    {"<a x='1' /@ >", "\"/\" stands in a start tag"},
    {"<a x@/>", "an attribute has no value"},
    {"<a x=@1/>", "a value has no quotes"},
    {"<a ~x='1' y='2' @x='3'/>", "the attribute \"x\" stands twice in its element"},
    {"<a ~x='1' x2='2' @x='1'/>", "the attribute \"x\" stands twice in its element"},
    {"<a x='1@<2'/>", "\"<\" stands in the value of an attribute"},
    {"<a x=\"'@<\"/>", "\"<\" stands in the value of an attribute"},
    {"<a>1 &@ 2</a>", "\"&\" begins no reference"},
    {"<a x='&@1;'/>", "\"&\" begins no reference"},
    {"<a>&amp@ </a>", "a reference does not end in \";\""},
    {"<a>@&nbsp;</a>", "the entity \"nbsp\" is not declared"},
    {"<a x='@&AMP;'/>", "the entity \"AMP\" is not declared"},
    {"<a>@&#0;</a>", "a reference to a character that XML does not have"},
    {"<a>@&#4294967361;</a>", "a reference to a character that XML does not have"},
    {"<a x='@&#xD800;'/>", "a reference to a character that XML does not have"},
    {"<a>@&#x1F;&#xFFFE;</a>", "a reference to a character that XML does not have"},
    {"<a>@&#;</a>", "a reference to a character has no number"},
    {"<a>@&#xg;</a>", "a reference to a character has no number"},
    {"<a>&#12@a;</a>", "a reference does not end in \";\""},
    {"<a>@&#X41;</a>", "a reference to a character has no number"},
    {"<a>@]]></a>", "\"]]>\" stands in a text"},
    {"<a>]@]]></a>", "\"]]>\" stands in a text"},
    {"<a>x@\x01</a>", "U+0001 is no character of XML"},
    {"<a x='@\x1F'/>", "U+001F is no character of XML"},
    {"<a><!--@\x0B--></a>", "U+000B is no character of XML"},
    {"<a><![CDATA[@\xEF\xBF\xBE]]></a>", "U+FFFE is no character of XML"},
    {"<a>\xEF\xBF\xBD@\xEF\xBF\xBF</a>", "U+FFFF is no character of XML"},
    {"<a>@\xED\xA0\x80</a>", "the bytes are no UTF-8"},
    {"<a>@\xC3</a>", "the bytes are no UTF-8"},
    {"<a>@\xFF</a>", "the bytes are no UTF-8"},
    {"<@\xC2\xB7\xFF/>", "\"<\" begins no tag"},
    {"<a@\xAD/>", "the bytes are no UTF-8"},
    {"<a>~<!-- @-- --></a>", "\"--\" stands in a comment"},
    {"<a><?@ x?></a>", "an instruction has no name"},
    {"<a>@<?xml version='1.0'?></a>", "an XML declaration stands in the middle of the text"},
    {"<a><?x@=y?></a>", "a blank is missing"},
};

/// Of texts that are wrong outside of one, or as a whole.
const Case kFaultsOutside[] = {
    {"~@", "the text ends before its root element"},
    {"~<a x='1' x@", "the text ends in a start tag"},
    {"<a>~<?xml@", "the text ends in an instruction"},
    {"~\xEF\xBB@", "the text ends before its root element"},
    {" <!-- c -->~@", "the text ends before its root element"},
    {"@text<a/>", "a text stands outside of the root element"},
    {"<a/>\n @text", "a text stands outside of the root element"},
    {"@&amp;<a/>", "a text stands outside of the root element"},
    {"@</a>", "an end tag has no start tag"},
    {"<a/>@</a>", "an end tag has no start tag"},
    {" ~<a/> @<b/>", "a second element stands behind the root element"},
    {"@<![CDATA[x]]><a/>", "a CDATA section stands where the root element should"},
    {"<a/>@<![CDATA[x]]>", "a CDATA section stands behind the root element"},
    {"<!DOCTYPE a>@<!DOCTYPE a><a/>", "a document type stands where the root element should"},
    {"~<!-- @---><a/>", "\"--\" stands in a comment"},
    {" @<?xml version='1.0'?><a/>", "an XML declaration stands in the middle of the text"},
    {"<a/>@<?xMl x?>", "an instruction has the name \"xMl\""},
    {"@<?xml version='2.0'?><a/>", "the XML declaration has no version 1.x"},
    {"@<?xml version='1.0' encoding='_8'?><a/>", "the XML declaration names no encoding"},
    {"@<?xml version='1.0' standalone='1'?><a/>", "the XML declaration says neither \"yes\" nor \"no\""},
    {"<?xml @encoding='UTF-8'?><a/>", "the XML declaration has something wrong in it"},
    {"<?xml version='1.0'@encoding='UTF-8'?><a/>", "the XML declaration has something wrong in it"},
    {"<?xml@?><a/>", "a blank is missing"},
    {"<!DOCTYPE@><a/>", "a blank is missing"},
    {"<!DOCTYPE @'a'><a/>", "the document type has no name"},
    {"<!DOCTYPE a @b><a/>", "the document type does not end in \">\""},
    {"<!DOCTYPE a SYSTEM @x><a/>", "a value has no quotes"},
    {"<!DOCTYPE a PUBLIC @'{' 's'><a/>", "a public identifier has a character that it may not have"},
    {"<!DOCTYPE a [@<!FRIEND x>]><a/>", "what stands in the document type is no declaration"},
    {"<!DOCTYPE a [@text]><a/>", "what stands in the document type is no declaration"},
    {"<!DOCTYPE a [<!ENTITY @'x'>]><a/>", "a name is missing in a declaration"},
    {"<!DOCTYPE a [<!ENTITY e 'x' @'y'>]><a/>", "a declaration does not end in \">\""},
    {"<!DOCTYPE a [<!ENTITY e '@%p;'>]><a/>", "\"%\" stands in a declaration"},
    {"<!DOCTYPE a [<!ENTITY e '&@ '>]><a/>", "\"&\" begins no reference"},
    {"<!DOCTYPE a [<!ENTITY % e SYSTEM 's' @NDATA n>]><a/>", "a declaration does not end in \">\""},
    {"<!DOCTYPE a [<!ELEMENT a (@&x;)>]><a/>", "a declaration does not end in \">\""},
    {"<!DOCTYPE a [<!ATTLIST a x CDATA '@<'>]><a/>", "\"<\" stands in the value of an attribute"},
    {"<!DOCTYPE a [<!ATTLIST a x CDATA '@&later;'><!ENTITY later ''>]><a/>",
     "the entity \"later\" is not declared"},
    {"<!DOCTYPE a [<!NOTATION n @x>]><a/>", "a notation has no identifier"},
    {"<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;@&f;</a>", "the entity \"f\" is not declared"},
    {"<!DOCTYPE a [<!ENTITY % e 'x'>]><a>@&e;</a>", "the entity \"e\" is not declared"},
    {"<!DOCTYPE a [<!ENTITY e SYSTEM 's' NDATA n>]><a>@&e;</a>", "the entity \"e\" is no text"},
    {"<!DOCTYPE a [<!ENTITY e SYSTEM 's'>]><a x='@&e;'/>",
     "the entity \"e\" of an attribute stands in another file"},
    {"<?xml version='1.0' standalone='yes'?><!DOCTYPE a SYSTEM 's'><a>@&f;</a>",
     "the entity \"f\" is not declared"},
};

const char *const kWellFormed[] = {
    "<a/>",
    "\xEF\xBB\xBF<a/>",
    "<?xml version='1.0'?><a/>",
    "<?xml version = \"1.1\" encoding = 'ISO-8859-1' standalone = \"no\" ?>\r\n<a />\n",
    "<!----><?x?><?xml-style a=\">\"?><a></a\n><!-- - - --><?y ?"
    "?>",
    "<a x='\"' y=\"'>\" xy='&lt;&#x10FFFF;&#9;'\n\tx:y=''/>",
    "<a>]] ]>> &gt;&apos;&quot;&amp;&#00065;\x7F\xC2\x80 -- ?> \xF4\x8F\xBF\xBF</a>",
    "<a><![CDATA[<&]] ]]]]><![CDATA[]]></a>",
    "<_><:.-1/><\xC3\x80\xC2\xB7\xF0\x90\x80\x80/></_>",
    "<?xmlx?><a/>",
    "<?xml\xC3\xA9?><a/>",
    "<!DOCTYPE a><a/>",
    "<!DOCTYPE a [ ]><a/>",
    "<!DOCTYPE a PUBLIC '-//x' 's' [<!-- ]> --><?p ]>?>\n%q;]\t><a>&unknown;</a>",
    "<!DOCTYPE a SYSTEM 's'><a>&unknown;</a>",
    "<!DOCTYPE a [<!ENTITY e '&#60;b>&later;\"'><!ENTITY f SYSTEM 's'>]><a x='&e;'>&e;&f;</a>",
    "<!DOCTYPE a [<!ELEMENT a (#PCDATA|b)*><!ELEMENT b EMPTY><!ATTLIST a x CDATA #IMPLIED y (p|q) \"p\">"
    "<!NOTATION n PUBLIC '-'><!NOTATION o SYSTEM 's'><!ENTITY % r PUBLIC '' '>'>]><a/>",
};

std::string Described(const std::string &text)
{
    const std::optional<XmlFault> fault = FindXmlFault(text);
    if (!fault)
        return "well-formed: " + text;
    return text + "\n" + std::to_string(fault->offset) + " " + std::to_string(fault->otherOffset) + " " +
           fault->what;
}

void ExpectFaults(std::span<const Case> cases)
{
    for (const Case &one : cases) {
        const Marked marked(one.marked);
        EXPECT_EQ(Described(marked.text), marked.text + "\n" + std::to_string(marked.fault) + " " +
                                              std::to_string(marked.other) + " " + one.what);
    }
}

TEST(WellFormedTest, AFaultIsFoundWhereItIs)
{
    ExpectFaults(kFaultsInside);
    ExpectFaults(kFaultsOutside);
}

TEST(WellFormedTest, WhatIsWellFormedHasNoFault)
{
    for (const char *text : kWellFormed)
        EXPECT_EQ(Described(text), std::string("well-formed: ") + text);
}

/// Characters are told apart in blocks: each case is tried at each place in one.
TEST(WellFormedTest, ItDoesNotMatterWhereInATextAThingStands)
{
    for (std::size_t shift = 0; shift < 70; ++shift) {
        const std::string start = "<Root x=\"1\">text" + std::string(shift, 'x');
        for (const Case &one : kFaultsInside) {
            const Marked marked(one.marked);
            const XmlFault fault = FindXmlFault(start + marked.text + "</Root>").value_or(XmlFault());
            EXPECT_EQ(fault.offset, start.size() + marked.fault) << one.marked << shift;
            EXPECT_EQ(fault.what, one.what);
        }
        for (const char *content : {kWellFormed[5], kWellFormed[6], kWellFormed[7], kWellFormed[8]}) {
            const std::string text = start + content + "</Root>";
            EXPECT_EQ(Described(text), "well-formed: " + text);
        }
    }
}

TEST(WellFormedTest, ATextThatIsCutSaysSoAtItsEndAndWhatIsOpen)
{
    const std::string whole = "<?xml version='1.0' encoding='x' standalone='yes'?><!-- c --><?p q?>\n"
                              "<!DOCTYPE a PUBLIC 'p' 's' [<!ENTITY e '&#65;'><!-- c --><?p?>%q;\n"
                              "<!ENTITY u SYSTEM 's' NDATA n><!ATTLIST a x CDATA '&lt;'>]>\n"
                              "<a x='&e;' y=\"z\"><b><c/>]]&amp;&#x41;<![CDATA[x]]></b \n><!-- d --></a>";
    ASSERT_FALSE(FindXmlFault(whole)) << Described(whole);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::optional<XmlFault> fault = FindXmlFault(whole.substr(0, length));
        ASSERT_TRUE(fault) << length;
        EXPECT_EQ(fault->offset, length) << Described(whole.substr(0, length));
        EXPECT_TRUE(fault->what.starts_with("the text ends ")) << fault->what;
        EXPECT_LE(fault->otherOffset, length);
    }
    const std::pair<const char *, const char *> cases[] = {
        {"<a><b/><c>x~</", "the text ends in an end tag"},
        {"<a><c/><c>~<d x='1' ", "the text ends in a start tag"},
        {"<a><c>~<!-- x --", "the text ends in a comment"},
        {"<a>~<c>text&am", "the text ends in an element"},
        {"<a>~<c>text", "the text ends in an element"},
        {"<a><c>~<![CDATA[text]]", "the text ends in a CDATA section"},
        {"<a><c>~<?instruction ?", "the text ends in an instruction"}};
    for (const auto &[cut, what] : cases) {
        const Marked marked(cut);
        const XmlFault fault = FindXmlFault(marked.text).value();
        EXPECT_EQ(fault.what, what);
        EXPECT_EQ(fault.otherOffset, marked.other) << cut;
        const std::vector<std::size_t> open = {0, marked.text.rfind("<c>")};
        EXPECT_EQ(fault.openElements, open) << cut;
    }
}

TEST(WellFormedTest, AnElementMayHaveAnyNumberOfAttributesButNoneTwice)
{
    std::string start = "<a";
    for (int i = 0; i < 100'000; ++i)
        start += " x" + std::to_string(i) + "=''";
    EXPECT_FALSE(FindXmlFault(start + "/>"));
    for (const char *name : {"x0", "x15", "x16", "x17", "x99999"}) {
        const std::string again = std::string(" ") + name + "=''";
        const XmlFault fault = FindXmlFault(start + again + "/>").value();
        EXPECT_EQ(fault.offset, start.size() + 1);
        EXPECT_EQ(fault.otherOffset, start.find(again) + 1);
    }
}

TEST(WellFormedTest, APassTellsWhatElseIsInTheText)
{
    const auto nested = [](int depth) {
        std::string text;
        for (int i = 0; i < depth; ++i)
            text += "<a>";
        return text;
    };
    EXPECT_FALSE(ScanXml(nested(kDeepestNesting)).tooDeep);
    for (const char *innermost : {"<b/>", "<b>", "<b>x</b><c>"})
        EXPECT_EQ(ScanXml(nested(kDeepestNesting) + innermost).tooDeep, 3u * kDeepestNesting);
    for (const char *text : {"<a><!-- --></a>", "<a><?x?></a>", "<a><![CDATA[]]></a>", "<a/><?x?>"})
        EXPECT_TRUE(ScanXml(text).hasSections) << text;
    EXPECT_FALSE(ScanXml("<?xml version='1.0'?><a>!?</a>").hasSections);
    EXPECT_TRUE(ScanXml("<!DOCTYPE a><a/>").hasDocumentType);
}

std::string Utf8(std::u32string_view text)
{
    return QString::fromUcs4(text.data(), static_cast<qsizetype>(text.size())).toStdString();
}

/// Whether Qt's reader takes a text to its end, which is strict but for what it takes into names.
bool QtTakes(const std::string &text)
{
    QXmlStreamReader reader(QString::fromStdString(text));
    reader.setNamespaceProcessing(false);
    while (!reader.atEnd())
        reader.readNext();
    return !reader.hasError();
}

TEST(WellFormedTest, CharactersAreThoseOfQt)
{
    for (char32_t c = 1; c < 0x110000; c += c < 0x10000 ? 1 : 509) {
        if (c >= 0xD800 && c < 0xE000)
            continue;
        const std::string utf8 = Utf8({&c, 1});
        const std::string text = "<a>" + utf8 + "</a>";
        ASSERT_EQ(!FindXmlFault(text), QtTakes(text)) << text << " U+" << std::hex << int(c);
        // Qt's names are of an older edition, which has fewer.
        for (const std::string &tag : {"<" + utf8 + "/>", "<a" + utf8 + "/>"})
            ASSERT_TRUE(!FindXmlFault(tag) || !QtTakes(tag) || c == 0xFFFE)
                << tag << " U+" << std::hex << int(c);
    }
}

/// A text with a few pieces of others put in, taken out or doubled.
std::u32string Mutated(std::u32string text, std::mt19937 &generator)
{
    static const QStringList pieces =
        QString("<|>|/|\"|'|&|&amp;|&#0;|&#65;|&#xFFFE;|&x;|--|-->|]]>|<![CDATA[|"
                "?>|<!--|<?|<?xml |=| |\n|a|b|x='1'|1|<a>|</a>|<b/>|</b>|-|\u00E9|;|#|&lt;")
            .split('|');
    const auto pieceCount = static_cast<std::size_t>(pieces.size());
    const auto roll = [&](std::size_t sides) {
        return std::uniform_int_distribution<std::size_t>(0, sides - 1)(generator);
    };
    for (std::size_t count = 1 + roll(3); count > 0; --count) {
        const std::size_t at = roll(text.size() + 1);
        const std::size_t length = std::min(roll(6), text.size() - at);
        const std::u32string piece = roll(5) == 0
                                         ? text.substr(at, length)
                                         : pieces[static_cast<int>(roll(pieceCount))].toStdU32String();
        if (roll(2) == 0)
            text.erase(at, length);
        if (roll(3) != 0)
            text.insert(at, piece);
    }
    return text;
}

TEST(WellFormedTest, MutatedTextsAreWellFormedWhereQtSaysSo)
{
    const std::u32string texts[] = {
        U"<!-- c --><a x=\"1\" y='2'>t&amp;&#65;<b/><![CDATA[x]] ]]]><?p i?>]] ></a><?q?>",
        U"<a>\n <b c=\"d\" e=\"f\">g</b>\n <b/>\n</a>\n", U"<\u00E9t\u00E9 x=''>\u4E2D</\u00E9t\u00E9>"};
    std::mt19937 generator(13);
    int wellFormed = 0;
    for (std::size_t i = 0; i < 60'000; ++i) {
        const std::string text = Utf8(Mutated(texts[i % 3], generator));
        const bool isTaken = QtTakes(text);
        ASSERT_EQ(!FindXmlFault(text), isTaken) << Described(text);
        // The parser behind the check has to take it whole, too.
        ASSERT_EQ(!XmlDocument(FromUtf8(text)).Root().IsNull(), isTaken) << text;
        wellFormed += isTaken;
    }
    EXPECT_GT(wellFormed, 6'000);
}

} // namespace
