#include <marlet/editor/SequenceTrack.h>

#include <marlet/editor/SequenceObject.h>
#include <marlet/editor/SequenceTrack_Impl.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

namespace marlet::project
{

namespace
{

constexpr unsigned int kVersion = 0;

template <class Xml, class Data> void SequenceTrackFields(Xml &xml, Data &data)
{
    xml.Child("ID", data.id);
    xml.Child("Name", data.name);
    if (data.kind->type == TrackType::Video) {
        xml.Child("Visible", data.visible);
    } else {
        xml.Child("Muted", data.muted);
        xml.Child("Level", data.level);
    }
}

} // namespace

SequenceTrack::SequenceTrack(const SequenceTrackKind &kind, EditorSequence *sequence, const WideString &name)
    : impl_(std::make_unique<SequenceTrack_Impl>(kind, sequence, name))
{
    Require(sequence, "sequence");
}

SequenceTrack::SequenceTrack(const SequenceTrackKind &kind, EditorSequence *sequence,
                             const XmlCursor &element,
                             const std::shared_ptr<AbstractPluginManager> &pluginManager)
    : SequenceTrack(kind, sequence, WideString())
{
    element.RequireHeader(kind.tag, kVersion);
    SequenceTrackFields(element, *impl_);
    impl_->objects.SetTrackID(impl_->id);
    // Each object is in the list before the next one is read, which may refer to its transition.
    XmlCursor next = element.Find("Objects").Find(kind.objectTag);
    for (; !next.IsNull(); next = next.Next(kind.objectTag)) {
        const SequenceObjectList::Object object = kind.readObject(next, pluginManager, &impl_->objects);
        impl_->objects.Insert(object, object->StartFrame());
    }
    impl_->kept = KeptXml(element);
}

SequenceTrack::~SequenceTrack() = default;

void SequenceTrack::SetID(const kytl::KyID &id)
{
    impl_->id = id;
    impl_->objects.SetTrackID(id);
}

/// What was put in the place of an object and is not of the track's class is left out, since no reader would
/// take it.
void SequenceTrack::Serialize(XmlWriter &writer) const
{
    const XmlElement element(writer, impl_->kind->tag, kVersion, impl_->kept);
    SequenceTrackFields(writer, *impl_);
    const XmlElement list(writer, "Objects");
    Objects().ForEach([&](const std::shared_ptr<const AbstractSequenceObject> &object) {
        if (impl_->kind->holds(*object))
            static_cast<const SequenceObject &>(*object).Serialize(writer);
    });
}

const kytl::KyID &SequenceTrack::ID() const
{
    return impl_->id;
}

TrackType SequenceTrack::Type() const
{
    return impl_->kind->type;
}

const WideString &SequenceTrack::Name() const
{
    return impl_->name;
}

void SequenceTrack::SetName(const WideString &name)
{
    impl_->name = name;
}

SequenceObjectList &SequenceTrack::Objects()
{
    return impl_->objects;
}

const SequenceObjectList &SequenceTrack::Objects() const
{
    return impl_->objects;
}

} // namespace marlet::project
