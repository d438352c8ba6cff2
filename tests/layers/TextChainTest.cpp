#include <tests/support/LayerTexts.h>
#include <tests/support/Texts.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace marlet::test
{
namespace
{

constexpr int kMany = 1'000'000;

std::shared_ptr<TextLayer> LongText()
{
    const auto layer = TextLayer::Create(u"", 1, 1);
    for (int i = 0; i < kMany; ++i)
        AddCharacter(*layer, static_cast<char16_t>(i));
    return layer;
}

TEST(TextChain, OfAMillionTokensIsDroppedInALoop)
{
    const auto layer = LongText();
    const std::weak_ptr<Token> last = layer->Text().last;
    layer->Text().first->next.reset();
    EXPECT_TRUE(last.expired());

    std::weak_ptr<Token> lastOfAnother;
    {
        const auto another = LongText();
        lastOfAnother = another->Text().last;
        another->SetCursorPosition(another->Text().first->next, {});
    }
    EXPECT_TRUE(lastOfAnother.expired());
}

TEST(TextChain, StaysFromATokenOnThatIsHeld)
{
    const auto layer = TextLayer::Create(u"", 1, 1);
    const std::weak_ptr<Token> first = AddCharacter(*layer, u'a');
    const TokenPtr held = AddCharacter(*layer, u'b');
    const std::weak_ptr<Token> last = AddCharacter(*layer, u'c');
    layer->Text() = {};
    EXPECT_TRUE(first.expired());
    EXPECT_TRUE(held->previous.expired());
    EXPECT_EQ(held->next, last.lock());
}

TEST(TextChain, OfAMillionTokensIsClonedSavedAndLoaded)
{
    const auto layer = LongText();
    const auto clone = std::static_pointer_cast<TextLayer>(layer->Clone(KyID()));
    const auto read = std::static_pointer_cast<TextLayer>(ReadLayer(TextOf(*layer)));
    for (const auto &other : {clone, read}) {
        EXPECT_EQ(other->GetTokenIndex(other->Text().last.lock()), kMany - 1);
        EXPECT_EQ(other->Text().last.lock()->character, static_cast<char16_t>(kMany - 1));
    }
}

TEST(TextChain, EndsOrderlyWhereItsLinksRunInACircle)
{
    for (const int tail : {0, 5}) {
        for (const int length : {1, 2, 20}) {
            const auto layer = TextLayer::Create(u"", 1, 1);
            for (int i = 0; i < tail + length; ++i)
                AddCharacter(*layer, u'a', FormatOfSize(*layer, 1));
            const std::vector<TokenPtr> tokens = TokensOf(layer->Text());
            const auto stranger = TextLayer::CreateCharToken(u'z', nullptr, {});
            tokens.back()->next = tokens[tail];

            EXPECT_THROW(TextOf(*layer), std::logic_error);
            EXPECT_THROW(layer->SerializeTokens(tokens[0], stranger), std::logic_error);
            EXPECT_NO_THROW(layer->SerializeTokens(tokens[0], tokens.back()));
            EXPECT_THROW(layer->Clone(KyID()), std::logic_error);
            EXPECT_THROW(layer->CleanUpFormat(), std::logic_error);
            EXPECT_THROW(layer->GetTokenIndex(stranger), std::logic_error);
            EXPECT_EQ(layer->GetTokenIndex(tokens.back()), tail + length - 1);
            tokens.back()->next.reset();
        }
    }
}

} // namespace
} // namespace marlet::test
