#include <tests/operations/UndoableProject.h>
#include <tests/support/Texts.h>

#include <marlet/operations/layers/TextOperations.h>

#include <gmock/gmock.h>

using namespace marlet::test;
using marlet::project::FormattedText;
using Justification = TextLayer::JustificationType;

namespace
{

Format OfSize(int size)
{
    Format format;
    format.size = size;
    return format;
}

/// The size in front of what has it, and the justification behind each break, which is /.
std::string Text(const FormattedText &text)
{
    std::string shown;
    std::size_t breaks = 0;
    for (std::size_t i = 0; i < text.text.size(); ++i) {
        for (const FormattedText::Run &run : text.formats)
            if (run.first == i)
                shown += '<' + std::to_string(run.format.size) + '>';
        shown += text.text[i] == u'\n'
                     ? '/' + std::to_string(static_cast<int>(text.justifications.at(breaks++)))
                     : ToUtf8(text.text.substr(i, 1));
    }
    return shown;
}

} // namespace

TEST(TextOperations, GiveTheTextsOfTheTable)
{
    UndoableProject document;
    const auto &project = document.project;
    const auto &layer = document.text;
    const FormattedText start{
        u"one\ntwo\nsix", {{0, 7, OfSize(10)}, {9, 2, OfSize(20)}}, {Justification{1}, Justification{2}}};
    SetText(project, layer, start);
    ASSERT_EQ(Text(ReadText(*layer)), "<10>one/1two/2s<20>ix");

    struct Row {
        const char *what;
        std::function<void()> operation;
        const char *result;
        std::size_t formats;
    };
    const Row rows[] = {
        {"set", [&] { SetText(project, layer, u"new\ntext"); }, "<10>new/1text", 1},
        {"emptied", [&] { SetText(project, layer, u""); }, "", 0},
        {"set with a format",
         [&] {
             SetText(project, layer, FormattedText{u"a\nb", {{2, 1, OfSize(5)}}, {}});
         },
         "a/0<5>b", 1},
        {"put in at the start", [&] { InsertText(project, layer, 0, u"x\n"); }, "<10>x/1one/1two/2s<20>ix",
         2},
        {"put in behind a format", [&] { InsertText(project, layer, 3, u"-\n-"); },
         "<10>one-/1-/1two/2s<20>ix", 2},
        {"put in behind a break", [&] { InsertText(project, layer, 8, u"y\ny"); },
         "<10>one/1two/2y/2ys<20>ix", 2},
        {"put in at the end", [&] { InsertText(project, layer, 11, u"!"); }, "<10>one/1two/2s<20>ix!", 2},
        {"put in with a format",
         [&] {
             InsertText(project, layer, 1, {u"ab", {{1, 1, OfSize(20)}}, {}});
         },
         "<10>oa<20>b<10>ne/1two/2s<20>ix", 2},
        {"a word for another",
         [&] {
             ReplaceText(project, layer, {4, 3}, u"three");
         },
         "<10>one/1three/2s<20>ix", 2},
        {"a format goes out of use",
         [&] {
             ReplaceText(project, layer, {9, 2}, u"o");
         },
         "<10>one/1two/2so", 1},
        {"the end is cut off", [&] { ReplaceText(project, layer, {5}, u""); }, "<10>one/1t", 1},
        {"another format",
         [&] {
             SetTextFormat(project, layer, {2, 8}, OfSize(20));
         },
         "<10>on<20>e/1two/2six", 2},
        {"another justification",
         [&] {
             SetJustification(project, layer, {0, 4}, Justification{3});
         },
         "<10>one/3two/2s<20>ix", 2},
        {"nothing in an empty range",
         [&] {
             SetTextFormat(project, layer, {3, 0}, OfSize(30));
         },
         "<10>one/1two/2s<20>ix", 2},
        {"beyond",
         [&] {
             ReplaceText(project, layer, {9, 3}, u"");
         },
         "refused: The range goes beyond the text, which has 11 characters", 2},
        {"far beyond", [&] { InsertText(project, layer, 12, u"a"); },
         "refused: The range goes beyond the text, which has 11 characters", 2},
        {"a format beyond",
         [&] {
             InsertText(project, layer, 0, {u"ab", {{1, 2, OfSize(20)}}, {}});
         },
         "refused: A format goes beyond its text", 2},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        const std::size_t steps = document.history.UndoCount();
        const std::string refusal = document.Do(row.operation);
        EXPECT_EQ(refusal.empty() ? Text(ReadText(*layer)) : "refused: " + refusal, row.result);
        EXPECT_EQ(TokensOf(layer->Text()).size(), ReadText(*layer).text.size());
        EXPECT_EQ(layer->Formats().Count(), row.formats);
        if (document.history.UndoCount() > steps)
            document.history.Undo();
    }
    EXPECT_EQ(Text(ReadText(*layer, {2, 8})), "<10>e/1two/2s<20>i");
}

TEST(TextOperations, KeepPairsOfSurrogatesTogetherAndForgetWhatIsGoneInEditing)
{
    UndoableProject document;
    const auto &layer = document.text;
    SetText(document.project, layer, u"a\U0001F600b");
    EXPECT_EQ(document.Do([&] { InsertText(document.project, layer, 2, u"x"); }),
              "Position 2 is inside of a character");
    EXPECT_EQ(document.Do([&] {
        ReplaceText(document.project, layer, {0, 2}, u"");
    }),
              "Position 2 is inside of a character");
    const std::vector<TokenPtr> tokens = TokensOf(layer->Text());
    layer->SetSelectionStart(tokens[0]);
    layer->SetSelectionEnd(tokens[3]);
    layer->SetCursorPosition(tokens[0], {});
    ReplaceText(document.project, layer, {1, 3}, u"c");
    EXPECT_EQ(layer->SelectionStart(), nullptr);
    EXPECT_EQ(layer->CursorPosition(), tokens[0]);
    document.history.Undo();
    EXPECT_EQ(layer->SelectionEnd(), tokens[3]);
    ReplaceText(document.project, layer, {0, 1}, u"");
    EXPECT_EQ(layer->CursorPosition(), nullptr);
    EXPECT_EQ(TokensOf(layer->Text()), std::vector(tokens.begin() + 1, tokens.end()));
}
