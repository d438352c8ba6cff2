#include <marlet/exchange/ExchangeException.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/history/EditHistory.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/operations/layers/TextOperations.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <gtest/gtest.h>

#include <string>

namespace marlet::test
{

namespace
{

using namespace marlet::project;

const ExchangeFormat &Srt()
{
    return *ExchangeFormat::ByName("srt");
}

std::shared_ptr<CompositionAsset> CompositionOf(const Project &project)
{
    return std::static_pointer_cast<CompositionAsset>(project.Assets().GetByType(AssetType::Composition)[0]);
}

/// The layers from the top of the stack on: "0-25 Hello/you; ". Parts with a style are in brackets behind it.
std::string Drawing(const Project &project)
{
    std::string drawing;
    for (const auto &layer : CompositionOf(project)->Layers()) {
        const FormattedText text = ReadText(static_cast<const TextLayer &>(*layer));
        drawing += std::to_string(layer->StartFrame()) + "-" + std::to_string(layer->EndFrame()) + " ";
        std::size_t at = 0;
        const auto plain = [&](std::size_t end) {
            drawing += ToUtf8(text.text.substr(at, end - at));
            at = end;
        };
        for (const FormattedText::Run &run : text.formats) {
            plain(run.first);
            if (run.format.style == u"Book" && run.format.fillColor.B == 1)
                continue;
            drawing += ToUtf8(run.format.style) + "[";
            plain(run.first + run.count);
            drawing += "]";
        }
        plain(text.text.size());
        drawing += "; ";
    }
    return drawing;
}

struct Case {
    const char *name;
    std::string text;
    std::string drawing;
    std::vector<std::string> told = {};
};

TEST(Srt, ReadsWhatProgramsWrite)
{
    const std::string times = "00:00:01,000 --> 00:00:02,000\n";
    const Case cases[] = {
        {"two", "1\n" + times + "Hello\n\n2\n00:00:03,000 --> 00:00:04,480\nyou\n",
         "25-50 Hello; 75-112 you; "},
        {"Windows",
         "\xEF\xBB\xBF"
         "1\r\n00:00:01,000 --> 00:00:02,000\r\nA\r\n\r\n2\r\n01:00:00,000 --> 01:00:01,000\r\nB",
         "25-50 A; 90000-90025 B; "},
        {"UTF-16",
         std::string("\xFF\xFE"
                     "0\0"
                     "0\0:\0"
                     "1\0-\0-\0>\0"
                     "0\0"
                     "0\0:\0"
                     "2\0\n\0\xe9\0",
                     28),
         "25-50 \xc3\xa9; "},
        {"no numbers", times + "A\n\n" + times + "B\n", "25-50 A; 25-50 B; "},
        {"no blank lines", "1\n" + times + "A\n2\n" + times + "1984\n3\n" + times,
         "25-50 A; 25-50 1984; 25-50 ; "},
        {"overlapping, in any order", "00:05,5 --> 00:06.5\nA\n\n" + times + "B", "138-163 A; 25-50 B; "},
        {"lines", "1\n" + times + "\nA \n\n B\n\n\n", "25-50 A//B; "},
        {"styles", times + "a<i>b<B>c</b></i>d <font color=\"#ff0000\">e</font> <3",
         "25-50 aOblique[b]Bold Oblique[c]d Book[e] <3; "},
        {"open tags", times + "</i>a<b>b", "25-50 aBold[b]; "},
        {"what is left out",
         "Title\n\n1\n00:00:01,000 --> 00:00:02,000 X1:40\n{\\an8}<u>A</u>\n\n00:02,0 --> 00:01,0\nB",
         "25-50 A; ",
         {"1 loss: text in front of the first subtitle", "4 loss: where on the screen the subtitle is",
          "4 loss: the tag {\\an8}", "4 loss: the tag <u>", "7 loss: a subtitle that ends before it starts"}},
        {"shorter than a frame",
         "00:01,000 --> 00:01,001\nA",
         "25-26 A; ",
         {"0 warning: 1 subtitles are shorter than a frame and last one"}},
        {"nothing", " \r\n", ""},
    };
    for (const Case &test : cases) {
        SCOPED_TRACE(test.name);
        LoadReport report;
        ExchangeOptions options;
        options.load.report = &report;
        const auto project = Srt().Read(test.text, options);
        std::string drawing = Drawing(*project);
        std::replace(drawing.begin(), drawing.end(), '\n', '/');
        EXPECT_EQ(drawing, test.drawing);
        std::vector<std::string> told;
        for (const LoadEntry &entry : report.Entries())
            told.push_back(std::to_string(entry.line) + " " + SeverityName(entry.severity) + ": " +
                           entry.what);
        EXPECT_EQ(told, test.told);
    }
    EXPECT_THROW(Srt().Read("no times\nat all", {}), ExchangeException);
    EXPECT_FALSE(Srt().Recognises("a --> b"));
    EXPECT_TRUE(Srt().Recognises("1\n" + times));
    EXPECT_TRUE(Srt().Recognises(cases[2].text)) << cases[2].name;
}

TEST(Srt, WritesWhatItRead)
{
    const std::string text =
        "1\r\n00:00:01,000 --> 00:00:02,520\r\n<i>One</i>\r\nmore\r\n\r\n"
        "2\r\n01:02:03,040 --> 01:02:04,000\r\na <font color=\"#0080ff\"><b>b</b></font>\r\n\r\n";
    const auto project = Srt().Read(text, {});
    EXPECT_EQ(Srt().Write(project, {}), text);
}

TEST(Srt, AddsLayersToACompositionInOneStep)
{
    const auto project = Srt().Read("00:01,0 --> 00:02,0\nA", {});
    const std::string before = project->SerializeUtf8();
    EditHistory history(project);
    LoadReport report;
    ExchangeOptions options;
    options.composition = u"Subtitles";
    options.load.report = &report;
    Srt().ReadInto(project, "00:03,0 --> 00:04,0\nB\n\n00:01,0 --> 00:01,4\nC", options);
    EXPECT_EQ(Drawing(*project), "75-100 B; 25-35 C; 25-50 A; ");
    EXPECT_EQ(report.Entries()[0].what, "1 subtitles last longer than the composition");
    history.Undo();
    EXPECT_EQ(project->SerializeUtf8(), before);
}

} // namespace

} // namespace marlet::test
