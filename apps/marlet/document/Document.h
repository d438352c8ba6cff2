#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/LoadReport.h>
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

/// A project in a file, with the tool's own plug-ins and what its load finds. Shows how the opening of media
/// proceeds. Media and textures are named relative to the folder of the file.
class Document
{
public:
    /// Whether the first loss, or the place of the failure, is told of on standard error.
    enum class Voice { Tells, Silent };

    explicit Document(std::string path, Voice voice = Voice::Tells);

    /// What the last Open has read.
    const project::WideString &Text() const { return text_; }
    /// The project, with the assets' lists of instances filled. What the tool does not know is kept, unless
    /// it goes without plug-ins. Media may be those of another project, whose files are not opened again.
    /// @throws FileException; Failure with the place if the load fails, or if the user interrupts it;
    /// otherwise as Project::CreateFromXml
    ProjectPointer Open(PluginUse plugins = PluginUse::With,
                        const std::shared_ptr<project::MediaManager> &media = nullptr);
    /// The same from another text, as if it stood in the file. Nothing is told.
    ProjectPointer OpenText(const project::WideString &text,
                            const std::shared_ptr<project::MediaManager> &media) const;
    /// Of the last Open, also of one that failed.
    const project::LoadReport &Report() const { return report_; }
    /// What a voice that tells says of it: as compilers do, so that editors jump to the place.
    void Tell() const;

private:
    std::string path_;
    Voice voice_;
    project::WideString text_;
    project::LoadReport report_;
};

/// @throws as Document::Open
ProjectPointer ReadProject(const std::string &path, PluginUse plugins = PluginUse::With,
                           const std::shared_ptr<project::MediaManager> &media = nullptr);

/// Files hold no lists of instances that are read back: keeping them is a host's work.
void FillInstances(const project::Project &project);

/// Over the file that the project was read from, that file stays beside it if something of it would be lost.
/// @throws as ProjectFile::Save
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
