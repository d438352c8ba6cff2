#include <marlet/platform/media/contents/IndexFolder.h>

#include <marlet/platform/media/MediaFailure.h>
#include <marlet/platform/media/contents/ContentsForm.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <unistd.h>

namespace kyh::media
{

namespace fs = std::filesystem;

namespace
{

constexpr std::string_view kEnding = ".mix";
constexpr std::string_view kUnfinished = ".part";
/// The file whose date tells when the folder was pruned last.
constexpr const char *kPruned = "pruned";
constexpr std::chrono::hours kBetweenPrunings{24};
/// More than the index of any file that is worth keeping.
constexpr std::int64_t kLargestEntry = std::int64_t{64} << 20;

/// Also if there is no such file.
bool IsOlder(const fs::path &file, std::chrono::hours age)
{
    std::error_code error;
    const fs::file_time_type time = fs::last_write_time(file, error);
    return error || fs::file_time_type::clock::now() - time > age;
}

std::string FullPath(const std::string &file)
{
    std::error_code error;
    return fs::absolute(file, error).lexically_normal().string();
}

fs::path EntryOf(const std::string &folder, const std::string &fullPath)
{
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (const char c : fullPath)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
    char name[17];
    std::snprintf(name, sizeof name, "%016llx", static_cast<unsigned long long>(hash));
    return fs::path(folder) / (name + std::string(kEnding));
}

/// Nothing if there is no such file, whatever else has its name.
std::string BytesOf(const fs::path &entry)
{
    std::string bytes;
    const int code = CodeOf([&] {
        const FileSource source(entry.string());
        if (source.Size() > kLargestEntry)
            return;
        bytes.resize(static_cast<std::size_t>(source.Size()));
        if (source.Read(0, reinterpret_cast<unsigned char *>(bytes.data()), bytes.size()) != source.Size())
            bytes.clear();
    });
    return code == kSuccess ? bytes : std::string();
}

/// Others see all of the file or the one before. False if it cannot be written.
bool Replace(const fs::path &file, const std::string &bytes)
{
    static std::atomic<unsigned int> count = 0;
    fs::path part = file;
    part += '.' + std::to_string(::getpid()) + '.' + std::to_string(++count) + std::string(kUnfinished);
    std::ofstream to(part, std::ios::binary);
    to.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    to.close();
    std::error_code error;
    if (to)
        fs::rename(part, file, error);
    if (to && !error)
        return true;
    fs::remove(part, error);
    return false;
}

struct Entry {
    fs::path path;
    std::uintmax_t bytes = 0;
    fs::file_time_type usedAt;
};

std::vector<Entry> EntriesIn(const std::string &folder)
{
    std::vector<Entry> entries;
    std::error_code error;
    std::error_code ofFile;
    for (fs::directory_iterator place(folder, error); !error && place != fs::directory_iterator();
         place.increment(error)) {
        const std::string ending = place->path().extension().string();
        if ((ending != kEnding && ending != kUnfinished) || !place->is_regular_file(ofFile))
            continue;
        const Entry entry{place->path(), place->file_size(ofFile), place->last_write_time(ofFile)};
        if (!ofFile)
            entries.push_back(entry);
    }
    return entries;
}

} // namespace

std::string IndexFolder::Path() const
{
    const std::lock_guard hold(lock_);
    return path_;
}

void IndexFolder::SetPath(std::string path)
{
    const std::lock_guard hold(lock_);
    path_ = std::move(path);
}

std::optional<MediaContents> IndexFolder::Find(const std::string &file, const FileIdentity &identity) const
{
    const std::string folder = Path();
    if (folder.empty())
        return std::nullopt;
    const ContentsOrigin origin{FullPath(file), identity};
    const fs::path entry = EntryOf(folder, origin.path);
    auto contents = ContentsFromBytes(origin, BytesOf(entry));
    std::error_code error;
    if (contents && IsOlder(entry, kBetweenPrunings))
        fs::last_write_time(entry, fs::file_time_type::clock::now(), error);
    return contents;
}

void IndexFolder::Keep(const std::string &file, const FileIdentity &identity,
                       const MediaContents &contents) const
{
    const std::string folder = Path();
    if (folder.empty())
        return;
    const ContentsOrigin origin{FullPath(file), identity};
    std::error_code error;
    fs::create_directories(folder, error);
    if (!Replace(EntryOf(folder, origin.path), ContentsToBytes(origin, contents)))
        return;
    const fs::path pruned = fs::path(folder) / kPruned;
    // Its date changes first, so that of several processes one prunes.
    if (IsOlder(pruned, kBetweenPrunings) && Replace(pruned, {}))
        Prune();
}

std::optional<KeptIndex> IndexFolder::Describe(const std::string &file) const
{
    const std::string folder = Path();
    if (folder.empty())
        return std::nullopt;
    ContentsOrigin origin{FullPath(file), {}};
    KeptIndex kept;
    const fs::path entry = EntryOf(folder, origin.path);
    kept.place = entry.string();
    if (CodeOf([&] { origin.identity = FileSource(file).Identity(); }) != kSuccess)
        return kept;
    const std::string bytes = BytesOf(entry);
    const auto contents = ContentsFromBytes(origin, bytes);
    if (!contents)
        return kept;
    kept.isKept = true;
    kept.bytes = bytes.size();
    if (contents->video) {
        kept.frames = contents->video->frames.Count();
        kept.pictures = static_cast<int>(contents->video->frames.Packets().size());
    }
    if (contents->sound) {
        kept.samples = contents->sound->samples.Count();
        kept.sounds = static_cast<int>(contents->sound->samples.Packets().size());
    }
    return kept;
}

void IndexFolder::Prune(std::uintmax_t most) const
{
    std::vector<Entry> entries = EntriesIn(Path());
    std::ranges::sort(entries, std::ranges::greater(), &Entry::usedAt);
    const auto now = fs::file_time_type::clock::now();
    std::uintmax_t bytes = 0;
    for (const Entry &entry : entries) {
        bytes += entry.bytes;
        std::error_code error;
        if (bytes > most || now - entry.usedAt > kLongest)
            fs::remove(entry.path, error);
    }
}

} // namespace kyh::media
