#include <marlet/editor/AudioTrack.h>

#include <marlet/editor/AudioObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceTrack_Impl.h>

namespace marlet::project
{

struct AudioTrack_Impl : SequenceTrack_Impl {
    using SequenceTrack_Impl::SequenceTrack_Impl;

    bool muted = false;
    float level = 0;
};

namespace
{

constexpr char kTag[] = "AudioTrack";
constexpr unsigned int kVersion = 0;

template <class Xml, class Data> void AudioTrackFields(Xml &xml, Data &data)
{
    xml.Child("ID", data.id);
    xml.Child("Name", data.name);
    xml.Child("Muted", data.muted);
    xml.Child("Level", data.level);
}

} // namespace

AudioTrack::AudioTrack(EditorSequence *sequence, const WideString &name)
    : impl_(std::make_unique<AudioTrack_Impl>(sequence, name))
{
}

AudioTrack::AudioTrack(EditorSequence *sequence, const XmlCursor &element,
                       const std::shared_ptr<AbstractPluginManager> &pluginManager)
    : AudioTrack(sequence, WideString())
{
    element.RequireHeader(kTag, kVersion);
    AudioTrackFields(element, *impl_);
    impl_->ReadObjects(element, "AudioObject", [&](const XmlCursor &object) {
        return std::shared_ptr<AudioObject>(new AudioObject(object, pluginManager, &impl_->objects));
    });
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

void AudioTrack::Serialize(XmlWriter &writer) const
{
    const XmlElement element(writer, kTag, kVersion);
    AudioTrackFields(writer, *impl_);
    impl_->WriteObjects<AudioObject>(writer,
                                     [&writer](const AudioObject &object) { object.Serialize(writer); });
}

const kytl::KyID &AudioTrack::ID() const
{
    return impl_->id;
}

TrackType AudioTrack::Type() const
{
    return TrackType::Audio;
}

const WideString &AudioTrack::Name() const
{
    return impl_->name;
}

void AudioTrack::SetName(const WideString &name)
{
    impl_->name = name;
}

SequenceObjectList &AudioTrack::Objects()
{
    return impl_->objects;
}

const SequenceObjectList &AudioTrack::Objects() const
{
    return impl_->objects;
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
