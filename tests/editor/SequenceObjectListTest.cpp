#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/SequenceObjectList_Impl.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/project/SolidAsset.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <random>

namespace marlet::test
{
namespace
{

using namespace marlet::project;
using Object = SequenceObjectList::Object;
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr int kLast = std::numeric_limits<int>::max();
constexpr int kFirst = std::numeric_limits<int>::min();

struct SequenceObjectListTest : testing::Test {
    std::shared_ptr<EditorSequence> sequence = EditorSequence::Create({}, 100);
    std::shared_ptr<SolidAsset> solid = SolidAsset::Create(u"", {}, 1, 1, {});
    VideoTrack &track = *sequence->VideoTracks()[0];
    SequenceObjectList &list = track.Objects();

    Object Make(int end) const
    {
        const auto object = VisualObject::Create(solid, sequence);
        object->SetEndFrame(end);
        object->SetParentTrackID(track.ID());
        return object;
    }
    Object Insert(int start, int end)
    {
        const Object object = Make(end);
        list.Insert(object, start);
        return object;
    }
    std::vector<Object> All() const
    {
        std::vector<Object> all;
        list.ForEach([&all](Object object) { all.push_back(object); });
        return all;
    }
};

/// Looks at every object for every question.
struct Scan {
    std::vector<Object> objects;

