#pragma once

#include "Document.h"
#include "Json.h"

#include <string>
#include <unordered_map>

namespace marlet::project
{
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

// The same as JSON, one object a line.

JsonWriter BeginJson(const char *kind);
void EndJson(JsonWriter &json, Output &output);
/// The owner is the ID under that key.
void WritePropertiesJson(const char *ownerKey, const kytl::KyID &owner,
                         const project::PropertyManager &properties, Output &output);
void WriteContentJson(const project::AbstractLayer &layer, Output &output);

} // namespace marlet::tool
