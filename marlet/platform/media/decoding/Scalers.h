#pragma once

#include <marlet/foundation/KyCriticalSection.h>
#include <marlet/platform/media/KyMediaTypes.h>
#include <marlet/platform/media/LibavHandles.h>

#include <cstddef>
#include <list>

namespace kyh::media
{

/// Keeps scalers for the next frame of their form, whichever stream it is of, beside the budget for frames:
/// few, and few bytes. Any thread may use it; nothing is made or freed while its lock is held.
class Scalers
{
public:
    static constexpr std::size_t kMost = 8;
    static constexpr std::size_t kMostBytes = std::size_t{4} << 20;

    /// What a scaler is made for.
    struct Form {
        int width = 0; ///< of the frame
        int height = 0;
        int format = AV_PIX_FMT_NONE;
        int colourSpace = AVCOL_SPC_UNSPECIFIED;
        bool isFullRange = false;
        int outWidth = 0;
        int outHeight = 0;
        KyImageChannels channels = KyImageChannels::Four;

        bool operator==(const Form &) const = default;
    };

    /// One that was kept, or else a new one. @throws MediaFailure
    ScalerPtr Take(const Form &form);
    /// Those that were kept longest go when there are too many, or too large ones.
    void Keep(const Form &form, ScalerPtr scaler);
    /// Of memory, about, in those that are kept.
    std::size_t Bytes() const;

private:
    struct Resting {
        Form form;
        ScalerPtr scaler;
    };

    mutable kytl::thread::KyCriticalSection lock_; ///< of what follows
    std::list<Resting> resting_;                   ///< the last that came stands at the front
    std::size_t bytes_ = 0;
};

} // namespace kyh::media
