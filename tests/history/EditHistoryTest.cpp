#include <tests/checks/CheckedProject.h>

#include <marlet/history/EditHistory.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace marlet::test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{

class EditHistoryTest : public testing::Test
{
protected:
    void Rename(const WideString &name, const WideString &label = u"Rename", const WideString &gesture = {})
    {
        Edit edit(document.project, label, gesture);
        edit.Touch(document.point);
        document.point->SetName(name);
        edit.Commit();
    }

    void Turn(float degrees, const WideString &gesture)
    {
        Edit edit(document.project, u"Turn", gesture);
        edit.Touch(document.point, "rotationZ");
        document.point->Animation().StaticValue("rotationZ") = degrees;
        edit.Commit();
    }

    float Turned() const { return boost::get<float>(document.point->Animation().StaticValue("rotationZ")); }

    CheckedProject document;
    EditHistory history{document.project};
};

/// Notes what it hears.
struct Listener : ChangeObserver {
    void Changed(const ChangeNotice &notice) override
    {
        heard.push_back(notice.Label());
        changes = notice.Changes();
        stale = notice.Stale();
        if (whenCalled)
            whenCalled();
    }

    std::vector<WideString> heard;
    std::vector<ObjectChange> changes;
    std::vector<StaleFrames> stale;
    std::function<void()> whenCalled;
};

} // namespace

TEST_F(EditHistoryTest, GoesBackAndForthByLabelsAndForgetsWhatWasUndoneOnceThereIsMore)
{
    EXPECT_FALSE(history.Undo());
    Rename(u"a", u"First");
    Rename(u"b", u"Second");
    EXPECT_EQ(history.UndoLabel(), u"Second");
    EXPECT_TRUE(history.Undo());
    EXPECT_EQ(document.point->Name(), u"a");
    EXPECT_EQ(history.RedoLabel(), u"Second");
    EXPECT_EQ(history.UndoLabel(), u"First");
    Rename(u"c", u"Third");
    EXPECT_FALSE(history.CanRedo());
    EXPECT_TRUE(history.Undo());
    EXPECT_TRUE(history.Undo());
    EXPECT_EQ(document.point->Name(), u"Point");
    EXPECT_FALSE(history.CanUndo());
}

TEST_F(EditHistoryTest, MakesNoStepOfWhatChangedNothing)
{
    Rename(u"Point");
    {
        Edit edit(document.project, u"Nothing");
        edit.Commit();
    }
    EXPECT_FALSE(history.CanUndo());
}

TEST_F(EditHistoryTest, JoinsTheEditsOfOneGestureUntilItEnds)
{
    for (const float degrees : {1.f, 2.f, 3.f})
        Turn(degrees, u"slider");
    EXPECT_EQ(history.UndoCount(), 1U);
    history.EndGesture();
    Turn(4, u"slider");
    Turn(5, u"other slider");
    Turn(6, u"");
    Turn(7, u"");
    EXPECT_EQ(history.UndoCount(), 5U);
    for (const float degrees : {6.f, 5.f, 4.f, 3.f, 0.f}) {
        history.Undo();
        EXPECT_EQ(Turned(), degrees);
    }
    history.Redo();
    EXPECT_EQ(Turned(), 3);
    Turn(8, u"slider"); // a redo ends the gesture
    EXPECT_EQ(history.UndoCount(), 2U);
    Turn(3, u"slider"); // and back to where it began
    EXPECT_EQ(history.UndoCount(), 1U);
    Turn(9, u"slider");
    EXPECT_EQ(history.UndoCount(), 2U);
}

TEST_F(EditHistoryTest, KnowsWhetherTheDocumentIsAsSaved)
{
    EXPECT_TRUE(history.IsSaved());
    Turn(1, u"slider");
    EXPECT_FALSE(history.IsSaved());
    history.MarkSaved();
    Turn(2, u"slider"); // must not become a part of what was saved
    EXPECT_FALSE(history.IsSaved());
    history.Undo();
    EXPECT_TRUE(history.IsSaved());
    history.Undo();
    EXPECT_FALSE(history.IsSaved());
    Turn(3, u""); // what was saved cannot be reached any more
    EXPECT_FALSE(history.IsSaved());
    history.Undo();
    EXPECT_FALSE(history.IsSaved());
    history.MarkSaved();
    history.Clear();
    EXPECT_TRUE(history.IsSaved());
}

