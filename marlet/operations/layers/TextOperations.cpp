#include <marlet/operations/layers/TextOperations.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/history/Edit.h>
#include <marlet/layers/StyledText.h>
#include <marlet/operations/OperationException.h>

#include <algorithm>
#include <utility>

namespace marlet::project
{

namespace
{

using Token = TextLayer::Token;
using Format = TextLayer::Format;
using Justification = TextLayer::JustificationType;
using Tokens = std::vector<std::shared_ptr<Token>>;

constexpr char16_t kBreak = u'\n';

bool IsBreak(const std::shared_ptr<Token> &token)
{
    return token->type == Token::kParagraph;
}

bool IsCharacter(const std::shared_ptr<Token> &token)
{
    return !IsBreak(token);
}

char16_t UnitOf(const Token &token)
{
    return token.type == Token::kParagraph ? kBreak : static_cast<char16_t>(token.character);
}

/// @throws std::logic_error if the chain runs in a circle
Tokens TokensOf(const TextLayer &layer)
{
    std::size_t count = 0;
    for ([[maybe_unused]] const Token &token : TokenChain(layer.Text().first))
        ++count;
    Tokens tokens;
    tokens.reserve(count);
    for (std::shared_ptr<Token> token = layer.Text().first; token; token = token->next)
        tokens.push_back(token);
    return tokens;
}

void RequireBorder(const Tokens &tokens, std::size_t position)
{
    const auto isSurrogate = [&](std::size_t at, char16_t first) {
        return (UnitOf(*tokens[at]) & 0xFC00) == first;
    };
    if (position > 0 && position < tokens.size() && isSurrogate(position - 1, 0xD800) &&
        isSurrogate(position, 0xDC00))
        throw OperationException("Position " + std::to_string(position) + " is inside of a character");
}

/// The end of a range, which is exclusive.
std::size_t RequireRange(const Tokens &tokens, const TextRange &range)
{
    const bool isOpen = range.count == WideString::npos;
    if (range.first > tokens.size() || (!isOpen && range.count > tokens.size() - range.first))
        throw OperationException("The range goes beyond the text, which has " +
                                 std::to_string(tokens.size()) + " characters");
    const std::size_t end = isOpen ? tokens.size() : range.first + range.count;
    RequireBorder(tokens, range.first);
    RequireBorder(tokens, end);
    return end;
}

/// The nearest token of a kind before a range, or else the one behind its beginning, or null.
template <class Kind> const Token *Model(const Tokens &tokens, std::size_t first, Kind isOfKind)
{
    const auto place = tokens.begin() + static_cast<std::ptrdiff_t>(first);
    const auto before = std::find_if(std::make_reverse_iterator(place), tokens.rend(), isOfKind);
    if (before != tokens.rend())
        return before->get();
    const auto behind = std::find_if(place, tokens.end(), isOfKind);
    return behind != tokens.end() ? behind->get() : nullptr;
}

Tokens PlainTokens(const Tokens &tokens, std::size_t first, const WideString &text)
{
    const Token *character = Model(tokens, first, IsCharacter);
    const Token *paragraph = Model(tokens, first, IsBreak);
    const std::shared_ptr<Format> format = character ? character->format : nullptr;
    const Justification justification = paragraph ? paragraph->justification : Justification{};
    Tokens added;
    for (const char16_t unit : text)
        added.push_back(unit == kBreak ? TextLayer::CreateParagraphToken(justification, {})
                                       : TextLayer::CreateCharToken(unit, format, {}));
    return added;
}

/// The entry of the layer's table, which is added if there is none.
std::shared_ptr<Format> EntryFor(TextLayer &layer, const Format &format)
{
    const auto entry = std::make_shared<Format>(format);
    entry->id = kytl::KyID::Generate();
    return layer.GetOrAddFormat(entry);
}

Tokens FormattedTokens(TextLayer &layer, const FormattedText &text)
{
    auto justification = text.justifications.begin();
    Tokens added;
    for (const char16_t unit : text.text) {
        if (unit != kBreak)
            added.push_back(TextLayer::CreateCharToken(unit, nullptr, {}));
        else
            added.push_back(TextLayer::CreateParagraphToken(
                justification != text.justifications.end() ? *justification++ : Justification{}, {}));
    }
    for (const FormattedText::Run &run : text.formats) {
        if (run.first > added.size() || run.count > added.size() - run.first)
            throw OperationException("A format goes beyond its text");
        const std::shared_ptr<Format> format = EntryFor(layer, run.format);
        for (std::size_t i = run.first; i < run.first + run.count; ++i)
            if (IsCharacter(added[i]))
                added[i]->format = format;
    }
    return added;
}

void ForgetInEditing(TextLayer &layer, const std::shared_ptr<Token> &gone)
{
    if (layer.SelectionStart() == gone || layer.SelectionEnd() == gone)
        layer.ClearSelection();
    if (layer.CursorPosition() == gone)
        layer.SetCursorPosition(nullptr, layer.CursorRenderPosition());
}

void Splice(TextLayer &layer, const Tokens &tokens, std::size_t first, std::size_t end, const Tokens &added)
{
    TextLayer::TokenList text;
    for (std::size_t i = 0; i < first; ++i)
        text.Append(tokens[i]);
    for (const std::shared_ptr<Token> &token : added)
        text.Append(token);
    for (std::size_t i = first; i < end; ++i) {
        ForgetInEditing(layer, tokens[i]);
        tokens[i]->next.reset();
        tokens[i]->previous.reset();
    }
    for (std::size_t i = end; i < tokens.size(); ++i)
        text.Append(tokens[i]);
    layer.Text() = text;
    layer.CleanUpFormat();
}

/// Puts tokens in the place of a range.
/// @param make makes them for the tokens that are there and where they come among these
template <class Make>
void Replace(const std::shared_ptr<Project> &project, const std::shared_ptr<TextLayer> &layer,
             const TextRange &range, Make make)
{
    Require(layer, "layer");
    Edit edit(project, u"Edit text");
    edit.TouchText(layer);
    const Tokens tokens = TokensOf(*layer);
    const std::size_t end = RequireRange(tokens, range);
    Splice(*layer, tokens, range.first, end, make(tokens, range.first));
    edit.Commit();
}

/// Changes the tokens of a range.
template <class Change>
void ChangeTokens(const std::shared_ptr<Project> &project, const std::shared_ptr<TextLayer> &layer,
                  const TextRange &range, const WideString &label, Change change)
{
    Require(layer, "layer");
    Edit edit(project, label);
    edit.TouchText(layer);
    const Tokens tokens = TokensOf(*layer);
    const std::size_t end = RequireRange(tokens, range);
    std::for_each(tokens.begin() + static_cast<std::ptrdiff_t>(range.first),
                  tokens.begin() + static_cast<std::ptrdiff_t>(end), change);
    layer->CleanUpFormat();
    edit.Commit();
}

} // namespace

FormattedText ReadText(const TextLayer &layer, const TextRange &range)
{
    const Tokens tokens = TokensOf(layer);
    const std::size_t end = RequireRange(tokens, range);
    FormattedText read;
    std::shared_ptr<Format> format;
    for (std::size_t i = range.first; i < end; ++i) {
        const Token &token = *tokens[i];
        if (IsBreak(tokens[i])) {
            read.justifications.push_back(token.justification);
        } else {
            if (token.format && token.format != format)
                read.formats.push_back({read.text.size(), 0, *token.format});
            if (token.format)
                read.formats.back().count = read.text.size() + 1 - read.formats.back().first;
            format = token.format;
        }
        read.text += UnitOf(token);
    }
    return read;
}

void SetText(const std::shared_ptr<Project> &project, const std::shared_ptr<TextLayer> &layer,
             const WideString &text)
{
    ReplaceText(project, layer, {}, text);
}

void SetText(const std::shared_ptr<Project> &project, const std::shared_ptr<TextLayer> &layer,
             const FormattedText &text)
{
    ReplaceText(project, layer, {}, text);
}

void InsertText(const std::shared_ptr<Project> &project, const std::shared_ptr<TextLayer> &layer,
                std::size_t position, const WideString &text)
{
    ReplaceText(project, layer, {position, 0}, text);
}

void InsertText(const std::shared_ptr<Project> &project, const std::shared_ptr<TextLayer> &layer,
                std::size_t position, const FormattedText &text)
{
    ReplaceText(project, layer, {position, 0}, text);
}

void ReplaceText(const std::shared_ptr<Project> &project, const std::shared_ptr<TextLayer> &layer,
                 const TextRange &range, const WideString &text)
{
    Replace(project, layer, range,
            [&](const Tokens &tokens, std::size_t first) { return PlainTokens(tokens, first, text); });
}

void ReplaceText(const std::shared_ptr<Project> &project, const std::shared_ptr<TextLayer> &layer,
                 const TextRange &range, const FormattedText &text)
{
    Replace(project, layer, range,
            [&](const Tokens &, std::size_t) { return FormattedTokens(*layer, text); });
}

void SetTextFormat(const std::shared_ptr<Project> &project, const std::shared_ptr<TextLayer> &layer,
                   const TextRange &range, const Format &format)
{
    std::shared_ptr<Format> entry;
    ChangeTokens(project, layer, range, u"Format text", [&](const std::shared_ptr<Token> &token) {
        if (IsBreak(token))
            return;
        if (!entry)
            entry = EntryFor(*layer, format);
        token->format = entry;
    });
}

void SetJustification(const std::shared_ptr<Project> &project, const std::shared_ptr<TextLayer> &layer,
                      const TextRange &range, Justification justification)
{
    ChangeTokens(project, layer, range, u"Justify text", [&](const std::shared_ptr<Token> &token) {
        if (IsBreak(token))
            token->justification = justification;
    });
}

} // namespace marlet::project