    void Place(const Object &object)
    {
        std::erase(objects, object);
        objects.push_back(object);
        std::ranges::stable_sort(objects, {}, &AbstractSequenceObject::StartFrame);
    }
    std::vector<Object> All(const std::function<bool(const AbstractSequenceObject &)> &accepts) const
    {
        std::vector<Object> found;
        std::ranges::copy_if(objects, std::back_inserter(found), [&](auto &o) { return accepts(*o); });
        return found;
    }
    std::vector<Object> StartingOn(int frame) const
    {
        return All([=](auto &o) { return o.StartFrame() == frame; });
    }
    std::vector<Object> Before(int frame) const
    {
        return All([=](auto &o) { return o.StartFrame() < frame; });
    }
    std::vector<Object> On(int frame) const
    {
        const auto starting = StartingOn(frame), before = Before(frame);
        if (!starting.empty() || before.empty() || before.back()->EndFrame() <= frame)
            return starting;
        return {before.back()};
    }
    /// What starts later may end before, but only the first of these is looked at.
    std::vector<Object> EndingBefore(int frame, const Object &excluded) const
    {
        const auto later = All([=](auto &o) { return o.StartFrame() >= frame; });
        return All([&](auto &o) {
            return &o != excluded.get() && o.EndFrame() <= frame &&
                   (o.StartFrame() < frame || &o == later.front().get());
        });
    }
    std::vector<Object> After(int frame, const Object &excluded) const
    {
        return All([&](auto &o) { return &o != excluded.get() && o.StartFrame() > frame; });
    }
    std::vector<Object> In(int first, int last) const
    {
        const auto before = Before(first);
        return All([&](auto &o) {
            const int start = o.StartFrame(), end = o.EndFrame();
            const bool isLookedAt = start >= first || &o == before.back().get();
            return isLookedAt && ((first <= start && start < last) || (first < end && end <= last) ||
                                  (start < first && last < end));
        });
    }
};

Object FirstOf(const std::vector<Object> &objects, const Object &otherwise = nullptr)
{
    return objects.empty() ? otherwise : objects.front();
}

TEST_F(SequenceObjectListTest, AnswersAsALookAtEveryObjectWould)
{
    std::mt19937 random(1);
    const auto number = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    const auto frame = [&] { return number(0, 20) == 0 ? (number(0, 1) ? kFirst : kLast) : number(-12, 12); };
    Scan scan;
    std::vector<Object> gone;
    for (int step = 0; step < 3000; ++step) {
        const Object any = scan.objects.empty() ? nullptr : scan.objects[random() % scan.objects.size()];
        const int what = number(0, 9), to = frame();
        if (!any || what < 3 - static_cast<int>(scan.objects.size()) / 10) {
            scan.Place(Insert(to, frame()));
        } else if (what < 5) {
            const bool isKept = number(0, 1), isElsewhere = to != any->StartFrame();
            const std::int64_t end = any->EndFrame(), moved = end - any->StartFrame() + to;
            list.Move(any, to, isKept);
            EXPECT_EQ(any->EndFrame(), isKept ? std::clamp<std::int64_t>(moved, kFirst, kLast) : end);
            if (isElsewhere)
                scan.Place(any);
        } else if (what < 7) {
            any->SetEndFrame(to);
        } else if (what < 8) {
            const auto at = std::ranges::find(scan.objects, any);
            const Object copy = VisualObject::Copy(std::static_pointer_cast<VisualObject>(any), false);
            list[static_cast<unsigned int>(at - scan.objects.begin())] = *at = copy;
        } else {
            list.Remove(any);
            std::erase(scan.objects, any);
            gone.push_back(any);
        }
        ASSERT_THAT(All(), ElementsAreArray(scan.objects)) << step;
        for (const Object &object : gone)
            ASSERT_EQ(list.GetByID(object->ID()), nullptr) << step;
        for (const Object &object : scan.objects) // copies were put there past the sequence
            ASSERT_EQ(list.GetByID(object->ID()), object->ParentTrackID().IsNull() ? nullptr : object);
        const int first = frame(), last = frame();
        const Object excluded = number(0, 1) ? any : nullptr, untouched = Make(0);
        Object previous = untouched, next = untouched;
        list.FindAdjacentObjects(first, previous, next, excluded);
        const auto before = scan.EndingBefore(first, excluded);
        ASSERT_EQ(previous, before.empty() ? untouched : before.back()) << step;
        ASSERT_EQ(next, FirstOf(scan.After(first, excluded), untouched)) << step;
        ASSERT_EQ(list.FindOnFrame(first), FirstOf(scan.On(first))) << step;
        ASSERT_EQ(list.GetByStartFrame(first), FirstOf(scan.StartingOn(first))) << step;
        ASSERT_THAT(list.FindInRange(first, last), ElementsAreArray(scan.In(first, std::max(first, last))));
    }
}

TEST_F(SequenceObjectListTest, FindsByIDWhatSaysThatItIsOnTheTrack)
{
    const Object object = Insert(5, 10), stray = Make(3);
    stray->ClearParentTrackID();
    list.Insert(stray, 0);
    EXPECT_EQ(list.GetByID(object->ID()), object);
    EXPECT_EQ(list.GetByID(stray->ID()), nullptr);
    EXPECT_EQ(sequence->FindObjectByID(stray->ID()), stray);
    EXPECT_EQ(list.Remove(stray->ID()), nullptr);
    EXPECT_EQ(list.Count(), 2u);

    EXPECT_EQ(list.Remove(object->ID()), object);
    EXPECT_THAT(All(), ElementsAre(stray));
    EXPECT_EQ(sequence->FindObjectByID(object->ID()), nullptr);
    list.Clear();
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(sequence->FindObjectByID(stray->ID()), nullptr);

    list.Insert(object, 0);
    const kytl::KyID id = object->ID();
    EXPECT_EQ(sequence->FindVisualObjectByID(id), object);
    EXPECT_EQ(sequence->FindAudioObjectByID(id), nullptr);
    sequence->VideoTracks().Clear(); // does not tell the sequence
    EXPECT_EQ(sequence->FindObjectByID(id), object);
}

TEST_F(SequenceObjectListTest, StaysInOrderWhateverStandsInItTwice)
{
    const Object a = Insert(0, 5), b = Insert(5, 10);
    list.Insert(a, 8);
    EXPECT_THAT(All(), ElementsAre(b, a, a));
    EXPECT_EQ(list.GetByStartFrame(0), nullptr);
    list.Move(list[1], 2, true); // an entry of the list as the argument
    EXPECT_THAT(All(), ElementsAre(a, a, b));
    list.Remove(list[0]);
    a->SetEndFrame(4);
    EXPECT_EQ(list.FindOnFrame(3), a);

    // On two lists, both know where it ends, and the one that it came to first puts it in order when next it
    // changes.
    const auto other = VideoTrack::Create(sequence, u"");
    other->Objects().Insert(a, 50);
    const Object c = Insert(20, 30);
    EXPECT_THAT(All(), ElementsAre(b, c, a));
    for (SequenceObjectList *objects : {&other->Objects(), &list}) {
        a->SetEndFrame(a->EndFrame() + 60);
        EXPECT_EQ(list.FindOnFrame(a->EndFrame() - 1), a);
        EXPECT_EQ(objects->FindOnFrame(a->EndFrame() - 1), a);
        objects->Remove(a);
    }
    list.Remove(c);

    const Object replacing = Make(30);
    other->Objects().Insert(replacing, 20);
    other->Objects().Remove(replacing);
    list[0] = replacing;
    list.Insert(b, 10);
    EXPECT_THAT(All(), ElementsAre(b, replacing));
    replacing->SetEndFrame(40);
    EXPECT_EQ(list.FindOnFrame(39), replacing);
}

/// One that once was on another list, which has let go of it or is gone itself, costs nothing from then on.
TEST_F(SequenceObjectListTest, AsksNobodyForWhatIsOnItAlone)
{
    const auto own = std::make_shared<SequenceObjectList_Impl>();
    const auto insert = [](SequenceObjectList_Impl &into, const Object &object) {
        into.TakeBack();
        into.MoveEntries(object, 5);
        into.Insert(object, into.UpperBound(5));
    };
    for (const bool isListGone : {false, true}) {
        const Object shared = Make(10);
        auto other = std::make_shared<SequenceObjectList_Impl>();
        insert(*own, shared);
        insert(*other, shared);
        own->TakeBack();
        EXPECT_TRUE(own->mayShareObjects);
        if (isListGone)
            other.reset();
        else
            other->Erase(0);
        own->TakeBack();
        EXPECT_FALSE(own->mayShareObjects);
        shared->SetEndFrame(20);
        EXPECT_EQ(own->EndFrame(own->FindEntry(shared)), 20);
    }
}

TEST_F(SequenceObjectListTest, RefusesWhatIsNotOfTheTracksClass)
{
    SequenceObjectList &sounds = sequence->AudioTracks()[0]->Objects();
    const Object picture = Make(5), sound = AudioObject::Create(solid, sequence);
    sound->SetName(u"Voice");
    EXPECT_THAT([&] { list.Insert(sound, 3); },
                testing::ThrowsMessage<std::invalid_argument>(testing::HasSubstr("\"Voice\"")));
    EXPECT_THROW(sounds.Insert(picture, 3), std::invalid_argument);
    EXPECT_EQ(sound->StartFrame(), 0);
    EXPECT_EQ(sequence->FindObjectByID(sound->ID()), nullptr);
    EXPECT_TRUE(list.IsEmpty() && sounds.IsEmpty());
    sounds.Insert(sound, 3);
    list.Insert(picture, 3);
    EXPECT_EQ(list[0], picture);
}

TEST_F(SequenceObjectListTest, RefusesWhatItDoesNotHold)
{
    EXPECT_THROW(list.FirstByTime(), std::logic_error);
    EXPECT_THROW(list.LastByTime(), std::logic_error);
    EXPECT_NO_THROW(list.ForEach(std::function<void(Object)>()));
    const Object object = Insert(0, 5), stranger = Make(0);
    for (const Object &absent : {stranger, Object()}) {
        EXPECT_THROW(list.Remove(absent), std::logic_error);
        EXPECT_THROW(list.Move(absent, 3, true), std::logic_error);
    }
    EXPECT_EQ(stranger->StartFrame(), 0);
    EXPECT_THROW(list.Insert(nullptr, 0), std::logic_error);
    EXPECT_THROW(list[1], std::out_of_range);
    EXPECT_THROW(list.ForEach(std::function<void(Object)>()), std::bad_function_call);
    EXPECT_EQ(list.FirstByTime(), object);
    EXPECT_EQ(list.LastByTime(), object);
}

} // namespace
} // namespace marlet::test
