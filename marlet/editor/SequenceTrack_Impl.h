#pragma once

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

#include <stdexcept>

namespace marlet::project
{

/// What the two classes of tracks have in common.
struct SequenceTrack_Impl {
    SequenceTrack_Impl(EditorSequence *sequence, const WideString &ofName)
        : name(ofName), objects(sequence, id)
    {
        if (sequence == nullptr)
            throw std::invalid_argument("A track needs a sequence");
    }

    kytl::KyID id = kytl::KyID::Generate();
    WideString name;
    SequenceObjectList objects;

    /// Each object is in the list before the next one is read, which may refer to its transition.
    template <class ReadObject>
    void ReadObjects(const XmlCursor &track, const char *tag, ReadObject &&readObject)
    {
        objects.SetTrackID(id);
        const XmlCursor list = track.Find("Objects");
        for (XmlCursor element = list.Find(tag); !element.IsNull(); element = element.Next(tag)) {
            const SequenceObjectList::Object object = readObject(element);
            objects.Insert(object, object->StartFrame());
        }
    }

    /// Objects that are not of the track's class are left out, since no reader would take them.
    template <class Object, class WriteObject>
    void WriteObjects(XmlWriter &writer, WriteObject &&writeObject) const
    {
        const XmlElement element(writer, "Objects");
        for (unsigned int i = 0; i < objects.Count(); ++i)
            if (const auto *object = dynamic_cast<const Object *>(objects[i].get()))
                writeObject(*object);
    }
};

} // namespace marlet::project
