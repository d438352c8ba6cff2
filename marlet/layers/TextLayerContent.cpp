// What stands in a text layer, its bounds, and the state of editing it.

#include <marlet/foundation/Arguments.h>
#include <marlet/layers/TextLayerImpl.h>

#include <utility>

namespace marlet::project
{

namespace
{

void Order(float &minimum, float &maximum)
{
    if (minimum > maximum)
        std::swap(minimum, maximum);
}

} // namespace

TextLayer::TokenList &TextLayer::Text()
{
    return impl_->text.tokens;
}

const TextLayer::TokenList &TextLayer::Text() const
{
    return impl_->text.tokens;
}

TextLayer::FormatList &TextLayer::Formats()
{
    return impl_->text.formats;
}

const TextLayer::FormatList &TextLayer::Formats() const
{
    return impl_->text.formats;
}

int TextLayer::GetTokenIndex(const std::shared_ptr<Token> &token) const
{
    if (!token)
        return -1;
    int index = 0;
    for (const Token &other : TokenChain(impl_->text.tokens.first)) {
        if (&other == token.get())
            return index;
        ++index;
    }
    return -1;
}

const std::shared_ptr<TextLayer::Format> &
TextLayer::TextFormat(const WideString &family, const WideString &style, int size,
                      const kytl::KyColorRGBA_32f &fill, const kytl::KyColorRGBA_32f &stroke,
                      float strokeWidth, float tracking, float leading)
{
    const Format format{.id = kytl::KyID::Generate(),
                        .family = family,
                        .style = style,
                        .size = size,
                        .fillColor = fill,
                        .strokeColor = stroke,
                        .strokeWidth = strokeWidth,
                        .tracking = tracking,
                        .leading = leading};
    if (const std::shared_ptr<Format> *entry = impl_->text.FindFormat(format))
        return *entry;
    impl_->text.formats.Add(std::make_shared<Format>(format));
    return impl_->text.formats.back();
}

const std::shared_ptr<TextLayer::Format> &TextLayer::GetOrAddFormat(const std::shared_ptr<Format> &format)
{
    Require(format, "format");
    if (const std::shared_ptr<Format> *entry = impl_->text.FindFormat(*format))
        return *entry;
    impl_->text.formats.Add(format);
    return format;
}

void TextLayer::CleanUpFormat()
{
    impl_->text.DropUnusedFormats();
}

float TextLayer::MinX() const
{
    return impl_->minX;
}

float TextLayer::MaxX() const
{
    return impl_->maxX;
}

float TextLayer::MinY() const
{
    return impl_->minY;
}

float TextLayer::MaxY() const
{
    return impl_->maxY;
}

void TextLayer::SetMinX(float x)
{
    impl_->minX = x;
    Order(impl_->minX, impl_->maxX);
}

void TextLayer::SetMaxX(float x)
{
    impl_->maxX = x;
    Order(impl_->minX, impl_->maxX);
}

void TextLayer::SetMinY(float y)
{
    impl_->minY = y;
    Order(impl_->minY, impl_->maxY);
}

void TextLayer::SetMaxY(float y)
{
    impl_->maxY = y;
    Order(impl_->minY, impl_->maxY);
}

void TextLayer::RestoreBounds(float minX, float maxX, float minY, float maxY)
{
    impl_->minX = minX;
    impl_->maxX = maxX;
    impl_->minY = minY;
    impl_->maxY = maxY;
}

float TextLayer::Width() const
{
    return impl_->maxX - impl_->minX;
}

float TextLayer::Height() const
{
    return impl_->maxY - impl_->minY;
}

const std::shared_ptr<TextLayer::Token> &TextLayer::SelectionStart() const
{
    return impl_->editing->selectionStart;
}

const std::shared_ptr<TextLayer::Token> &TextLayer::SelectionEnd() const
{
    return impl_->editing->selectionEnd;
}

void TextLayer::SetSelectionStart(const std::shared_ptr<Token> &token)
{
    impl_->editing->selectionStart = token;
}

void TextLayer::SetSelectionEnd(const std::shared_ptr<Token> &token)
{
    impl_->editing->selectionEnd = token;
}

void TextLayer::ClearSelection()
{
    impl_->editing->selectionStart.reset();
    impl_->editing->selectionEnd.reset();
}

const std::shared_ptr<TextLayer::Token> &TextLayer::CursorPosition() const
{
    return impl_->editing->cursor;
}

TextLayer::CursorPositionType TextLayer::CursorRenderPosition() const
{
    return impl_->cursorRenderPosition;
}

void TextLayer::SetCursorPosition(const std::shared_ptr<Token> &token, CursorPositionType renderPosition)
{
    impl_->editing->cursor = token;
    impl_->cursorRenderPosition = renderPosition;
}

bool TextLayer::IsEditingMode() const
{
    return impl_->editing->isEditing;
}

void TextLayer::SetEditingMode(bool editing)
{
    impl_->editing->isEditing = editing;
}

} // namespace marlet::project
