#pragma once

#include "Held.h"

#include <marlet/foundation/KyList.h>

namespace marlet::project
{

class AbstractAsset;
class AbstractLayer;
class AbstractSequenceObject;
class AbstractSequenceTrack;
class AssetLayer;
class AudioObject;
class AudioTrack;
class BinFolder;
class CameraLayer;
class CompositionAsset;
class Effect3DLayer;
class EditorSequence;
class EffectInstance;
class GradeLayer;
class ImageAsset;
class LightLayer;
class Mask;
class MediaAsset;
class PathPoint;
class PluginInstance;
class PointLayer;
class SolidAsset;
class TextLayer;
class Tracker;
class TrackingPoint;
class Transition;
class VideoTrack;
class VisualObject;

} // namespace marlet::project

namespace marlet::python
{

struct ProjectHandle {
    DocumentPointer document;

    const std::shared_ptr<Project> &Get() const { return document->Open(); }
};

using AssetHandle = Held<AbstractAsset>;
using MediaHandle = HeldAs<MediaAsset, AssetHandle>;
using ImageHandle = HeldAs<ImageAsset, AssetHandle>;
using SolidHandle = HeldAs<SolidAsset, AssetHandle>;
using CompositionHandle = HeldAs<CompositionAsset, AssetHandle>;
using FolderHandle = Held<BinFolder>;

using LayerHandle = Held<AbstractLayer>;
using AssetLayerHandle = HeldAs<AssetLayer, LayerHandle>;
using Effect3DLayerHandle = HeldAs<Effect3DLayer, LayerHandle>;
using CameraHandle = HeldAs<CameraLayer, LayerHandle>;
using LightHandle = HeldAs<LightLayer, LayerHandle>;
using GradeHandle = HeldAs<GradeLayer, LayerHandle>;
using PointLayerHandle = HeldAs<PointLayer, LayerHandle>;
using TextLayerHandle = HeldAs<TextLayer, LayerHandle>;

using MaskHandle = Held<Mask>;
using PathPointHandle = Held<PathPoint>;
using TrackerHandle = Held<Tracker>;
using TrackingPointHandle = Held<TrackingPoint>;

using InstanceHandle = Held<PluginInstance>;
using EffectHandle = HeldAs<EffectInstance, InstanceHandle>;
using TransitionHandle = HeldAs<Transition, InstanceHandle>;

using SequenceHandle = Held<EditorSequence>;
using TrackHandle = Held<AbstractSequenceTrack>;
using VideoTrackHandle = HeldAs<VideoTrack, TrackHandle>;
using AudioTrackHandle = HeldAs<AudioTrack, TrackHandle>;
using ObjectHandle = Held<AbstractSequenceObject>;
using VisualObjectHandle = HeldAs<VisualObject, ObjectHandle>;
using AudioObjectHandle = HeldAs<AudioObject, ObjectHandle>;

// Python objects for what a project holds, of the class that it has; None for an empty pointer.

py::object Show(const DocumentPointer &document, const std::shared_ptr<AbstractAsset> &asset);
py::object Show(const DocumentPointer &document, const std::shared_ptr<BinFolder> &folder);
py::object Show(const DocumentPointer &document, const std::shared_ptr<AbstractLayer> &layer);
py::object Show(const DocumentPointer &document, const std::shared_ptr<EditorSequence> &sequence);
py::object Show(const DocumentPointer &document, const std::shared_ptr<AbstractSequenceTrack> &track);
py::object Show(const DocumentPointer &document, const std::shared_ptr<AbstractSequenceObject> &object);

// What others own is shown as a part of its owner.

py::object Show(const LayerHandle &owner, const std::shared_ptr<Mask> &mask);
py::object Show(const LayerHandle &owner, const std::shared_ptr<Tracker> &tracker);
py::object Show(const LayerHandle &owner, const std::shared_ptr<EffectInstance> &effect);
py::object Show(const ObjectHandle &owner, const std::shared_ptr<EffectInstance> &effect);
py::object Show(const ObjectHandle &owner, const std::shared_ptr<Transition> &transition);
py::object Show(const MaskHandle &owner, const std::shared_ptr<PathPoint> &point);
py::object Show(const TrackerHandle &owner, const std::shared_ptr<TrackingPoint> &point);

template <class List> py::list ShowAll(const DocumentPointer &document, const List &objects)
{
    py::list shown;
    for (const auto &object : objects)
        shown.append(Show(document, object));
    return shown;
}

/// The effects of a layer or an object; null if its class has none.
using EffectList = kytl::KyList<std::shared_ptr<EffectInstance>, std::vector>;
EffectList *EffectsOf(AbstractLayer &layer);
/// The masks of a layer; null if its class has none.
using MaskList = kytl::KyList<std::shared_ptr<Mask>, std::vector>;
MaskList *MasksOf(AbstractLayer &layer);

/// Several handles as the objects that they stand for, all of one document.
/// @throws Failure ClosedError, GoneError; std::invalid_argument for one of another project
template <class Handle>
std::vector<std::shared_ptr<typename Handle::Object>> ObjectsFrom(const DocumentPointer &document,
                                                                  const std::vector<Handle> &handles)
{
    std::vector<std::shared_ptr<typename Handle::Object>> objects;
    for (const Handle &handle : handles) {
        if (handle.Owner() != document)
            throw std::invalid_argument("The object belongs to another project");
        objects.push_back(handle.Get());
    }
    return objects;
}

template <class Handle>
std::shared_ptr<typename Handle::Object> ObjectFrom(const DocumentPointer &document, const Handle &handle)
{
    return ObjectsFrom<Handle>(document, {handle}).front();
}

/// The same for what may be None.
template <class Handle>
std::shared_ptr<typename Handle::Object> ObjectFrom(const DocumentPointer &document, const Handle *handle)
{
    return handle ? ObjectFrom(document, *handle) : nullptr;
}

} // namespace marlet::python
