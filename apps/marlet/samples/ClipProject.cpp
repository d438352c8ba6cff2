#include "ClipProject.h"

#include "document/MediaSource.h"
#include "options/Arguments.h"
#include "output/Failure.h"

#include <marlet/layers/AssetLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaAudioStream.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/project/Project.h>
#include <marlet/tracking/Tracker.h>

namespace marlet::tool
{

using namespace project;

namespace
{

float LengthOption(const Arguments &arguments, const std::string &option, float otherwise)
{
    if (!arguments.Has(option))
        return otherwise;
    const float length = arguments.Float(option);
    if (length < 1)
        throw UsageError(option + ": a size is at least one pixel");
    return length;
}

void Put(Project &project, const std::shared_ptr<AbstractAsset> &asset)
{
    BinFolder &folder = project.Assets().Bin();
    project.Assets().All().Add(asset);
    folder.Assets().Add(asset);
    asset->SetParentFolderID(folder.ID());
}

void TakeFormat(AudioVideoSettings &settings, const MediaAsset &media, const MediaVideoStream &video)
{
    settings.SetWidth(video.Width());
    settings.SetHeight(video.Height());
    settings.SetFrameRate(video.FrameRate());
    settings.SetFields(video.FieldsType());
    settings.SetPixelAspectRatio(video.AspectRatio());
    if (const auto audio = media.AudioStream())
        settings.SetAudioSampleRate(
            AudioVideoSettings::AudioSampleRateFromValue(static_cast<int>(audio->SampleRate())));
}

} // namespace

Feature FeatureOption(const Arguments &arguments)
{
    Feature feature;
    const PixelPosition position = arguments.Position("--at");
    feature.position = {position.x, position.y};
    feature.size = LengthOption(arguments, "--feature", feature.size);
    feature.searchSize = LengthOption(arguments, "--search", feature.searchSize);
    return feature;
}

ClipProject MakeClipProject(const ProjectPointer &project, const MediaPointer &media)
{
    const auto video = VideoOf(*media);
    ClipProject clip{
        project,
        CompositionAsset::Create(media->Name(), AudioVideoSettings::Preset::Hd720At25, video->FrameCount()),
        AssetLayer::Create(media)};
    TakeFormat(clip.composition->Settings(), *media, *video);
    project->SetName(media->Name());
    Put(*project, media);
    Put(*project, clip.composition);
    clip.layer->SetEndFrame(video->FrameCount());
    clip.layer->SetParentComposition(clip.composition);
    clip.composition->Layers().Add(clip.layer);
    media->Instances().Add(clip.layer);
    return clip;
}

TrackerPointer AddTracker(AssetLayer &layer, const Feature &feature)
{
    auto tracker =
        Tracker::Create(u"Tracker", feature.position, feature.position, feature.size, feature.searchSize);
    tracker->SetParentLayerID(layer.ID());
    layer.Trackers().Add(tracker);
    return tracker;
}

} // namespace marlet::tool
