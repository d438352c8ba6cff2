#pragma once

#include <marlet/tracking/FeatureMatch.h>

#include <vector>

namespace marlet::project
{

class MediaVideoStream;

/// One decoded frame of a stream, with memory that every read uses again.
class TrackingFrame
{
public:
    /// Room for what the stream gives now, in colour or in gray.
    /// @throws std::exception if there is no memory for it
    TrackingFrame(const MediaVideoStream &stream, bool inColour);

    /// Reads a frame of the project's rate. False if there is none, if it does not decode, or if it has
    /// outgrown the memory.
    bool Read(const MediaVideoStream &stream, double frameRate, std::int64_t number);
    TrackingImage Image() const;

private:
    std::vector<unsigned char> colour_;
    std::vector<unsigned char> gray_; ///< empty if the frame is used in colour
    bool isInColour_;
    int width_ = 0;
    int height_ = 0;
};

} // namespace marlet::project
