#pragma once

#include "document/Document.h"
#include "output/Json.h"

#include <string>
#include <unordered_map>

namespace marlet::project
{
class AudioVideoSettings;
class EffectInstance;
class PanelRenderState;
class AssetList;
class PropertyManager;
} // namespace marlet::project

namespace marlet::tool
{

class Output;

using LayerMap = std::unordered_map<kytl::KyID, LayerPointer>;

/// Of what stands below the line of a layer.
inline constexpr char kLayerIndent[] = "         ";

/// Those properties that somebody has touched; the others are only counted.
void WritePropertiesText(const project::PropertyManager &properties, const std::string &indent,
                         Output &output);

/// What a layer has beside its properties: asset, trackers, text, 3D effect, effects, masks, and references
/// to other layers.
void WriteContentText(const project::AbstractLayer &layer, const LayerMap &layers,
                      const project::AssetList &assets, Output &output);

/// An effect of a layer or of an object of the sequence.
void WriteEffectText(const project::EffectInstance &effect, Output &output);
/// How a panel of views is split, and its views.
void WritePanelText(const std::string &name, const project::PanelRenderState &panel, Output &output);
/// Size, frame rate and length.
std::string FormatText(const project::AudioVideoSettings &settings);

// The same as JSON, one object a line.

JsonWriter BeginJson(const char *kind);
void EndJson(JsonWriter &json, Output &output);
/// The owner is the ID under that key.
void WritePropertiesJson(const char *ownerKey, const kytl::KyID &owner,
                         const project::PropertyManager &properties, Output &output);
void WriteContentJson(const project::AbstractLayer &layer, Output &output);
void WriteEffectJson(const char *ownerKey, const kytl::KyID &owner, const project::EffectInstance &effect,
                     Output &output);
void WritePanelJson(const char *ownerKey, const kytl::KyID &owner, const std::string &name,
                    const project::PanelRenderState &panel, Output &output);
/// Members of the object that is open.
void WriteFormatJson(JsonWriter &json, const project::AudioVideoSettings &settings);

} // namespace marlet::tool
