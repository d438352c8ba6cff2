#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/DomBridge.h>
#include <marlet/foundation/xml/XmlReader.h>

#include <QDomDocument>
#include <gtest/gtest.h>

namespace
{

using namespace marlet::project;

std::string FromDom(const QDomElement &element)
{
    return ToUtf8(XmlFromDom(&element));
}

TEST(DomBridgeTest, AnElementComesOutWithSortedAttributesAndOnlyWhatHasAnXmlName)
{
    QDomDocument document;
    document.setContent(
        QString("<Host><Effect><b>t&amp;<![CDATA[<x>]]></b><!-- c --><?p i?><Empty/></Effect></Host>"));
    QDomElement effect = document.documentElement().firstChildElement();
    for (const char *name : {"zeta", "x10", "bad name", "Alpha", "x2"})
        effect.setAttribute(name, "\"\n");
    effect.appendChild(document.createElement("1st"));
    EXPECT_EQ(FromDom(effect),
              "<Effect Alpha=\"&quot;&#xa;\" x10=\"&quot;&#xa;\" x2=\"&quot;&#xa;\" zeta=\"&quot;&#xa;\">\n"
              " <b>t&amp;&lt;x></b>\n"
              " <Empty/>\n"
              "</Effect>\n");
    EXPECT_EQ(FromDom(QDomElement()), "");
}

TEST(DomBridgeTest, NestingIsBounded)
{
    QDomDocument document;
    QDomElement root = document.createElement("a");
    QDomElement innermost = root;
    for (int depth = 1; depth < kDeepestNesting; ++depth)
        innermost = innermost.appendChild(document.createElement("a")).toElement();
    EXPECT_FALSE(XmlDocument(XmlFromDom(&root)).Root().IsNull());
    innermost.appendChild(document.createElement("a"));
    EXPECT_THROW(XmlFromDom(&root), XmlParseException);
}

constexpr char16_t kText[] = u"<Root Version=\"0\" b=\"&#xa;\u00E9\">\n"
                             u" <Name> two words </Name>\n"
                             u" <Blank> </Blank>\n"
                             u" <List>\n"
                             u"  <Item a=\"1\"/>\n"
                             u"  <Item a=\"2\">&lt;</Item>\n"
                             u" </List>\n"
                             u"</Root>\n";

TEST(DomBridgeTest, ATextGoesIntoADocumentAndComesBackAsItWas)
{
    QDomDocument document;
    AppendXmlToDom(kText, &document, &document);
    const QDomElement root = document.documentElement();
    EXPECT_EQ(FromDom(root), ToUtf8(kText));
    EXPECT_EQ(root.attribute("b"), QString::fromUtf16(u"\n\u00E9"));

    QDomElement parent = document.createElement("Parent");
    parent.appendChild(document.createElement("First"));
    AppendXmlToDom(kText, &document, &parent);
    EXPECT_EQ(parent.childNodes().count(), 2);
    const QDomElement appended = parent.lastChildElement();
    EXPECT_EQ(FromDom(appended), ToUtf8(kText));
}

TEST(DomBridgeTest, BlanksBetweenElementsAreNoTextAndWhatIsNotWholeIsNothing)
{
    QDomDocument document;
    AppendXmlToDom(u"<a><b/>", &document, &document);
    EXPECT_TRUE(document.documentElement().isNull());
    AppendXmlToDom(u"<a> <!-- c --> <b> <!-- c --></b> text <c/> </a>", &document, &document);
    EXPECT_EQ(document.documentElement().childNodes().count(), 3);
    EXPECT_EQ(document.documentElement().text(), "  text ");
}

} // namespace
