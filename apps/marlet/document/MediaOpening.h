#pragma once

#include "options/Interruption.h"
#include "output/ProgressBar.h"

#include <marlet/project/MediaProgress.h>

#include <chrono>
#include <memory>
#include <optional>

namespace marlet::project
{
class MediaManager;
}

namespace marlet::tool
{

using MediaManagerPointer = std::shared_ptr<project::MediaManager>;

/// Keeps what it learns of files in the user's cache folder, if there is one.
MediaManagerPointer NewMediaManager();

/// Shows how the opening of many files proceeds, once it takes longer than one waits without a thought, and
/// leaves nothing of that behind. Ctrl-C ends it.
class MediaOpening : public project::MediaProgress
{
public:
    bool OnFile(const project::WideString &path, int number, int count) override;
    /// @throws Failure if an end was asked for
    void RequireNotInterrupted() const;

private:
    const Interruption interruption_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::optional<ProgressBar> bar_;
};

} // namespace marlet::tool
