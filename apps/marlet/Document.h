#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace marlet::project
{
class AbstractLayer;
class AssetLayer;
class CompositionAsset;
class MediaAsset;
class MediaManager;
class Project;
class Tracker;
} // namespace marlet::project

namespace marlet::tool
{

using ProjectPointer = std::shared_ptr<project::Project>;
using CompositionPointer = std::shared_ptr<project::CompositionAsset>;
using LayerPointer = std::shared_ptr<project::AbstractLayer>;
using AssetLayerPointer = std::shared_ptr<project::AssetLayer>;
using MediaPointer = std::shared_ptr<project::MediaAsset>;
using TrackerPointer = std::shared_ptr<project::Tracker>;

/// Without plug-ins a project has no effects, whatever its text says.
enum class PluginUse { With, Without };

/// A project from its text, with the tool's own plug-ins and the assets' lists of instances filled. Shows how
/// the opening of media proceeds. Media may be those of another project, whose files are not opened again.
/// @throws as Project::CreateFromXml; Failure if the user interrupts it
ProjectPointer ParseProject(const project::WideString &text, const project::WideString &texturesFolder,
                            PluginUse plugins = PluginUse::With,
                            const std::shared_ptr<project::MediaManager> &media = nullptr);

/// Textures are named relative to the folder of the file. @throws as ReadTextFile and ParseProject
ProjectPointer ReadProject(const std::string &path, PluginUse plugins = PluginUse::With,
                           const std::shared_ptr<project::MediaManager> &media = nullptr);

/// With its trailing separator; empty for a file of the current folder.
project::WideString FolderOf(const std::string &path);

/// Files hold no lists of instances that are read back: keeping them is a host's work.
void FillInstances(const project::Project &project);

/// @throws as WriteFile
void WriteProject(const project::Project &project, const std::string &path);

// In file order.

std::vector<CompositionPointer> Compositions(const project::Project &project);
std::vector<MediaPointer> MediaAssets(const project::Project &project);

/// The layers of a composition by their IDs. Of several layers with one ID the first counts, as it does in
/// CompositionAsset::FindLayerByID.
std::unordered_map<kytl::KyID, LayerPointer> LayersByID(const project::CompositionAsset &composition);

// By ID, or by a name that only one of them has. @throws Failure

CompositionPointer FindComposition(const project::Project &project, const std::string &idOrName);
LayerPointer FindLayer(const project::CompositionAsset &composition, const std::string &idOrName);
/// The layer must be one that shows an asset.
AssetLayerPointer FindAssetLayer(const project::CompositionAsset &composition, const std::string &idOrName);
MediaPointer FindMedia(const project::Project &project, const std::string &idOrName);
TrackerPointer FindTracker(const project::AssetLayer &layer, const std::string &idOrName);

} // namespace marlet::tool
