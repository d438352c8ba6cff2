#include <tests/operations/TrackDrawing.h>

#include <marlet/checks/Validate.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/history/EditHistory.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/sequence/SequenceClipboard.h>
#include <marlet/operations/sequence/SequenceObjects.h>
#include <marlet/operations/sequence/SequencePlacing.h>
#include <marlet/operations/sequence/SequenceRemoval.h>
#include <marlet/operations/sequence/SequenceTransitions.h>
#include <marlet/operations/sequence/SequenceTrimming.h>

#include <gmock/gmock.h>

namespace marlet::test
{

namespace
{

constexpr auto kBoth = Partner::GoesAlong;
constexpr auto kAlone = Partner::Stays;

using Operation = void (*)(DrawnProject &drawn);

std::vector<std::string> FindingsIn(const Project &project)
{
    std::vector<std::string> texts;
    for (const Finding &finding : Validate(project))
        texts.push_back(finding.place + ": " + finding.what);
    return texts;
}

void Place(DrawnProject &drawn, char asset, const char *track, int start, int length, PlaceMode mode,
           const TrackChoice &ripple = TrackChoice::None())
{
    PlaceAsset(drawn.Document(), {drawn.Asset(asset), drawn.Row(track), {}, start, 0, length}, mode, ripple);
}

void CopyTo(DrawnProject &drawn, const std::vector<Object> &objects, int start, const Track &video,
            PlaceMode mode, const TrackChoice &ripple = TrackChoice::None())
{
    CopiedObjects(drawn.Document(), objects, kBoth).Paste(drawn.Document(), start, video, {}, mode, ripple);
}

struct Case {
    const char *name;
    const char *before;
    Operation operation;
    const char *after;
};

const Case kCases[] = {
    {"place a picture with its sound",
     "V1 |a12345.........b1234|\n"
     "A1 |....................|",
     [](DrawnProject &d) {
         PlaceAsset(d.Document(), {d.Asset('c'), d.Row("V1"), d.Row("A1"), 8, 2, 4});
     },
     "V1 |a12345..C345...b1234|\n"
     "A1 |........C345........|"},
    {"insert with ripple: partners are cut, titles keep step",
     "V1 |A12345b1234.........|\n"
     "V2 |....s--.............|\n"
     "A1 |A12345..............|",
     [](DrawnProject &d) { Place(d, 'c', "V1", 3, 3, PlaceMode::Insert, TrackChoice::All()); },
     "V1 |A12c12A45b1234......|\n"
     "V2 |.......s--..........|\n"
     "A1 |A12...A45...........|"},
    {"insert with ripple of one track: the tail has no partner",
     "V1 |A12345b1234.........|\n"
     "V2 |....s--.............|\n"
     "A1 |A12345..............|",
     [](DrawnProject &d) { Place(d, 'c', "V1", 3, 3, PlaceMode::Insert); },
     "V1 |A12c12a45b1234......|\n"
     "V2 |....s--.............|\n"
     "A1 |A12345..............|"},
    {"insert at a cut: its transition goes, others come along", "V1 |a1234c456...........| x5:2 >9:1",
     [](DrawnProject &d) { Place(d, 'b', "V1", 5, 2, PlaceMode::Insert, TrackChoice::All()); },
     "V1 |a1234b1c456.........| >11:1"},
    {"overwrite inside of an object",
     "V1 |A123456789b123456789| x10:2\n"
     "A1 |A123456789..........|",
     [](DrawnProject &d) { Place(d, 'c', "V1", 3, 4, PlaceMode::Overwrite); },
     "V1 |A12c123a89b123456789| x10:2\n"
     "A1 |A123456789..........|"},
    {"overwrite a tail, an object and a head", "V1 |a1234b1234s----.....| x5:2 x10:2",
     [](DrawnProject &d) { Place(d, 'c', "V1", 3, 8, PlaceMode::Overwrite); }, "V1 |a12c1234567s---.....|"},
    {"remove",
     "V1 |A123B456c1..........| x4:2 x8:2\n"
     "A1 |A123B456............|",
     [](DrawnProject &d) { RemoveObject(d.Document(), d.At("V1", 4), kBoth); },
     "V1 |A123....c1..........|\n"
     "A1 |A123................|"},
    {"remove without the partner",
     "V1 |A123................|\n"
     "A1 |A123................|",
     [](DrawnProject &d) { RemoveObject(d.Document(), d.At("A1", 2), kAlone); },
     "V1 |a123................|\n"
     "A1 |....................|"},
    {"remove with ripple",
     "V1 |A123B456c1..........|\n"
     "V2 |.........s--........|\n"
     "A1 |A123B456............|",
     [](DrawnProject &d) { RemoveObject(d.Document(), d.At("V1", 4), kBoth, TrackChoice::All()); },
     "V1 |A123c1..............|\n"
     "V2 |.....s--............|\n"
     "A1 |A123................|"},
    {"lift",
     "V1 |A12345678b12........|\n"
     "A1 |A12345678...........|",
     [](DrawnProject &d) { LiftFrames(d.Document(), 2, 5, TrackChoice::All()); },
     "V1 |A1...A678b12........|\n"
     "A1 |A1...A678...........|"},
    {"extract",
     "V1 |A12345678b12........| <0:1 x9:2\n"
     "A1 |A12345678...........|",
     [](DrawnProject &d) { ExtractFrames(d.Document(), 2, 5, TrackChoice::All()); },
     "V1 |A1A678b12...........| <0:1 x6:2\n"
     "A1 |A1A678..............|"},
    {"extract from one track",
     "V1 |a12345678b12........| >12:2\n"
     "V2 |s-----s--...........|",
     [](DrawnProject &d) { ExtractFrames(d.Document(), 2, 5, d.Tracks({"V1"})); },
     "V1 |a1a678b12...........| >9:2\n"
     "V2 |s-----s--...........|"},
    {"close the gaps that all tracks have",
     "V1 |..a1..b12...c.......|\n"
     "V2 |....s...............|",
     [](DrawnProject &d) { EXPECT_EQ(CloseGaps(d.Document(), TrackChoice::All()), 6); },
     "V1 |a1.b12c.............|\n"
     "V2 |..s.................|"},
    {"close the gaps of one track",
     "V1 |..a1..b12...........|\n"
     "V2 |....s...............|",
     [](DrawnProject &d) { EXPECT_EQ(CloseGaps(d.Document(), d.Tracks({"V1"})), 4); },
     "V1 |a1b12...............|\n"
     "V2 |....s...............|"},
    {"trim the head",
     "V1 |A1234B1234..........| x5:2\n"
     "A1 |A1234B1234..........|",
     [](DrawnProject &d) { TrimObject(d.Document(), d.At("V1", 5), 6, 10, kBoth); },
     "V1 |A1234.B234..........|\n"
     "A1 |A1234.B234..........|"},
    {"trim the tail with ripple: the cut keeps its transition",
     "V1 |A12345B12...........| x6:2\n"
     "V2 |......s-............|\n"
     "A1 |A12345B12...........|",
     [](DrawnProject &d) { TrimObject(d.Document(), d.At("V1", 0), 0, 4, kBoth, TrackChoice::All()); },
     "V1 |A123B12.............| x4:2\n"
     "V2 |....s-..............|\n"
     "A1 |A123B12.............|"},
    {"trim the tail with ripple until a transition does not fit", "V1 |a1234b123...........| x5:4",
     [](DrawnProject &d) { TrimObject(d.Document(), d.At("V1", 0), 0, 1, kBoth, TrackChoice::All()); },
     "V1 |ab123...............|"},
    {"trim the head with ripple: longer",
     "V1 |a123b456c1..........|\n"
     "V2 |.s--.s--............|",
     [](DrawnProject &d) { TrimObject(d.Document(), d.At("V1", 4), 2, 8, kBoth, TrackChoice::All()); },
     "V1 |a123b23456c1........|\n"
     "V2 |.s--...s--..........|"},
    {"trim the head with ripple: shorter",
     "V1 |a123b123c1..........|\n"
     "V2 |....s..s............|",
     [](DrawnProject &d) { TrimObject(d.Document(), d.At("V1", 4), 6, 8, kBoth, TrackChoice::All()); },
     "V1 |a123b3c1............|\n"
     "V2 |....ss..............|"},
    {"roll",
     "V1 |A1234B4567..........| x5:2\n"
     "A1 |A1234B4567..........|",
     [](DrawnProject &d) { RollCut(d.Document(), d.At("V1", 0), ObjectEnd::Tail, 7, kBoth); },
     "V1 |A123456B67..........| x7:2\n"
     "A1 |A123456B67..........|"},
    {"roll the picture alone",
     "V1 |A1234B4567..........|\n"
     "A1 |A1234B4567..........|",
     [](DrawnProject &d) { RollCut(d.Document(), d.At("V1", 5), ObjectEnd::Head, 3, kAlone); },
     "V1 |A12B234567..........|\n"
     "A1 |A1234B4567..........|"},
    {"slip", "V1 |a1234b3456..........| x5:2",
     [](DrawnProject &d) { SlipObject(d.Document(), d.At("V1", 5), 3, kBoth); },
     "V1 |a1234b6789..........| x5:2"},
    {"slide between neighbours", "V1 |a1234b12c34567......| x5:2 x8:2",
     [](DrawnProject &d) { SlideObject(d.Document(), d.At("V1", 5), 2, kBoth); },
     "V1 |a123456b12c567......| x7:2 x10:2"},
    {"slower, where there is room", "V1 |a12.....b12.........|",
     [](DrawnProject &d) { SetObjectSpeed(d.Document(), d.At("V1", 0), 0.5, kBoth); },
     "V1 |a01122..b12.........|"},
    {"faster with ripple",
     "V1 |A123b456............| x4:2\n"
     "A1 |A123................|",
     [](DrawnProject &d) { SetObjectSpeed(d.Document(), d.At("V1", 0), 2, kBoth, TrackChoice::All()); },
     "V1 |A2b456..............| x2:2\n"
     "A1 |A2..................|"},
    {"move onto another track",
     "V1 |A123b12.............| <0:1 x4:2\n"
     "V2 |....................|\n"
     "A1 |A123................|",
     [](DrawnProject &d) { MoveObject(d.Document(), d.At("V1", 0), 8, d.Row("V2"), kBoth); },
     "V1 |....b12.............|\n"
     "V2 |........A123........| <8:1\n"
     "A1 |........A123........|"},
    {"split partners",
     "V1 |A1234b12............| x5:2\n"
     "A1 |A1234...............| >5:2",
     [](DrawnProject &d) { SplitObject(d.Document(), d.At("V1", 0), 2, kBoth); },
     "V1 |A1A34b12............| x5:2\n"
     "A1 |A1A34...............| >5:2"},
    {"join what was split",
     "V1 |A1A34b12............| x2:2 x5:2\n"
     "A1 |A1A34...............| >5:2",
     [](DrawnProject &d) { JoinObjects(d.Document(), d.At("V1", 0), kBoth); },
     "V1 |A1234b12............| x5:2\n"
     "A1 |A1234...............| >5:2"},
    {"link away from another partner",
     "V1 |A123b123............|\n"
     "A1 |A123b123............|",
     [](DrawnProject &d) { LinkObjects(d.Document(), d.At("V1", 0), d.At("A1", 4)); },
     "V1 |A123b123............|\n"
     "A1 |a123B123............|"},
    {"unlink",
     "V1 |A123................|\n"
     "A1 |A123................|",
     [](DrawnProject &d) { UnlinkObject(d.Document(), d.At("A1", 0)); },
     "V1 |a123................|\n"
     "A1 |a123................|"},
    {"a transition as long as the assets allow", "V1 |a1234b3456..........|",
     [](DrawnProject &d) {
         EXPECT_EQ(TransitionRoom(d.Document(), d.At("V1", 0), ObjectEnd::Tail, Sharing::WithNeighbour), 5);
         SetTransition(d.Document(), d.At("V1", 0), ObjectEnd::Tail, DrawnProject::Plugin(), {},
                       Sharing::WithNeighbour);
     },
     "V1 |a1234b3456..........| x5:5"},
    {"a transition of one object in place of a shared one", "V1 |a1234s----..........| x5:2 >10:2",
     [](DrawnProject &d) {
         EXPECT_EQ(TransitionRoom(d.Document(), d.At("V1", 5), ObjectEnd::Head, Sharing::Alone), 3);
         SetTransition(d.Document(), d.At("V1", 5), ObjectEnd::Head, DrawnProject::Plugin(), 3,
                       Sharing::Alone);
     },
     "V1 |a1234s----..........| <5:3 >10:2"},
    {"remove a transition", "V1 |a1234b3456..........| x5:2",
     [](DrawnProject &d) { RemoveTransition(d.Document(), d.At("V1", 5), ObjectEnd::Head); },
     "V1 |a1234b3456..........|"},
    {"copy with partners and transitions",
     "V1 |A123B456............| x4:2 >8:1\n"
     "A1 |A123B456............| <0:1",
     [](DrawnProject &d) {
         CopyTo(d, {d.At("V1", 4), d.At("V1", 0)}, 10, {}, PlaceMode::Free);
     },
     "V1 |A123B456..A123B456..| x4:2 >8:1 x14:2 >18:1\n"
     "A1 |A123B456..A123B456..| <0:1 <10:1"},
    {"paste with ripple",
     "V1 |A123B456............| x4:2\n"
     "A1 |A123B456............|",
     [](DrawnProject &d) { CopyTo(d, {d.At("A1", 0)}, 4, {}, PlaceMode::Insert, TrackChoice::All()); },
     "V1 |A123A123B456........|\n"
     "A1 |A123A123B456........|"},
    {"paste over what is on another track",
     "V1 |a123................|\n"
     "V2 |s----...............|",
     [](DrawnProject &d) { CopyTo(d, {d.At("V1", 0)}, 2, d.Row("V2"), PlaceMode::Overwrite); },
     "V1 |a123................|\n"
     "V2 |s-a123..............|"},
    {"add a track", "V1 |a123................|",
     [](DrawnProject &d) { AddTrack(d.Document(), TrackType::Audio, u"A1"); },
     "V1 |a123................|\n"
     "A1 |....................|"},
};

const Case kRefused[] = {
    {"place over something", "V1 |a123................|",
     [](DrawnProject &d) { Place(d, 'b', "V1", 2, 2, PlaceMode::Free); },
     "The frames 2 to 4 of track \"V1\" are not free: \"a\" has frames 0 to 4"},
    {"insert where the sequence has no more frames", "V1 |a123456789b123456789|",
     [](DrawnProject &d) { Place(d, 'c', "V1", 5, 2, PlaceMode::Insert); },
     "The frames 12 to 22 are not all in the sequence, which has 20 frames"},
    {"a still without a length", "V1 |....................|",
     [](DrawnProject &d) {
         PlaceAsset(d.Document(), {d.Asset('s'), d.Row("V1")});
     },
     "Asset \"s\" has no length of its own: one must be given"},
    {"remove with ripple into what stays",
     "V1 |a123b12.............|\n"
     "V2 |..s----.c1..........|",
     [](DrawnProject &d) { RemoveObject(d.Document(), d.At("V1", 4), kBoth, TrackChoice::All()); },
     "The frames 5 to 7 of track \"V2\" are not free: \"s\" has frames 2 to 7"},
    {"trim beyond the asset", "V1 |a123456789..........|",
     [](DrawnProject &d) { TrimObject(d.Document(), d.At("V1", 0), 0, 12, kBoth, TrackChoice::All()); },
     "The frames 0 to 12 of asset \"a\" are not all there: it has 10 frames"},
    {"slip beyond the asset", "V1 |a123................|",
     [](DrawnProject &d) { SlipObject(d.Document(), d.At("V1", 0), -1, kBoth); },
     "The frames -1 to 3 of asset \"a\" are not all there: it has 10 frames"},
    {"slip a still", "V1 |s---................|",
     [](DrawnProject &d) { SlipObject(d.Document(), d.At("V1", 0), 1, kBoth); },
     "Object \"s\" is a still, which has no other frames"},
    {"roll up to nothing", "V1 |a123b456............|",
     [](DrawnProject &d) { RollCut(d.Document(), d.At("V1", 0), ObjectEnd::Tail, 8, kBoth); },
     "No frame would be left: the start is 8, the end 8"},
    {"roll where nothing meets", "V1 |a123.b456...........|",
     [](DrawnProject &d) { RollCut(d.Document(), d.At("V1", 0), ObjectEnd::Tail, 3, kBoth); },
     "Object \"a\" meets no other one there"},
    {"slide over all of a neighbour", "V1 |a1234567b12c34......|",
     [](DrawnProject &d) { SlideObject(d.Document(), d.At("V1", 8), -9, kBoth); },
     "No frame would be left: the start is 0, the end -1"},
    {"slower without room", "V1 |a123b123............|",
     [](DrawnProject &d) { SetObjectSpeed(d.Document(), d.At("V1", 0), 0.5, kBoth); },
     "The frames 0 to 8 of track \"V1\" are not free: \"b\" has frames 4 to 8"},
    {"no speed", "V1 |a123................|",
     [](DrawnProject &d) { SetObjectSpeed(d.Document(), d.At("V1", 0), 0, kBoth); },
     "A speed must be above 0"},
    {"join what does not go on", "V1 |a12a56..............|",
     [](DrawnProject &d) { JoinObjects(d.Document(), d.At("V1", 0), kBoth); },
     "Nothing goes on with \"a\" at its tail"},
    {"link to itself", "V1 |a12.................|",
     [](DrawnProject &d) { LinkObjects(d.Document(), d.At("V1", 0), d.At("V1", 1)); },
     "Object \"a\" cannot be its own partner"},
    {"a transition between whole assets", "V1 |a123456789b123456789|",
     [](DrawnProject &d) {
         SetTransition(d.Document(), d.At("V1", 0), ObjectEnd::Tail, DrawnProject::Plugin(), 1,
                       Sharing::WithNeighbour);
     },
     "A transition of 1 frames does not fit: there is room for 0"},
    {"paste where there is no track",
     "V1 |a123................|\n"
     "V2 |b123................|",
     [](DrawnProject &d) {
         CopyTo(d, {d.At("V1", 0), d.At("V2", 0)}, 8, d.Row("V2"), PlaceMode::Free);
     },
     "There are too few tracks for what was copied"},
    {"move to a track of the other kind",
     "V1 |a123................|\n"
     "A1 |....................|",
     [](DrawnProject &d) { MoveObject(d.Document(), d.At("V1", 0), 0, d.Row("A1"), kBoth); },
     "Track \"A1\" is for sounds"},
};

} // namespace

TEST(SequenceOperationsTest, EditTracksInOneStepThatCanBeUndone)
{
    for (const Case &operation : kCases) {
        SCOPED_TRACE(operation.name);
        DrawnProject drawn(operation.before);
        ASSERT_EQ(drawn.Drawing(), operation.before);
        drawn.AddAssets();
        ASSERT_THAT(FindingsIn(*drawn.Document()), testing::IsEmpty());
        EditHistory history(drawn.Document());
        history.SetChecksAnnouncements(true);
        const std::string before = drawn.Text();
        const std::vector<Object> objects = ObjectsOf(*drawn.Sequence());

        operation.operation(drawn);
        EXPECT_EQ(drawn.Drawing(), operation.after);
        EXPECT_THAT(FindingsIn(*drawn.Document()), testing::IsEmpty());
        const std::string after = drawn.Text();
        EXPECT_EQ(history.UndoCount(), 1U);

        ASSERT_TRUE(history.Undo());
        EXPECT_EQ(drawn.Text(), before);
        EXPECT_EQ(ObjectsOf(*drawn.Sequence()), objects);
        ASSERT_TRUE(history.Redo());
        EXPECT_EQ(drawn.Text(), after);
    }
}

TEST(SequenceOperationsTest, SayWhyTheyRefuseAndChangeNothing)
{
    for (const Case &refused : kRefused) {
        SCOPED_TRACE(refused.name);
        DrawnProject drawn(refused.before);
        drawn.AddAssets();
        EditHistory history(drawn.Document());
        const std::string before = drawn.Text();
        try {
            refused.operation(drawn);
            ADD_FAILURE() << drawn.Drawing();
        } catch (const OperationException &exception) {
            EXPECT_STREQ(exception.what(), refused.after);
        }
        EXPECT_EQ(drawn.Text(), before);
        EXPECT_FALSE(history.CanUndo());
    }
}

TEST(SequenceOperationsTest, RefuseWhatIsNotThere)
{
    DrawnProject drawn("V1 |a123................|");
    const Object object = drawn.At("V1", 0);
    RemoveObject(drawn.Document(), object, kBoth);
    EXPECT_THROW(RemoveObject(drawn.Document(), object, kBoth), OperationException);
    EXPECT_THROW(UnlinkObject(drawn.Document(), nullptr), std::invalid_argument);
    EXPECT_THROW(CloseGaps(nullptr, TrackChoice::All()), std::invalid_argument);
    EXPECT_THROW(CloseGaps(Project::Create(nullptr), TrackChoice::All()), OperationException);
    EXPECT_THROW(TrackChoice::Of({nullptr}), std::invalid_argument);
}

} // namespace marlet::test
