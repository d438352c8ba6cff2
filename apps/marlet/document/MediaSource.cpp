#include "MediaSource.h"

#include "MediaOpening.h"
#include "options/Arguments.h"
#include "output/Failure.h"

#include <marlet/platform/media/KyMedia.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaAudioStream.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/project/Project.h>

#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace marlet::tool
{

using namespace project;

namespace
{

std::string PathOf(const MediaAsset &media)
{
    return ToUtf8(media.Filename());
}

bool StartsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

/// Whether a file begins as an XML text does, in one of the encodings that projects are read in.
bool IsProjectFile(const std::string &path)
{
    std::array<char, 64> buffer{};
    std::ifstream file(path, std::ios::binary);
    file.read(buffer.data(), buffer.size());
    std::string_view start(buffer.data(), static_cast<std::size_t>(file.gcount()));
    if (StartsWith(start, {"\xFF\xFE<\0", 4}) || StartsWith(start, {"\xFE\xFF\0<", 4}))
        return true;
    if (StartsWith(start, "\xEF\xBB\xBF"))
        start.remove_prefix(3);
    const std::size_t first = start.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && start[first] == '<';
}

MediaPointer OnlyMedia(const Project &project)
{
    const std::vector<MediaPointer> all = MediaAssets(project);
    if (all.empty())
        throw Failure("There is no media asset");
    if (all.size() > 1)
        throw Failure("There are " + std::to_string(all.size()) +
                      " media assets: --asset says which one is meant");
    return all.front();
}

std::string MissingText(const std::string &path)
{
    if (::access(path.c_str(), R_OK) != 0)
        return SystemMessage(errno);
    return std::filesystem::is_directory(path) ? SystemMessage(EISDIR) : "Not a file";
}

std::string CodeText(int code)
{
    using namespace kyh::media;
    switch (code) {
    case kBufferTooSmall:
        return "the result is larger than expected";
    case kOutOfRange:
        return "there is no such frame";
    case kNotFound:
        return "the file is not there any more";
    case kUnknownFormat:
    case kDamaged:
        return "the file is damaged there";
    case kNoPermission:
        return "the file may not be read";
    case kAsleep:
        return "the file is closed";
    default:
        return "code " + std::to_string(code);
    }
}

} // namespace

MediaSource OpenMediaSource(const Arguments &arguments)
{
    const std::string &path = arguments.Operand(0);
    if (!IsProjectFile(path)) {
        if (arguments.Has("--asset"))
            throw UsageError("--asset goes with a project");
        return OpenMediaFile(path, arguments.Has("--sequence"));
    }
    if (arguments.Has("--sequence"))
        throw UsageError("--sequence goes with a media file");
    MediaSource source{ReadProject(path), {}};
    source.media = arguments.Has("--asset") ? FindMedia(*source.project, arguments.Text("--asset"))
                                            : OnlyMedia(*source.project);
    RequireUsable(*source.media);
    return source;
}

MediaSource OpenMediaFile(const std::string &path, bool isSequence)
{
    MediaSource source{Project::Create(nullptr, NewMediaManager()), {}};
    source.media = OpenMedia(source.project->Media(), path, isSequence);
    RequireUsable(*source.media);
    return source;
}

MediaPointer OpenMedia(MediaManager &manager, const std::string &path, bool isSequence, double sequenceRate)
{
    return isSequence ? manager.CreateImageSequence(FromUtf8(path), sequenceRate)
                      : manager.CreateMediaAsset(FromUtf8(path));
}

void RequireUsable(const MediaAsset &media)
{
    const std::string path = PathOf(media);
    switch (media.MediaFileStatus()) {
    case MediaAsset::Status::Usable:
        return;
    case MediaAsset::Status::Missing:
        throw Failure(path, MissingText(path));
    case MediaAsset::Status::Unreadable:
        throw Failure(path, "Not a media file that can be read");
    default:
        throw Failure(path, "Cannot be opened");
    }
}

double RateOption(const Arguments &arguments, const std::string &option)
{
    const double rate = arguments.Real(option);
    if (rate <= 0)
        throw UsageError(option + ": a rate is above 0");
    return rate;
}

std::shared_ptr<MediaVideoStream> VideoOf(const MediaAsset &media)
{
    RequireUsable(media);
    if (auto video = media.VideoStream())
        return video;
    throw Failure(PathOf(media), "There is no video in it");
}

std::shared_ptr<MediaAudioStream> AudioOf(const MediaAsset &media)
{
    RequireUsable(media);
    if (auto audio = media.AudioStream())
        return audio;
    throw Failure(PathOf(media), "There is no sound in it");
}

void RequireSuccess(const MediaAsset &media, int code, const std::string &work)
{
    if (code != kyh::media::kSuccess)
        throw Failure(PathOf(media), work + ": " + CodeText(code));
}

} // namespace marlet::tool
