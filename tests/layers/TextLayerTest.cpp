#include <tests/support/LayerTexts.h>
#include <tests/support/Texts.h>

#include <gmock/gmock.h>

#include <functional>
#include <limits>
#include <stdexcept>

namespace marlet::test
{
namespace
{

using Position = TextLayer::CursorPositionType;

std::vector<float> FrameOf(const TextLayer &layer)
{
    return {layer.MinX(), layer.MaxX(), layer.MinY(), layer.MaxY()};
}

TEST(TextLayer, StartsWithAFrameAboutTheOriginAndNoText)
{
    const auto layer = TextLayer::Create(u"Title", 640, 361);
    EXPECT_EQ(layer->Name(), u"Title");
    EXPECT_EQ(FrameOf(*layer), (std::vector<float>{-320, 320, -180.5f, 180.5f}));
    EXPECT_EQ(layer->Width(), 640);
    EXPECT_EQ(layer->Height(), 361);
    EXPECT_EQ(layer->Text().first, nullptr);
    EXPECT_TRUE(layer->Text().last.expired());
}

TEST(TextLayer, SwapsBoundsThatPassEachOther)
{
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    const struct {
        void (TextLayer::*set)(float);
        float value;
        std::vector<float> frame;
    } kCases[] = {
        {&TextLayer::SetMinX, -50, {-50, 100, -10, 10}},   {&TextLayer::SetMinX, 100, {100, 100, -10, 10}},
        {&TextLayer::SetMinX, 500, {100, 500, -10, 10}},   {&TextLayer::SetMaxX, -500, {-500, -100, -10, 10}},
        {&TextLayer::SetMinY, 500, {-100, 100, 10, 500}},  {&TextLayer::SetMaxY, -10, {-100, 100, -10, -10}},
        {&TextLayer::SetMaxY, -11, {-100, 100, -11, -10}},
    };
    for (const auto &c : kCases) {
        const auto layer = TextLayer::Create(u"", 200, 20);
        (*layer.*c.set)(c.value);
        EXPECT_EQ(FrameOf(*layer), c.frame);
    }
    const auto layer = TextLayer::Create(u"", 200, 20);
    layer->SetMinX(kNaN);
    EXPECT_TRUE(std::isnan(layer->MinX()));
    EXPECT_EQ(layer->MaxX(), 100);
}

TEST(TextLayer, SharesFormatsThatLookTheSame)
{
    const auto layer = TextLayer::Create(u"", 1, 1);
    const Format plain{{}, u"Sans", u"Bold", 12, {.1f, .2f, .3f, .4f}, {.5f, .6f, .7f, .8f}, 1, 2, 3};
    const auto ask = [&layer](const Format &f) {
        return layer->TextFormat(f.family, f.style, f.size, f.fillColor, f.strokeColor, f.strokeWidth,
                                 f.tracking, f.leading);
    };
    const std::function<void(Format &)> kChanges[] = {
        [](Format &) {},
        [](Format &f) { f.family = u"Serif"; },
        [](Format &f) { f.style = u""; },
        [](Format &f) { f.size = 13; },
        [](Format &f) { f.fillColor.R = 0; },
        [](Format &f) { f.fillColor.G = 0; },
        [](Format &f) { f.fillColor.B = 0; },
        [](Format &f) { f.fillColor.A = 0; },
        [](Format &f) { f.strokeColor.R = 0; },
        [](Format &f) { f.strokeColor.G = 0; },
        [](Format &f) { f.strokeColor.B = 0; },
        [](Format &f) { f.strokeColor.A = 0; },
        [](Format &f) { f.strokeWidth = std::nextafter(1.f, 2.f); },
        [](Format &f) { f.tracking = 0; },
        [](Format &f) { f.leading = 0; },
    };
    std::vector<FormatPtr> entries;
    for (const auto &change : kChanges) {
        Format format = plain;
        change(format);
        const FormatPtr entry = ask(format);
        for (const FormatPtr &other : entries) {
            EXPECT_NE(entry, other);
            EXPECT_NE(entry->id, other->id);
        }
        entries.push_back(entry);
        EXPECT_EQ(ask(format), entry);

        const auto twin = std::make_shared<Format>(format);
        EXPECT_EQ(layer->GetOrAddFormat(twin), entry);
    }
    Format odd = plain;
    odd.leading = std::numeric_limits<float>::quiet_NaN();
    EXPECT_NE(ask(odd), ask(odd));
}

TEST(TextLayer, TakesInAFormatThatLooksLikeNoOther)
{
    const auto layer = TextLayer::Create(u"", 1, 1);
    const auto format = std::make_shared<Format>(Format{{.Data1 = 5}, u"Serif", u"", 9, {}, {}});
    EXPECT_EQ(layer->GetOrAddFormat(format), format);
    EXPECT_EQ(format->id, KyID{.Data1 = 5});
    EXPECT_EQ(layer->TextFormat(u"Serif", u"", 9, {}, {}, 0, 0, 0), format);
    EXPECT_THROW(layer->GetOrAddFormat(nullptr), std::invalid_argument);
}

TEST(TextLayer, DropsFormatsThatNoCharacterUses)
{
    const auto layer = TextLayer::Create(u"", 1, 1);
    const FormatPtr used = FormatOfSize(*layer, 1);
    const FormatPtr unused = FormatOfSize(*layer, 2);
    const FormatPtr onParagraph = FormatOfSize(*layer, 3);
    AddCharacter(*layer, u'a', used);
    AddCharacter(*layer, u'b');
    AddParagraph(*layer, 0)->format = onParagraph;
    layer->CleanUpFormat();
    EXPECT_EQ(FormatOfSize(*layer, 1), used);
    EXPECT_NE(FormatOfSize(*layer, 2), unused);
    EXPECT_NE(FormatOfSize(*layer, 3), onParagraph);

    layer->Text() = {};
    layer->CleanUpFormat();
    EXPECT_NE(FormatOfSize(*layer, 1), used);
}

TEST(TextLayer, KnowsThePlaceOfItsTokens)
{
    const auto layer = TextLayer::Create(u"", 1, 1);
    const TokenPtr tokens[] = {AddCharacter(*layer, u'a'), AddParagraph(*layer, 1),
                               AddCharacter(*layer, u'a')};
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(layer->GetTokenIndex(tokens[i]), i);
    EXPECT_EQ(layer->GetTokenIndex(nullptr), -1);
    EXPECT_EQ(layer->GetTokenIndex(TextLayer::CreateCharToken(u'a', nullptr, tokens[0]->id)), -1);
}

TEST(TextLayer, IsClonedWithTokensAndFormatsOfItsOwn)
{
    const auto layer = TextLayer::Create(u"", 640, 360);
    layer->SetMinX(-7);
    FormatOfSize(*layer, 9);
    const FormatPtr formats[] = {FormatOfSize(*layer, 1), FormatOfSize(*layer, 2)};
    AddCharacter(*layer, u'a', formats[1]);
    AddParagraph(*layer, 77);
    AddCharacter(*layer, u'\xD83C', formats[0]);
    AddCharacter(*layer, u'\xDFAC');
    AddCharacter(*layer, u'b', formats[1]);
    const auto clone = std::static_pointer_cast<TextLayer>(layer->Clone(KyID()));
    EXPECT_EQ(FrameOf(*clone), FrameOf(*layer));

    const auto sources = TokensOf(layer->Text());
    const auto copies = TokensOf(clone->Text());
    ASSERT_EQ(copies.size(), sources.size());
    for (std::size_t i = 0; i < copies.size(); ++i) {
        EXPECT_EQ(copies[i]->type, sources[i]->type);
        EXPECT_FALSE(copies[i]->id.IsNull());
        EXPECT_NE(copies[i]->id, sources[i]->id);
        if (copies[i]->type == Token::kCharacter) {
            EXPECT_EQ(copies[i]->character, sources[i]->character);
        }
        ASSERT_EQ(copies[i]->format == nullptr, sources[i]->format == nullptr);
        if (copies[i]->format) {
            EXPECT_NE(copies[i]->format->id, sources[i]->format->id);
            EXPECT_EQ(copies[i]->format->size, sources[i]->format->size);
            // The table has the copy's format, and no other that looks the same.
            EXPECT_EQ(FormatOfSize(*clone, sources[i]->format->size), copies[i]->format);
        }
    }
    EXPECT_EQ(copies[1]->justification, TextLayer::JustificationType{77});
    EXPECT_EQ(copies[0]->format, copies[4]->format);
    copies[0]->format->size = 50;
    EXPECT_EQ(formats[1]->size, 2);
}

TEST(TextLayer, KeepsTheStateOfEditingToItself)
{
    const auto layer = TextLayer::Create(u"", 1, 1);
    const TokenPtr a = AddCharacter(*layer, u'a');
    const TokenPtr b = AddCharacter(*layer, u'b');
    layer->SetSelectionStart(a);
    layer->SetSelectionEnd(b);
    layer->SetCursorPosition(b, Position{3});
    layer->SetEditingMode(true);
    EXPECT_EQ(layer->SelectionStart(), a);
    EXPECT_EQ(layer->SelectionEnd(), b);
    EXPECT_EQ(layer->CursorPosition(), b);
    EXPECT_EQ(layer->CursorRenderPosition(), Position{3});
    EXPECT_TRUE(layer->IsEditingMode());

    const auto clone = std::static_pointer_cast<TextLayer>(layer->Clone(KyID()));
    const auto read = std::static_pointer_cast<TextLayer>(ReadLayer(TextOf(*layer)));
    EXPECT_EQ(clone->CursorRenderPosition(), Position{3});
    EXPECT_EQ(read->CursorRenderPosition(), Position{0});
    for (const auto &other : {clone, read}) {
        EXPECT_EQ(other->SelectionStart(), nullptr);
        EXPECT_EQ(other->SelectionEnd(), nullptr);
        EXPECT_EQ(other->CursorPosition(), nullptr);
        EXPECT_FALSE(other->IsEditingMode());
    }
    layer->ClearSelection();
    EXPECT_EQ(layer->SelectionStart(), nullptr);
    EXPECT_EQ(layer->SelectionEnd(), nullptr);
    EXPECT_EQ(layer->CursorPosition(), b);
}

} // namespace
} // namespace marlet::test
