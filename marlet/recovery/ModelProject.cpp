#include <marlet/recovery/KnownElements.h>

#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>
#include <marlet/tracking/Tracker.h>

namespace marlet::project
{

namespace
{

constexpr int kFrames = 250;
constexpr auto kPreset = AudioVideoSettings::Preset{};

void AddLayers(CompositionAsset &composition, const std::shared_ptr<AbstractAsset> &asset)
{
    CompositionAsset::LayerList &layers = composition.Layers();
    const auto layer = AssetLayer::Create(asset);
    const auto mask = Mask::Create(u"");
    mask->Path().Points().Add(PathPoint::Create(0, 0, mask->Path().ID()));
    layer->Masks().Add(mask);
    layer->Trackers().Add(Tracker::Create(u"", {}, {}, 10, 20));
    layers.Add(layer);
    layers.Add(CameraLayer::Create(u"", 50, 1000, 1000, 100));
    layers.Add(GradeLayer::Create(u"", composition.Width(), composition.Height()));
    layers.Add(LightLayer::Create(u"", LightLayer::LightType{}));
    layers.Add(PointLayer::Create(u""));
    layers.Add(TextLayer::Create(u"", composition.Width(), composition.Height()));
}

std::shared_ptr<EditorSequence> SequenceWith(const std::shared_ptr<AbstractAsset> &asset)
{
    auto sequence = EditorSequence::Create(kPreset, kFrames);
    if (sequence->VideoTracks().IsEmpty())
        sequence->VideoTracks().Add(VideoTrack::Create(sequence, u""));
    if (sequence->AudioTracks().IsEmpty())
        sequence->AudioTracks().Add(AudioTrack::Create(sequence, u""));
    sequence->VideoTracks()[0]->Objects().Insert(VisualObject::Create(asset, sequence), 0);
    sequence->AudioTracks()[0]->Objects().Insert(AudioObject::Create(asset, sequence), 0);
    return sequence;
}

} // namespace

std::string ModelProjectText()
{
    const auto project = Project::Create(nullptr);
    const auto solid = SolidAsset::Create(u"", {0, 0, 0, 1}, 100, 100, PAR::Square);
    const auto composition = CompositionAsset::Create(u"", kPreset, kFrames);
    AddLayers(*composition, solid);
    AssetList::Assets &assets = project->Assets().All();
    assets.Add(solid);
    assets.Add(ImageAsset::Create(u""));
    assets.Add(project->Media().CreateMediaAsset(u""));
    assets.Add(composition);
    project->SetSequence(SequenceWith(solid));
    return ToUtf8(project->Serialize());
}

} // namespace marlet::project
