#pragma once

#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/SequenceTrack.h>
#include <marlet/foundation/xml/KeptXml.h>

namespace marlet::project
{

/// What tells the classes of tracks apart: their objects, and the switches that stand in the file.
struct SequenceTrackKind {
    TrackType type;
    const char *tag;
    const char *objectTag;
    std::shared_ptr<AbstractSequenceObject> (*readObject)(
        const XmlCursor &element, const std::shared_ptr<AbstractPluginManager> &pluginManager,
        const SequenceObjectList *objects);
    bool (*holds)(const AbstractSequenceObject &object);
};

struct SequenceTrack_Impl {
    SequenceTrack_Impl(const SequenceTrackKind &ofKind, EditorSequence *sequence, const WideString &ofName)
        : kind(&ofKind), name(ofName), objects(sequence, id, ofKind.holds)
    {
    }

    const SequenceTrackKind *kind;
    kytl::KyID id = kytl::KyID::Generate();
    WideString name;
    bool visible = true;
    bool muted = false;
    float level = 0;
    SequenceObjectList objects;
    KeptXml kept;
};

} // namespace marlet::project
