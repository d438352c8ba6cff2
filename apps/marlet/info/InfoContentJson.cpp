#include "InfoAssetLayer.h"
#include "InfoParts.h"
#include "document/LayerContent.h"
#include "options/TypedValue.h"
#include "output/Names.h"
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

void WriteFormat(const TextLayer &layer, const TextLayer::Format &format, std::size_t place, Output &output)
{
    JsonWriter json = BeginJson("text_format");
    json.Member("layer", layer.ID())
        .Member("format", place)
        .Member("id", format.id)
        .Member("family", format.family)
        .Member("style", format.style)
        .Member("size", format.size);
    WriteValue(json.Key("fill"), format.fillColor);
    WriteValue(json.Key("stroke"), format.strokeColor);
    json.Member("stroke_width", format.strokeWidth)
        .Member("tracking", format.tracking)
        .Member("leading", format.leading);
    EndJson(json, output);
}

void WriteRun(const TextLayer &layer, const TextRun &run, Output &output)
{
    JsonWriter json = BeginJson(run.isParagraph ? "text_paragraph" : "text_run");
    json.Member("layer", layer.ID());
    if (run.isParagraph)
        json.Member("justification", run.justification);
    else if (run.format == 0)
        json.Key("format").Null().Member("text", run.text);
    else
        json.Member("format", run.format).Member("text", run.text);
    EndJson(json, output);
}

void WriteText(const TextLayer &layer, Output &output)
{
    const TextContent content = ContentOf(layer);
    JsonWriter json = BeginJson("text");
    json.Member("layer", layer.ID())
        .Member("min_x", layer.MinX())
        .Member("max_x", layer.MaxX())
        .Member("min_y", layer.MinY())
        .Member("max_y", layer.MaxY())
        .Member("tokens", content.tokens)
        .Member("paragraph_breaks", content.paragraphs)
        .Member("formats", content.formats.size())
        .Member("runs", content.runs.size() - content.paragraphs);
    EndJson(json, output);
    for (std::size_t i = 0; i < content.formats.size(); ++i)
        WriteFormat(layer, *content.formats[i], i + 1, output);
    for (const TextRun &run : content.runs)
        WriteRun(layer, run, output);
}

void WriteEffect3D(const Effect3DLayer &layer, Output &output)
{
    const QuietStandardError quiet;
    const auto ribbon = std::dynamic_pointer_cast<const Ribbon>(layer.Effect());
    if (!ribbon)
        return;
    JsonWriter json = BeginJson("effect3d");
    json.Member("layer", layer.ID()).Member("id", ribbon->ID()).Member("type", Ribbon::kTypeName);
    json.Key("texture");
    if (const auto &texture = ribbon->Texture())
        json.BeginObject()
            .Member("file", texture->FilePath())
            .Member("usable", texture->LoadSuccessful())
            .Member("width", texture->Width())
            .Member("height", texture->Height())
            .EndObject();
    else
        json.Null();
    EndJson(json, output);
    WritePropertiesJson("effect3d", ribbon->ID(), ribbon->Properties(), output);
}

void WriteMask(const AbstractLayer &layer, const Mask &mask, Output &output)
{
    const MotionPath &path = mask.Path();
    JsonWriter json = BeginJson("mask");
    json.Member("layer", layer.ID())
        .Member("id", mask.ID())
        .Member("name", mask.Name())
        .Member("visible", mask.IsVisible())
        .Member("path", path.ID())
        .Member("closed", path.IsClosed())
        .Member("points", path.Points().Count());
    EndJson(json, output);
    WritePropertiesJson("mask", mask.ID(), mask.Animation(), output);
    for (const auto &point : path.Points()) {
        JsonWriter pointJson = BeginJson("mask_point");
        pointJson.Member("mask", mask.ID())
            .Member("id", point->ID())
            .Member("linear", point->IsLinear())
            .Member("locked", point->IsLocked());
        EndJson(pointJson, output);
        WritePropertiesJson("mask_point", point->ID(), std::as_const(*point).Animation(), output);
    }
}

const char *HolderKey(LayerReference::Holder holder)
{
    if (holder == LayerReference::Holder::Tracker)
        return "tracker";
    return holder == LayerReference::Holder::Effect ? "effect" : "effect3d";
}

/// The parent link stands with the layer.
void WriteReference(const AbstractLayer &layer, const LayerReference &reference, Output &output)
{
    if (reference.holder == LayerReference::Holder::ParentLink)
        return;
    JsonWriter json = BeginJson("reference");
    json.Member("layer", layer.ID())
        .Member(HolderKey(reference.holder), reference.object)
        .Member("property", reference.property)
        .Member("target", reference.target);
    EndJson(json, output);
}

} // namespace

void WriteContentJson(const AbstractLayer &layer, Output &output)
{
    if (const auto *asset = dynamic_cast<const AssetLayer *>(&layer))
        WriteAssetLayerJson(*asset, output);
    if (const auto *text = dynamic_cast<const TextLayer *>(&layer))
        WriteText(*text, output);
    if (const auto *effect3D = dynamic_cast<const Effect3DLayer *>(&layer))
        WriteEffect3D(*effect3D, output);
    for (const auto &effect : EffectsOf(layer))
        WriteEffectJson("layer", layer.ID(), *effect, output);
    for (const auto &mask : MasksOf(layer))
        WriteMask(layer, *mask, output);
    for (const LayerReference &reference : LayerReferences(layer))
        WriteReference(layer, reference, output);
}

} // namespace marlet::tool
