#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/DomBridge.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

#include <QDomDocument>
#include <gtest/gtest.h>

namespace
{

using namespace marlet::project;

std::string FromDom(const QDomElement &element)
{
    return ToUtf8(XmlFromDom(&element));
}

TEST(DomBridgeTest, AnElementComesOutAsTextWithSortedAttributes)
{
    QDomDocument document;
    document.setContent(
        QString("<Host><Effect><b>t&amp;<![CDATA[<x>]]></b><!-- c --><?p i?><Empty/></Effect></Host>"));
    QDomElement effect = document.documentElement().firstChildElement();
    for (const char *name : {"zeta", "Alpha", "beta", "gamma", "delta", "x1", "x10", "x2"})
        effect.setAttribute(name, QString("\"") + name + "\n");
    EXPECT_EQ(FromDom(effect),
              "<Effect Alpha=\"&quot;Alpha&#xa;\" beta=\"&quot;beta&#xa;\" delta=\"&quot;delta&#xa;\" "
              "gamma=\"&quot;gamma&#xa;\" x1=\"&quot;x1&#xa;\" x10=\"&quot;x10&#xa;\" x2=\"&quot;x2&#xa;\" "
              "zeta=\"&quot;zeta&#xa;\">\n"
              " <b>t&amp;&lt;x></b>\n"
              " <Empty/>\n"
              "</Effect>\n");
    EXPECT_EQ(FromDom(QDomElement()), "");
}

TEST(DomBridgeTest, WhatHasNoXmlNameIsLeftOut)
{
    QDomDocument document;
    QDomElement element = document.createElement("a");
    element.setAttribute("bad name", "1");
    element.setAttribute("good", "2");
    element.appendChild(document.createElement("1st"));
    element.appendChild(document.createElement("second"));
    EXPECT_EQ(FromDom(element), "<a good=\"2\">\n <second/>\n</a>\n");
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
    EXPECT_EQ(root.firstChildElement("Name").text(), " two words ");
    EXPECT_EQ(root.attribute("b"), QString::fromUtf16(u"\n\u00E9"));

    QDomElement parent = document.createElement("Parent");
    parent.appendChild(document.createElement("First"));
    AppendXmlToDom(kText, &document, &parent);
    EXPECT_EQ(parent.childNodes().count(), 2);
    const QDomElement appended = parent.lastChildElement();
    EXPECT_EQ(FromDom(appended), ToUtf8(kText));
}

TEST(DomBridgeTest, PartOfATextGoesIntoADocumentAndBackIntoATextUnderWay)
{
    const XmlDocument text(kText);
    QDomDocument document;
    AppendXmlToDom(text.Root().Find("List"), &document, &document);
    AppendXmlToDom(text.Root().Find("Absent"), &document, &document);
    const QDomElement list = document.documentElement();
    const WideString written = XmlText([&list](XmlWriter &writer) {
        const XmlElement root(writer, "Root");
        writer.Child("First", 1);
        WriteDom(writer, &list);
        const QDomElement nothing;
        WriteDom(writer, &nothing);
        writer.Child("Last", 2);
    });
    EXPECT_EQ(ToUtf8(written), "<Root>\n"
                               " <First>1</First>\n"
                               " <List>\n"
                               "  <Item a=\"1\"/>\n"
                               "  <Item a=\"2\">&lt;</Item>\n"
                               " </List>\n"
                               " <Last>2</Last>\n"
                               "</Root>\n");
}

TEST(DomBridgeTest, BlanksBetweenElementsAreNoText)
{
    QDomDocument document;
    AppendXmlToDom(u"<a> <!-- c --> <b> <!-- c --></b> text <c/> </a>", &document, &document);
    const QDomElement root = document.documentElement();
    EXPECT_EQ(root.childNodes().count(), 3);
    EXPECT_EQ(root.text(), "  text ");
}

TEST(DomBridgeTest, ATextThatIsNotWholeAddsNothing)
{
    QDomDocument document;
    AppendXmlToDom(u"<a><b/>", &document, &document);
    EXPECT_TRUE(document.documentElement().isNull());
}

} // namespace
