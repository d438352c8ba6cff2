#include "SequenceToolTest.h"

#include "plugins/PluginManager.h"
#include "plugins/Plugins.h"
#include "plugins/Ribbon.h"

#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/project/SolidAsset.h>

namespace marlet::test
{

namespace
{

template <class Object>
std::shared_ptr<Object> Put(const std::shared_ptr<EditorSequence> &sequence, AbstractSequenceTrack &track,
                            const std::shared_ptr<AbstractAsset> &asset, int start, int end, int first)
{
    const auto object = Object::Create(asset, sequence);
    object->SetParentTrackID(track.ID());
    object->SetEndFrame(end);
    object->SetAssetInstanceStart(first);
    track.Objects().Insert(object, start);
    return object;
}

void Link(AbstractSequenceObject &a, AbstractSequenceObject &b)
{
    a.SetLinkedObjectID(b.ID());
    b.SetLinkedObjectID(a.ID());
}

std::string CutText(const AbstractSequenceObject *before, const AbstractSequenceObject *after)
{
    const auto out = before ? before->OutgoingTransition() : nullptr;
    const auto in = after ? after->IncomingTransition() : nullptr;
    const kytl::KyID from = before ? before->ID() : kytl::KyID();
    const kytl::KyID to = after ? after->ID() : kytl::KyID();
    if (out && out == in)
        return out->FromObject() == from && out->ToObject() == to ? "=" : "?";
    std::string text;
    if (out)
        text += out->FromObject() == from && out->ToObject().IsNull() ? ">" : "?";
    if (before && after)
        text += "|";
    if (in)
        text += in->FromObject().IsNull() && in->ToObject() == to ? "<" : "?";
    return text;
}

std::string TrackLayout(const EditorSequence &sequence, const AbstractSequenceTrack &track)
{
    std::string text;
    const AbstractSequenceObject *before = nullptr;
    for (unsigned int i = 0; i < track.Objects().Count(); ++i) {
        const AbstractSequenceObject &object = *track.Objects()[i];
        const auto partner = sequence.FindObjectByID(object.LinkedObjectID());
        text += CutText(before, &object) + std::to_string(object.StartFrame()) + "-" +
                std::to_string(object.EndFrame()) + "@" + std::to_string(object.AssetInstanceStart());
        text += partner && partner->LinkedObjectID() == object.ID() ? "*" : "";
        before = &object;
    }
    return text + CutText(before, nullptr);
}

} // namespace

SequenceToolTest::SequenceToolTest()
    : sequence_(EditorSequence::Create(AudioVideoSettings::Preset::Hd720At25, 250))
{
    const auto red = SolidAsset::Create(u"Red", {1, 0, 0, 1}, 64, 32, PAR::Square);
    project_->Assets().All().Add(red);
    project_->SetSequence(sequence_);
    sequence_->VideoTracks().Add(VideoTrack::Create(sequence_, u"Spare"));
    VideoTrack &video = *sequence_->VideoTracks()[0];
    AudioTrack &audio = *sequence_->AudioTracks()[0];
    const auto first = Put<VisualObject>(sequence_, video, composition_, 0, 40, 0);
    const auto second = Put<VisualObject>(sequence_, video, composition_, 40, 80, 30);
    const auto third = Put<VisualObject>(sequence_, video, red, 80, 100, 0);
    Link(*first, *Put<AudioObject>(sequence_, audio, composition_, 0, 40, 0));
    Link(*second, *Put<AudioObject>(sequence_, audio, composition_, 40, 80, 30));

    const auto shared = Transition::Create(tool::Plugins()->FindPlugin(tool::kCrossDissolveID));
    shared->SetLength(10);
    shared->SetRelativeStartFrame(-5);
    shared->SetFromObject(first->ID());
    shared->SetToObject(second->ID());
    first->SetOutgoingTransition(shared);
    second->SetIncomingTransition(shared);
    const auto fade = Transition::Create(tool::Plugins()->FindPlugin(tool::kWipeID));
    fade->SetLength(5);
    fade->SetRelativeStartFrame(-5);
    fade->SetFromObject(third->ID());
    third->SetOutgoingTransition(fade);
    Save("cut.xml");
}

ToolRun SequenceToolTest::Edit(const std::string &out, std::vector<std::string> words) const
{
    words.insert(words.begin(), {"edit", "cut.xml", out});
    return Run(words);
}

std::string SequenceToolTest::Layout(const std::string &name) const
{
    const auto project =
        Project::CreateFromXml(FromUtf8(Read(name)), u"", tool::Plugins(), tool::EffectFactory());
    const EditorSequence &sequence = *project->Sequence();
    return TrackLayout(sequence, *sequence.VideoTracks()[0]) + " / " +
           TrackLayout(sequence, *sequence.VideoTracks()[1]) + " / " +
           TrackLayout(sequence, *sequence.AudioTracks()[0]);
}

} // namespace marlet::test
