#include "MediaOpening.h"

#include "output/Failure.h"

#include <marlet/project/MediaManager.h>

#include <cstdlib>
#include <filesystem>

namespace marlet::tool
{

using namespace project;

namespace
{

/// An absolute path that the environment names, or an empty one.
std::filesystem::path FolderOfEnvironment(const char *variable)
{
    const char *value = std::getenv(variable);
    const std::filesystem::path folder = value ? value : "";
    return folder.is_absolute() ? folder : std::filesystem::path();
}

std::filesystem::path UserCacheFolder()
{
    const std::filesystem::path caches = FolderOfEnvironment("XDG_CACHE_HOME");
    if (!caches.empty())
        return caches;
    const std::filesystem::path home = FolderOfEnvironment("HOME");
    return home.empty() ? home : home / ".cache";
}

} // namespace

MediaManagerPointer NewMediaManager()
{
    auto manager = std::make_shared<MediaManager>();
    const std::filesystem::path caches = UserCacheFolder();
    if (!caches.empty())
        manager->SetIndexFolder(FromUtf8((caches / "marlet" / "media").string()));
    return manager;
}

bool MediaOpening::OnFile(const WideString &, int number, int count)
{
    constexpr std::chrono::milliseconds kPatience(500);
    if (!bar_)
        bar_.emplace(count, "files");
    if (std::chrono::steady_clock::now() - start_ > kPatience)
        bar_->Show(number);
    const bool goesOn = !interruption_.Requested();
    if (number == count || !goesOn)
        bar_->Hide();
    return goesOn;
}

void MediaOpening::RequireNotInterrupted() const
{
    if (interruption_.Requested())
        throw Failure("Interrupted");
}

} // namespace marlet::tool
