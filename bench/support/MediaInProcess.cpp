#include <bench/support/MediaInProcess.h>

#include <bench/support/BareMedia.h>
#include <bench/support/Machine.h>
#include <bench/support/MediaClips.h>
#include <bench/support/OwnProcess.h>
#include <bench/support/Stopwatch.h>

#include <marlet/platform/media/KyMedia.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/MediaVideoStream.h>

#include <algorithm>
#include <fstream>
#include <random>

namespace bench
{

namespace
{

using marlet::project::MediaAsset;
using marlet::project::MediaManager;
using marlet::project::WideString;

constexpr double kKilobytesPerMegabyte = 1024;

std::string WriteList(const std::vector<std::string> &clips)
{
    const std::string path = FileOfClips("list");
    std::ofstream list(path);
    for (const std::string &clip : clips)
        list << clip << '\n';
    return path;
}

std::vector<WideString> ReadList(const char *path)
{
    std::vector<WideString> clips;
    std::ifstream list(path);
    for (std::string clip; std::getline(list, clip);)
        clips.push_back(marlet::project::FromUtf8(clip));
    return clips;
}

std::vector<std::shared_ptr<MediaAsset>> Open(MediaManager &manager, const std::vector<WideString> &clips)
{
    auto assets = manager.CreateMediaAssets(clips);
    for (const auto &asset : assets)
        Require(!asset->IsOffline());
    return assets;
}

} // namespace

OpenedClips MeasureOpening(const std::vector<std::string> &clips)
{
    const std::vector<double> figures = FiguresOf(kOpeningArgument, WriteList(clips), 3);
    return {.seconds = figures[0], .megabytes = figures[1], .threads = figures[2]};
}

double MeasureRandomReading(const std::vector<std::string> &clips)
{
    return FiguresOf(kRandomReadingArgument, WriteList(clips), 1)[0];
}

int RunOpening(const char *list)
{
    const std::vector<WideString> clips = ReadList(list);
    const long residentBefore = StatusKilobytes("VmRSS");
    const long threadsBefore = StatusKilobytes("Threads");
    MediaManager manager;
    const Clock::time_point start = Clock::now();
    const auto assets = Open(manager, clips);
    const double seconds = SecondsSince(start);
    const double grown = static_cast<double>(StatusKilobytes("VmRSS") - residentBefore);
    PrintFigures({seconds, grown / kKilobytesPerMegabyte,
                  static_cast<double>(StatusKilobytes("Threads") - threadsBefore)});
    return 0;
}

int RunRandomReading(const char *list)
{
    constexpr int kReads = 60;
    MediaManager manager;
    const auto assets = Open(manager, ReadList(list));
    Bytes buffer(std::size_t{kHdWidth} * kHdHeight * 4, 1);
    const long residentBefore = StatusKilobytes("VmRSS");
    long most = residentBefore;
    std::mt19937 random;
    std::uniform_int_distribution<int> frames(0, kHdFrames - 1);
    for (int read = 0; read < kReads; ++read) {
        // Every clip has its turn.
        const auto video = assets[static_cast<std::size_t>(read) % assets.size()]->VideoStream();
        Require(video->GetFrame(frames(random), kyh::media::KyImageChannels::Four, buffer.data(),
                                static_cast<int>(buffer.size()), nullptr, 0) == kyh::media::kSuccess);
        most = std::max(most, StatusKilobytes("VmRSS"));
    }
    PrintFigures({static_cast<double>(most - residentBefore) / kKilobytesPerMegabyte});
    return 0;
}

} // namespace bench
