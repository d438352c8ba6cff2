// What scripts do to the sequence.

#include "EditScript.h"

namespace marlet::test
{

void EditScript::ChangeSequence(Edit &edit)
{
    const auto sequence = document_.sequence;
    edit.Touch(sequence);
    sequence->SetName(Word());
    sequence->SetOutPoint(static_cast<int>(Below(100)));
    sequence->Settings().SetFrameCount(static_cast<int>(Below(100)) + 1);
    if (Chance(3))
        sequence->VideoTracks().Add(VideoTrack::Create(sequence, Word()));
    else if (Chance(2))
        std::ranges::reverse(sequence->VideoTracks());
}

void EditScript::ChangeTrack(Edit &edit)
{
    const auto track = AnyVideoTrack();
    edit.Touch(std::static_pointer_cast<AbstractSequenceTrack>(track));
    track->SetName(Word());
    track->SetVisible(Chance(2));
    const auto sound = document_.sequence->AudioTracks()[0];
    edit.Touch(std::static_pointer_cast<AbstractSequenceTrack>(sound));
    sound->SetLevel(float(Below(10)));
}

std::shared_ptr<AbstractSequenceObject> EditScript::AnyObject(const AbstractSequenceTrack &track)
{
    const unsigned int count = track.Objects().Count();
    return count == 0 ? nullptr : track.Objects()[Below(count)];
}

void EditScript::ChangeObject(Edit &edit)
{
    const auto object = AnyObject(*AnyVideoTrack());
    if (!object)
        return;
    edit.Touch(object);
    object->SetName(Word());
    object->SetEndFrame(Frame());
    object->SetAssetInstanceStart(Frame());
    object->SetLinkedObjectID(Chance(2) ? document_.sound->ID() : KyID());
    edit.Touch(object, "opacity");
    object->Properties().StaticValue("opacity") = float(Below(100));
}

void EditScript::AddObject(Edit &edit)
{
    const auto track = AnyVideoTrack();
    for (unsigned int i = Chance(20) ? 100 : 1; i > 0; --i) {
        const auto object = VisualObject::Create(document_.inner, document_.sequence);
        object->SetParentTrackID(track->ID());
        object->SetEndFrame(Frame());
        edit.Touch(std::static_pointer_cast<AbstractSequenceTrack>(track), object);
        track->Objects().Insert(object, Frame());
    }
}

void EditScript::MoveObject(Edit &edit)
{
    const auto track = AnyVideoTrack();
    for (unsigned int i = Chance(20) ? 100 : 1; i > 0; --i)
        if (const auto object = AnyObject(*track)) {
            edit.Touch(object);
            track->Objects().Move(object, Frame(), Chance(2));
        }
}

void EditScript::MoveToOtherTrack(Edit &edit)
{
    const std::shared_ptr<AbstractSequenceTrack> from = AnyVideoTrack();
    const std::shared_ptr<AbstractSequenceTrack> to = AnyVideoTrack();
    const auto object = AnyObject(*from);
    if (!object || from == to)
        return;
    edit.Touch(object);
    edit.Touch(to, object);
    from->Objects().Remove(object);
    to->Objects().Insert(object, Frame());
    object->SetParentTrackID(to->ID());
}

void EditScript::RemoveObject(Edit &edit)
{
    const std::shared_ptr<AbstractSequenceTrack> track = AnyVideoTrack();
    if (const auto object = AnyObject(*track)) {
        edit.Touch(track, object);
        track->Objects().Remove(object);
    }
}

void EditScript::ShiftObjects(Edit &edit)
{
    const std::shared_ptr<AbstractSequenceTrack> track = AnyVideoTrack();
    const unsigned int position = Below(track->Objects().Count() + 1);
    edit.ShiftFrom(track, position, static_cast<int>(Below(20)));
}

void EditScript::ChangeTransition(Edit &edit)
{
    edit.Touch(std::static_pointer_cast<PluginInstance>(document_.transition));
    document_.transition->SetLength(static_cast<int>(Below(20)));
    const auto object = AnyObject(*AnyVideoTrack());
    if (!object)
        return;
    edit.Touch(object);
    object->SetOutgoingTransition(Chance(2) ? Transition::Create(document_.plugins->plugins[0]) : nullptr);
}

} // namespace marlet::test
