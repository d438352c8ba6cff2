#pragma once

namespace marlet::project
{
class AssetLayer;
class AssetList;
} // namespace marlet::project

namespace marlet::tool
{

class Output;

// The asset that a layer shows, and the layer's trackers.

void WriteAssetLayerText(const project::AssetLayer &layer, const project::AssetList &assets, Output &output);
void WriteAssetLayerJson(const project::AssetLayer &layer, Output &output);

} // namespace marlet::tool
