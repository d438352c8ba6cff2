#include "TrackerRun.h"

#include "Values.h"

#include <marlet/layers/AssetLayer.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace marlet::python
{

namespace
{

using Worker = TrackingActiveObject;

const Words<Worker::FinishReason> kReasons{{Worker::FinishReason::Stopped, "stopped"},
                                           {Worker::FinishReason::FrameDone, "frame done"},
                                           {Worker::FinishReason::LayerEndReached, "end of layer"},
                                           {Worker::FinishReason::TargetLost, "target lost"},
                                           {Worker::FinishReason::FrameUnavailable, "frame unavailable"}};

void RequireStarted(Worker::StartResult result)
{
    if (result == Worker::StartResult::Started)
        return;
    const char *const why = result == Worker::StartResult::NoVideo ? "The layer shows no video"
                            : result == Worker::StartResult::TimeOutOfRange
                                ? "The layer has no such frame"
                                : "The tracker has no feature to follow";
    throw Failure("OperationError", why);
}

/// What the worker reports, on its own thread.
struct News {
    std::mutex mutex;
    std::condition_variable changed;
    TrackedPath path;
    bool isOver = false;

    void Add(int frame, const Worker::Point &primary, const Worker::Point &secondary)
    {
        const std::lock_guard lock(mutex);
        path.frames.push_back(frame);
        path.primary.push_back(primary);
        path.secondary.push_back(secondary);
    }

    void End(Worker::FinishReason reason)
    {
        const std::lock_guard lock(mutex);
        path.reason = kReasons.Of(reason);
        isOver = true;
        changed.notify_all();
    }

    bool WaitForEnd()
    {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, std::chrono::milliseconds(50), [this] { return isOver; });
    }
};

} // namespace

TrackedPath RunTracker(const std::shared_ptr<Project> &project, const std::shared_ptr<AssetLayer> &layer,
                       const std::shared_ptr<Tracker> &tracker, const TrackingOrder &order)
{
    News news;
    Worker worker(
        [&](int frame, const auto &primary, const auto &secondary) { news.Add(frame, primary, secondary); },
        [&](Worker::FinishReason reason) { news.End(reason); });
    // Reads the project, so it keeps the lock.
    RequireStarted(worker.Start(order.backwards ? Worker::Direction::Backwards : Worker::Direction::Forwards,
                                order.oneFrame ? Worker::Duration::OneFrame : Worker::Duration::UntilEnd,
                                project, layer, order.frame, tracker, order.options));
    for (bool isOver = false; !isOver;) {
        {
            const py::gil_scoped_release release;
            isOver = news.WaitForEnd();
        }
        if (PyErr_CheckSignals() != 0) {
            const py::gil_scoped_release release;
            worker.Stop();
            break;
        }
    }
    if (PyErr_Occurred())
        throw py::error_already_set();
    const py::gil_scoped_release release;
    worker.Stop();
    return std::move(news.path);
}

} // namespace marlet::python
