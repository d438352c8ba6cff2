#include "TrackerRun.h"

#include "document/MediaSource.h"
#include "output/Output.h"

#include <marlet/layers/AssetLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/Project.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace marlet::tool
{

using namespace project;

namespace
{

using Tracking = TrackingActiveObject;

/// Carries what a run reports from its thread to the one that waits for it.
class Reports
{
public:
    void Add(const TrackedFrame &frame)
    {
        const std::scoped_lock lock(mutex_);
        frames_.push_back(frame);
        changed_.notify_one();
    }

    void Finish(Tracking::FinishReason reason)
    {
        const std::scoped_lock lock(mutex_);
        reason_ = reason;
        changed_.notify_one();
    }

    /// Waits a little for something new. Returns the frames since the last time.
    std::deque<TrackedFrame> Take()
    {
        constexpr std::chrono::milliseconds kPatience(50);
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, kPatience, [this] { return !frames_.empty() || reason_; });
        return std::exchange(frames_, {});
    }

    /// Nothing comes any more once it is there.
    std::optional<Tracking::FinishReason> Reason()
    {
        const std::scoped_lock lock(mutex_);
        return reason_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<TrackedFrame> frames_;
    std::optional<Tracking::FinishReason> reason_;
};

/// What Start would refuse as having no video has reasons that it does not tell.
void RequireVideo(const Project &project, const AssetLayer &layer)
{
    const auto asset = layer.Asset(project.Assets());
    if (!asset)
        throw Failure("The asset of layer " + Quoted(layer.Name()) + " does not exist");
    const auto media = std::dynamic_pointer_cast<MediaAsset>(asset);
    if (!media)
        throw Failure("Layer " + Quoted(layer.Name()) + " shows no video");
    VideoOf(*media);
}

void RequireStarted(Tracking::StartResult result, const TrackerJob &job)
{
    const std::string frame = "Frame " + std::to_string(job.from);
    switch (result) {
    case Tracking::StartResult::Started:
        return;
    case Tracking::StartResult::NoVideo:
        throw Failure("Layer " + Quoted(job.layer->Name()) + " shows no video");
    case Tracking::StartResult::TimeOutOfRange:
        throw OutsideOfLayer(job);
    default:
        throw Failure(frame + " is the " +
                      (job.direction == Tracking::Direction::Forwards ? "last" : "first") +
                      " one: there is nothing to track");
    }
}

} // namespace

Failure OutsideOfLayer(const TrackerJob &job)
{
    return Failure("Frame " + std::to_string(job.from) + " is not in layer " + Quoted(job.layer->Name()) +
                   ", which has " + std::to_string(job.layer->Length()));
}

int FramesToDo(const TrackerJob &job)
{
    if (job.duration == Tracking::Duration::OneFrame)
        return 1;
    return job.direction == Tracking::Direction::Forwards ? job.layer->Length() - 1 - job.from : job.from;
}

Tracking::FinishReason RunTracker(const TrackerJob &job,
                                  const std::function<void(const TrackedFrame &)> &onFrame,
                                  const std::function<bool()> &isStopRequested)
{
    RequireVideo(*job.project, *job.layer);
    Reports reports;
    Tracking tracking(
        [&](int frame, const Tracking::Point &primary, const Tracking::Point &secondary) {
            reports.Add({frame, primary, secondary});
        },
        [&](Tracking::FinishReason reason) { reports.Finish(reason); });
    RequireStarted(tracking.Start(job.direction, job.duration, job.project, job.layer, job.from, job.tracker,
                                  job.options),
                   job);
    for (;;) {
        if (isStopRequested())
            tracking.Stop();
        // In this order: what came before the end is taken with it.
        const auto reason = reports.Reason();
        for (const TrackedFrame &frame : reports.Take())
            onFrame(frame);
        if (reason)
            return *reason;
    }
}

} // namespace marlet::tool
