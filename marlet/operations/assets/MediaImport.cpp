#include <marlet/operations/assets/MediaImport.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/history/Edit.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>
#include <marlet/operations/assets/AssetUses.h>
#include <marlet/operations/assets/AssetWork.h>
#include <marlet/operations/assets/FolderWork.h>
#include <marlet/operations/assets/ProjectOperations.h>
#include <marlet/operations/layers/LayerOperations.h>
#include <marlet/project/AssetLength.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaAudioStream.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>

#include <algorithm>
#include <unordered_map>

namespace marlet::project
{

namespace
{

using AssetPointer = std::shared_ptr<AbstractAsset>;
using AssetsByPath = std::unordered_map<WideString, AssetPointer>;

AssetsByPath FilesOf(const Project &project)
{
    AssetsByPath files;
    for (const AssetPointer &asset : project.Assets().All()) {
        if (const auto *image = dynamic_cast<const ImageAsset *>(asset.get()))
            files.emplace(image->Filename(), asset);
        const auto *media = dynamic_cast<const MediaAsset *>(asset.get());
        if (media && !media->IsImageSequence())
            files.emplace(media->Filename(), asset);
    }
    return files;
}

void RequireUsable(const MediaAsset &media)
{
    if (media.MediaFileStatus() == MediaAsset::Status::Missing)
        throw OperationException("There is no file " + Quoted(media.Filename()));
    if (media.IsOffline())
        throw OperationException("File " + Quoted(media.Filename()) +
                                 " can be read neither as an image nor as media");
}

/// Images of the paths that are new; what is none of these is left for media.
std::vector<WideString> TakeImages(const std::vector<WideString> &paths, AssetsByPath &files)
{
    std::vector<WideString> others;
    for (const WideString &path : paths) {
        if (files.contains(path) || std::ranges::find(others, path) != others.end())
            continue;
        const auto image = ImageAsset::Create(path);
        if (image->Status() == ImageAsset::FileStatus::Usable)
            files.emplace(path, image);
        else
            others.push_back(path);
    }
    return others;
}

void TakeVideoFormat(const MediaVideoStream &video, AudioVideoSettings &settings)
{
    settings.SetWidth(video.Width());
    settings.SetHeight(video.Height());
    settings.SetPixelAspectRatio(video.AspectRatio());
    settings.SetFields(video.FieldsType());
    settings.SetFrameRate(video.FrameRate());
}

void TakeFormat(const AbstractAsset &asset, AudioVideoSettings &settings)
{
    if (const auto *nested = dynamic_cast<const CompositionAsset *>(&asset)) {
        settings = nested->Settings();
    } else if (const auto *solid = dynamic_cast<const SolidAsset *>(&asset)) {
        settings.SetWidth(solid->Width());
        settings.SetHeight(solid->Height());
        settings.SetPixelAspectRatio(solid->PixelAspectRatio());
    } else if (const auto *image = dynamic_cast<const ImageAsset *>(&asset)) {
        settings.SetWidth(image->Width());
        settings.SetHeight(image->Height());
        settings.SetPixelAspectRatio(image->PixelAspectRatio());
    } else if (const auto *media = dynamic_cast<const MediaAsset *>(&asset)) {
        if (const auto video = media->VideoStream())
            TakeVideoFormat(*video, settings);
        if (const auto audio = media->AudioStream())
            settings.SetAudioSampleRate(
                AudioVideoSettings::AudioSampleRateFromValue(static_cast<int>(audio->SampleRate())));
    }
    if (const auto frames = AssetLength(asset, settings.FrameRate()))
        settings.SetFrameCount(*frames);
}

/// What shows an asset with another file learns what that offers.
void LetLearn(Edit &edit, const AbstractAsset &asset)
{
    const Project &project = *edit.Document();
    for (const UseOfAsset &use : UsesOf(project, asset)) {
        const auto layer = std::dynamic_pointer_cast<AssetLayer>(use.instance);
        if (!layer)
            continue;
        edit.Touch(std::shared_ptr<AbstractLayer>(layer));
        // A layer asks the asset that it has found before.
        layer->Asset(project.Assets());
        layer->HasAudio();
        layer->HasVideo();
    }
}

} // namespace

std::vector<AssetPointer> ImportFiles(const std::shared_ptr<Project> &project,
                                      const std::vector<WideString> &paths,
                                      const std::shared_ptr<BinFolder> &folder, MediaProgress *progress)
{
    Edit edit(project, u"Import");
    AssetsByPath files = FilesOf(*project);
    const std::vector<WideString> media = TakeImages(paths, files);
    const auto opened = project->Media().CreateMediaAssets(media, progress);
    for (std::size_t i = 0; i < media.size(); ++i) {
        RequireUsable(*opened[i]);
        files.emplace(media[i], opened[i]);
    }
    std::vector<AssetPointer> imported;
    for (const WideString &path : paths) {
        imported.push_back(files.at(path));
        if (!std::as_const(*project).Assets().GetByID(imported.back()->ID()))
            AddAsset(project, imported.back(), folder);
    }
    edit.Commit();
    return imported;
}

std::shared_ptr<MediaAsset> ImportImageSequence(const std::shared_ptr<Project> &project,
                                                const WideString &path, double frameRate,
                                                const std::shared_ptr<BinFolder> &folder)
{
    Edit edit(project, u"Import");
    auto sequence = project->Media().CreateImageSequence(path, frameRate);
    RequireUsable(*sequence);
    AddAsset(project, sequence, folder);
    edit.Commit();
    return sequence;
}

std::shared_ptr<CompositionAsset> AddCompositionOf(const std::shared_ptr<Project> &project,
                                                   const AssetPointer &asset,
                                                   const AudioVideoSettings &settings)
{
    Edit edit(project, u"Add composition");
    Require(asset, "asset");
    RequireAsset(*project, *asset);
    AudioVideoSettings format = settings;
    TakeFormat(*asset, format);
    if (format.Width() < 1 || format.Height() < 1 || format.FrameCount() < 1 || !(format.FrameRate() > 0))
        throw OperationException("A composition like asset " + Quoted(asset->Name()) +
                                 " would have no frames");
    auto composition =
        CompositionAsset::Create(asset->Name(), AudioVideoSettings::Preset::None, format.FrameCount());
    composition->Settings() = format;
    AddAsset(project, composition, FolderOf(project, *asset));
    AddAssetLayer(project, composition, asset);
    edit.Commit();
    return composition;
}

void RelinkAsset(const std::shared_ptr<Project> &project, const std::shared_ptr<MediaAsset> &asset,
                 const WideString &path)
{
    Edit edit(project, u"Relink");
    Require(asset, "asset");
    RequireAsset(*project, *asset);
    edit.Touch(asset);
    std::shared_ptr<MediaAsset> relinked = asset;
    if (asset->IsImageSequence())
        project->Media().RelinkImageSequence(relinked, path);
    else
        project->Media().RelinkMediaFile(relinked, path);
    LetLearn(edit, *asset);
    edit.Commit();
}

std::vector<MissingFile> RelinkMissingFiles(const std::shared_ptr<Project> &project,
                                            const std::filesystem::path &folder)
{
    Edit edit(project, u"Find missing files");
    for (const AssetPointer &asset : std::as_const(*project).Assets().All())
        if (asset && asset->IsOffline())
            edit.Touch(asset);
    std::vector<MissingFile> missing = FindMissingFiles(*project, folder);
    for (const MissingFile &file : missing)
        if (file.found.size() == 1)
            LetLearn(edit, *file.asset);
    edit.Commit();
    return missing;
}

} // namespace marlet::project
