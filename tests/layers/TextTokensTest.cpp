#include <tests/support/LayerTexts.h>
#include <tests/support/Texts.h>

#include <gmock/gmock.h>

#include <type_traits>

namespace marlet::test
{
namespace
{

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

std::string FailureOfTokens(const std::string &xml)
{
    try {
        Read(xml);
    } catch (const std::exception &failure) {
        return failure.what();
    }
    return "none";
}

TEST(TextTokens, ComeBackWithTheirIDs)
{
    const std::string tokens = "<Tokens>"
                               "<Tk Tp='0' ID='00000001-0000-0000-0000-000000000000'"
                               " Ft='00000005-0000-0000-0000-000000000000' Ch='55356'/>"
                               "<Tk Tp='1' ID='00000002-0000-0000-0000-000000000000' Jf='-3'/>"
                               "</Tokens>";
    for (const std::string &order : {tokens + kFormats, kFormats + tokens}) {
        const ReadText text = Read("<TextTokens>" + order + "</TextTokens>");
        ASSERT_EQ(text.tokens.size(), 2u);
        ASSERT_EQ(text.formats.size(), 1u);
        EXPECT_EQ(text.tokens[0]->id, KyID{.Data1 = 1});
        EXPECT_EQ(text.tokens[0]->character, u'\xD83C');
        EXPECT_EQ(text.tokens[0]->format, text.formats[0]);
        EXPECT_EQ(text.tokens[1]->type, Token::kParagraph);
        EXPECT_EQ(text.tokens[1]->justification, TextLayer::JustificationType{-3});
        EXPECT_EQ(text.tokens[1]->format, nullptr);
    }
}

TEST(TextTokens, TakeDefaultsForWhatIsAbsentOrOutOfRange)
{
    const ReadText text = Read(
        std::string(
            "<TextTokens><Tokens>"
            "<Tk ID='00000000-0000-0000-0000-000000000000' Tp='0' Ft='00000006-0000-0000-0000-000000000000'/>"
            "<Tk ID='00000000-0000-0000-0000-000000000000' Tp='2' Ch='97'/>"
            "<Tk ID='00000000-0000-0000-0000-000000000000' Tp='0' Ch='65536'/>"
            "<Tk ID='00000000-0000-0000-0000-000000000000' Tp='-1' Jf='1'/>"
            "<Tk ID='00000000-0000-0000-0000-000000000000' Tp='0' Ch='65535'/>"
            "<Tk ID='00000000-0000-0000-0000-000000000000' Tp='1'/>"
            "</Tokens>") +
        kFormats + "</TextTokens>");
    ASSERT_EQ(text.tokens.size(), 4u);
    EXPECT_EQ(text.tokens[0]->character, 0);
    EXPECT_EQ(text.tokens[0]->format, nullptr);
    EXPECT_FALSE(text.tokens[0]->id.IsNull());
    EXPECT_EQ(text.tokens[1]->character, 0);
    EXPECT_EQ(text.tokens[2]->character, 65535);
    EXPECT_EQ(text.tokens[3]->justification, TextLayer::JustificationType{0});
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
        {"ID='0", "ID='x", malformed},
        {"Ft=''", "Ft='x'", malformed},
        {"ID=\"0", "ID=\"x", malformed},
        {"ID=\"00000005-0000-0000-0000-000000000000\" Size=\"12\" StrokeWidth=\"0.1\" Tracking=\"1\""
         " Leading=\"-1\"><Family>Sans</Family>",
         "ID=\"x\" Size=\"12\" StrokeWidth=\"0.1\" Tracking=\"1\" Leading=\"-1\">",
         "Missing element\nFamily"},
        {"ID=\"00000005-0000-0000-0000-000000000000\" Size=\"12\" StrokeWidth=\"0.1\" Tracking=\"1\""
         " Leading=\"-1\"><Family>Sans</Family><Style>Bold</Style>",
         "ID=\"x\" Size=\"12\" StrokeWidth=\"0.1\" Tracking=\"1\" Leading=\"-1\"><Family>Sans</Family>",
         "Missing element\nStyle"},
        {"<Tokens>" + token + "</Tokens>", "", "Missing element\nTokens"},
        {"<Tokens>" + token + "</Tokens>" + kFormats, "", "Missing element\nFormats"},
        {"</TextTokens>", "", "Wrong tag name\nTextTokens"},
    };
    for (const auto &c : kCases)
        EXPECT_EQ(FailureOfTokens(Replaced(text, c.what, c.by)), c.failure) << c.what;
}

// Hosts override the one and call the other by these types.
static_assert(std::is_same_v<decltype(&TextLayer::SerializeTokens),
                             WideString (TextLayer::*)(const TokenPtr &, const TokenPtr &)>);
static_assert(std::is_same_v<decltype(&TextLayer::CreateCharToken),
                             TokenPtr (*)(unsigned short, const FormatPtr &, const KyID &)>);

TEST(TextTokens, AreWrittenFromOneToAnother)
{
    const auto layer = TextLayer::Create(u"", 1, 1);
    std::vector<TokenPtr> tokens;
    for (int i = 0; i < 4; ++i)
        tokens.push_back(AddCharacter(*layer, char16_t(u'a' + i)));
    const auto stranger = TextLayer::CreateCharToken(u'z', nullptr, {});
    const struct {
        TokenPtr first;
        TokenPtr last;
        std::string characters;
    } kCases[] = {
        {tokens[1], tokens[1], "b"},  {tokens[0], tokens[2], "abc"}, {tokens[1], nullptr, "bcd"},
        {tokens[2], tokens[0], "cd"}, {nullptr, tokens[0], ""},      {stranger, tokens[0], "z"},
    };
    for (const auto &c : kCases) {
        const ReadText text = Read(ToUtf8(layer->SerializeTokens(c.first, c.last)));
        std::string characters;
        for (const TokenPtr &token : text.tokens)
            characters += static_cast<char>(token->character);
        EXPECT_EQ(characters, c.characters);
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
    EXPECT_THAT(saved, testing::Not(testing::HasSubstr("Size=\"50\"")));
    const auto read = std::static_pointer_cast<TextLayer>(ReadLayer(saved));
    WideString characters;
    for (const TokenPtr &token : TokensOf(read->Text()))
        characters += token->character;
    EXPECT_EQ(characters, units);
    EXPECT_EQ(TextOf(*read), saved);
}

} // namespace
} // namespace marlet::test
