#include <marlet/editor/AudioObject.h>

#include <marlet/editor/SequenceObject_Impl.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/project/AssetPicture.h>

namespace marlet::project
{

namespace
{

const SequenceObjectKind &Kind()
{
    static const SequenceObjectKind kind{
        .tag = "AudioObject",
        .canBeMuted = true,
        .properties = {{.name = "audioLevel", .value = 0.f}, {.name = "speed", .value = 1.0}},
    };
    return kind;
}

} // namespace

AudioObject::AudioObject(const std::shared_ptr<AbstractAsset> &asset,
                         const std::shared_ptr<EditorSequence> &sequence)
    : SequenceObject(Kind(), asset, sequence)
{
}

AudioObject::AudioObject(const XmlCursor &element,
                         const std::shared_ptr<AbstractPluginManager> &pluginManager,
                         const SequenceObjectList *objects)
    : SequenceObject(Kind(), element, pluginManager, objects)
{
}

AudioObject::AudioObject(const AudioObject &other) = default;

AudioObject &AudioObject::operator=(const AudioObject &other) = default;

AudioObject::~AudioObject() = default;

std::shared_ptr<AudioObject> AudioObject::Create(std::shared_ptr<AbstractAsset> asset,
                                                 const std::shared_ptr<EditorSequence> &sequence)
{
    return std::shared_ptr<AudioObject>(new AudioObject(asset, sequence));
}

std::shared_ptr<AudioObject>
AudioObject::CreateFromXml(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &pluginManager)
{
    const XmlDocument document(xml);
    return std::shared_ptr<AudioObject>(new AudioObject(document.Root(), pluginManager, nullptr));
}

std::shared_ptr<AudioObject> AudioObject::Copy(const std::shared_ptr<AudioObject> &other,
                                               bool copyTransitions)
{
    Require(other, "object");
    std::shared_ptr<AudioObject> copy(new AudioObject(*other));
    copy->PartFromSource(copyTransitions);
    return copy;
}

AbstractAssetInstance::Type AudioObject::AssetInstanceType() const
{
    return AbstractAssetInstance::Type::AudioObject;
}

ObjectType AudioObject::Type() const
{
    return ObjectType::Audio;
}

float AudioObject::Levels() const
{
    return StaticValueOf<float>(Properties(), "audioLevel");
}

void AudioObject::SetLevels(float level)
{
    Properties().StaticValue("audioLevel") = level;
}

bool AudioObject::IsMuted() const
{
    return impl_->muted;
}

void AudioObject::SetMuted(bool muted)
{
    impl_->muted = muted;
}

double AudioObject::AudioFrameRate(const AssetList &assets) const
{
    return AudioFrameRateOf(*RequireAsset(assets));
}

} // namespace marlet::project
