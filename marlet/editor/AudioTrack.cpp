#include <marlet/editor/AudioTrack.h>

#include <marlet/editor/AudioObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceTrack_Impl.h>

namespace marlet::project
{

const SequenceTrackKind &AudioTrack::Kind()
{
    static const SequenceTrackKind kind{
        .type = TrackType::Audio,
        .tag = "AudioTrack",
        .objectTag = "AudioObject",
        .readObject = [](const XmlCursor &element,
                         const std::shared_ptr<AbstractPluginManager> &pluginManager,
                         const SequenceObjectList *objects) -> SequenceObjectList::Object {
            return std::shared_ptr<AudioObject>(new AudioObject(element, pluginManager, objects));
        },
        .holds =
            [](const AbstractSequenceObject &object) {
                return dynamic_cast<const AudioObject *>(&object) != nullptr;
            },
    };
    return kind;
}

AudioTrack::AudioTrack(EditorSequence *sequence, const WideString &name)
    : SequenceTrack(Kind(), sequence, name)
{
}

AudioTrack::AudioTrack(EditorSequence *sequence, const XmlCursor &element,
                       const std::shared_ptr<AbstractPluginManager> &pluginManager)
    : SequenceTrack(Kind(), sequence, element, pluginManager)
{
}

AudioTrack::~AudioTrack() = default;

std::shared_ptr<AudioTrack> AudioTrack::Create(EditorSequence *sequence, const WideString &name)
{
    return std::shared_ptr<AudioTrack>(new AudioTrack(sequence, name));
}

std::shared_ptr<AudioTrack> AudioTrack::Create(const std::shared_ptr<EditorSequence> &sequence,
                                               const WideString &name)
{
    return Create(sequence.get(), name);
}

std::shared_ptr<AudioTrack> AudioTrack::Create(const std::shared_ptr<EditorSequence> &sequence,
                                               const WideString &name, const kytl::KyID &id)
{
    auto track = Create(sequence, name);
    track->SetID(id);
    return track;
}

bool AudioTrack::IsMuted() const
{
    return impl_->muted;
}

void AudioTrack::SetMuted(bool muted)
{
    impl_->muted = muted;
}

float AudioTrack::Level() const
{
    return impl_->level;
}

void AudioTrack::SetLevel(float level)
{
    impl_->level = level;
}

} // namespace marlet::project
