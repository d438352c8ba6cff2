#pragma once

#include <marlet/layers/TextLayer.h>

#include <vector>

namespace marlet::test
{

using namespace marlet::project;
using kytl::KyID;
using Token = TextLayer::Token;
using TokenPtr = std::shared_ptr<Token>;
using Format = TextLayer::Format;
using FormatPtr = std::shared_ptr<Format>;

/// A format that differs from others by its size.
inline FormatPtr FormatOfSize(TextLayer &layer, int size)
{
    return layer.TextFormat(u"Sans", u"Bold", size, {1, 1, 1, 1}, {}, 0, 0, 0);
}

inline TokenPtr AddCharacter(TextLayer &layer, char16_t character, const FormatPtr &format = nullptr,
                             const KyID &id = {})
{
    const auto token = TextLayer::CreateCharToken(character, format, id);
    layer.Text().Append(token);
    return token;
}

inline TokenPtr AddParagraph(TextLayer &layer, int justification, const KyID &id = {})
{
    const auto token = TextLayer::CreateParagraphToken(TextLayer::JustificationType{justification}, id);
    layer.Text().Append(token);
    return token;
}

/// The tokens of a text, which must be linked both ways.
inline std::vector<TokenPtr> TokensOf(const TextLayer::TokenList &list)
{
    std::vector<TokenPtr> tokens;
    TokenPtr previous;
    for (TokenPtr token = list.first; token; token = token->next) {
        EXPECT_EQ(token->previous.lock(), previous);
        tokens.push_back(token);
        previous = token;
    }
    EXPECT_EQ(list.last.lock(), previous);
    return tokens;
}

} // namespace marlet::test
