#include <marlet/history/Parts.h>
#include <marlet/history/StoredFields.h>
#include <marlet/layers/StyledText.h>
#include <marlet/layers/TextLayer.h>

#include <vector>

namespace marlet::project
{

namespace
{

using Token = TextLayer::Token;
using Format = TextLayer::Format;

struct TokenState {
    std::shared_ptr<Token> token;
    std::shared_ptr<Format> format;
    kytl::KyID id;
    int type = Token::kCharacter;
    int content = 0; ///< the character or the justification

    bool operator==(const TokenState &other) const = default;
};

struct FormatState {
    std::shared_ptr<Format> format;
    Format values;
};

bool AreSame(const Format &a, const Format &b)
{
    return a.id == b.id && a.family == b.family && a.style == b.style && a.size == b.size &&
           a.fillColor == b.fillColor && a.strokeColor == b.strokeColor && a.strokeWidth == b.strokeWidth &&
           a.tracking == b.tracking && a.leading == b.leading;
}

bool operator==(const FormatState &a, const FormatState &b)
{
    return a.format == b.format && AreSame(a.values, b.values);
}

struct EditingState {
    std::shared_ptr<Token> selectionStart;
    std::shared_ptr<Token> selectionEnd;
    std::shared_ptr<Token> cursor;
    TextLayer::CursorPositionType cursorPosition{};
    bool isEditing = false;

    bool operator==(const EditingState &other) const = default;
};

struct Bounds {
    float minX = 0;
    float maxX = 0;
    float minY = 0;
    float maxY = 0;

    bool operator==(const Bounds &other) const = default;
};

TokenState StateOf(const std::shared_ptr<Token> &token)
{
    const bool isCharacter = token->type == Token::kCharacter;
    return {token, token->format, token->id, token->type,
            isCharacter ? token->character : static_cast<int>(token->justification)};
}

/// @throws std::logic_error if the chain runs in a circle
std::vector<TokenState> TokensOf(const TextLayer::TokenList &text)
{
    std::size_t count = 0;
    for ([[maybe_unused]] const Token &token : TokenChain(text.first))
        ++count;
    std::vector<TokenState> tokens;
    tokens.reserve(count);
    for (std::shared_ptr<Token> token = text.first; token; token = token->next)
        tokens.push_back(StateOf(token));
    return tokens;
}

std::vector<FormatState> FormatsOf(const TextLayer &layer)
{
    std::vector<FormatState> formats;
    for (const std::shared_ptr<Format> &format : layer.Formats())
        formats.push_back({format, format ? *format : Format()});
    return formats;
}

void PutBack(const std::vector<TokenState> &tokens, TextLayer::TokenList &text)
{
    text = {};
    for (const TokenState &state : tokens) {
        Token &token = *state.token;
        token.type = state.type;
        token.id = state.id;
        token.format = state.format;
        token.next.reset();
        token.previous.reset();
        if (token.type == Token::kCharacter)
            token.character = static_cast<unsigned short>(state.content);
        else
            token.justification = static_cast<TextLayer::JustificationType>(state.content);
    }
    for (const TokenState &state : tokens)
        text.Append(state.token);
}

void PutBack(const std::vector<FormatState> &formats, TextLayer::FormatList &table)
{
    table.clear();
    for (const FormatState &state : formats) {
        if (state.format)
            *state.format = state.values;
        table.Add(state.format);
    }
}

void PutBack(const Bounds &bounds, TextLayer &layer)
{
    StoredFields::SetBounds(layer, bounds.minX, bounds.maxX, bounds.minY, bounds.maxY);
}

/// A text with its tokens and formats, which keep their addresses: what stands in them is put back.
class TextPart final : public EditedPart
{
    struct State {
        explicit State(const TextLayer &layer)
            : tokens(TokensOf(layer.Text())),
              formats(FormatsOf(layer)),
              bounds{layer.MinX(), layer.MaxX(), layer.MinY(), layer.MaxY()},
              editing{layer.SelectionStart(), layer.SelectionEnd(), layer.CursorPosition(),
                      layer.CursorRenderPosition(), layer.IsEditingMode()}
        {
        }

        bool HasSameText(const State &other) const
        {
            return tokens == other.tokens && formats == other.formats;
        }

        std::vector<TokenState> tokens;
        std::vector<FormatState> formats;
        Bounds bounds;
        EditingState editing;
    };

public:
    explicit TextPart(const std::shared_ptr<TextLayer> &layer)
        : EditedPart({layer.get(), "text", {}}), layer_(layer), kept_(*layer)
    {
    }

    void Exchange() override
    {
        State live(*layer_);
        PutBack(kept_.tokens, layer_->Text());
        PutBack(kept_.formats, layer_->Formats());
        PutBack(kept_.bounds, *layer_);
        layer_->SetSelectionStart(kept_.editing.selectionStart);
        layer_->SetSelectionEnd(kept_.editing.selectionEnd);
        layer_->SetCursorPosition(kept_.editing.cursor, kept_.editing.cursorPosition);
        layer_->SetEditingMode(kept_.editing.isEditing);
        kept_ = std::move(live);
    }

    void Describe(ChangeList &changes) const override
    {
        const State live(*layer_);
        Aspects aspects;
        if (!live.HasSameText(kept_))
            aspects |= Aspect::Text;
        if (!(live.bounds == kept_.bounds))
            aspects |= Aspect::Settings;
        if (!(live.editing == kept_.editing))
            aspects |= Aspect::View;
        if (!aspects.IsEmpty())
            changes.Of(ObjectKind::Layer, layer_->ID()).aspects |= aspects;
    }

    std::size_t Size() const override
    {
        return sizeof *this + kept_.tokens.size() * (sizeof(TokenState) + sizeof(Token)) +
               kept_.formats.size() * (sizeof(FormatState) + sizeof(Format));
    }

private:
    std::shared_ptr<TextLayer> layer_;
    State kept_;
};

} // namespace

std::unique_ptr<EditedPart> MakeTextPart(const std::shared_ptr<TextLayer> &layer)
{
    return std::make_unique<TextPart>(layer);
}

void TakeOverText(TextLayer &layer, const TextLayer &other)
{
    layer.Text() = other.Text();
    layer.Formats() = other.Formats();
    PutBack(Bounds{other.MinX(), other.MaxX(), other.MinY(), other.MaxY()}, layer);
    layer.ClearSelection();
    layer.SetCursorPosition({}, {});
}

} // namespace marlet::project
