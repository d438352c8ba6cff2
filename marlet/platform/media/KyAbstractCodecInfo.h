#pragma once

#include <marlet/foundation/Strings.h>

namespace kyh::media
{

/// The names of what a stream is compressed with, as the decoder has them. May be used on any thread.
class MARLET_EXPORT KyAbstractCodecInfo
{
public:
    virtual ~KyAbstractCodecInfo();

    virtual kytl::NarrowString Name() const = 0;     ///< such as "h264"
    virtual kytl::NarrowString LongName() const = 0; ///< such as "H.264 / AVC / MPEG-4 part 10"
    virtual kytl::NarrowString Profile() const = 0;  ///< such as "High"; empty if there is none
};

} // namespace kyh::media
