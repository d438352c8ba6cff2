#pragma once

#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/MediaProgress.h>
#include <marlet/project/Project.h>

#include <atomic>
#include <string>

namespace guide
{

using namespace marlet::project;

// What a dialog shows while a project is opened, and its button.
class OpeningDialog : public MediaProgress
{
public:
    bool OnFile(const WideString &path, int number, int count) override
    {
        text = ToUtf8(path) + ", " + std::to_string(number) + " of " + std::to_string(count);
        return !isCancelled;
    }

    std::string text;
    std::atomic<bool> isCancelled = false;
};

std::shared_ptr<MediaManager> MediaOfProgram(const WideString &cacheFolder, std::size_t bytes);
std::shared_ptr<Project> OpenText(const WideString &text,
                                  const std::shared_ptr<AbstractPluginManager> &plugins,
                                  const std::shared_ptr<MediaManager> &media, MediaProgress &progress);

} // namespace guide
