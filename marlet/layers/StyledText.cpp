#include <marlet/layers/StyledText.h>

#include <marlet/foundation/Arguments.h>

#include <algorithm>
#include <stdexcept>
#include <unordered_map>

namespace marlet::project
{

namespace
{

using Token = TextLayer::Token;
using Format = TextLayer::Format;

/// The formats of a copy by the IDs of those that they stand for.
using FormatsByID = std::unordered_map<kytl::KyID, std::shared_ptr<Format>>;

std::shared_ptr<Token> CreateToken(int type, const kytl::KyID &id)
{
    auto token = std::make_shared<Token>();
    token->type = type;
    token->id = id.IsNull() ? kytl::KyID::Generate() : id;
    return token;
}

std::shared_ptr<Token> CopyToken(const Token &token, const FormatsByID &formats)
{
    if (token.type == Token::kParagraph)
        return TextLayer::CreateParagraphToken(token.justification, {});
    const auto format = token.format ? formats.find(token.format->id) : formats.end();
    return TextLayer::CreateCharToken(token.character, format == formats.end() ? nullptr : format->second,
                                      {});
}

bool LooksTheSame(const Format &a, const Format &b)
{
    return a.family == b.family && a.style == b.style && a.size == b.size && a.fillColor == b.fillColor &&
           a.strokeColor == b.strokeColor && a.strokeWidth == b.strokeWidth && a.tracking == b.tracking &&
           a.leading == b.leading;
}

} // namespace

TextLayer::Token::~Token()
{
    std::shared_ptr<Token> rest = std::move(next);
    while (rest.use_count() == 1)
        rest = std::move(rest->next);
}

void TextLayer::TokenList::Append(const std::shared_ptr<Token> &token)
{
    Require(token, "token");
    const std::shared_ptr<Token> end = first ? last.lock() : nullptr;
    if (first && !end)
        throw std::logic_error("The last token of a text is gone");
    token->next.reset();
    token->previous = end;
    (end ? end->next : first) = token;
    last = token;
}

std::shared_ptr<TextLayer::Token> TextLayer::CreateCharToken(unsigned short character,
                                                             const std::shared_ptr<Format> &format,
                                                             const kytl::KyID &id)
{
    auto token = CreateToken(Token::kCharacter, id);
    token->character = character;
    token->format = format;
    return token;
}

std::shared_ptr<TextLayer::Token> TextLayer::CreateParagraphToken(JustificationType justification,
                                                                  const kytl::KyID &id)
{
    auto token = CreateToken(Token::kParagraph, id);
    token->justification = justification;
    return token;
}

StyledText::StyledText(const StyledText &other)
{
    const TokenChain source(other.tokens.first);
    const FormatIDs used = UsedFormats(source);
    FormatsByID formatsByID;
    for (const std::shared_ptr<Format> &format : other.formats) {
        if (!used.contains(format->id))
            continue;
        const auto copy = std::make_shared<Format>(*format);
        copy->id = kytl::KyID::Generate();
        formats.Add(copy);
        formatsByID.try_emplace(format->id, copy);
    }
    for (const Token &token : source)
        tokens.Append(CopyToken(token, formatsByID));
}

const std::shared_ptr<Format> *StyledText::FindFormat(const Format &format) const
{
    const auto found = std::ranges::find_if(
        formats, [&](const std::shared_ptr<Format> &entry) { return LooksTheSame(*entry, format); });
    return found == formats.end() ? nullptr : &*found;
}

void StyledText::DropUnusedFormats()
{
    const FormatIDs used = UsedFormats(TokenChain(tokens.first));
    std::erase_if(formats,
                  [&used](const std::shared_ptr<Format> &format) { return !used.contains(format->id); });
}

void TokenChain::Iterator::LookForCircle()
{
    if (token_ == mark_)
        throw std::logic_error("The tokens of a text run in a circle");
    if (++stepsToMark_ == stepsAllowed_) {
        mark_ = token_;
        stepsToMark_ = 0;
        stepsAllowed_ *= 2;
    }
}

FormatIDs UsedFormats(const TokenChain &tokens)
{
    FormatIDs used;
    for (const Token &token : tokens)
        if (token.type != Token::kParagraph && token.format)
            used.insert(token.format->id);
    return used;
}

} // namespace marlet::project
