#include "RelinkSearch.h"

#include "Failure.h"
#include "MediaOpening.h"
#include "MediaSource.h"

#include <marlet/platform/files/WholeFile.h>
#include <marlet/project/AbstractAssetInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaAudioStream.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/project/Project.h>

#include <QString>

#include <algorithm>
#include <filesystem>
#include <unordered_map>
#include <utility>

namespace marlet::tool
{

using namespace project;
namespace fs = std::filesystem;

namespace
{

using Paths = std::vector<fs::path>;

/// The path's parts, also of one that another system wrote.
fs::path PathOf(const WideString &text)
{
    std::string path = ToUtf8(text);
    if (path.find('/') == std::string::npos)
        std::ranges::replace(path, '\\', '/');
    return path;
}

std::string Folded(const fs::path &name)
{
    return QString::fromStdString(name.string()).toCaseFolded().toStdString();
}

struct Missing {
    std::shared_ptr<AbstractAsset> asset;
    WideString filename;
};

std::vector<Missing> MissingOf(const Project &project)
{
    std::vector<Missing> missing;
    for (const auto &asset : project.Assets().All()) {
        if (const auto media = std::dynamic_pointer_cast<MediaAsset>(asset)) {
            if (media->MediaFileStatus() == MediaAsset::Status::Missing)
                missing.push_back({asset, media->Filename()});
        } else if (const auto image = std::dynamic_pointer_cast<ImageAsset>(asset)) {
            if (image->IsOffline())
                missing.push_back({asset, image->Filename()});
        }
    }
    return missing;
}

/// The files below a folder that have the name of one that is missing, whatever its case.
std::unordered_map<std::string, Paths> FilesBelow(const std::string &folder,
                                                  const std::vector<Missing> &missing)
{
    std::unordered_map<std::string, Paths> files;
    for (const Missing &wanted : missing)
        files.emplace(Folded(PathOf(wanted.filename).filename()), Paths());
    std::error_code error;
    fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error);
    if (error)
        throw Failure(folder, error.message());
    for (; entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        const auto wanted = files.find(Folded(entry->path().filename()));
        std::error_code ofEntry;
        if (wanted != files.end() && entry->is_regular_file(ofEntry))
            wanted->second.push_back(entry->path());
    }
    // In an order that does not depend on the file system.
    for (auto &[name, paths] : files)
        std::ranges::sort(paths);
    return files;
}

/// Leaves those for which something holds, if it holds for any.
template <class Holds> void Prefer(Paths &paths, const Holds &holds)
{
    Paths preferred;
    std::ranges::copy_if(paths, std::back_inserter(preferred), holds);
    if (!preferred.empty())
        paths = std::move(preferred);
}

/// What the uses of an asset ask of its file.
struct Needs {
    bool picture = false;
    bool sound = false;
    int frames = 0;
};

Needs NeedsOf(const AbstractAsset &asset)
{
    Needs needs;
    for (const auto &reference : asset.Instances()) {
        const auto instance = reference.lock();
        if (!instance)
            continue;
        needs.picture |= instance->AssetInstanceType() == AbstractAssetInstance::Type::VisualObject;
        needs.sound |= instance->AssetInstanceType() == AbstractAssetInstance::Type::AudioObject;
        needs.frames = std::max(needs.frames, instance->AssetInstanceEnd());
    }
    return needs;
}

/// Whether a file can be opened and has what is needed, and whether it is long enough too.
std::pair<bool, bool> Fits(const MediaAsset &asset, const Needs &needs, const fs::path &path)
{
    MediaManager manager;
    const MediaPointer media = OpenMedia(manager, path.string(), asset.IsImageSequence());
    if (media->IsOffline() || (needs.picture && !media->HasVideo()) || (needs.sound && !media->HasAudio()))
        return {false, false};
    const auto video = media->VideoStream();
    const auto audio = media->AudioStream();
    return {true, (video ? video->FrameCount() : audio ? audio->FrameCount() : 0) >= needs.frames};
}

void PreferFitting(Paths &paths, const AbstractAsset &asset)
{
    const auto *const media = dynamic_cast<const MediaAsset *>(&asset);
    if (!media) {
        Prefer(paths, [](const fs::path &path) {
            return ImageAsset::Create(FromUtf8(path.string()))->Status() == ImageAsset::FileStatus::Usable;
        });
        return;
    }
    const Needs needs = NeedsOf(asset);
    std::vector<std::pair<bool, bool>> fits;
    std::ranges::transform(paths, std::back_inserter(fits),
                           [&](const fs::path &path) { return Fits(*media, needs, path); });
    const auto best = *std::ranges::max_element(fits);
    std::size_t number = 0;
    Prefer(paths, [&](const fs::path &) { return fits[number++] == best; });
}

/// How many folders above a file have the names that they had.
int CommonFolders(const fs::path &path, const fs::path &before)
{
    int common = -1; // the file's own name
    auto a = path.end();
    auto b = before.end();
    while (a != path.begin() && b != before.begin() && Folded(*--a) == Folded(*--b))
        ++common;
    return common;
}

void PreferSameFolders(Paths &paths, const fs::path &before)
{
    int most = 0;
    for (const fs::path &path : paths)
        most = std::max(most, CommonFolders(path, before));
    Prefer(paths, [&](const fs::path &path) { return CommonFolders(path, before) == most; });
}

bool AreSame(const fs::path &a, const fs::path &b)
{
    std::error_code error;
    if (fs::equivalent(a, b, error))
        return true;
    if (fs::file_size(a, error) != fs::file_size(b, error) || error)
        return false;
    return ReadWholeFile(a.string()) == ReadWholeFile(b.string());
}

Paths Candidates(Paths paths, const Missing &missing)
{
    const fs::path before = PathOf(missing.filename);
    Prefer(paths, [&](const fs::path &path) { return path.filename() == before.filename(); });
    if (paths.size() > 1)
        PreferFitting(paths, *missing.asset);
    if (paths.size() > 1)
        PreferSameFolders(paths, before);
    if (paths.size() > 1 &&
        std::ranges::all_of(paths, [&](const fs::path &path) { return AreSame(path, paths.front()); }))
        paths.resize(1);
    return paths;
}

void PointAt(Project &project, const Missing &missing, const fs::path &path)
{
    // A project that names its files from its own folder goes on doing so.
    const bool isRelative = PathOf(missing.filename).is_relative();
    const WideString to = FromUtf8((isRelative ? path : fs::absolute(path)).lexically_normal().string());
    if (auto media = std::dynamic_pointer_cast<MediaAsset>(missing.asset)) {
        if (media->IsImageSequence())
            project.Media().RelinkImageSequence(media, to);
        else
            project.Media().RelinkMediaFile(media, to);
    } else if (const auto image = std::dynamic_pointer_cast<ImageAsset>(missing.asset)) {
        // Another place of the same picture: what is said of its pixels stays.
        const PAR aspect = image->PixelAspectRatio();
        image->SetFilename(to);
        image->SetPixelAspectRatio(aspect);
    }
}

} // namespace

std::vector<RelinkedAsset> RelinkMissing(Project &project, const std::string &folder)
{
    const std::vector<Missing> missing = MissingOf(project);
    const auto files = FilesBelow(folder, missing);
    std::vector<RelinkedAsset> relinked;
    for (const Missing &wanted : missing) {
        const Paths paths = Candidates(files.at(Folded(PathOf(wanted.filename).filename())), wanted);
        RelinkedAsset asset{ToUtf8(wanted.asset->Name()), ToUtf8(wanted.filename), {}};
        for (const fs::path &path : paths)
            asset.found.push_back(path.string());
        if (paths.size() == 1)
            PointAt(project, wanted, paths.front());
        relinked.push_back(std::move(asset));
    }
    return relinked;
}

} // namespace marlet::tool
