#include <tests/support/LayerTexts.h>
#include <tests/support/Texts.h>

#include <gmock/gmock.h>

namespace marlet::test
{
namespace
{

using testing::EndsWith;
using testing::HasSubstr;

constexpr char kFormats[] = "<Formats>"
                            "<Format ID=\"00000005-0000-0000-0000-000000000000\" Size=\"12\""
                            " StrokeWidth=\"0.1\" Tracking=\"1\" Leading=\"-1\">"
                            "<Family>Sans</Family><Style>Bold</Style>"
                            "<StrokeColor R=\"0\" G=\"0.25\" B=\"0.5\" A=\"1\"/>"
                            "<FillColor R=\"1\" G=\"0.75\" B=\"0.5\" A=\"0\"/>"
                            "</Format>"
                            "</Formats>";

struct ReadText {
    TextLayer::TokenList list;
    TextLayer::FormatList formats;
    std::vector<TokenPtr> tokens;
};

ReadText Read(const std::string &xml)
{
    ReadText text;
    TextLayer::Create(u"", 1, 1)->DeserializeTokens(FromUtf8(xml), text.list, text.formats);
    text.tokens = TokensOf(text.list);
    return text;
}

/// A text of the attributes of some tokens.
ReadText ReadTokens(const std::vector<std::string> &tokens, const std::string &formats = kFormats)
{
    std::string xml = "<TextTokens><Tokens>";
    for (const std::string &attributes : tokens)
        xml += "<Tk " + attributes + "/>";
    return Read(xml + "</Tokens>" + formats + "</TextTokens>");
}

std::string FailureOfTokens(const std::string &xml)
{
    try {
        Read(xml);
    } catch (const std::exception &failure) {
        return failure.what();
    }
    return "none";
}

TEST(TextTokens, AreWrittenWithTheFormatsThatTheyUse)
{
    const auto layer = TextLayer::Create(u"", 1, 1);
    layer->GetOrAddFormat(std::make_shared<Format>(Format{{.Data1 = 4}, u"Unused", u"", 1, {}, {}}));
    const auto format = std::make_shared<Format>(
        Format{{.Data1 = 5}, u"S<ns", u"Bold", 12, {1, .75f, .5f, 0}, {0, .25f, .5f, 1}, 0.1f, 16777216, -1});
    layer->GetOrAddFormat(format);
    const TokenPtr first = AddCharacter(*layer, u'\u4E2D', format, {.Data1 = 1});
    AddParagraph(*layer, -3, {.Data1 = 2});
    const TokenPtr last = AddCharacter(*layer, u'\uFF21', nullptr, {.Data1 = 3});
    EXPECT_EQ(ToUtf8(layer->SerializeTokens(first, last)),
              "<TextTokens>\n"
              " <Tokens>\n"
              "  <Tk Tp=\"0\" ID=\"00000001-0000-0000-0000-000000000000\""
              " Ft=\"00000005-0000-0000-0000-000000000000\" Ch=\"20013\"/>\n"
              "  <Tk Tp=\"1\" ID=\"00000002-0000-0000-0000-000000000000\" Jf=\"-3\"/>\n"
              "  <Tk Tp=\"0\" ID=\"00000003-0000-0000-0000-000000000000\" Ch=\"65313\"/>\n"
              " </Tokens>\n"
              " <Formats>\n"
              "  <Format ID=\"00000005-0000-0000-0000-000000000000\" Size=\"12\" StrokeWidth=\"0.1\""
              " Tracking=\"16777216\" Leading=\"-1\">\n"
              "   <Family>S&lt;ns</Family>\n"
              "   <Style>Bold</Style>\n"
              "   <StrokeColor R=\"0\" G=\"0.25\" B=\"0.5\" A=\"1\"/>\n"
              "   <FillColor R=\"1\" G=\"0.75\" B=\"0.5\" A=\"0\"/>\n"
              "  </Format>\n"
              " </Formats>\n"
              "</TextTokens>\n");
}

TEST(TextTokens, ComeBackWithTheirIDs)
{
    const std::string xml = "<TextTokens><Tokens>"
                            "<Tk Tp='0' ID='00000001-0000-0000-0000-000000000000'"
                            " Ft='00000005-0000-0000-0000-000000000000' Ch='55356'/>"
                            "<Tk Tp='1' ID='00000002-0000-0000-0000-000000000000' Jf='-3'/>"
                            "</Tokens>";
    const std::string orders[] = {xml + kFormats + "</TextTokens>",
                                  Replaced(xml, "<Tokens>", kFormats + std::string("<Tokens>")) +
                                      "</TextTokens>"};
    for (const std::string &order : orders) {
        const ReadText text = Read(order);
        ASSERT_EQ(text.tokens.size(), 2u);
        ASSERT_EQ(text.formats.size(), 1u);
        EXPECT_EQ(text.tokens[0]->type, Token::kCharacter);
        EXPECT_EQ(text.tokens[0]->id, KyID{.Data1 = 1});
        EXPECT_EQ(text.tokens[0]->character, u'\xD83C');
        EXPECT_EQ(text.tokens[0]->format, text.formats[0]);
        EXPECT_EQ(text.tokens[1]->type, Token::kParagraph);
        EXPECT_EQ(text.tokens[1]->id, KyID{.Data1 = 2});
        EXPECT_EQ(text.tokens[1]->justification, TextLayer::JustificationType{-3});
        EXPECT_EQ(text.tokens[1]->format, nullptr);
        const Format &format = *text.formats[0];
        EXPECT_EQ(format.id, KyID{.Data1 = 5});
        EXPECT_EQ(format.family, u"Sans");
        EXPECT_EQ(format.style, u"Bold");
        EXPECT_EQ(format.size, 12);
        EXPECT_EQ(format.strokeWidth, 0.1f);
        EXPECT_EQ(format.tracking, 1);
        EXPECT_EQ(format.leading, -1);
        EXPECT_EQ(format.strokeColor, (kytl::KyColorRGBA_32f{0, .25f, .5f, 1}));
        EXPECT_EQ(format.fillColor, (kytl::KyColorRGBA_32f{1, .75f, .5f, 0}));
    }
}

TEST(TextTokens, LackAFormatThatIsNotThere)
{
    for (const char *format : {"", "Ft=''", "Ft='00000006-0000-0000-0000-000000000000'"}) {
        const ReadText text =
            ReadTokens({"ID='00000001-0000-0000-0000-000000000000' Tp='0' Ch='97' " + std::string(format)});
        ASSERT_EQ(text.tokens.size(), 1u);
        EXPECT_EQ(text.tokens[0]->format, nullptr);
    }
}

TEST(TextTokens, TakeDefaultsForWhatIsAbsentOrOutOfRange)
{
    const std::string id = "ID='00000001-0000-0000-0000-000000000000' ";
    const ReadText text = ReadTokens({id + "Tp='0'", id + "Tp='2' Ch='97'", id + "Tp='0' Ch='65536'",
                                      id + "Tp='-1' Jf='1'", id + "Tp='0' Ch='65535'", id + "Tp='1'",
                                      "ID='00000000-0000-0000-0000-000000000000' Tp='1'"});
    ASSERT_EQ(text.tokens.size(), 5u);
    EXPECT_EQ(text.tokens[0]->character, 0);
    EXPECT_EQ(text.tokens[1]->character, 0);
    EXPECT_EQ(text.tokens[2]->character, 65535);
    EXPECT_EQ(text.tokens[3]->justification, TextLayer::JustificationType{0});
    EXPECT_FALSE(text.tokens[4]->id.IsNull());
}

TEST(TextTokens, HaveTheFirstOfSeveralFormatsWithOneID)
{
    const std::string twice = Replaced(std::string(kFormats) + kFormats, "</Formats><Formats>", "");
    const std::string other =
        twice.substr(0, twice.rfind("Sans")) + "Serif" + twice.substr(twice.rfind("Sans") + 4);
    const ReadText text = ReadTokens({"ID='00000001-0000-0000-0000-000000000000' Tp='0' Ch='97' "
                                      "Ft='00000005-0000-0000-0000-000000000000'"},
                                     other);
    ASSERT_EQ(text.formats.size(), 2u);
    EXPECT_EQ(text.formats[1]->family, u"Serif");
    EXPECT_EQ(text.tokens[0]->format, text.formats[0]);

    const auto layer = TextLayer::Create(u"", 1, 1);
    AddCharacter(*layer, u'a', layer->GetOrAddFormat(text.formats[0]));
    layer->GetOrAddFormat(text.formats[1]);
    const std::string saved = TextOf(*layer);
    EXPECT_THAT(saved, HasSubstr("Serif"));
    EXPECT_EQ(TextOf(*ReadLayer(saved)), saved);
    const auto clone = std::static_pointer_cast<TextLayer>(layer->Clone(KyID()));
    EXPECT_EQ(clone->Text().first->format->family, u"Sans");
}

TEST(TextTokens, FailWithTheWordsOfWhatIsMissing)
{
    const std::string token = "<Tk Tp='0' ID='00000001-0000-0000-0000-000000000000' Ft='' Ch='97'/>";
    const std::string text = "<TextTokens><Tokens>" + token + "</Tokens>" + kFormats + "</TextTokens>";
    const std::string malformed = "Cannot construct KyID from string";
    const struct {
        std::string what;
        std::string by;
        std::string failure;
    } kCases[] = {
        {"Tk", "Tk", "none"},
        {"Tp=", "tp=", "Tk is missing attribute Tp\n"},
        {"Tk Tp='0' ID=", "Tk id=", "Tk is missing attribute ID\n"},
        {"ID='0", "ID='x", malformed},
        {"Ft=''", "Ft='x'", malformed},
        {"Size=", "size=", "Format is missing attribute Size\n"},
        {"ID=\"00000005-0000-0000-0000-000000000000\" Size", "size", "Format is missing attribute ID\n"},
        {"StrokeWidth=", "w=", "Format is missing attribute StrokeWidth\n"},
        {"Tracking=", "t=", "Format is missing attribute Tracking\n"},
        {"Leading=", "l=", "Format is missing attribute Leading\n"},
        {"<Family>Sans</Family>", "", "Missing element\nFamily"},
        {"<Style>Bold</Style>", "", "Missing element\nStyle"},
        {"<StrokeColor ", "<Stroke ", "Missing element\nStrokeColor"},
        {"<FillColor ", "<Fill ", "Missing element\nFillColor"},
        {"R=\"1\" ", "", "FillColor is missing attribute R\n"},
        {"<Tokens>" + token + "</Tokens>", "", "Missing element\nTokens"},
        {kFormats, "", "Missing element\nFormats"},
        {"<Tokens>" + token + "</Tokens>" + kFormats, "", "Missing element\nFormats"},
        {"</TextTokens>", "", "Wrong tag name\nTextTokens"},
    };
    for (const auto &c : kCases)
        EXPECT_EQ(FailureOfTokens(Replaced(text, c.what, c.by)), c.failure) << c.what;
}

TEST(TextTokens, ReplaceWhatStoodInTheLists)
{
    const auto layer = TextLayer::Create(u"", 1, 1);
    AddCharacter(*layer, u'a');
    TextLayer::FormatList formats;
    formats.Add(std::make_shared<Format>());
    layer->DeserializeTokens(u"<TextTokens><Tokens/><Formats/></TextTokens>", layer->Text(), formats);
    EXPECT_EQ(layer->Text().first, nullptr);
    EXPECT_TRUE(layer->Text().last.expired());
    EXPECT_TRUE(formats.IsEmpty());
}

TEST(TextTokens, AreWrittenFromOneToAnother)
{
    const auto layer = TextLayer::Create(u"", 1, 1);
    std::vector<TokenPtr> tokens;
    for (int i = 0; i < 4; ++i)
        tokens.push_back(AddCharacter(*layer, char16_t(u'a' + i), FormatOfSize(*layer, i)));
    const auto stranger = TextLayer::CreateCharToken(u'z', nullptr, {});
    const struct {
        TokenPtr first;
        TokenPtr last;
        std::string characters;
    } kCases[] = {
        {tokens[1], tokens[1], "b"},  {tokens[0], tokens[2], "abc"}, {tokens[1], nullptr, "bcd"},
        {tokens[2], tokens[0], "cd"}, {tokens[0], stranger, "abcd"}, {nullptr, nullptr, ""},
        {nullptr, tokens[0], ""},     {stranger, tokens[0], "z"},
    };
    for (const auto &c : kCases) {
        const ReadText text = Read(ToUtf8(layer->SerializeTokens(c.first, c.last)));
        std::string characters;
        std::vector<FormatPtr> formats;
        for (const TokenPtr &token : text.tokens) {
            characters += static_cast<char>(token->character);
            if (token->format)
                formats.push_back(token->format);
        }
        EXPECT_EQ(characters, c.characters);
        EXPECT_THAT(text.formats, testing::ElementsAreArray(formats));
    }
}

TEST(TextTokens, KeepEveryUnitOfAText)
{
    const auto layer = TextLayer::Create(u"", 1, 1);
    const WideString units = WideString(u"a\u05D0\U0001F3AC<&\0\t", 8) + u'\xD800' + u'\xFFFF';
    for (const char16_t unit : units)
        AddCharacter(*layer, unit, FormatOfSize(*layer, unit % 3));
    FormatOfSize(*layer, 50);
    const std::string saved = TextOf(*layer);
    EXPECT_THAT(saved, testing::Not(HasSubstr("Size=\"50\"")));
    const auto read = std::static_pointer_cast<TextLayer>(ReadLayer(saved));
    WideString characters;
    for (const TokenPtr &token : TokensOf(read->Text())) {
        characters += token->character;
        EXPECT_EQ(token->format->size, token->character % 3);
    }
    EXPECT_EQ(characters, units);
    EXPECT_EQ(TextOf(*read), saved);
}

} // namespace
} // namespace marlet::test
