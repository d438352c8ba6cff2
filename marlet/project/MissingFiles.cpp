#include <marlet/project/MissingFiles.h>

#include <marlet/foundation/Exceptions.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaAudioStream.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/project/Project.h>

#include <QString>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <unordered_map>
#include <utility>

namespace marlet::project
{

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

std::vector<MissingFile> MissingOf(const Project &project)
{
    std::vector<MissingFile> missing;
    for (const auto &asset : project.Assets().All()) {
        if (const auto media = std::dynamic_pointer_cast<MediaAsset>(asset)) {
            if (media->MediaFileStatus() == MediaAsset::Status::Missing)
                missing.push_back({asset, media->Filename(), {}, {}, {}, {}});
        } else if (const auto image = std::dynamic_pointer_cast<ImageAsset>(asset)) {
            if (image->IsOffline())
                missing.push_back({asset, image->Filename(), {}, {}, {}, {}});
        }
    }
    return missing;
}

/// The files below a folder that have the name of one that is missing, whatever its case.
std::unordered_map<std::string, Paths> FilesBelow(const fs::path &folder,
                                                  const std::vector<MissingFile> &missing)
{
    std::unordered_map<std::string, Paths> files;
    for (const MissingFile &wanted : missing)
        files.emplace(Folded(PathOf(wanted.before).filename()), Paths());
    std::error_code error;
    fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error);
    if (error)
        throw FileException(folder.string(), error.message());
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

/// What the uses of an asset show of its file.
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
        const auto *const layer = dynamic_cast<const AssetLayer *>(instance.get());
        const auto type = instance->AssetInstanceType();
        needs.picture |=
            type == AbstractAssetInstance::Type::VisualObject || (layer && layer->AssetHadVideo());
        needs.sound |= type == AbstractAssetInstance::Type::AudioObject || (layer && layer->AssetHadAudio());
        needs.frames = std::max(needs.frames, instance->AssetInstanceEnd());
    }
    return needs;
}

/// What a file is, to an asset that would use it.
struct FileFacts {
    bool isReadable = false;
    bool hasPicture = false;
    bool hasSound = false;
    int frames = 0;
    int width = 0;
    int height = 0;
};

FileFacts MediaFacts(const WideString &path, bool isSequence)
{
    constexpr double kAnyRate = 25;
    MediaManager manager;
    const auto media =
        isSequence ? manager.CreateImageSequence(path, kAnyRate) : manager.CreateMediaAsset(path);
    const auto video = media->VideoStream();
    const auto audio = media->AudioStream();
    return {!media->IsOffline(),        video != nullptr,
            audio != nullptr,           video ? video->FrameCount() : audio ? audio->FrameCount() : 0,
            video ? video->Width() : 0, video ? video->Height() : 0};
}

FileFacts ImageFacts(const WideString &path)
{
    const auto image = ImageAsset::Create(path);
    const bool isUsable = image->Status() == ImageAsset::FileStatus::Usable;
    return {isUsable, isUsable, false, 0, isUsable ? image->Width() : 0, isUsable ? image->Height() : 0};
}

NarrowString FactsText(const FileFacts &facts, const fs::path &path)
{
    NarrowString text;
    if (facts.width > 0)
        text += std::to_string(facts.width) + " x " + std::to_string(facts.height) + ", ";
    if (facts.frames > 0)
        text += std::to_string(facts.frames) + (facts.frames == 1 ? " frame, " : " frames, ");
    std::error_code error;
    const auto size = fs::file_size(path, error);
    return text + (error ? NarrowString("of unknown size") : std::to_string(size) + " bytes");
}

/// Looks at each file once, since many assets may have files of one name.
class FactsOfFiles
{
public:
    const FileFacts &Of(const AbstractAsset &asset, const fs::path &path)
    {
        const auto *const media = dynamic_cast<const MediaAsset *>(&asset);
        const bool isSequence = media && media->IsImageSequence();
        auto &facts = facts_[!media ? 0 : isSequence ? 1 : 2];
        const auto [entry, isNew] = facts.try_emplace(path.string());
        if (isNew) {
            const WideString name = FromUtf8(path.string());
            entry->second = media ? MediaFacts(name, isSequence) : ImageFacts(name);
        }
        return entry->second;
    }

private:
    /// Of images, of image sequences and of other media.
    std::unordered_map<std::string, FileFacts> facts_[3];
};

