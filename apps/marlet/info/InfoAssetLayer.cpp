#include "InfoAssetLayer.h"

#include "InfoParts.h"
#include "document/LayerContent.h"
#include "output/Names.h"
#include "output/Output.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

namespace marlet::tool
{

using namespace project;

namespace
{

const std::string kIndent = kLayerIndent;
const std::string kDeeper = kIndent + "  ";

void WritePointText(const std::string &name, const TrackingPoint *point, Output &output)
{
    if (!point)
        return;
    output.Line(kDeeper + name + " point" + (point->IsVisible() ? "" : ", hidden"));
    WritePropertiesText(point->Animation(), kDeeper + "  ", output);
}

void WritePointJson(const Tracker &tracker, const TrackingPoint *point, Output &output)
{
    if (!point)
        return;
    JsonWriter json = BeginJson("tracking_point");
    json.Member("tracker", tracker.ID())
        .Member("id", point->ID())
        .Member("type", point->Type() == TrackingPoint::TrackingPointType::Primary ? "primary" : "secondary")
        .Member("visible", point->IsVisible());
    EndJson(json, output);
    WritePropertiesJson("tracking_point", point->ID(), point->Animation(), output);
}

void WriteTrackerJson(const AssetLayer &layer, const Tracker &tracker, Output &output)
{
    JsonWriter json = BeginJson("tracker");
    json.Member("layer", layer.ID())
        .Member("id", tracker.ID())
        .Member("name", tracker.Name())
        .Member("type", TrackerTypeName(tracker.Type()))
        .Member("method", TrackerMethodName(tracker.Method()))
        .Member("purpose", static_cast<int>(tracker.Purpose()))
        .Member("transformation_options", tracker.TransformationOptions());
    json.Reference("destination", tracker.DestinationLayerID());
    EndJson(json, output);
    WritePointJson(tracker, tracker.PrimaryTrackingPoint().get(), output);
    WritePointJson(tracker, tracker.SecondaryTrackingPoint().get(), output);
}

} // namespace

void WriteAssetLayerText(const AssetLayer &layer, const AssetList &assets, Output &output)
{
    const auto asset = layer.Asset(assets);
    output.Line(kIndent + "shows " +
                (asset ? Quoted(asset->Name()) : layer.AssetID().ToNarrowString() + " (not there)") +
                ", its frames " + std::to_string(layer.AssetInstanceStart()) + " to " +
                std::to_string(layer.AssetInstanceEnd()));
    for (const auto &tracker : TrackersOf(layer)) {
        const Tracker &shown = *tracker;
        output.Line(kIndent + "tracker " + Quoted(shown.Name()) + "  " + TrackerTypeName(shown.Type()) +
                    ", " + TrackerMethodName(shown.Method()));
        WritePointText("primary", shown.PrimaryTrackingPoint().get(), output);
        WritePointText("secondary", shown.SecondaryTrackingPoint().get(), output);
    }
}

void WriteAssetLayerJson(const AssetLayer &layer, Output &output)
{
    JsonWriter json = BeginJson("asset_layer");
    json.Member("layer", layer.ID())
        .Member("asset", layer.AssetID())
        .Member("asset_type", AssetTypeName(layer.AssetType()))
        .Member("asset_start", layer.AssetInstanceStart())
        .Member("asset_end", layer.AssetInstanceEnd())
        .Member("audio", layer.HasAudio())
        .Member("video", layer.HasVideo())
        .Member("asset_had_audio", layer.AssetHadAudio())
        .Member("asset_had_video", layer.AssetHadVideo())
        .Member("auto_orientation", static_cast<int>(layer.AutoOrientation()))
        .Member("promote_lights", layer.PromoteLights())
        .Member("trackers", layer.Trackers().Count());
    EndJson(json, output);
    for (const auto &tracker : TrackersOf(layer))
        WriteTrackerJson(layer, *tracker, output);
}

} // namespace marlet::tool
