#include <marlet/project/ProjectFile.h>

#include <marlet/foundation/EncodedText.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/foundation/TextPlace.h>
#include <marlet/platform/files/WholeFile.h>
#include <marlet/project/MediaPaths.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

namespace marlet::project
{

namespace
{

/// What keeps bytes from being a text.
struct Malformed {
    const char *reason;
    std::optional<TextPlace> place = {};
};

WideString DecodeUtf8(std::string_view bytes)
{
    constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
    WideString text = FromUtf8(bytes);
    std::size_t written = 0;
    for (std::size_t at = bytes.find(kReplacement); at != std::string_view::npos;
         at = bytes.find(kReplacement, at + kReplacement.size()))
        ++written;
    if (static_cast<std::size_t>(std::ranges::count(text, u'\uFFFD')) == written)
        return text;
    const NarrowString replaced = ToUtf8(text);
    const auto malformed = std::ranges::mismatch(bytes, replaced).in1 - bytes.begin();
    TextPlace place;
    place.GoTo(bytes, static_cast<std::size_t>(malformed));
    throw Malformed{"The text is not UTF-8", place};
}

WideString Decode(std::string_view bytes)
{
    const EncodedText text(bytes);
    if (!text.IsUtf16())
        return DecodeUtf8(text.bytes);
    if (text.bytes.size() % 2 != 0)
        throw Malformed{"The text is cut off in the middle of a character"};
    return DecodeUtf16(text);
}

void TellOfFailure(LoadReport *report, const char *what, const std::optional<TextPlace> &place = {})
{
    if (!report)
        return;
    LoadEntry entry;
    entry.severity = LoadEntry::Severity::Error;
    entry.what = what;
    if (place) {
        entry.line = place->line;
        entry.column = place->column;
        entry.offset = place->offset;
    }
    report->Add(std::move(entry));
}

/// Where a text stands: for a pipe and the like the current folder.
std::filesystem::path FolderOfText(const std::filesystem::path &path)
{
    std::error_code error;
    const bool isElsewhere =
        std::filesystem::exists(path, error) && !std::filesystem::is_regular_file(path, error);
    return isElsewhere ? std::filesystem::path() : path.parent_path();
}

/// Empty for the current folder.
WideString WithSeparator(const std::filesystem::path &folder)
{
    return folder.empty() ? WideString() : FromUtf8((folder / "").string());
}

} // namespace

WideString ProjectFile::ReadText(const std::filesystem::path &path, LoadReport *report)
{
    if (report)
        report->Clear();
    try {
        return Decode(ReadWholeFile(path.string()));
    } catch (const Malformed &malformed) {
        TellOfFailure(report, malformed.reason, malformed.place);
        throw FileException(path.string(), malformed.reason);
    } catch (const FileException &error) {
        TellOfFailure(report, error.Reason().c_str());
        throw;
    }
}

WideString ProjectFile::FolderOf(const std::filesystem::path &path)
{
    return WithSeparator(FolderOfText(path));
}

std::shared_ptr<Project> ProjectFile::Load(const std::filesystem::path &path,
                                           const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                           const Abstract3DEffectFactory &effectFactory,
                                           const LoadOptions &options)
{
    return Read(ReadText(path, options.report), path, pluginManager, effectFactory, options);
}

std::shared_ptr<Project> ProjectFile::Read(const WideString &text, const std::filesystem::path &path,
                                           const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                           const Abstract3DEffectFactory &effectFactory,
                                           const LoadOptions &options)
{
    const std::filesystem::path folder = FolderOfText(path);
    const MediaPaths paths(folder, options.findMovedMedia);
    const WideString &textures = options.texturesFolder;
    auto project = Project::CreateFromXml(text, textures.empty() ? WithSeparator(folder) : textures,
                                          pluginManager, effectFactory, options);
    project->SetFilename(FromUtf8(path.string()));
    return project;
}

WideString ProjectFile::TextFor(const Project &project, const std::filesystem::path &path,
                                const SaveOptions &options)
{
    const MediaPaths paths(FolderOfText(path),
                           options.relativeMedia ? MediaPaths::Form::Relative : MediaPaths::Form::AsTheyAre);
    return project.Serialize();
}

void ProjectFile::Save(const Project &project, const std::filesystem::path &path, const SaveOptions &options)
{
    WriteWholeFile(path.string(), ToUtf8(TextFor(project, path, options)), options.keptVersions);
}

} // namespace marlet::project