TEST_F(EditHistoryTest, KeepsToItsLimitsAndNeverLosesTheLastStep)
{
    history.SetLimits({3, 1 << 20});
    for (const char16_t *name : {u"a", u"b", u"c", u"d", u"e"})
        Rename(name);
    EXPECT_EQ(history.UndoCount(), 3U);
    history.MarkSaved();
    while (history.Undo()) {
    }
    EXPECT_EQ(document.point->Name(), u"b");
    while (history.Redo()) {
    }
    EXPECT_TRUE(history.IsSaved());
    EXPECT_LT(history.Size(), 10000U);
    history.SetLimits({1000, 100});
    EXPECT_EQ(history.UndoCount(), 1U);
}

TEST_F(EditHistoryTest, DropsWhatEndsByAnExceptionAndOnlyTheInnerEditOfTwo)
{
    const WideString before = document.project->Serialize();
    try {
        Edit edit(document.project, u"Fails");
        edit.Touch(document.point);
        document.point->SetName(u"lost");
        throw std::runtime_error("in between");
    } catch (const std::runtime_error &) {
    }
    EXPECT_EQ(document.project->Serialize(), before);

    Edit outer(document.project, u"Outer");
    outer.Touch(document.point);
    document.point->SetName(u"outer");
    {
        Edit inner(document.project, u"Inner");
        inner.Touch(document.point);
        document.point->SetName(u"inner");
        EXPECT_THROW(outer.Touch(document.text), std::logic_error);
        EXPECT_THROW(outer.Commit(), std::logic_error);
        EXPECT_THROW(history.Undo(), std::logic_error);
    }
    EXPECT_EQ(document.point->Name(), u"outer");
    outer.Commit();
    EXPECT_THROW(outer.Touch(document.text), std::logic_error);
    history.Undo();
    EXPECT_EQ(document.project->Serialize(), before);
}

TEST_F(EditHistoryTest, ForgetsShiftsThatAreDroppedDeepInside)
{
    const WideString before = document.project->Serialize();
    const std::shared_ptr<AbstractSequenceTrack> track = document.sequence->VideoTracks()[0];
    {
        Edit outer(document.project, u"Outer");
        Edit middle(document.project, u"Middle");
        {
            Edit inner(document.project, u"Inner");
            inner.ShiftFrom(track, 0, 7);
        }
        EXPECT_EQ(document.project->Serialize(), before);
        middle.ShiftFrom(track, 1, 3);
        middle.Commit();
        outer.Commit();
    }
    EXPECT_EQ(document.second->StartFrame(), 43);
    history.Undo();
    EXPECT_EQ(document.project->Serialize(), before);
}

TEST_F(EditHistoryTest, OutlivesEditsThatEndInTheWrongOrder)
{
    const WideString before = document.project->Serialize();
    auto outer = std::make_unique<Edit>(document.project, u"Outer");
    outer->Touch(document.point);
    document.point->SetName(u"outer");
    Edit inner(document.project, u"Inner");
    inner.Touch(document.text);
    document.text->SetName(u"inner");
    outer.reset();
    EXPECT_EQ(document.point->Name(), u"Point");
    inner.Commit();
    EXPECT_EQ(history.UndoLabel(), u"Inner");
    history.Undo();
    EXPECT_EQ(document.project->Serialize(), before);
}

TEST_F(EditHistoryTest, IsAllOrNothingWithoutAHistory)
{
    CheckedProject other;
    {
        Edit edit(other.project, u"Dropped");
        edit.Touch(other.point);
        other.point->SetName(u"lost");
    }
    EXPECT_EQ(other.point->Name(), u"Point");
    EXPECT_EQ(other.project->History(), nullptr);
    EXPECT_EQ(document.project->History(), &history);
    EXPECT_THROW(EditHistory second(document.project), std::logic_error);
}

TEST_F(EditHistoryTest, FindsChangesThatNobodyAnnouncedAndTakesBackTheOthers)
{
    history.SetChecksAnnouncements(true);
    Edit edit(document.project, u"Careless");
    edit.Touch(document.point);
    document.point->SetName(u"told");
    document.text->SetName(u"untold");
    try {
        edit.Commit();
        FAIL();
    } catch (const std::logic_error &failure) {
        EXPECT_THAT(failure.what(), HasSubstr("\"Careless\""));
        EXPECT_THAT(failure.what(), HasSubstr("untold"));
    }
    EXPECT_EQ(document.point->Name(), u"Point");
    EXPECT_FALSE(history.CanUndo());
}

