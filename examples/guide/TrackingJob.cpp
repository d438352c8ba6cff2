#include "TrackingJob.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/project/AssetList.h>
#include <marlet/tracking/TrackingPoint.h>

namespace guide
{

TrackingJob::TrackingJob(std::shared_ptr<Project> project, std::shared_ptr<AssetLayer> layer,
                         std::shared_ptr<Tracker> tracker)
    : project_(std::move(project)),
      layer_(std::move(layer)),
      tracker_(std::move(tracker)),
      worker_(
          [this](int frame, const Worker::Point &primary, const Worker::Point &) {
              const std::lock_guard lock(mutex_);
              positions_[frame] = primary;
          },
          [this](Worker::FinishReason reason) {
              const std::lock_guard lock(mutex_);
              ended_ = reason;
          })
{
}

TrackingJob::Worker::StartResult TrackingJob::Start(int frame)
{
    return worker_.Start(Worker::Direction::Forwards, Worker::Duration::UntilEnd, project_, layer_, frame,
                         tracker_, {});
}

std::optional<TrackingJob::Worker::FinishReason> TrackingJob::TakeNews()
{
    const std::lock_guard lock(mutex_);
    KeyFrameList &keys = tracker_->PrimaryTrackingPoint()->Animation().KeyFrames("featurePosition");
    for (const auto &[frame, position] : positions_)
        keys.Set(layer_->LayerFrameToRelativeTime(frame, project_->Assets()), position);
    positions_.clear();
    return ended_;
}

} // namespace guide
