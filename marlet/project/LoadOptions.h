#pragma once

#include <memory>

namespace marlet::project
{

class MediaManager;
class MediaProgress;

/// How a project is loaded, beside its text.
struct LoadOptions {
    /// Opens the project's media. What it has open is not opened again; several projects may share one, each
    /// of which keeps it alive. Null for one of the project's own.
    std::shared_ptr<MediaManager> media;
    /// Hears of each media file that is opened; not owned. If it cancels, the load goes on: the assets of the
    /// files behind are offline until they are woken or reloaded. Null for none.
    MediaProgress *progress = nullptr;
};

} // namespace marlet::project
