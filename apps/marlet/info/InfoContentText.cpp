#include "InfoAssetLayer.h"
#include "InfoParts.h"
#include "document/LayerContent.h"
#include "options/TypedValue.h"
#include "output/Names.h"
#include "output/Output.h"
#include "output/QuietStandardError.h"
#include "plugins/Ribbon.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/TextureImage.h>

namespace marlet::tool
{

using namespace project;

namespace
{

const std::string kIndent = kLayerIndent;
const std::string kDeeper = kIndent + "  ";

/// The beginning of a long stretch, without half a character at its end.
std::string Excerpt(const WideString &text)
{
    constexpr std::size_t kMostUnits = 60;
    if (text.size() <= kMostUnits)
        return Quoted(text);
    const bool splitsPair = (text[kMostUnits - 1] & 0xFC00) == 0xD800;
    return Quoted(std::u16string_view(text).substr(0, kMostUnits - (splitsPair ? 1 : 0))) + "..., " +
           std::to_string(text.size()) + " tokens";
}

std::string FormatText(const TextLayer::Format &format)
{
    return Quoted(format.family) + " " + Quoted(format.style) + ", size " + std::to_string(format.size) +
           ", fill " + ValueText(format.fillColor) + ", stroke " + ValueText(format.strokeColor) + " of " +
           NumberText(format.strokeWidth) + ", tracking " + NumberText(format.tracking) + ", leading " +
           NumberText(format.leading);
}

std::string RunText(const TextRun &run)
{
    if (run.isParagraph)
        return "paragraph, justification " + std::to_string(run.justification);
    const std::string format = run.format == 0 ? "no format" : "format " + std::to_string(run.format);
    return "run, " + format + "  " + Excerpt(run.text);
}

void WriteText(const TextLayer &layer, Output &output)
{
    const TextContent content = ContentOf(layer);
    output.Line(kIndent + "text in a frame of " + NumberText(layer.Width()) + "x" +
                NumberText(layer.Height()) + ", " + Counted(content.tokens, "token") + ", " +
                Counted(content.paragraphs, "paragraph break") + ", " +
                Counted(content.formats.size(), "format"));
    for (std::size_t i = 0; i < content.formats.size(); ++i)
        output.Line(kDeeper + "format " + std::to_string(i + 1) + "  " + FormatText(*content.formats[i]));
    for (const TextRun &run : content.runs)
        output.Line(kDeeper + RunText(run));
}

std::string TextureText(const TextureImage &texture)
{
    const std::string path = OneLine(ToUtf8(texture.FilePath()));
    if (!texture.LoadSuccessful())
        return path + ", not there";
    return path + ", " + std::to_string(texture.Width()) + "x" + std::to_string(texture.Height());
}

void WriteEffect3D(const Effect3DLayer &layer, Output &output)
{
    const QuietStandardError quiet;
    const auto ribbon = std::dynamic_pointer_cast<const Ribbon>(layer.Effect());
    if (!ribbon)
        return;
    output.Line(kIndent + "3D effect " + Ribbon::kTypeName);
    WritePropertiesText(ribbon->Properties(), kDeeper, output);
    if (ribbon->Texture())
        output.Line(kDeeper + "texture " + TextureText(*ribbon->Texture()));
}

/// Where something stands, or that it moves.
std::string PlaceText(const PropertyManager &properties, const char *name)
{
    const KeyFrameList &keyFrames = properties.KeyFrames(name);
    return keyFrames.IsEmpty() ? ValueText(properties.StaticValue(name))
                               : Counted(keyFrames.Count(), "key frame");
}

std::string PointText(const PathPoint &point)
{
    const PropertyManager &places = point.Animation();
    return PlaceText(places, "position") + ", handles " + PlaceText(places, "leftHandle") + " and " +
           PlaceText(places, "rightHandle") + (point.IsLinear() ? ", linear" : "") +
           (point.IsLocked() ? ", locked" : "");
}

void WriteMask(const Mask &mask, Output &output)
{
    const MotionPath &path = mask.Path();
    output.Line(kIndent + "mask " + Quoted(mask.Name()) + "  " + (path.IsClosed() ? "closed" : "open") +
                " path of " + Counted(path.Points().Count(), "point") + (mask.IsVisible() ? "" : ", hidden"));
    WritePropertiesText(mask.Animation(), kDeeper, output);
    std::size_t position = 0;
    for (const auto &point : path.Points())
        output.Line(kDeeper + "point " + PadRight(std::to_string(++position), 3) + " " + PointText(*point));
}

void WriteReference(const LayerReference &reference, const LayerMap &layers, Output &output)
{
    const auto target = layers.find(reference.target);
    output.Line(kIndent + "refers to " +
                (target == layers.end() ? reference.target.ToNarrowString() + " (not there)"
                                        : Quoted(target->second->Name())) +
                " by " + HolderText(reference));
}

} // namespace

void WriteContentText(const AbstractLayer &layer, const LayerMap &layers, const AssetList &assets,
                      Output &output)
{
    if (const auto *asset = dynamic_cast<const AssetLayer *>(&layer))
        WriteAssetLayerText(*asset, assets, output);
    if (const auto *text = dynamic_cast<const TextLayer *>(&layer))
        WriteText(*text, output);
    if (const auto *effect3D = dynamic_cast<const Effect3DLayer *>(&layer))
        WriteEffect3D(*effect3D, output);
    for (const auto &effect : EffectsOf(layer))
        WriteEffectText(*effect, output);
    for (const auto &mask : MasksOf(layer))
        WriteMask(*mask, output);
    for (const LayerReference &reference : LayerReferences(layer))
        if (reference.holder != LayerReference::Holder::ParentLink)
            WriteReference(reference, layers, output);
}

} // namespace marlet::tool
