#include "Handles.h"

#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/SolidAsset.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

namespace marlet::python
{

namespace
{

template <class Handle, class T>
py::object ShowPart(const DocumentPointer &document, const std::shared_ptr<T> &object,
                    typename Held<typename Handle::Object>::Presence presence)
{
    return object ? py::cast(Handle(document, object, std::move(presence))) : py::none();
}

bool HasAsset(const Project &project, const AbstractAsset &asset)
{
    return project.Assets().GetByID(asset.ID()).get() == &asset || Lists(project.Assets().All(), asset);
}

bool HasLayer(const Project &project, const AbstractLayer &layer)
{
    const auto composition =
        std::dynamic_pointer_cast<CompositionAsset>(project.Assets().GetByID(layer.ParentCompositionID()));
    if (composition && composition->FindLayerByID(layer.ID()).get() == &layer)
        return true;
    for (const auto &asset : project.Assets().GetByType(AssetType::Composition))
        if (Lists(std::as_const(static_cast<CompositionAsset &>(*asset)).Layers(), layer))
            return true;
    return false;
}

bool HasFolder(const Project &project, const BinFolder &folder)
{
    const BinFolder &root = project.Assets().Bin();
    return &root == &folder || root.FindFolderByID(folder.ID()).get() == &folder;
}

bool HasTrack(const Project &project, const AbstractSequenceTrack &track)
{
    const auto sequence = project.Sequence();
    return sequence && sequence->FindSequenceTrackByID(track.ID()).get() == &track;
}

bool HasObject(const Project &project, const AbstractSequenceObject &object)
{
    const auto sequence = project.Sequence();
    if (!sequence || sequence->FindObjectByID(object.ID()).get() != &object)
        return false;
    // Objects of a track that was taken away stay findable.
    return sequence->FindSequenceTrackByID(object.ParentTrackID()) != nullptr;
}

} // namespace

py::object Show(const DocumentPointer &document, const std::shared_ptr<AbstractAsset> &asset)
{
    if (!asset)
        return py::none();
    const AssetHandle handle(document, asset, &HasAsset);
    switch (asset->Type()) {
    case AssetType::Media:
        return py::cast(MediaHandle(handle));
    case AssetType::Image:
        return py::cast(ImageHandle(handle));
    case AssetType::Solid:
        return py::cast(SolidHandle(handle));
    case AssetType::Composition:
        return py::cast(CompositionHandle(handle));
    }
    return py::cast(handle);
}

py::object Show(const DocumentPointer &document, const std::shared_ptr<BinFolder> &folder)
{
    return ShowPart<FolderHandle>(document, folder, &HasFolder);
}

py::object Show(const DocumentPointer &document, const std::shared_ptr<AbstractLayer> &layer)
{
    if (!layer)
        return py::none();
    const LayerHandle handle(document, layer, &HasLayer);
    switch (layer->Type()) {
    case LayerType::Asset:
        return py::cast(AssetLayerHandle(handle));
    case LayerType::Effect3D:
        return py::cast(Effect3DLayerHandle(handle));
    case LayerType::Camera:
        return py::cast(CameraHandle(handle));
    case LayerType::Light:
        return py::cast(LightHandle(handle));
    case LayerType::Grade:
        return py::cast(GradeHandle(handle));
    case LayerType::Point:
        return py::cast(PointLayerHandle(handle));
    case LayerType::Text:
        return py::cast(TextLayerHandle(handle));
    }
    return py::cast(handle);
}

py::object Show(const DocumentPointer &document, const std::shared_ptr<EditorSequence> &sequence)
{
    return ShowPart<SequenceHandle>(document, sequence,
                                    [](const Project &project, const EditorSequence &shown) {
                                        return project.Sequence().get() == &shown;
                                    });
}

py::object Show(const DocumentPointer &document, const std::shared_ptr<AbstractSequenceTrack> &track)
{
    if (!track)
        return py::none();
    const TrackHandle handle(document, track, &HasTrack);
    return track->Type() == TrackType::Video ? py::cast(VideoTrackHandle(handle))
                                             : py::cast(AudioTrackHandle(handle));
}

py::object Show(const DocumentPointer &document, const std::shared_ptr<AbstractSequenceObject> &object)
{
    if (!object)
        return py::none();
    const ObjectHandle handle(document, object, &HasObject);
    return object->Type() == ObjectType::Visual ? py::cast(VisualObjectHandle(handle))
                                                : py::cast(AudioObjectHandle(handle));
}

py::object Show(const LayerHandle &owner, const std::shared_ptr<Mask> &mask)
{
    return ShowPart<MaskHandle>(owner.Owner(), mask, [owner](const Project &, const Mask &shown) {
        const MaskList *const masks = MasksOf(*owner.Get());
        return masks && Lists(*masks, shown);
    });
}

py::object Show(const LayerHandle &owner, const std::shared_ptr<Tracker> &tracker)
{
    return ShowPart<TrackerHandle>(owner.Owner(), tracker, [owner](const Project &, const Tracker &shown) {
        return Lists(static_cast<const AssetLayer &>(*owner.Get()).Trackers(), shown);
    });
}

py::object Show(const LayerHandle &owner, const std::shared_ptr<EffectInstance> &effect)
{
    if (!effect)
        return py::none();
    const InstanceHandle handle(owner.Owner(), effect, [owner](const Project &, const PluginInstance &shown) {
        const EffectList *const effects = EffectsOf(*owner.Get());
        return effects && Lists(*effects, shown);
    });
    return py::cast(EffectHandle(handle));
}

py::object Show(const ObjectHandle &owner, const std::shared_ptr<EffectInstance> &effect)
{
    if (!effect)
        return py::none();
    const InstanceHandle handle(owner.Owner(), effect, [owner](const Project &, const PluginInstance &shown) {
        return Lists(std::as_const(*owner.Get()).Effects(), shown);
    });
    return py::cast(EffectHandle(handle));
}

py::object Show(const ObjectHandle &owner, const std::shared_ptr<Transition> &transition)
{
    if (!transition)
        return py::none();
    const InstanceHandle handle(owner.Owner(), transition,
                                [owner](const Project &, const PluginInstance &shown) {
                                    const auto object = owner.Get();
                                    return object->IncomingTransition().get() == &shown ||
                                           object->OutgoingTransition().get() == &shown;
                                });
    return py::cast(TransitionHandle(handle));
}

py::object Show(const MaskHandle &owner, const std::shared_ptr<PathPoint> &point)
{
    return ShowPart<PathPointHandle>(owner.Owner(), point, [owner](const Project &, const PathPoint &shown) {
        return Lists(std::as_const(*owner.Get()).Path().Points(), shown);
    });
}

py::object Show(const TrackerHandle &owner, const std::shared_ptr<TrackingPoint> &point)
{
    return ShowPart<TrackingPointHandle>(owner.Owner(), point,
                                         [owner](const Project &, const TrackingPoint &shown) {
                                             const Tracker &tracker = *owner.Get();
                                             return tracker.PrimaryTrackingPoint().get() == &shown ||
                                                    tracker.SecondaryTrackingPoint().get() == &shown;
                                         });
}

EffectList *EffectsOf(AbstractLayer &layer)
{
    switch (layer.Type()) {
    case LayerType::Asset:
        return &static_cast<AssetLayer &>(layer).Effects();
    case LayerType::Grade:
        return &static_cast<GradeLayer &>(layer).Effects();
    case LayerType::Text:
        return &static_cast<TextLayer &>(layer).Effects();
    default:
        return nullptr;
    }
}

MaskList *MasksOf(AbstractLayer &layer)
{
    switch (layer.Type()) {
    case LayerType::Asset:
        return &static_cast<AssetLayer &>(layer).Masks();
    case LayerType::Grade:
        return &static_cast<GradeLayer &>(layer).Masks();
    case LayerType::Text:
        return &static_cast<TextLayer &>(layer).Masks();
    default:
        return nullptr;
    }
}

} // namespace marlet::python
