#include "EditHistoryTest.h"

#include <gmock/gmock.h>

using namespace marlet::test;
using testing::ElementsAre;

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

TEST_F(EditHistoryTest, MakesNoStepOfARippleThatComesBack)
{
    const std::shared_ptr<AbstractSequenceTrack> track = document.sequence->VideoTracks()[0];
    const WideString before = document.project->Serialize();
    const auto trim = [&](int frames) {
        Edit edit(document.project, u"Trim", u"handle");
        edit.Touch(std::static_pointer_cast<AbstractSequenceObject>(document.first));
        document.first->SetEndFrame(document.first->EndFrame() + frames);
        edit.ShiftFrom(track, 1, frames);
        edit.Commit();
    };
    trim(5);
    trim(2);
    EXPECT_EQ(history.UndoCount(), 1U);
    trim(-7);
    EXPECT_EQ(history.UndoCount(), 0U);
    EXPECT_EQ(document.project->Serialize(), before);
    trim(3);
    trim(-3);
    trim(4);
    history.Undo();
    EXPECT_EQ(document.project->Serialize(), before);
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
