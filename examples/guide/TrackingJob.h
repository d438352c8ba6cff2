#pragma once

#include <marlet/layers/AssetLayer.h>
#include <marlet/project/Project.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingActiveObject.h>

#include <map>
#include <mutex>
#include <optional>

namespace guide
{

using namespace marlet::project;

// Runs a tracker and writes what it finds into the project. The worker's callbacks only leave their news; the
// thread that edits the project fetches them, from a timer for example.
class TrackingJob
{
public:
    using Worker = TrackingActiveObject;

    TrackingJob(std::shared_ptr<Project> project, std::shared_ptr<AssetLayer> layer,
                std::shared_ptr<Tracker> tracker);

    Worker::StartResult Start(int frame);
    // Sets key frames. Tells why the run has ended, once it has.
    std::optional<Worker::FinishReason> TakeNews();

private:
    std::shared_ptr<Project> project_;
    std::shared_ptr<AssetLayer> layer_;
    std::shared_ptr<Tracker> tracker_;
    std::mutex mutex_;
    std::map<int, Worker::Point> positions_;
    std::optional<Worker::FinishReason> ended_;
    Worker worker_; // last: it stops before what its callbacks use goes
};

} // namespace guide