/// What is against a file, or nothing.
const char *Objection(const AbstractAsset &asset, const Needs &needs, const FileFacts &facts)
{
    const bool isImage = asset.Type() == AssetType::Image;
    if (!facts.isReadable)
        return isImage ? "it cannot be read as an image" : "it cannot be read as a media file";
    if (needs.picture && !facts.hasPicture)
        return "there is no picture in it";
    return needs.sound && !facts.hasSound ? "there is no sound in it" : nullptr;
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

/// A file that can be the missing one.
struct Candidate {
    fs::path path;
    bool isLongEnough;
};

/// Leaves those for which something holds, if it holds for any.
void Prefer(std::vector<Candidate> &candidates, const std::function<bool(const Candidate &)> &holds)
{
    if (std::ranges::any_of(candidates, holds))
        std::erase_if(candidates, [&](const Candidate &candidate) { return !holds(candidate); });
}

bool HaveSameBytes(const fs::path &a, const fs::path &b)
{
    std::error_code error;
    if (fs::equivalent(a, b, error))
        return true;
    if (fs::file_size(a, error) != fs::file_size(b, error) || error)
        return false;
    std::ifstream first(a, std::ios::binary);
    std::ifstream second(b, std::ios::binary);
    using Bytes = std::istreambuf_iterator<char>;
    return first && second && std::equal(Bytes(first), Bytes(), Bytes(second), Bytes());
}

/// Sorts out which of the files that have its name are the missing one.
void Choose(const Paths &paths, FactsOfFiles &facts, MissingFile &missing)
{
    const fs::path before = PathOf(missing.before);
    const Needs needs = NeedsOf(*missing.asset);
    std::vector<Candidate> candidates;
    for (const fs::path &path : paths) {
        const FileFacts &file = facts.Of(*missing.asset, path);
        if (const char *const objection = Objection(*missing.asset, needs, file))
            missing.refused.push_back({path, objection});
        else
            candidates.push_back({path, file.frames >= needs.frames});
    }
    Prefer(candidates, [&](const Candidate &one) { return one.path.filename() == before.filename(); });
    Prefer(candidates, [](const Candidate &one) { return one.isLongEnough; });
    int most = 0;
    for (const Candidate &candidate : candidates)
        most = std::max(most, CommonFolders(candidate.path, before));
    Prefer(candidates, [&](const Candidate &one) { return CommonFolders(one.path, before) == most; });
    if (std::ranges::all_of(candidates, [&](const Candidate &one) {
            return HaveSameBytes(one.path, candidates.front().path);
        }))
        candidates.resize(std::min<std::size_t>(candidates.size(), 1));
    for (const Candidate &candidate : candidates) {
        missing.found.push_back(candidate.path);
        missing.facts.push_back(FactsText(facts.Of(*missing.asset, candidate.path), candidate.path));
    }
    if (candidates.size() == 1 && !candidates.front().isLongEnough)
        missing.doubt =
            "it is shorter: " + std::to_string(facts.Of(*missing.asset, candidates.front().path).frames) +
            " frames, where " + std::to_string(needs.frames) + " are asked for";
}

void PointAt(Project &project, const MissingFile &missing, const fs::path &path)
{
    // A project that names its files from its own folder goes on doing so.
    const bool isRelative = PathOf(missing.before).is_relative();
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

std::vector<MissingFile> FindMissingFiles(Project &project, const fs::path &folder)
{
    std::vector<MissingFile> missing = MissingOf(project);
    const auto files = FilesBelow(folder, missing);
    FactsOfFiles facts;
    for (MissingFile &wanted : missing) {
        Choose(files.at(Folded(PathOf(wanted.before).filename())), facts, wanted);
        if (wanted.found.size() == 1)
            PointAt(project, wanted, wanted.found.front());
    }
    return missing;
}

} // namespace marlet::project
