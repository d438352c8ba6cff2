#include <marlet/history/HeldSize.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/StyledText.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

namespace marlet::project
{

namespace
{

/// Of an object's own fields behind its pointer, whatever its class.
constexpr std::size_t kObject = 512;
/// Of a key frame with its places in the list's two tables.
constexpr std::size_t kKeyFrame = sizeof(KeyFrame) + 96;
/// Of a property with its name, its value and its default.
constexpr std::size_t kProperty = 256;

template <class T> std::size_t SizeOf(const std::shared_ptr<T> &object)
{
    return object ? HeldSize(*object) : 0;
}

template <class List> std::size_t SizeOfEach(const List &list)
{
    std::size_t size = 0;
    for (const auto &entry : list)
        size += sizeof entry + SizeOf(entry);
    return size;
}

std::size_t SizeOfText(const WideString &text)
{
    return text.capacity() * sizeof(char16_t);
}

std::size_t SizeOfText(const TextLayer &layer)
{
    std::size_t tokens = 0;
    for ([[maybe_unused]] const TextLayer::Token &token : TokenChain(layer.Text().first))
        ++tokens;
    return tokens * sizeof(TextLayer::Token) + layer.Formats().size() * sizeof(TextLayer::Format);
}

/// None of a plug-in that is gone or fails: a size is no reason for an edit to fail.
std::size_t SizeOfPrivateBytes(const PluginInstance &instance)
{
    try {
        if (!instance.Plugin())
            return 0;
        const auto bytes = instance.PrivateBytes();
        return bytes ? bytes->size() : 0;
    } catch (...) {
        return 0;
    }
}

} // namespace

std::size_t HeldSize(const PropertyManager &properties)
{
    std::size_t size = 0;
    for (const NarrowString &name : properties.PropertyNames())
        size += kProperty + properties.Expression(name.c_str()).capacity() +
                properties.KeyFrames(name.c_str()).Count() * kKeyFrame;
    return size;
}

std::size_t HeldSize(const PluginInstance &instance)
{
    return kObject + HeldSize(instance.Properties()) + SizeOfPrivateBytes(instance);
}

std::size_t HeldSize(const PathPoint &point)
{
    return kObject + HeldSize(point.Animation());
}

std::size_t HeldSize(const Mask &mask)
{
    return kObject + SizeOfText(mask.Name()) + HeldSize(mask.Animation()) + SizeOfEach(mask.Path().Points());
}

std::size_t HeldSize(const TrackingPoint &point)
{
    return kObject + HeldSize(point.Animation());
}

std::size_t HeldSize(const Tracker &tracker)
{
    return kObject + SizeOfText(tracker.Name()) + SizeOf(tracker.PrimaryTrackingPoint()) +
           SizeOf(tracker.SecondaryTrackingPoint());
}

std::size_t HeldSize(const Abstract3DEffect &)
{
    return kObject;
}

std::size_t HeldSize(const AbstractLayer &layer)
{
    std::size_t size = kObject + SizeOfText(layer.Name()) + HeldSize(layer.Animation());
    if (const auto *shown = dynamic_cast<const AssetLayer *>(&layer))
        size += SizeOfEach(shown->Effects()) + SizeOfEach(shown->Masks()) + SizeOfEach(shown->Trackers());
    else if (const auto *text = dynamic_cast<const TextLayer *>(&layer))
        size += SizeOfEach(text->Effects()) + SizeOfEach(text->Masks()) + SizeOfText(*text);
    else if (const auto *grade = dynamic_cast<const GradeLayer *>(&layer))
        size += SizeOfEach(grade->Effects()) + SizeOfEach(grade->Masks());
    return size;
}

std::size_t HeldSize(const AbstractAsset &asset)
{
    const auto *composition = dynamic_cast<const CompositionAsset *>(&asset);
    return kObject + SizeOfText(asset.Name()) + (composition ? SizeOfEach(composition->Layers()) : 0);
}

std::size_t HeldSize(const BinFolder &folder)
{
    return kObject + SizeOfText(folder.Name()) + SizeOfEach(folder.Folders());
}

std::size_t HeldSize(const AbstractSequenceObject &object)
{
    return kObject + SizeOfText(object.Name()) + HeldSize(object.Properties()) +
           SizeOfEach(object.Effects()) + SizeOf(object.IncomingTransition()) +
           SizeOf(object.OutgoingTransition());
}

std::size_t HeldSize(const AbstractSequenceTrack &track)
{
    std::size_t size = kObject + SizeOfText(track.Name());
    track.Objects().ForEach([&size](std::shared_ptr<const AbstractSequenceObject> object) {
        size += sizeof object + HeldSize(*object);
    });
    return size;
}

std::size_t HeldSize(const EditorSequence &sequence)
{
    return kObject + SizeOfText(sequence.Name()) + SizeOfEach(sequence.VideoTracks()) +
           SizeOfEach(sequence.AudioTracks());
}

} // namespace marlet::project
