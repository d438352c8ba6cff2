#include "Info.h"
#include "InfoParts.h"
#include "InfoSequence.h"
#include "document/Document.h"
#include "document/MediaFacts.h"
#include "document/MetadataItems.h"
#include "options/TypedValue.h"
#include "output/Names.h"
#include "output/Output.h"
#include "output/QuietStandardError.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/TimeCode.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/CompositionRenderSettings.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectSettings.h>
#include <marlet/project/SolidAsset.h>

#include <algorithm>
#include <unordered_set>

namespace marlet::tool
{

using namespace project;

namespace
{

std::string SizeText(int width, int height)
{
    return std::to_string(width) + "x" + std::to_string(height);
}

std::string AssetText(const AbstractAsset &asset)
{
    const QuietStandardError quiet;
    std::string text = Quoted(asset.Name()) + "  " + AssetTypeName(asset.Type());
    if (asset.IsOffline())
        text += ", offline";
    else
        text += ", " + SizeText(asset.Width(), asset.Height());
    if (const auto *solid = dynamic_cast<const SolidAsset *>(&asset))
        text += ", colour " + ValueText(solid->Color());
    else if (const auto *image = dynamic_cast<const ImageAsset *>(&asset))
        text += ", " + OneLine(ToUtf8(image->Filename()));
    else if (const auto *media = dynamic_cast<const MediaAsset *>(&asset))
        text += ", " + OneLine(ToUtf8(media->Filename()));
    else if (const auto *composition = dynamic_cast<const CompositionAsset *>(&asset))
        text += ", " +
                Counted(static_cast<std::size_t>(std::max(0, composition->Settings().FrameCount())), "frame");
    if (!asset.Instances().IsEmpty())
        text += ", used " + Counted(asset.Instances().Count(), "time");
    return text;
}

void WriteAsset(const AbstractAsset &asset, const std::string &indent, const std::string &remark,
                Output &output)
{
    output.Line(indent + AssetText(asset) + remark);
    if (const auto *media = dynamic_cast<const MediaAsset *>(&asset))
        for (const std::string &line : MediaFactLines(*media))
            output.Line(indent + "  " + line);
}

using AssetSet = std::unordered_set<const AbstractAsset *>;

/// The folders as a tree, each with its assets behind its sub-folders.
void WriteFolder(const BinFolder &folder, std::size_t depth, AssetSet &written, Output &output)
{
    const std::string indent(2 * depth, ' ');
    output.Line(indent + Quoted(folder.Name()) + "  folder");
    for (const auto &subFolder : folder.Folders())
        WriteFolder(*subFolder, depth + 1, written, output);
    for (const auto &reference : folder.Assets()) {
        if (const auto asset = reference.lock()) {
            WriteAsset(*asset, indent + "  ", "", output);
            written.insert(asset.get());
        }
    }
}

void WriteAssets(const AssetList &assets, Output &output)
{
    output.Line("\nAssets");
    AssetSet written;
    WriteFolder(assets.Bin(), 1, written, output);
    for (const auto &asset : assets.All())
        if (written.count(asset.get()) == 0)
            WriteAsset(*asset, "  ", ", in no folder", output);
}

std::string Switches(const AbstractLayer &layer)
{
    std::string text;
    if (!layer.IsVisible())
        text += ", hidden";
    if (layer.IsMuted())
        text += ", muted";
    if (layer.IsLocked())
        text += ", locked";
    if (layer.IsMotionBlurEnabled())
        text += ", motion blur";
    return text;
}

std::string LayerText(const AbstractLayer &layer, std::size_t position, const LayerMap &layers)
{
    std::string text = "  " + PadLeft(std::to_string(position), 3) + "  " + Quoted(layer.Name()) + "  " +
                       LayerTypeName(layer.Type()) + ", " + DimensionsName(layer.Dimensions()) + ", frames " +
                       std::to_string(layer.StartFrame()) + " to " + std::to_string(layer.EndFrame());
    if (layer.HasParentLayer()) {
        const auto parent = layers.find(layer.ParentLayerID());
        text += ", on " + (parent == layers.end() ? layer.ParentLayerID().ToNarrowString() + " (not there)"
                                                  : Quoted(parent->second->Name()));
    }
    return text + Switches(layer);
}

std::string TimelineText(const CompositionAsset &composition)
{
    const CompositionRenderSettings &render = composition.RenderSettings();
    return "work area " + std::to_string(composition.InPoint()) + " to " +
           std::to_string(composition.OutPoint()) + ", playhead " +
           std::to_string(composition.CurrentTimeIndicator()) + ", motion blur " +
           (render.MotionBlurEnabled() ? NumberText(render.ShutterAngle()) + " degrees" : "off") + ", fog " +
           (render.FogEnabled() ? "on" : "off");
}

void WriteComposition(const CompositionAsset &composition, const AssetList &assets, Output &output)
{
    output.Line("\nComposition " + Quoted(composition.Name()) + "  " + composition.ID().ToNarrowString());
    output.Line("  " + FormatText(composition.Settings()));
    output.Line("  " + TimelineText(composition));
    WritePanelText("viewer panel", composition.ViewerPanelState(), output);
    WritePanelText("layer panel", composition.LayerPanelState(), output);
    const auto layers = LayersByID(composition);
    std::size_t position = 0;
    for (const LayerPointer &layer : composition.Layers()) {
        output.Line(LayerText(*layer, ++position, layers));
        WritePropertiesText(std::as_const(*layer).Animation(), kLayerIndent, output);
        WriteContentText(*layer, layers, assets, output);
    }
}

void WriteMetadata(const std::vector<MetadataItem> &items, Output &output)
{
    if (items.empty())
        return;
    output.Line("\nMetadata");
    for (const MetadataItem &item : items)
        output.Line("  " + PadRight(item.key, 10) + "  " + PadRight(item.type, 8) + OneLine(item.value));
}

void WriteSums(const ProjectSums &sums, std::size_t metadata, Output &output)
{
    output.Line("\n" + Counted(sums.folders, "folder") + ", " + Counted(sums.assets, "asset") + " (" +
                std::to_string(sums.offlineAssets) + " offline), " +
                Counted(sums.compositions, "composition") + ", " + Counted(sums.layers, "layer") + ", " +
                Counted(sums.effects, "effect") + ", " + Counted(sums.masks, "mask") + ", " +
                Counted(sums.trackers, "tracker") + ", " + std::to_string(sums.properties) + " properties (" +
                std::to_string(sums.animatedProperties) + " animated), " +
                Counted(sums.keyFrames, "key frame") + ", " + Counted(sums.expressions, "expression") + ", " +
                Counted(metadata, "metadata value"));
    if (sums.sequenceTracks > 0)
        output.Line(Counted(sums.sequenceTracks, "track") + " in the sequence, " +
                    Counted(sums.sequenceObjects, "object") + ", " + Counted(sums.transitions, "transition"));
}

} // namespace

std::string FormatText(const AudioVideoSettings &settings)
{
    return SizeText(settings.Width(), settings.Height()) + " " + FieldsName(settings.Fields()) +
           ", pixel aspect ratio " + NumberText(settings.PixelAspectRatioValue()) + ", " +
           NumberText(settings.FrameRate()) + " frames per second, " + std::to_string(settings.FrameCount()) +
           " frames (" + TimeCode::FromFrame(settings.FrameCount(), settings.FrameRate()).ToString() + "), " +
           std::to_string(AudioVideoSettings::AudioSampleRateValue(settings.AudioSampleRate())) + " Hz";
}

void WriteInfoText(Project &project, Output &output)
{
    output.Line("Project " + Quoted(project.Name()) + "  " + project.ID().ToNarrowString());
    output.Line("  colour bit depth " + std::to_string(static_cast<int>(project.Settings().ColorBitDepth())));
    WriteAssets(project.Assets(), output);
    for (const CompositionPointer &composition : Compositions(project))
        WriteComposition(*composition, project.Assets(), output);
    if (project.Sequence())
        WriteSequenceText(project, output);
    const std::vector<MetadataItem> metadata = MetadataItems(project);
    WriteMetadata(metadata, output);
    WriteSums(CountProject(project), metadata.size(), output);
}

} // namespace marlet::tool
