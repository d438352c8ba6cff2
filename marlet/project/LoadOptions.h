#pragma once

#include <marlet/foundation/Strings.h>

#include <memory>

namespace marlet::project
{

class MediaManager;
class MediaProgress;
class LoadReport;

/// How a project is loaded, beside its text.
struct LoadOptions {
    /// Opens the project's media. What it has open is not opened again; several projects may share one, each
    /// of which keeps it alive. Null for one of the project's own.
    std::shared_ptr<MediaManager> media = nullptr;
    /// Hears of each media file that is opened; not owned. If it cancels, the load goes on: the assets of the
    /// files behind are offline until they are woken or reloaded. Null for none.
    MediaProgress *progress = nullptr;
    /// Is filled with what the load finds, also when it throws; not owned. Null for none.
    LoadReport *report = nullptr;
    /// Keeps what this library does not know or the host does not have, and writes it again as it stood:
    /// elements and attributes beside their neighbours, and, in place of an effect or a transition whose
    /// plug-in is missing or older than the text, one that holds on to all of it. Without it such elements
    /// are passed over, and such a plug-in ends the load.
    bool keepUnknown = false;
    /// For ProjectFile::Load: media and image files that are not where the text says are looked for in the
    /// project's own folder, under the end of their path: of /old/film/clips/sea.mov first clips/sea.mov,
    /// then sea.mov. What is found is the path of the asset from then on, and a note in the report.
    bool findMovedMedia = false;
    /// For ProjectFile::Load, with its trailing separator; empty for the file's own folder.
    WideString texturesFolder = {};
};

} // namespace marlet::project
