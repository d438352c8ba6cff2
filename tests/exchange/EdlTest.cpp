#include <tests/operations/TrackDrawing.h>
#include <tests/project/ClipFiles.h>

#include <marlet/checks/Validate.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/exchange/ExchangeException.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/operations/OperationException.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/MediaAsset.h>

#include <gmock/gmock.h>

namespace marlet::test
{

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

const ExchangeFormat &Edl()
{
    return *ExchangeFormat::ByName("edl");
}

/// What becomes of a list, and what is told of it but for notes.
struct ReadList {
    explicit ReadList(const std::string &text, double frameRate = 25)
    {
        ExchangeOptions options;
        options.frameRate = frameRate;
        options.load.report = &report;
        options.dissolve = DrawnProject::Plugin();
        options.wipe = DrawnProject::Plugin();
        project = Edl().Read(text, options);
    }

    std::string Drawing() const { return DrawnProject::DrawingOf(*project->Sequence()); }
    std::vector<std::string> Told(LoadEntry::Severity severity) const
    {
        std::vector<std::string> told;
        for (const LoadEntry &entry : report.Entries())
            if (entry.severity == severity)
                told.push_back(std::to_string(entry.line) + " " + entry.what);
        return told;
    }

    LoadReport report;
    std::shared_ptr<Project> project;
};

TEST(EdlTest, WritesCutsDissolvesAndFadesAndReadsThemAgain)
{
    const DrawnProject drawn("V1 |A123b12345c456789.d1234| x10:4 <18:2 >23:2\n"
                             "V2 |..........s--..........|\n"
                             "A1 |A123.......c123........|\n"
                             "A2 |....b1234..c123........|\n"
                             "A3 |a123...................|");
    const std::string expected =
        "TITLE: Editor\n"
        "FCM: NON-DROP FRAME\n"
        "\n"
        "001  AX       B     C        00:00:00:00 00:00:00:04 01:00:00:00 01:00:00:04\n"
        "* FROM CLIP NAME: a\n"
        "\n"
        "002  AX       NONE  C        00:00:00:00 00:00:00:04 01:00:00:00 01:00:00:04\n"
        "AUD   3\n"
        "* FROM CLIP NAME: a\n"
        "\n"
        "003  AX       V     C        00:00:00:00 00:00:00:04 01:00:00:04 01:00:00:08\n"
        "* FROM CLIP NAME: b\n"
        "\n"
        "004  AX       A2    C        00:00:00:00 00:00:00:05 01:00:00:04 01:00:00:09\n"
        "* FROM CLIP NAME: b\n"
        "\n"
        "005  AX       V     C        00:00:00:04 00:00:00:04 01:00:00:08 01:00:00:08\n"
        "005  AX       V     D    004 00:00:00:01 00:00:00:10 01:00:00:08 01:00:00:17\n"
        "* EFFECT NAME: Blur\n"
        "* FROM CLIP NAME: b\n"
        "* TO CLIP NAME: c\n"
        "\n"
        "006  AX       AA    C        00:00:00:00 00:00:00:04 01:00:00:11 01:00:00:15\n"
        "* FROM CLIP NAME: c\n"
        "\n"
        "007  BL       V     C        00:00:00:00 00:00:00:00 01:00:00:18 01:00:00:18\n"
        "007  AX       V     D    002 00:00:00:00 00:00:00:03 01:00:00:18 01:00:00:21\n"
        "* EFFECT NAME: Blur\n"
        "* TO CLIP NAME: d\n"
        "\n"
        "008  AX       V     C        00:00:00:03 00:00:00:03 01:00:00:21 01:00:00:21\n"
        "008  BL       V     D    002 00:00:00:00 00:00:00:02 01:00:00:21 01:00:00:23\n"
        "* EFFECT NAME: Blur\n"
        "* FROM CLIP NAME: d\n";
    LoadReport report;
    ExchangeOptions options;
    options.load.report = &report;
    EXPECT_EQ(Edl().Write(drawn.Document(), options), expected);
    EXPECT_EQ(report.FirstLoss()->what, "track V2 is left out: a list has one of pictures");

    const ReadList read(expected);
    EXPECT_EQ(read.Drawing(), "Video 1 |A123b12345c456789.d1234| x10:4 <18:2 >23:2\n"
                              "Audio 1 |A123.......c123........|\n"
                              "Audio 2 |....b1234..c123........|\n"
                              "Audio 3 |a123...................|");
    EXPECT_EQ(ReadList(Edl().Write(read.project, {})).Drawing(), read.Drawing());
    for (const Finding &finding : Validate(*read.project))
        EXPECT_TRUE(finding.severity == Finding::Severity::Note || finding.what.ends_with("is not there"))
            << finding.place << ": " << finding.what;
}

struct Foreign {
    const char *name;
    double frameRate;
    const char *text;
    const char *drawing;
    std::vector<std::string> warnings;
    std::vector<std::string> losses;
};

const Foreign kForeign[] = {
    {"tabs, small letters, a byte order mark, no title, line ends of all kinds",
     25,
     "\xEF\xBB\xBF* written elsewhere\r\n\r\n"
     "1\tax\tv\tc\t00:00:01:00 00:00:01:04 10:00:00:00 10:00:00:04\r"
     "* from clip name: a\n\n"
     "2  some long reel  AA/V  C  00:00:00:03 00:00:00:05 10:00:00:05 10:00:00:07\r\n"
     "* TO CLIP NAME: b\n",
     "Video 1 |a678.B4|\nAudio 1 |.....B4|\nAudio 2 |.....b4|",
     {"3 there is no file a", "6 there is no file b"},
     {"1 the note \"written elsewhere\" is left out",
      "6 the reel SOME LONG REEL of b has no place in a project"}},
    {"a dissolve in one line, a wipe, marks that belong to nobody",
     25,
     "TITLE: x\nSPLIT: AUDIO DELAY= 00:00:00:02\n"
     "001 AX V C 00:00:00:00 00:00:00:04 00:00:00:00 00:00:00:04\n* FROM CLIP NAME: a\n"
     "002 AX V D 002 00:00:00:01 00:00:00:05 00:00:00:04 00:00:00:08\n* TO CLIP NAME: b\n"
     "003 AX V W012 002 00:00:00:01 00:00:00:05 00:00:00:08 00:00:00:12\n* TO CLIP NAME: c\n",
     "Video 1 |a1234b345c34| x5:2 x9:2",
     {"3 there is no file a", "5 there is no file b", "7 there is no file c"},
     {"2 the note \"SPLIT: AUDIO DELAY= 00:00:00:02\" is left out"}},
    {"overlaps go above, keys are cuts, speeds",
     25,
     "TITLE: x\n"
     "001 AX V C 00:00:00:00 00:00:00:03 00:00:00:00 00:00:00:06\n* FROM CLIP NAME: a\nM2 AX 012.5 "
     "00:00:00:00\n"
     "002 AX V K B 000 00:00:00:00 00:00:00:02 00:00:00:03 00:00:00:05\n* FROM CLIP NAME: b\n",
     "Video 1 |a01122|\nVideo 2 |...b1.|",
     {"2 there is no file a", "5 there is no file b", "5 the edit overlaps another one and comes on track 2"},
     {"5 a key over a background is taken as a cut to its foreground"}},
    {"numbers that are left out at a minute: of 59;28 to 00;02 there are two frames",
     0,
     "FCM: DROP FRAME\n001 AX V C 00:00:59;28 00:01:00;02 01:00:59;28 01:01:00;02\n* FROM CLIP NAME: a\n",
     nullptr,
     {"2 there is no file a", "0 the list does not say how many frames a second has: 29.97, which drop-frame "
                              "numbers are for are taken"},
     {}},
};

TEST(EdlTest, TakesWhatOtherProgramsWrite)
{
    for (const Foreign &foreign : kForeign) {
        SCOPED_TRACE(foreign.name);
        EXPECT_TRUE(Edl().Recognises(foreign.text));
        const ReadList read(foreign.text, foreign.frameRate);
        if (foreign.drawing)
            EXPECT_EQ(read.Drawing(), foreign.drawing);
        else
            EXPECT_EQ(read.project->Sequence()->VideoTracks()[0]->Objects()[0]->Length(), 2);
        std::vector<std::string> warnings = foreign.warnings;
        warnings.push_back("0 no picture says how large the sequence is: 1280 x 720 is taken");
        EXPECT_THAT(read.Told(LoadEntry::Severity::Warning), testing::UnorderedElementsAreArray(warnings));
        EXPECT_THAT(read.Told(LoadEntry::Severity::Loss), testing::UnorderedElementsAreArray(foreign.losses));
    }
}

TEST(EdlTest, RefusesWhatIsNoListWithItsLine)
{
    const struct {
        const char *text;
        const char *words;
    } kBad[] = {
        {"", "neither a title nor an edit"},
        {"<xml/>\n", "neither a title nor an edit"},
        {"TITLE: x\n001 AX V C 00:00:00:00\n", "Line 2: an edit has"},
        {"TITLE: x\n001 AX V C 00:00:00:00 00:00:00:25 00:00:00:00 00:00:01:00\n",
         "Line 2: 00:00:00:25 is no time code at 25 frames a second"},
        {"TITLE: x\n001 AX V C 00:00:00:00 00:60:00:00 00:00:00:00 00:00:01:00\n", "Line 2: 00:60:00:00"},
        {"TITLE: x\n001 AX V C 00:00:00:00 00:00:01:00 00:00:01:00 00:00:00:00\n", "Line 2: the edit ends"},
        {"TITLE: x\n001 AX Q C 00:00:00:00 00:00:01:00 00:00:00:00 00:00:01:00\n",
         "Line 2: Q are no channels"},
        {"TITLE: x\n001 AX V D 99999999999 00:00:00:00 00:00:01:00 00:00:00:00 00:00:01:00\n",
         "Line 2: a transition has no 99999999999 frames"},
    };
    for (const auto &[text, words] : kBad) {
        try {
            ReadList{text};
            ADD_FAILURE() << text;
        } catch (const ExchangeException &refusal) {
            EXPECT_THAT(refusal.what(), HasSubstr(words)) << text;
        }
    }
}

TEST(EdlTest, RefusesWhatNoTimeCodeSays)
{
    constexpr int kHundredHours = 100 * 3600 * 25;
    const DrawnProject drawn("V1 |a123|");
    const auto object = drawn.At("V1", 0);
    LoadReport report;
    ExchangeOptions options;
    options.load.report = &report;
    object->SetAssetInstanceStart(kHundredHours - 5);
    EXPECT_THAT(Edl().Write(drawn.Document(), options), HasSubstr("99:59:59:20 99:59:59:24 "));
    object->SetAssetInstanceStart(kHundredHours - 4);
    EXPECT_THROW(Edl().Write(drawn.Document(), options), OperationException);
    object->SetAssetInstanceStart(0);
    object->SetSpeed(2000);
    report.Clear();
    EXPECT_THAT(Edl().Write(drawn.Document(), options), testing::Not(HasSubstr("M2")));
    EXPECT_EQ(report.FirstLoss()->what, "a list has no word for the speed of a");
}

/// The clip has ten frames, of which a tape machine says that the first is at one hour.
TEST(EdlTest, FindsFilesAndGuessesTheirFirstTimeCode)
{
    const ClipFiles files;
    const std::string path = ToUtf8(files.Write("sea.mov", 100));
    const ReadList read("TITLE: x\n"
                        "001 SEA V C 01:00:00:02 01:00:00:06 01:00:00:00 01:00:00:04\n"
                        "* SOURCE FILE: " +
                        path +
                        "\n"
                        "002 SEA V D 002 01:00:00:07 01:00:00:10 01:00:00:04 01:00:00:07\n"
                        "003 SEA V C 01:00:00:05 01:00:00:20 01:00:00:07 01:00:00:22\n");
    const SequenceObjectList &objects = read.project->Sequence()->VideoTracks()[0]->Objects();
    ASSERT_EQ(objects.Count(), 2u);
    EXPECT_EQ(objects[0]->AssetInstanceStart(), 2);
    EXPECT_EQ(objects[1]->AssetInstanceStart(), 8);
    EXPECT_EQ(read.project->Sequence()->Settings().Width(), ClipFiles::kWidth);
    EXPECT_FALSE(objects[0]->Asset(read.project->Assets())->IsOffline());
    EXPECT_THAT(read.Told(LoadEntry::Severity::Loss),
                ElementsAre("5 sea.mov does not have all frames of the edit"));

    ExchangeOptions options;
    options.folder = files.Path("") + u"/";
    EXPECT_THAT(Edl().Write(read.project, options), HasSubstr("001  SEA      V     C        00:00:00:02"));
    EXPECT_THAT(Edl().Write(read.project, options), HasSubstr("* SOURCE FILE: sea.mov\n"));
}

} // namespace

} // namespace marlet::test
