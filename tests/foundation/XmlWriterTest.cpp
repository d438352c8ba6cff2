#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

#include <QDomDocument>
#include <gtest/gtest.h>

#include <cmath>
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
    u"",
    u"plain",
    u" ",
    u" \t ",
    u"\n",
    u"\r\n",
    u"a\rb\nc\td",
    u" leading and trailing ",
    u"<tag attr=\"x\">&amp;</tag>",
    u"'\"'",
    u"]]>",
    u"]]]>>",
    u"]>]]",
    u"\u00E9\u4E2D\U0001F600\uFFFD\uE000\uFDD0",
    u"\u007F\u0085\u2028\uFEFF",
    u"&#0;&lt;&",
    u"\U0001FFFE\U0010FFFF",
};

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

TEST(XmlWriterTest, ValuesAreWrittenInTheirForms)
{
    const kytl::KyID id = kytl::KyID::FromString("01234567-089a-0bcd-0ef1-021324354657");
    const WideString text = XmlText([&id](XmlWriter &writer) {
        const XmlElement root(writer, "Root", 3);
        writer.Attribute("flag", true);
        writer.Attribute("int", -5);
        writer.Attribute("wide", std::int64_t(-9'000'000'000));
        writer.Attribute("huge", std::uint64_t(18446744073709551615u));
        writer.Attribute("float", 0.1f);
        writer.Attribute("ninth", 16777.217f);
        writer.Attribute("double", 0.1);
        writer.Attribute("id", id);
        writer.Attribute("utf8", "\xC3\xA9<");
        writer.Attribute("enum", static_cast<std::byte>(7));
        writer.Child("Int", -5);
        writer.Child("UInt", 4000000000u);
        writer.Child("Float", 0.1f);
        writer.Child("Double", 0.1);
        writer.Child("Bool", false);
        writer.Child("ID", id);
        writer.Child("Name", WideString(u"\u00E9&"));
        writer.Child("Empty", WideString());
        writer.Child("Color", kytl::KyColorRGBA_32f{0.1f, -0.0f, INFINITY, NAN});
        const XmlElement leaf(writer, "Leaf");
    });
    EXPECT_EQ(ToUtf8(text),
              "<Root Version=\"3\" flag=\"1\" int=\"-5\" wide=\"-9000000000\" huge=\"18446744073709551615\" "
              "float=\"0.1\" ninth=\"16777.217\" double=\"0.10000000000000001\" "
              "id=\"01234567-089a-0bcd-0ef1-021324354657\" utf8=\"\xC3\xA9&lt;\" enum=\"7\">\n"
              " <Int>-5</Int>\n"
              " <UInt>4000000000</UInt>\n"
              " <Float>0.100000001</Float>\n"
              " <Double>0.10000000000000001</Double>\n"
              " <Bool>0</Bool>\n"
              " <ID>01234567-089a-0bcd-0ef1-021324354657</ID>\n"
              " <Name>\xC3\xA9&amp;</Name>\n"
              " <Empty></Empty>\n"
              " <Color R=\"0.1\" G=\"-0\" B=\"inf\" A=\"nan\"/>\n"
              " <Leaf/>\n"
              "</Root>\n");
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

template <class Write> void WriteNested(XmlWriter &writer, int depth, const Write &innermost)
{
    const XmlElement element(writer, "a");
    if (depth > 1)
        WriteNested(writer, depth - 1, innermost);
    else
        innermost(writer);
}

TEST(XmlWriterTest, NestingIsBoundedAsInReading)
{
    const auto textOf = [](int depth, const auto &innermost) {
        return XmlText([&](XmlWriter &writer) { WriteNested(writer, depth, innermost); });
    };
    const auto wordsOf = [&](int depth, const auto &innermost) -> std::string {
        try {
            textOf(depth, innermost);
            return {};
        } catch (const XmlParseException &error) {
            return error.what();
        }
    };
    const auto nothing = [](XmlWriter &) {};
    const auto child = [](XmlWriter &writer) { writer.Child("b", 1); };
    EXPECT_FALSE(XmlDocument(textOf(kDeepestNesting, nothing)).Root().IsNull());
    EXPECT_FALSE(XmlDocument(textOf(kDeepestNesting - 1, child)).Root().IsNull());
    EXPECT_EQ(wordsOf(kDeepestNesting + 1, nothing), "Nesting too deep");
    EXPECT_EQ(wordsOf(kDeepestNesting, child), "Nesting too deep");
}

} // namespace
