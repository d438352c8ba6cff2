#pragma once

#include <marlet/foundation/Export.h>
#include <marlet/foundation/KyPoint.h>

#include <functional>
#include <memory>

namespace marlet::project
{

class AssetLayer;
class Project;
class Tracker;
struct TrackingActiveObject_Impl;

struct TrackingOptions {
    float errorTolerance = 0.2f; ///< a match is lost when its error is above this * 100
    int maxIterations = 30;      ///< of the optical flow
    int colourMatching = 0;      ///< 1: templates are compared in colour, any other value: in gray
    /// Template matching: 0 squared differences, 1 the same normalised, 2 and 3 correlation, 4 and 5
    /// correlation coefficients; any other value searches as 5.
    int matchMethod = 5;
};

/// Follows one or two features through the video of an asset layer, frame by frame, on a thread of its own,
/// and reports each position; it writes nothing into the project. At most 20 frames a second.
///
/// Frames are counted from the layer's start. Positions are in pixels from the middle of the frame, Y up.
///
/// Start, Stop and the destructor belong to one thread. Both callbacks come on the worker's thread, except
/// for the first position, which Start reports itself; they must not call Start or Stop, and what they throw
/// must not leave them. No lock is held while they run. After Start has returned, the run touches nothing of
/// the project but the media file's frames.
class MARLET_EXPORT TrackingActiveObject
{
public:
    using Point = kytl::matl::KyPoint<2, float>;

    enum class Direction : int { Forwards, Backwards };
    enum class Duration : int { OneFrame, UntilEnd };
    enum class StartResult : int { Started, NoVideo, TimeOutOfRange, NothingToTrack };
    enum class FinishReason : int { Stopped, FrameDone, LayerEndReached, TargetLost, FrameUnavailable };

    using OnFrame = std::function<void(int frame, const Point &primary, const Point &secondary)>;
    using OnFinish = std::function<void(FinishReason)>;

    /// Neither may be empty: calling it would throw std::bad_function_call.
    TrackingActiveObject(OnFrame onFrame, OnFinish onFinish);
    TrackingActiveObject(const TrackingActiveObject &) = delete;
    TrackingActiveObject &operator=(const TrackingActiveObject &) = delete;
    /// Stops.
    ~TrackingActiveObject();

    /// Stops a run that there is, also if this one cannot start. `time` is a frame number; the rectangles are
    /// those at the composition's playhead.
    /// @throws std::invalid_argument for a null pointer
    /// @throws boost::bad_get if a property of the tracker holds another type
    /// @throws std::logic_error if a point of the tracker is missing
    /// @throws std::runtime_error if the layer's composition is not in the project
    StartResult Start(Direction direction, Duration duration, const std::shared_ptr<Project> &project,
                      const std::shared_ptr<AssetLayer> &layer, int time,
                      const std::shared_ptr<Tracker> &tracker, const TrackingOptions &options);
    /// Returns when the run has ended and has reported so.
    void Stop();

private:
    std::unique_ptr<TrackingActiveObject_Impl> impl_;
};

} // namespace marlet::project
