#include <marlet/tracking/TrackingRun.h>

#include <marlet/project/MediaVideoStream.h>
#include <marlet/tracking/Stopwatch.h>
#include <marlet/tracking/TrackingFrame.h>

#include <algorithm>
#include <array>
#include <optional>
#include <thread>

namespace marlet::project
{

namespace
{

using FinishReason = TrackingActiveObject::FinishReason;
using Frames = std::array<TrackingFrame, 2>;

constexpr std::int64_t kShortestFrame = 40; ///< milliseconds, without the pause
constexpr std::int64_t kPause = 10;         ///< milliseconds

void Sleep(std::int64_t milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

std::optional<Frames> AllocateFrames(const MediaVideoStream &stream, bool inColour)
try {
    return Frames{TrackingFrame(stream, inColour), TrackingFrame(stream, inColour)};
} catch (const std::exception &) {
    return {};
}

class Run
{
public:
    Run(TrackingSnapshot &snapshot, const std::atomic<bool> &stop) : snapshot_(snapshot), stop_(stop) {}

    FinishReason FollowAll()
    {
        const bool inColour = snapshot_.method == Tracker::TrackerMethod::TemplateMatching &&
                              snapshot_.options.colourMatching == 1;
        std::optional<Frames> frames = AllocateFrames(*snapshot_.stream, inColour);
        if (!frames || !Read((*frames)[0]))
            return FinishReason::FrameUnavailable;

        std::optional<FinishReason> reason;
        for (std::size_t previous = 0; !reason; previous = 1 - previous)
            reason = FollowOne((*frames)[previous], (*frames)[1 - previous]);
        return *reason;
    }

private:
    bool Read(TrackingFrame &frame) const
    {
        return frame.Read(*snapshot_.stream, snapshot_.frameRate,
                          static_cast<std::int64_t>(snapshot_.assetStart) + snapshot_.time);
    }

    /// False if the feature is lost.
    bool Follow(TrackingRectangles &rectangles, const TrackingFrame &previous,
                const TrackingFrame &next) const
    {
        const FeatureMatch match =
            MatchFeature(previous.Image(), next.Image(), rectangles, snapshot_.method, snapshot_.options);
        rectangles.featurePosition = match.position;
        return !match.isLost;
    }

    void Report() const
    {
        snapshot_.onFrame(snapshot_.time, snapshot_.primary.featurePosition,
                          snapshot_.secondary.featurePosition);
    }

    /// Nothing if the run goes on.
    std::optional<FinishReason> FollowOne(const TrackingFrame &previous, TrackingFrame &next)
    {
        Stopwatch stopwatch;
        stopwatch.Start();
        snapshot_.time += snapshot_.direction == TrackingActiveObject::Direction::Forwards ? 1 : -1;
        if (stop_)
            return FinishReason::Stopped;
        if (!Read(next))
            return FinishReason::FrameUnavailable;
        if (stop_)
            return FinishReason::Stopped;
        bool isFound = Follow(snapshot_.primary, previous, next);
        if (stop_)
            return FinishReason::Stopped;
        if (snapshot_.type == Tracker::TrackerType::TwoPoints)
            isFound &= Follow(snapshot_.secondary, previous, next);
        if (!isFound) {
            Report();
            return FinishReason::TargetLost;
        }

        Sleep(kPause + std::max<std::int64_t>(kShortestFrame - stopwatch.ElapsedMilliseconds(), 0));
        Report();
        if (snapshot_.duration == TrackingActiveObject::Duration::OneFrame)
            return FinishReason::FrameDone;
        if (snapshot_.time == 0 || snapshot_.time == snapshot_.length - 1)
            return FinishReason::LayerEndReached;
        return {};
    }

    TrackingSnapshot &snapshot_;
    const std::atomic<bool> &stop_;
};

} // namespace

void RunTracking(TrackingSnapshot snapshot, const std::atomic<bool> &stop)
{
    const FinishReason reason = Run(snapshot, stop).FollowAll();
    Sleep(kPause);
    snapshot.onFinish(reason);
}

} // namespace marlet::project
