#include "Document.h"

#include "FindByIdOrName.h"
#include "MediaOpening.h"
#include "TextFile.h"
#include "Timeline.h"
#include "plugins/PluginManager.h"
#include "plugins/Ribbon.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/LoadOptions.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/Project.h>
#include <marlet/tracking/Tracker.h>

namespace marlet::tool
{

using namespace project;

namespace
{

template <class Asset> std::vector<std::shared_ptr<Asset>> AssetsOf(const Project &project, AssetType type)
{
    std::vector<std::shared_ptr<Asset>> assets;
    for (const auto &asset : project.Assets().GetByType(type))
        if (auto ofClass = std::dynamic_pointer_cast<Asset>(asset))
            assets.push_back(std::move(ofClass));
    return assets;
}

} // namespace

ProjectPointer ParseProject(const WideString &text, const WideString &texturesFolder, PluginUse plugins,
                            const std::shared_ptr<MediaManager> &media)
{
    const auto manager = plugins == PluginUse::With ? Plugins() : nullptr;
    MediaOpening opening;
    const LoadOptions options{.media = media ? media : NewMediaManager(), .progress = &opening};
    ProjectPointer project = Project::CreateFromXml(text, texturesFolder, manager, EffectFactory(), options);
    opening.RequireNotInterrupted();
    FillInstances(*project);
    return project;
}

void FillInstances(const Project &project)
{
    for (const auto &asset : project.Assets().All())
        asset->Instances().Clear();
    const auto add = [&project](const std::shared_ptr<AbstractAssetInstance> &instance) {
        if (const auto asset = project.Assets().GetByID(instance->AssetID()))
            asset->Instances().Add(instance);
    };
    for (const CompositionPointer &composition : Compositions(project))
        for (const LayerPointer &layer : composition->Layers())
            if (const auto instance = std::dynamic_pointer_cast<AbstractAssetInstance>(layer))
                add(instance);
    if (const SequencePointer sequence = project.Sequence())
        for (const ObjectPointer &object : ObjectsOf(*sequence))
            add(object);
}

WideString FolderOf(const std::string &path)
{
    const std::size_t separator = path.rfind('/');
    return separator == std::string::npos ? WideString() : FromUtf8(path.substr(0, separator + 1));
}

ProjectPointer ReadProject(const std::string &path, PluginUse plugins,
                           const std::shared_ptr<MediaManager> &media)
{
    ProjectPointer project = ParseProject(ReadTextFile(path), FolderOf(path), plugins, media);
    project->SetFilename(FromUtf8(path));
    return project;
}

void WriteProject(const Project &project, const std::string &path)
{
    WriteFile(path, ToUtf8(project.Serialize()));
}

std::vector<CompositionPointer> Compositions(const Project &project)
{
    return AssetsOf<CompositionAsset>(project, AssetType::Composition);
}

std::vector<MediaPointer> MediaAssets(const Project &project)
{
    return AssetsOf<MediaAsset>(project, AssetType::Media);
}

std::unordered_map<kytl::KyID, LayerPointer> LayersByID(const CompositionAsset &composition)
{
    std::unordered_map<kytl::KyID, LayerPointer> layers;
    for (const LayerPointer &layer : composition.Layers())
        layers.emplace(layer->ID(), layer);
    return layers;
}

CompositionPointer FindComposition(const Project &project, const std::string &idOrName)
{
    return FindByIdOrName(Compositions(project), "composition", idOrName);
}

LayerPointer FindLayer(const CompositionAsset &composition, const std::string &idOrName)
{
    return FindByIdOrName(composition.Layers(), "layer", idOrName);
}

AssetLayerPointer FindAssetLayer(const CompositionAsset &composition, const std::string &idOrName)
{
    const LayerPointer layer = FindLayer(composition, idOrName);
    auto assetLayer = std::dynamic_pointer_cast<AssetLayer>(layer);
    if (!assetLayer)
        throw Failure("Layer " + Quoted(layer->Name()) + " shows no asset");
    return assetLayer;
}

MediaPointer FindMedia(const Project &project, const std::string &idOrName)
{
    return FindByIdOrName(MediaAssets(project), "media asset", idOrName);
}

TrackerPointer FindTracker(const AssetLayer &layer, const std::string &idOrName)
{
    return FindByIdOrName(layer.Trackers(), "tracker", idOrName);
}

} // namespace marlet::tool
