#pragma once

struct AVFrame;

namespace kyh::media
{

/// Where a video stream has its decoded frames from. Not for several threads at once.
class FrameSource
{
public:
    virtual ~FrameSource() = default;

    virtual int Count() const = 0;
    /// A frame from 0 on, which stays until the next call. @throws MediaFailure
    virtual const AVFrame &Frame(int number) = 0;
    /// Lets go of the decoder, until the next frame is asked for.
    virtual void Close() = 0;
};

} // namespace kyh::media
