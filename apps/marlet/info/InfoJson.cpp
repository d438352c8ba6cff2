#include "Info.h"
#include "InfoParts.h"
#include "InfoSequence.h"
#include "document/Document.h"
#include "document/MediaFacts.h"
#include "document/MetadataItems.h"
#include "options/TypedValue.h"
#include "output/Json.h"
#include "output/Names.h"
#include "output/Output.h"
#include "output/QuietStandardError.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/CompositionRenderSettings.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectSettings.h>
#include <marlet/project/SolidAsset.h>

#include <charconv>

namespace marlet::tool
{

using namespace project;

namespace
{

void WriteColor(JsonWriter &json, const kytl::KyColorRGBA_32f &color)
{
    WriteValue(json.Key("color"), color);
}

void WriteProject(const Project &project, Output &output)
{
    JsonWriter json = BeginJson("project");
    json.Member("file", project.Filename())
        .Member("id", project.ID())
        .Member("name", project.Name())
        .Member("color_bit_depth", static_cast<int>(project.Settings().ColorBitDepth()));
    EndJson(json, output);
}

void WriteFolders(const BinFolder &folder, Output &output)
{
    JsonWriter json = BeginJson("folder");
    json.Member("id", folder.ID()).Member("name", folder.Name());
    json.Reference("parent", folder.ParentFolderID()).Member("expanded", folder.IsExpanded());
    json.Key("assets").BeginArray();
    for (const auto &reference : folder.Assets())
        if (const auto asset = reference.lock())
            json.Value(asset->ID());
    json.EndArray();
    EndJson(json, output);
    for (const auto &subFolder : folder.Folders())
        WriteFolders(*subFolder, output);
}

void WriteAsset(const AbstractAsset &asset, Output &output)
{
    const QuietStandardError quiet;
    JsonWriter json = BeginJson("asset");
    json.Member("type", AssetTypeName(asset.Type())).Member("id", asset.ID()).Member("name", asset.Name());
    json.Reference("folder", asset.ParentFolderID())
        .Member("width", asset.Width())
        .Member("height", asset.Height())
        .Member("audio", asset.HasAudio())
        .Member("video", asset.HasVideo())
        .Member("offline", asset.IsOffline())
        .Member("instances", asset.Instances().Count());
    if (const auto *solid = dynamic_cast<const SolidAsset *>(&asset)) {
        WriteColor(json, solid->Color());
        json.Member("pixel_aspect_ratio", AudioVideoSettings::PARValue(solid->PixelAspectRatio()));
    } else if (const auto *image = dynamic_cast<const ImageAsset *>(&asset)) {
        json.Member("file", image->Filename())
            .Member("status", FileStatusName(image->Status()))
            .Member("pixel_aspect_ratio", AudioVideoSettings::PARValue(image->PixelAspectRatio()));
    } else if (const auto *media = dynamic_cast<const MediaAsset *>(&asset)) {
        json.Member("file", media->Filename()).Key("media").BeginObject();
        WriteMediaFacts(json, *media);
        json.EndObject();
    }
    EndJson(json, output);
}

void WriteRenderSettings(JsonWriter &json, const CompositionRenderSettings &settings)
{
    json.Key("fog").BeginObject();
    json.Member("enabled", settings.FogEnabled())
        .Member("near", settings.FogNearDistance())
        .Member("far", settings.FogFarDistance())
        .Member("density", settings.FogDensity())
        .Member("falloff", static_cast<int>(settings.FogFalloff()));
    WriteColor(json, settings.FogColor());
    json.EndObject().Key("motion_blur").BeginObject();
    json.Member("enabled", settings.MotionBlurEnabled())
        .Member("shutter_angle", settings.ShutterAngle())
        .Member("shutter_phase", settings.ShutterPhase())
        .EndObject();
}

void WriteComposition(const CompositionAsset &composition, Output &output)
{
    JsonWriter json = BeginJson("composition");
    json.Member("id", composition.ID()).Member("name", composition.Name());
    WriteFormatJson(json, composition.Settings());
    json.Member("in", composition.InPoint())
        .Member("out", composition.OutPoint())
        .Member("playhead", composition.CurrentTimeIndicator())
        .Member("is_3d", composition.Is3D())
        .Member("layers", composition.Layers().Count());
    WriteRenderSettings(json, composition.RenderSettings());
    EndJson(json, output);
    WritePanelJson("composition", composition.ID(), "viewer", composition.ViewerPanelState(), output);
    WritePanelJson("composition", composition.ID(), "layer", composition.LayerPanelState(), output);
}

void WriteLayer(const CompositionAsset &composition, const AbstractLayer &layer, std::size_t position,
                Output &output)
{
    JsonWriter json = BeginJson("layer");
    json.Member("composition", composition.ID())
        .Member("position", position)
        .Member("id", layer.ID())
        .Member("name", layer.Name())
        .Member("type", LayerTypeName(layer.Type()))
        .Member("dimensions", DimensionsName(layer.Dimensions()))
        .Member("start", layer.StartFrame())
        .Member("end", layer.EndFrame());
    json.Reference("parent", layer.ParentLayerID())
        .Member("blend", static_cast<int>(layer.BlendMode()))
        .Member("visible", layer.IsVisible())
        .Member("muted", layer.IsMuted())
        .Member("locked", layer.IsLocked())
        .Member("motion_blur", layer.IsMotionBlurEnabled())
        .Member("properties", layer.Animation().PropertyCount());
    EndJson(json, output);
}

void WriteLayers(const CompositionAsset &composition, Output &output)
{
    std::size_t position = 0;
    for (const LayerPointer &layer : composition.Layers()) {
        WriteLayer(composition, *layer, position++, output);
        WritePropertiesJson("layer", layer->ID(), std::as_const(*layer).Animation(), output);
        WriteContentJson(*layer, output);
    }
}

void WriteMetadataValue(JsonWriter &json, const MetadataItem &item)
{
    const char *end = item.value.data() + item.value.size();
    int integer = 0;
    float real = 0;
    if (item.type == "bool")
        json.Value(item.value != "0");
    else if (item.type == "int32_t" && std::from_chars(item.value.data(), end, integer).ptr == end)
        json.Value(integer);
    else if (item.type == "float" && std::from_chars(item.value.data(), end, real).ptr == end)
        json.Value(real);
    else
        json.Value(item.value);
}

void WriteSums(const ProjectSums &sums, std::size_t metadata, Output &output)
{
    JsonWriter json = BeginJson("sums");
    json.Member("folders", sums.folders)
        .Member("assets", sums.assets)
        .Member("offline_assets", sums.offlineAssets)
        .Member("compositions", sums.compositions)
        .Member("layers", sums.layers)
        .Member("effects", sums.effects)
        .Member("masks", sums.masks)
        .Member("sequence_tracks", sums.sequenceTracks)
        .Member("sequence_objects", sums.sequenceObjects)
        .Member("transitions", sums.transitions)
        .Member("trackers", sums.trackers)
        .Member("properties", sums.properties)
        .Member("animated_properties", sums.animatedProperties)
        .Member("key_frames", sums.keyFrames)
        .Member("expressions", sums.expressions)
        .Member("metadata", metadata);
    EndJson(json, output);
}

} // namespace

void WriteFormatJson(JsonWriter &json, const AudioVideoSettings &settings)
{
    json.Member("width", settings.Width())
        .Member("height", settings.Height())
        .Member("fields", FieldsName(settings.Fields()))
        .Member("pixel_aspect_ratio", settings.PixelAspectRatioValue())
        .Member("frame_rate", settings.FrameRate())
        .Member("frames", settings.FrameCount())
        .Member("audio_sample_rate", AudioVideoSettings::AudioSampleRateValue(settings.AudioSampleRate()));
}

void WriteInfoJson(Project &project, Output &output)
{
    WriteProject(project, output);
    WriteFolders(project.Assets().Bin(), output);
    for (const auto &asset : project.Assets().All())
        WriteAsset(*asset, output);
    for (const CompositionPointer &composition : Compositions(project)) {
        WriteComposition(*composition, output);
        WriteLayers(*composition, output);
    }
    if (project.Sequence())
        WriteSequenceJson(project, output);
    const std::vector<MetadataItem> metadata = MetadataItems(project);
    for (const MetadataItem &item : metadata) {
        JsonWriter json = BeginJson("metadata");
        json.Member("type", item.type).Member("key", item.key);
        WriteMetadataValue(json.Key("value"), item);
        EndJson(json, output);
    }
    WriteSums(CountProject(project), metadata.size(), output);
}

} // namespace marlet::tool
