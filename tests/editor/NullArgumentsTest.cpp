#include <tests/support/TestPlugins.h>

#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/plugins/EffectsHelper.h>
#include <marlet/plugins/PluginUIComboBox.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>
#include <marlet/tracking/Tracker.h>

#include <QDomDocument>
#include <gmock/gmock.h>

namespace marlet::test
{
namespace
{

struct NullArguments : testing::Test {
    std::shared_ptr<TestPlugin> plugin = std::make_shared<TestPlugin>();
    std::shared_ptr<EditorSequence> sequence = EditorSequence::Create({}, 100);
    std::shared_ptr<SolidAsset> solid = SolidAsset::Create(u"", {}, 1, 1, {});
    std::shared_ptr<VisualObject> object = VisualObject::Create(solid, sequence);
    std::shared_ptr<EffectInstance> effect = EffectInstance::Create(plugin);
    SequenceObjectList &list = sequence->VideoTracks()[0]->Objects();
    QDomDocument document;
    QDomElement root = document.createElement("Root");
};

TEST_F(NullArguments, AreNamed)
{
    const std::shared_ptr<EditorSequence> noSequence;
    const std::shared_ptr<Transition> transition = Transition::Create(plugin);
    std::shared_ptr<Transition> read;
    EffectsHelper::Effects effects;
    EffectsHelper::UIStates states;
    const std::pair<const char *, std::function<void()>> kCases[] = {
        {"plug-in", [&] { EffectInstance::Create(nullptr); }},
        {"plug-in", [&] { Transition::Create(nullptr); }},
        {"effect", [&] { EffectInstance::Copy(nullptr); }},
        {"transition", [&] { Transition::Copy(nullptr); }},
        {"object", [&] { VisualObject::Copy(nullptr, true); }},
        {"object", [&] { AudioObject::Copy(nullptr, true); }},
        {"tracker", [&] { Tracker::Copy(nullptr); }},
        {"asset", [&] { VisualObject::Create(nullptr, sequence); }},
        {"sequence", [&] { AudioObject::Create(solid, nullptr); }},
        {"sequence", [&] { VideoTrack::Create(noSequence, u""); }},
        {"sequence", [&] { AudioTrack::Create(noSequence, u""); }},
        {"object", [&] { list.Insert(nullptr, 0); }},
        {"object", [&] { list.Move(nullptr, 0, true); }},
        {"object", [&] { list.Remove(nullptr); }},
        {"project", [&] { object->OriginTransformation(nullptr); }},
        {"project", [&] { object->WorldTransformation(nullptr); }},
        {"name", [&] { effect->NotifyPropertyChanged(nullptr); }},
        {"bytes", [&] { effect->SerializeInstanceDataBytes(nullptr, 1, &document, &root); }},
        {"document", [&] { effect->SerializeInstanceDataBytes(nullptr, 0, nullptr, &root); }},
        {"element", [&] { effect->SerializeInstanceDataBytes(nullptr, 0, &document, nullptr); }},
        {"document", [&] { EffectsHelper::SerializeEffects(nullptr, &root, effects); }},
        {"parent", [&] { EffectsHelper::SerializeEffects(&document, nullptr, effects); }},
        {"parent", [&] { EffectsHelper::DeserializeEffects(nullptr, effects, nullptr); }},
        {"document", [&] { EffectsHelper::SerializeUIState(nullptr, &root, states); }},
        {"parent", [&] { EffectsHelper::SerializeUIState(&document, nullptr, states); }},
        {"parent", [&] { EffectsHelper::SynchronizeUIState(nullptr, states); }},
        {"document", [&] { EffectsHelper::SerializeTransition(nullptr, &root, "T", transition, true); }},
        {"parent", [&] { EffectsHelper::SerializeTransition(&document, nullptr, "T", transition, true); }},
        {"parent", [&] { EffectsHelper::DeserializeTransition(nullptr, "T", nullptr, read, &list); }},
        {"values", [&] { PluginUIComboBox(nullptr, u"", "p", 0, u"a", nullptr); }},
    };
    for (const auto &[name, call] : kCases)
        EXPECT_THAT(call, testing::ThrowsMessage<std::invalid_argument>("The " + std::string(name) +
                                                                        " must not be null"));
}

TEST_F(NullArguments, OfListsArePassedOver)
{
    object->SetEndFrame(20);
    object->SetParentTrackID(sequence->VideoTracks()[0]->ID());
    object->Effects().Add(effect);
    list.Insert(object, 10);
    const auto project = Project::Create(nullptr);
    project->SetSequence(sequence);
    const WideString text = project->Serialize();

    const auto video = sequence->VideoTracks()[0];
    sequence->VideoTracks() = {nullptr, video};
    sequence->AudioTracks().Add(nullptr);
    object->Effects() = {nullptr, effect, nullptr};
    EXPECT_EQ(project->Serialize(), text);
    EXPECT_EQ(sequence->FindSequenceTrackByID(video->ID()), video);
    EXPECT_EQ(sequence->FindSequenceTrackByID({}), nullptr);
    EXPECT_EQ(sequence->NextEdit(0), 10);
    EXPECT_EQ(sequence->PreviousEdit(15), 10);
}

/// Places that were emptied through a reference, which the list learns of when it changes.
TEST_F(NullArguments, InPlacesOfAListGoWithItsNextChange)
{
    const auto insert = [&](int start, int end) -> SequenceObjectList::Object {
        const auto made = VisualObject::Create(solid, sequence);
        made->SetEndFrame(end);
        list.Insert(made, start);
        return made;
    };
    const auto first = insert(0, 10), second = insert(20, 30), third = insert(20, 40), last = insert(50, 60);
    for (const unsigned int emptied : {0u, 1u})
        list[emptied] = nullptr;
    EXPECT_EQ(list.FirstByTime(), third);
    EXPECT_EQ(list.LastByTime(), last);
    EXPECT_EQ(list.FindOnFrame(5), nullptr);
    EXPECT_EQ(list.FindOnFrame(25), third);
    EXPECT_EQ(list.GetByStartFrame(20), third);
    EXPECT_EQ(list.GetByStartFrame(0), nullptr);
    EXPECT_THAT(list.FindInRange(0, 100), testing::ElementsAre(third, last));
    SequenceObjectList::Object previous, next;
    list.FindAdjacentObjects(10, previous, next, nullptr);
    EXPECT_EQ(previous, nullptr);
    EXPECT_EQ(next, third);
    int visited = 0;
    list.ForEach([&](SequenceObjectList::Object) { ++visited; });
    EXPECT_EQ(visited, 2);
    list.Move(last, 70, true);
    EXPECT_EQ(list.Count(), 2u);
    EXPECT_EQ(list[0], third);
    list[1] = nullptr;
    EXPECT_EQ(list.LastByTime(), third);
    list[0] = nullptr;
    EXPECT_THROW(list.LastByTime(), std::logic_error);
    list.Clear();
    EXPECT_TRUE(list.IsEmpty());
}

} // namespace
} // namespace marlet::test
