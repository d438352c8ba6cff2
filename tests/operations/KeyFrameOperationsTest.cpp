#include <tests/operations/UndoableProject.h>
#include <tests/support/OddCurves.h>

#include <marlet/operations/curves/KeyFrameOperations.h>

#include <sstream>

using namespace marlet::test;
using marlet::project::AnimatedProperty;
using marlet::project::Easing;

namespace
{

constexpr char kName[] = "rotationZ";

std::string Text(const char *name, const Handle &handle)
{
    std::ostringstream text;
    if (handle.X != 0 || handle.Y != 0)
        text << name << '(' << handle.X << ',' << handle.Y << ')';
    return text.str();
}

/// Time=value of each key frame, with its handles and what begins at it: ~ a curve, | a hold.
std::string Text(const KeyFrameList &keys)
{
    std::ostringstream text;
    keys.ForEach([&](const KeyFrame &key) {
        text << (text.tellp() > 0 ? "  " : "") << key.Time() << '=' << boost::get<float>(key.Value())
             << Text("<", key.IncomingPoint()) << Text(">", key.OutgoingPoint())
             << (key.Type() == KeyFrameType::Bezier ? "~"
                 : key.Type() == KeyFrameType::Hold ? "|"
                                                    : "");
    });
    return text.str();
}

class KeyFrameOperations : public testing::Test
{
protected:
    KeyFrameOperations()
    {
        KeyFrameList &keys = document.point->Animation().KeyFrames(kName);
        keys.Add(Key(0, 0.f, {}, {300, 0}, KeyFrameType::Bezier));
        keys.Add(Key(1000, 10.f, {-200, 5}, {}));
        keys.Add(Key(2000, 4.f, {}, {}, KeyFrameType::Hold));
        keys.Add(Key(3000, 6.f));
        ids = keys.Identifiers();
    }

    std::string Curve() const { return Text(std::as_const(*document.point).Animation().KeyFrames(kName)); }

    UndoableProject document;
    AnimatedProperty property{document.point, kName};
    std::vector<KyID> ids;
};

} // namespace

