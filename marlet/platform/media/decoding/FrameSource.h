#pragma once

#include <marlet/platform/media/LibavHandles.h>

namespace kyh::media
{

class StreamCache;

/// Where a video stream has its decoded frames from. Not for several threads at once.
class FrameSource
{
public:
    virtual ~FrameSource() = default;

    virtual int Count() const = 0;
    /// A frame from 0 on, of which others may have references as well. @throws MediaFailure
    virtual FramePtr Frame(int number) = 0;
    virtual StreamCache &Cache() = 0;
    /// Lets go of the decoder and of all that is kept, until the next frame is asked for.
    virtual void Close() = 0;
};

} // namespace kyh::media
