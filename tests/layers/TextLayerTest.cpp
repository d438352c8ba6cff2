#include <tests/support/LayerTexts.h>
#include <tests/support/Texts.h>

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace marlet::test
{
namespace
{

std::vector<float> FrameOf(const TextLayer &layer)
{
    return {layer.MinX(), layer.MaxX(), layer.MinY(), layer.MaxY()};
}

TEST(TextLayer, SwapsBoundsThatPassEachOther)
{
    const struct {
        void (TextLayer::*set)(float);
        float value;
        std::vector<float> frame;
    } kCases[] = {
        {&TextLayer::SetMinX, -50, {-50, 100, -10, 10}},  {&TextLayer::SetMinX, 100, {100, 100, -10, 10}},
        {&TextLayer::SetMinX, 500, {100, 500, -10, 10}},  {&TextLayer::SetMaxX, -500, {-500, -100, -10, 10}},
        {&TextLayer::SetMinY, 500, {-100, 100, 10, 500}}, {&TextLayer::SetMaxY, -11, {-100, 100, -11, -10}},
    };
    for (const auto &c : kCases) {
        const auto layer = TextLayer::Create(u"", 200, 20);
        (*layer.*c.set)(c.value);
        EXPECT_EQ(FrameOf(*layer), c.frame);
    }
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
        for (const FormatPtr &other : entries)
            EXPECT_NE(entry->id, other->id);
        entries.push_back(entry);
        EXPECT_EQ(ask(format), entry);
        EXPECT_EQ(layer->GetOrAddFormat(std::make_shared<Format>(format)), entry);
    }
    Format odd = plain;
    odd.leading = std::numeric_limits<float>::quiet_NaN();
    EXPECT_NE(ask(odd), ask(odd));
}

TEST(TextLayer, ReturnsTheReferenceOfTheFormatThatItTakes)
{
    const auto layer = TextLayer::Create(u"", 1, 1);
    const auto format = std::make_shared<Format>();
    format->size = 3;
    const auto twin = std::make_shared<Format>(*format);
    EXPECT_EQ(&layer->GetOrAddFormat(format), &format);
    const FormatPtr &entry = layer->GetOrAddFormat(twin);
    EXPECT_EQ(entry, format);
    EXPECT_NE(&entry, &format);
    EXPECT_EQ(&layer->TextFormat(u"", u"", 3, {}, {}, 0, 0, 0), &entry);
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
}

TEST(TextLayer, IsClonedWithTokensAndFormatsOfItsOwn)
{
    const auto layer = TextLayer::Create(u"", 640, 360);
    layer->SetMinX(-7);
    const FormatPtr formats[] = {FormatOfSize(*layer, 1), FormatOfSize(*layer, 2)};
    AddCharacter(*layer, u'a', formats[1]);
    AddParagraph(*layer, 77);
    AddCharacter(*layer, u'\xD83C', formats[0]);
    AddCharacter(*layer, u'b', formats[1]);
    layer->SetEditingMode(true);
    layer->SetSelectionStart(layer->Text().first);
    layer->SetSelectionEnd(layer->Text().first);
    layer->SetCursorPosition(layer->Text().first, TextLayer::CursorPositionType{2});
    const auto clone = std::static_pointer_cast<TextLayer>(layer->Clone(KyID()));
    EXPECT_EQ(FrameOf(*clone), FrameOf(*layer));
    EXPECT_TRUE(layer->IsEditingMode() && layer->SelectionStart() && layer->SelectionEnd() &&
                layer->CursorPosition());
    EXPECT_FALSE(clone->IsEditingMode() || clone->SelectionStart() || clone->SelectionEnd() ||
                 clone->CursorPosition());
    EXPECT_EQ(clone->CursorRenderPosition(), TextLayer::CursorPositionType{2});

    const auto sources = TokensOf(layer->Text());
    const auto copies = TokensOf(clone->Text());
    ASSERT_EQ(copies.size(), sources.size());
    for (std::size_t i = 0; i < copies.size(); ++i) {
        EXPECT_EQ(copies[i]->type, sources[i]->type);
        EXPECT_NE(copies[i]->id, sources[i]->id);
        ASSERT_EQ(copies[i]->format == nullptr, sources[i]->format == nullptr);
        if (copies[i]->format) {
            EXPECT_EQ(copies[i]->character, sources[i]->character);
            EXPECT_NE(copies[i]->format->id, sources[i]->format->id);
            // The table has the copy's format, and no other that looks the same.
            EXPECT_EQ(FormatOfSize(*clone, sources[i]->format->size), copies[i]->format);
        }
    }
    EXPECT_EQ(copies[1]->justification, TextLayer::JustificationType{77});
    EXPECT_EQ(copies[0]->format, copies[3]->format);
}

} // namespace
} // namespace marlet::test
