#include "Document.h"

#include "MediaOpening.h"
#include "Timeline.h"
#include "options/FindByIdOrName.h"
#include "output/Output.h"
#include "output/TextFile.h"
#include "output/Warning.h"
#include "plugins/PluginManager.h"
#include "plugins/Ribbon.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/LoadOptions.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectFile.h>
#include <marlet/tracking/Tracker.h>

#include <cstdio>
#include <utility>

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

/// Runs what reads a project, with the tool's plug-ins and options.
template <class Read>
ProjectPointer OpenWith(PluginUse plugins, const std::shared_ptr<MediaManager> &media, LoadReport *report,
                        const Read &read)
{
    const auto manager = plugins == PluginUse::With ? Plugins() : nullptr;
    MediaOpening opening;
    const LoadOptions options{.media = media ? media : NewMediaManager(),
                              .progress = &opening,
                              .report = report,
                              .keepUnknown = plugins == PluginUse::With};
    ProjectPointer project = read(manager, options);
    opening.RequireNotInterrupted();
    FillInstances(*project);
    return project;
}

/// Whether the file that a project was read from has something that a save would drop.
bool HoldsMore(const std::string &path, const Project &project)
{
    LoadReport report;
    OpenWith(PluginUse::With, project.SharedMedia(), &report,
             [&](const auto &manager, const LoadOptions &options) {
                 return ProjectFile::Read(ProjectFile::ReadText(path), path, manager, EffectFactory(),
                                          options);
             });
    return report.CountDropped() > 0;
}

} // namespace

Document::Document(std::string path, Voice voice) : path_(std::move(path)), voice_(voice)
{
}

ProjectPointer Document::Open(PluginUse plugins, const std::shared_ptr<MediaManager> &media)
{
    ProjectPointer project;
    try {
        text_ = ProjectFile::ReadText(path_, &report_);
        project = OpenWith(plugins, media, &report_, [this](const auto &manager, const LoadOptions &options) {
            return ProjectFile::Read(text_, path_, manager, EffectFactory(), options);
        });
    } catch (const std::exception &error) {
        if (voice_ == Voice::Tells)
            Tell();
        const LoadEntry *const entry = report_.FirstError();
        if (!entry || entry->line == 0)
            throw;
        const auto *const ofFile = dynamic_cast<const FileException *>(&error);
        // What is wrong with such a text the words of the failure do not say.
        const bool isNoXml = entry->what.rfind("the text is no XML", 0) == 0;
        throw Failure(PlaceName(path_, PlaceOf(*entry)), ofFile    ? ofFile->Reason()
                                                         : isNoXml ? "The text is no XML"
                                                                   : error.what());
    }
    if (voice_ == Voice::Tells)
        Tell();
    return project;
}

void Document::Tell() const
{
    const LoadEntry *const error = report_.FirstError();
    const LoadEntry *const first = error ? error : report_.FirstLoss();
    // An error that stands nowhere is told of by its words alone.
    if (!first || (error && error->line == 0))
        return;
    std::string lines = PlaceLine(path_, PlaceOf(*first), first->severity,
                                  WhatAndWhere(first->what, first->path), Stream::Error) +
                        "\n";
    const std::size_t losses = report_.Count(LoadEntry::Severity::Loss);
    if (const std::size_t more = error ? losses : losses - 1; more > 0)
        lines +=
            OneLine(path_) + ": " + std::to_string(more) + (more == 1 ? " more loss\n" : " more losses\n");
    std::fwrite(lines.data(), 1, lines.size(), stderr);
}

ProjectPointer Document::OpenText(const WideString &text, const std::shared_ptr<MediaManager> &media) const
{
    return OpenWith(PluginUse::With, media, nullptr, [&](const auto &manager, const LoadOptions &options) {
        return ProjectFile::Read(text, path_, manager, EffectFactory(), options);
    });
}

ProjectPointer ReadProject(const std::string &path, PluginUse plugins,
                           const std::shared_ptr<MediaManager> &media)
{
    return Document(path).Open(plugins, media);
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

void WriteProject(const Project &project, const std::string &path)
{
    SaveOptions options;
    if (IsSameFile(ToUtf8(project.Filename()), path) && HoldsMore(path, project)) {
        options.keptVersions = 1;
        Warn(path, "what was lost when it was read stays in " + path + ".~1~");
    }
    ProjectFile::Save(project, path, options);
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
