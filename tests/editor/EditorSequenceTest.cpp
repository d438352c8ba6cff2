#include <tests/project/Loading.h>
#include <tests/support/Setters.h>
#include <tests/support/TestPlugins.h>

#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/project/PanelRenderState.h>
#include <marlet/project/SolidAsset.h>

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace marlet::test
{
namespace
{

constexpr int kLast = std::numeric_limits<int>::max();
constexpr int kFirst = std::numeric_limits<int>::min();

struct Span {
    int start, end;
};

struct EditorSequenceTest : testing::Test {
    std::shared_ptr<EditorSequence> sequence = EditorSequence::Create({}, 300);

    template <class Object> void Add(SequenceObjectList &list, std::initializer_list<Span> spans)
    {
        static const auto solid = SolidAsset::Create(u"", {}, 1, 1, {});
        for (const Span &span : spans) {
            const auto object = Object::Create(solid, sequence);
            object->SetEndFrame(span.end);
            list.Insert(object, span.start);
        }
    }
};

TEST_F(EditorSequenceTest, GoesFromEditToEdit)
{
    const struct {
        const char *name;
        std::initializer_list<Span> video, audio;
        struct {
            int frame, previous, next;
        } edits[6];
    } kCases[] = {
        {"nothing", {}, {}, {{0, 0, 300}, {50, 0, 300}, {-50, 0, 300}, {kFirst, 0, 300}, {kLast, 0, 300}}},
        {"one object",
         {{10, 20}},
         {},
         {{5, 0, 10}, {10, 0, 20}, {15, 10, 20}, {19, 10, 20}, {20, 10, 300}, {25, 20, 300}}},
        {"two that meet", {{10, 20}, {20, 30}}, {}, {{20, 10, 30}, {30, 20, 300}, {19, 10, 20}}},
        {"two tracks", {{12, 20}}, {{14, 18}}, {{10, 0, 12}, {12, 0, 14}, {18, 14, 20}, {21, 20, 300}}},
        {"overlapping", {{0, 100}, {10, 20}}, {}, {{50, 20, 300}, {150, 20, 300}}},
        {"ending before the start", {{50, 40}}, {}, {{45, 40, 50}, {50, 0, 40}, {60, 40, 300}}},
        {"as far as int goes", {{kFirst, kLast}}, {}, {{5, 0, 300}, {kFirst, 0, 300}, {kLast, 0, 300}}},
        {"behind the end", {{400, 500}}, {}, {{350, 0, 300}, {450, 300, 300}}},
    };
    for (const auto &c : kCases) {
        SequenceObjectList &video = sequence->VideoTracks()[0]->Objects();
        SequenceObjectList &audio = sequence->AudioTracks()[0]->Objects();
        video.Clear();
        audio.Clear();
        Add<VisualObject>(video, c.video);
        Add<AudioObject>(audio, c.audio);
        for (const auto &edit : c.edits) {
            if (edit.next == 0)
                break; // fewer than six
            EXPECT_EQ(sequence->PreviousEdit(edit.frame), edit.previous) << c.name << " " << edit.frame;
            EXPECT_EQ(sequence->NextEdit(edit.frame), edit.next) << c.name << " " << edit.frame;
        }
    }
}

TEST_F(EditorSequenceTest, StartsWithATrackOfEachKind)
{
    const auto &video = sequence->VideoTracks().at(0);
    const auto &audio = sequence->AudioTracks().at(0);
    EXPECT_TRUE(video->Name() == u"Video 1" && video->IsVisible() && video->Type() == TrackType::Video);
    EXPECT_TRUE(audio->Name() == u"Audio 1" && !audio->IsMuted() && audio->Type() == TrackType::Audio);
    EXPECT_EQ(sequence->FindSequenceTrackByID(audio->ID()), audio);
    EXPECT_EQ(sequence->FindSequenceTrackByID(sequence->ID()), nullptr);
    EXPECT_EQ(sequence->Name(), u"Editor");
    EXPECT_EQ(sequence->OutPoint(), 300);
    EXPECT_EQ(sequence->SequenceTrackPreviewSize(), SequencePreviewSize{1001});
    EXPECT_EQ(sequence->SequenceTrackPreviewMode(), SequencePreviewMode{1002});
    sequence->SetInPoint(-5);
    sequence->SetOutPoint(-5);
    EXPECT_EQ(sequence->InPoint(), 0);
    EXPECT_EQ(sequence->OutPoint(), -5);
    EXPECT_THROW(VideoTrack::Create(nullptr, u""), std::logic_error);
}

TEST_F(EditorSequenceTest, KeepsWhatIsSet)
{
    using Sequence = EditorSequence;
    ExpectStored("name", *sequence, &Sequence::Name, &Sequence::SetName, WideString(u"Cut"));
    ExpectStored("playhead", *sequence, &Sequence::CurrentTimeIndicator, &Sequence::SetCurrentTimeIndicator,
                 7);
    ExpectStored("in point", *sequence, &Sequence::InPoint, &Sequence::SetInPoint, 8);
    ExpectStored("out point", *sequence, &Sequence::OutPoint, &Sequence::SetOutPoint, 9);
    ExpectStored("zoom", *sequence, &Sequence::TimelineZoom, &Sequence::SetTimelineZoom, 1.5);
    ExpectStored("times", *sequence, &Sequence::TimelineTimeFormat, &Sequence::SetTimelineTimeFormat,
                 TimeFormat{1002});
    ExpectStored("snapping", *sequence, &Sequence::TimelineSnapMode, &Sequence::SetTimelineSnapMode,
                 SnapMode{1003});
    ExpectStored("size", *sequence, &Sequence::SequenceTrackPreviewSize,
                 &Sequence::SetSequenceTrackPreviewSize, SequencePreviewSize{1004});
    ExpectStored("mode", *sequence, &Sequence::SequenceTrackPreviewMode,
                 &Sequence::SetSequenceTrackPreviewMode, SequencePreviewMode{1005});
    VideoTrack &video = *sequence->VideoTracks()[0];
    AudioTrack &audio = *sequence->AudioTracks()[0];
    ExpectStored("video", video, &VideoTrack::Name, &VideoTrack::SetName, WideString(u"V"));
    ExpectStored("visible", video, &VideoTrack::IsVisible, &VideoTrack::SetVisible, false);
    ExpectStored("audio", audio, &AudioTrack::Name, &AudioTrack::SetName, WideString(u"A"));
    ExpectStored("muted", audio, &AudioTrack::IsMuted, &AudioTrack::SetMuted, true);
    EXPECT_EQ(audio.Level(), 0);
    ExpectStored("level", audio, &AudioTrack::Level, &AudioTrack::SetLevel, -3.5f);
}

/// Each object's frames and the last digits of its ID, with the IDs of its transitions around.
std::string Described(const SequenceObjectList &list)
{
    std::ostringstream text;
    const auto write = [&text](const KyID &id) { text << std::hex << id.Data1 << std::dec; };
    for (unsigned int i = 0; i < list.Count(); ++i) {
        const AbstractSequenceObject &object = *list[i];
        text << object.StartFrame() << "-" << object.EndFrame() << " ";
        if (object.IncomingTransition())
            write(object.IncomingTransition()->ID()), text << ">";
        write(object.ID());
        if (object.OutgoingTransition())
            text << ">", write(object.OutgoingTransition()->ID());
        text << "; ";
    }
    return text.str();
}

TEST(OddSequence, IsReadAsFarAsItCanBe)
{
    const auto plugin = std::make_shared<TestPlugin>();
    plugin->id = KyID::FromString("00000011-aaaa-4bbb-8ccc-0123456789ab");
    const auto manager = std::make_shared<TestPluginManager>();
    manager->plugins = {plugin};
    const auto read = [&](const WideString &text) {
        return Project::CreateFromXml(text, u"", manager, NoEffects());
    };
    const auto project = read(ReadDocument("editor/odd.xml"));
    const auto sequence = project->Sequence();
    EXPECT_EQ(sequence->InPoint(), -5);
    ASSERT_EQ(sequence->VideoTracks().Count(), 1u);
    EXPECT_TRUE(sequence->VideoTracks()[0]->Objects().IsEmpty());
    const SequenceObjectList &one = sequence->AudioTracks().at(0)->Objects();
    const SequenceObjectList &two = sequence->AudioTracks().at(1)->Objects();
    EXPECT_EQ(Described(one),
              "5-50 a; 10-20 a>1; 20-30 b; 20-10 c; 25-30 d; 60-70 e>2; 70-80 2>f; 90-95 8; ");
    EXPECT_EQ(Described(two), "-2147483648-2147483647 11; 0-2147483647 10; ");
    EXPECT_EQ(one[6]->IncomingTransition(), one[5]->OutgoingTransition());
    EXPECT_EQ(one.GetByID(one[0]->ID()), one[0]); // the last in the file
    EXPECT_EQ(two.GetByID(two[0]->ID()), nullptr);
    EXPECT_EQ(one.GetByID(two[0]->ID()), two[0]);
    EXPECT_THROW(sequence->AudioTracks()[0]->Objects().Remove(two[0]->ID()), std::logic_error);

    const WideString saved = project->Serialize();
    EXPECT_EQ(ToUtf8(read(saved)->Serialize()), ToUtf8(saved));
    const auto withoutPlugins = Load(saved)->Sequence();
    EXPECT_EQ(Described(withoutPlugins->AudioTracks()[1]->Objects()), Described(two));
    project->SetSequence(nullptr);
    EXPECT_EQ(read(project->Serialize())->Sequence(), nullptr);
}

} // namespace
} // namespace marlet::test