TEST_F(EditHistoryTest, CallsObserversThatComeAndGoAndThrow)
{
    const auto first = std::make_shared<Listener>();
    const auto second = std::make_shared<Listener>();
    const auto late = std::make_shared<Listener>();
    int failures = 0;
    history.SetFailureFunction([&](std::exception_ptr) { ++failures; });
    history.AddObserver(first);
    history.AddObserver(second);
    first->whenCalled = [&] {
        history.AddObserver(late);
        history.RemoveObserver(second);
        EXPECT_THROW(Edit(document.project, u"Inside"), std::logic_error);
        EXPECT_THROW(history.Undo(), std::logic_error);
        throw std::runtime_error("in the observer");
    };
    Rename(u"a", u"One");
    first->whenCalled = nullptr;
    history.Undo();
    EXPECT_THAT(first->heard, ElementsAre(u"One", u"One"));
    EXPECT_TRUE(second->heard.empty());
    EXPECT_THAT(late->heard, ElementsAre(u"One"));
    EXPECT_EQ(failures, 1);
}

TEST_F(EditHistoryTest, TellsTheTimesBetweenWhichACurveIsAnotherOne)
{
    KeyFrameList &keys = document.point->Animation().KeyFrames("rotationZ");
    for (const int time : {0, 1000, 2000, 3000})
        keys.Set(time, float(time));
    const auto listener = std::make_shared<Listener>();
    history.AddObserver(listener);
    const auto span = [&] {
        const PropertyChange &change = listener->changes.at(0).properties.at(0);
        return std::pair(change.firstTime, change.lastTime);
    };
    constexpr int kMin = std::numeric_limits<int>::min();
    constexpr int kMax = std::numeric_limits<int>::max();

    struct Row {
        const char *what;
        std::function<void()> change;
        int first;
        int last;
    };
    const Row rows[] = {
        {"a value in the middle", [&] { keys.At(1000).SetValue(5.f); }, 0, 2000},
        {"the first", [&] { keys.At(0).SetValue(7.f); }, kMin, 1000},
        {"the last moves", [&] { keys.Move(keys.At(3000).ID(), 3500); }, 2000, kMax},
        {"one goes", [&] { keys.Remove(1000); }, 0, 2000},
        {"one comes", [&] { keys.Set(500, 1.f); }, 0, 1000},
        {"all go", [&] { keys.Clear(); }, kMin, kMax},
    };
    for (const bool wholeProperty : {true, false}) {
        for (const Row &row : rows) {
            SCOPED_TRACE(row.what);
            const std::vector<KyID> ids = keys.Identifiers();
            Edit edit(document.project, u"Curve");
            if (wholeProperty)
                edit.Touch(document.point, "rotationZ");
            else
                for (const KyID &id : ids)
                    edit.TouchKeyFrame(PropertiesOf(document.point), "rotationZ", id, ObjectKind::Layer,
                                       document.point->ID());
            if (!wholeProperty && row.what == std::string("one comes")) {
                edit.Drop(); // its ID is not known yet
                continue;
            }
            row.change();
            edit.Commit();
            EXPECT_EQ(span(), std::pair(row.first, row.last));
            history.Undo();
            EXPECT_EQ(span(), std::pair(row.first, row.last));
            EXPECT_EQ(keys.Identifiers(), ids);
        }
    }
}

TEST_F(EditHistoryTest, KeepsAnEditSmall)
{
    Turn(1, u"");
    EXPECT_LT(history.Size(), 1000U);
    const auto &track = document.sequence->VideoTracks()[0];
    for (int i = 0; i < 10000; ++i) {
        const auto object = VisualObject::Create(document.inner, document.sequence);
        object->SetParentTrackID(track->ID());
        object->SetEndFrame(i + 101);
        track->Objects().Insert(object, i + 100);
    }
    history.SetChecksAnnouncements(false);
    const std::size_t before = history.Size();
    Edit move(document.project, u"Move");
    move.Touch(track->Objects()[500]);
    track->Objects().Move(track->Objects()[500], 7, true);
    move.Commit();
    Edit shift(document.project, u"Shift");
    shift.ShiftFrom(track, 0, 3);
    shift.Commit();
    EXPECT_LT(history.Size() - before, 4000U);
}