TEST_F(KeyFrameOperations, GiveTheKeyFramesOfTheTable)
{
    const auto &project = document.project;
    ASSERT_EQ(Curve(), "0=0>(300,0)~  1000=10<(-200,5)  2000=4|  3000=6");
    const AnimatedProperty opacity(document.layer, "opacity");
    const AnimatedProperty anchor(document.layer, "anchorPoint");
    const std::vector<KeyFrame> middle = CopyKeyFrames(property, {ids[2], ids[1]});

    struct Row {
        const char *what;
        std::function<void()> operation;
        const char *result;
    };
    const Row rows[] = {
        {"one moves past another", [&] { MoveKeyFrames(project, property, {ids[1]}, 1500); },
         "0=0>(300,0)~  2000=4|  2500=10<(-200,5)  3000=6"},
        {"two move onto each other's times",
         [&] {
             MoveKeyFrames(project, property, {ids[1], ids[2]}, 1000);
         },
         "refused: Two key frames of \"rotationZ\" would stand at 3000 ms"},
        {"all move", [&] { MoveKeyFrames(project, property, ids, -1000); },
         "-1000=0>(300,0)~  0=10<(-200,5)  1000=4|  2000=6"},
        {"one moves beyond time", [&] { MoveKeyFrames(project, property, {ids[3]}, 2147483647); },
         "refused: Key frames would leave the times that there are"},
        {"the first two stretch",
         [&] {
             ScaleKeyFrames(project, property, {ids[1], ids[0]}, 1000, 3);
         },
         "-2000=0>(900,0)~  1000=10<(-600,5)  2000=4|  3000=6"},
        {"all but one shrink",
         [&] {
             ScaleKeyFrames(project, property, {ids[0], ids[2], ids[3]}, 0, 0.25);
         },
         "0=0>(300,0)~  500=4|  750=6  1000=10<(-200,5)"},
        {"all shrink to nothing", [&] { ScaleKeyFrames(project, property, ids, 0, 1e-4); },
         "refused: Two key frames of \"rotationZ\" would stand at 0 ms"},
        {"a factor that would turn round", [&] { ScaleKeyFrames(project, property, ids, 0, -1); },
         "refused: Key frames are scaled in time by a factor above 0"},
        {"all turn round", [&] { ReverseKeyFrames(project, property); },
         "0=6|  1000=4  2000=10>(200,5)~  3000=0<(-300,0)"},
        {"two turn round",
         [&] {
             ReverseKeyFrames(project, property, {1000, 2500});
         },
         "0=0>(300,0)~  1000=4<(-200,5)  2000=10|  3000=6"},
        {"a copy on others", [&] { PasteKeyFrames(project, property, middle, 1500); },
         "0=0>(300,0)~  1000=10<(-200,5)  1500=10<(-200,5)  2500=4|  3000=6"},
        {"a copy on another type", [&] { PasteKeyFrames(project, anchor, middle, 0); },
         "refused: The key frames have values of another type than \"anchorPoint\""},
        {"an ease",
         [&] {
             EaseKeyFrames(project, property, {ids[0], ids[3]}, Easing::EaseInOut);
         },
         "0=0>(420,0)~  1000=10<(-420,0)  2000=4|  3000=6~"},
        {"a hold and its end", [&] { EaseKeyFrames(project, property, {ids[0]}, *FindEasing("hold")); },
         "0=0|  1000=10  2000=4|  3000=6"},
        {"one goes", [&] { RemoveKeyFrames(project, property, {ids[1]}); }, "0=0>(300,0)~  2000=4|  3000=6"},
        {"one comes where nothing changes", [&] { InsertKeyFrame(project, property, 2500); },
         "0=0>(300,0)~  1000=10<(-200,5)  2000=4|  2500=4|  3000=6"},
        {"one comes behind all", [&] { InsertKeyFrame(project, property, 4000); },
         "0=0>(300,0)~  1000=10<(-200,5)  2000=4|  3000=6  4000=6"},
        {"one comes where one is", [&] { EXPECT_EQ(InsertKeyFrame(project, property, 1000), ids[1]); },
         "0=0>(300,0)~  1000=10<(-200,5)  2000=4|  3000=6"},
        {"steps by three a second",
         [&] {
             BakeKeyFrames(project, property, 3, {1000, 2500});
         },
         "0=0>(300,0)~  1000=10<(-200,5)  1333=8.002  1666=6.004  2000=4  2333=4  2500=4|  3000=6"},
        {"too many steps", [&] { BakeKeyFrames(project, property, 2000); },
         "refused: A curve is baked to a rate above 0 and up to 1000 frames per second"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        const std::string refusal = document.Do(row.operation);
        EXPECT_EQ(refusal.empty() ? Curve() : "refused: " + refusal, row.result);
        while (document.history.Undo()) {
        }
    }
    EXPECT_EQ(document.Do([&] { InsertKeyFrame(project, opacity, 70); }), "");
    EXPECT_EQ(Text(opacity.Keys()), "70=100");
    EXPECT_THROW(RemoveKeyFrames(project, property, {KyID()}), std::out_of_range);
    EXPECT_THROW(AnimatedProperty(document.point, "nothing"), std::out_of_range);
}

TEST_F(KeyFrameOperations, TakeBackWhatTheyDidWhenDoneTheOtherWayRound)
{
    const auto &project = document.project;
    document.point->Animation().KeyFrames(kName).Add(Key(2000, 5.f));
    const WideString before = document.project->Serialize();
    document.Do([&] { ReverseKeyFrames(project, property, {500, 3000}); });
    EXPECT_FALSE(document.project->Serialize() == before);
    ReverseKeyFrames(project, property, {500, 3000});
    EXPECT_TRUE(document.project->Serialize() == before);
    const std::vector<KyID> all = KeyFramesIn(property);
    ScaleKeyFrames(project, property, all, 500, 4);
    ScaleKeyFrames(project, property, all, 500, 0.25);
    EXPECT_TRUE(document.project->Serialize() == before);
    MoveKeyFrames(project, property, all, 77);
    MoveKeyFrames(project, property, all, -77);
    EXPECT_TRUE(document.project->Serialize() == before);
}

TEST_F(KeyFrameOperations, CostNoMoreThanTheKeyFramesThatTheyTouch)
{
    KeyFrameList &keys = document.point->Animation().KeyFrames(kName);
    for (int i = 4; i < 5000; ++i)
        keys.Add(Key(i * 1000, float(i % 7), {-300, 1}, {300, 1}));
    document.history.SetChecksAnnouncements(false);
    InsertKeyFrame(document.project, property, 2500500);
    MoveKeyFrames(document.project, property, {keys.At(4000000).ID()}, 30);
    EXPECT_LT(document.history.Size(), 4000U);
    document.history.Undo();
    document.history.Undo();
    EXPECT_EQ(keys.Count(), 5000U);
}
