#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

#include <QDomDocument>
#include <gtest/gtest.h>

#include <random>

namespace
{

using namespace marlet::project;

QString Qt(std::u16string_view text)
{
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

/// Texts that need care, none with a character that XML cannot hold.
const std::u16string kTexts[] = {
    u"",         u" \t ",         u"\n",           u"\r\n",         u"a\rb\nc\td",
    u" blanks ", u"<b a=\"\">",   u"'\"'",         u"]]>",          u"]]]>>",
    u"]>]]",     u"\u00E9\uFDD0", u"\uFFFD\uE000", u"\u4E2D\u007F", u"\u0085\u2028",
    u"z\uFEFF",  u"&#0;&lt;&",    u"\U0010FFFF"};

/// Builds the same random tree in a writer and in a document of Qt's.
class TwinTree
{
public:
    explicit TwinTree(unsigned int seed) : generator_(seed)
    {
        QDomElement root = document_.createElement("Root");
        document_.appendChild(root);
        const XmlElement element(writer_, "Root");
        while (elements_ < 4000)
            Fill(root, 1);
    }

    std::string Written() { return ToUtf8(writer_.Take()); }
    std::string Reference() const { return document_.toString(1).toStdString(); }

private:
    int Roll(int sides) { return std::uniform_int_distribution(0, sides - 1)(generator_); }

    void AddElement(QDomElement &parent, int depth)
    {
        static const char *const names[] = {"A", "LongerName", "\xC3\xA9l\xC3\xA9ment"};
        const char *const name = names[Roll(3)];
        ++elements_;
        QDomElement child = document_.createElement(QString::fromUtf8(name));
        parent.appendChild(child);
        const XmlElement element(writer_, name);
        if (Roll(2) == 0) {
            const std::u16string &value = kTexts[Roll(std::size(kTexts))];
            child.setAttribute("value", Qt(value));
            writer_.Attribute("value", value);
        }
        if (depth < 12)
            Fill(child, depth + 1);
    }

    void Fill(QDomElement &parent, int depth)
    {
        bool behindText = parent.lastChild().isText();
        for (int count = Roll(4); count > 0; --count) {
            // Two texts side by side are one in a file, but not where Qt escapes a "]]>".
            behindText = !behindText && Roll(4) == 0;
            if (!behindText) {
                AddElement(parent, depth);
                continue;
            }
            const std::u16string &text = kTexts[Roll(std::size(kTexts))];
            parent.appendChild(document_.createTextNode(Qt(text)));
            if (Roll(2) == 0)
                writer_.Text(text);
            else
                writer_.Text(ToUtf8(text));
        }
    }

    std::mt19937 generator_;
    int elements_ = 0;
    QDomDocument document_;
    XmlWriter writer_;
};

TEST(XmlWriterTest, LayoutIsThatOfQtsDocuments)
{
    for (unsigned int seed = 0; seed < 5; ++seed) {
        TwinTree tree(seed);
        const std::string written = tree.Written();
        const std::string reference = tree.Reference();
        EXPECT_GT(written.size(), 100'000u);
        const auto [at, other] = std::ranges::mismatch(written, reference);
        EXPECT_TRUE(written == reference)
            << std::string(at, std::min(at + 80, written.end())) << "\ninstead of\n"
            << std::string(other, std::min(other + 80, reference.end()));
    }
}

TEST(XmlWriterTest, ATextInOnePieceIsThatOfAllPieces)
{
    const auto write = [](XmlWriter &writer) {
        const XmlElement root(writer, "Root");
        for (int i = 0; i < 10'000; ++i)
            writer.Child("Text", WideString(kTexts[static_cast<std::size_t>(i) % std::size(kTexts)]));
    };
    const std::string pieces = ToUtf8(XmlText(write));
    EXPECT_GT(pieces.size(), 200'000u) << "several pieces";
    for (const std::size_t expected : {std::size_t{0}, pieces.size()}) {
        XmlWriter writer(expected);
        write(writer);
        EXPECT_TRUE(writer.TakeUtf8() == pieces) << expected;
    }
}

TEST(XmlWriterTest, EveryTextReadsBackAsItself)
{
    for (const std::u16string &first : kTexts) {
        for (const std::u16string &second : kTexts) {
            const WideString text = first + second;
            const WideString xml = XmlText([&text](XmlWriter &writer) {
                const XmlElement root(writer, "Root");
                writer.Attribute("a", text);
                writer.Child("Text", text);
            });
            const XmlDocument document(xml);
            WideString attribute;
            WideString child;
            document.Root().Attribute("a", attribute);
            document.Root().Child("Text", child);
            EXPECT_EQ(ToUtf8(attribute), ToUtf8(text)) << ToUtf8(xml);
            EXPECT_EQ(ToUtf8(child), ToUtf8(text)) << ToUtf8(xml);
        }
    }
}

TEST(XmlWriterTest, CharactersThatXmlCannotHoldAreLeftOut)
{
    WideString text = u"]]";
    for (char16_t c = 0; c < 0x20; ++c)
        if (c != u'\t' && c != u'\n' && c != u'\r')
            text += c;
    for (const int c : {0xD800, 0xDBFF, 0xFFFE, 0xDC00, 0xFFFF, 0xDFFF, 0xD83D, 0xDE00, 0xD83D})
        text += static_cast<char16_t>(c);
    text += u">";
    const WideString xml = XmlText([&text](XmlWriter &writer) {
        const XmlElement root(writer, "Root");
        writer.Attribute("a", text);
        writer.Text(ToUtf8(u"\uFFFE") + "\x01" + "x");
        writer.Text(text);
    });
    EXPECT_EQ(ToUtf8(xml), "<Root a=\"]]\xF0\x9F\x98\x80>\">x]]\xF0\x9F\x98\x80></Root>\n");
    EXPECT_TRUE(QDomDocument().setContent(Qt(xml)));
}

void WriteNested(XmlWriter &writer, int depth, bool withChild)
{
    const XmlElement element(writer, "a");
    if (depth > 1)
        WriteNested(writer, depth - 1, withChild);
    else if (withChild)
        writer.Child("b", 1);
}

TEST(XmlWriterTest, NestingIsBoundedAsInReading)
{
    const auto textOf = [](int depth, bool withChild) {
        return XmlText([&](XmlWriter &writer) { WriteNested(writer, depth, withChild); });
    };
    EXPECT_FALSE(XmlDocument(textOf(kDeepestNesting - 1, true)).Root().IsNull());
    EXPECT_THROW(textOf(kDeepestNesting + 1, false), XmlParseException);
    EXPECT_THROW(textOf(kDeepestNesting, true), XmlParseException);
}

} // namespace
