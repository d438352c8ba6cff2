#include <marlet/platform/media/decoding/Scalers.h>

#include <marlet/platform/media/MediaFailure.h>

#include <algorithm>
#include <utility>

namespace kyh::media
{

using kytl::thread::KyScopedLock;

namespace
{

ScalerPtr NewScaler(const Scalers::Form &form)
{
    const AVPixelFormat format = form.channels == KyImageChannels::Four ? AV_PIX_FMT_BGRA : AV_PIX_FMT_RGB24;
    // Without accurate rounding, the result would depend on what the processor offers.
    ScalerPtr scaler(sws_getContext(form.width, form.height, static_cast<AVPixelFormat>(form.format),
                                    form.outWidth, form.outHeight, format, SWS_BILINEAR | SWS_ACCURATE_RND,
                                    nullptr, nullptr, nullptr));
    if (!scaler)
        throw MediaFailure{kDamaged};
    constexpr int kUnity = 1 << 16;
    const int *matrix = sws_getCoefficients(form.colourSpace);
    sws_setColorspaceDetails(scaler.get(), matrix, form.isFullRange, matrix, 1, 0, kUnity, kUnity);
    return scaler;
}

} // namespace

ScalerPtr Scalers::Take(const Form &form)
{
    {
        const KyScopedLock lock(lock_);
        const auto place = std::find_if(resting_.begin(), resting_.end(),
                                        [&form](const Resting &resting) { return resting.form == form; });
        if (place != resting_.end()) {
            ScalerPtr scaler = std::move(place->scaler);
            resting_.erase(place);
            return scaler;
        }
    }
    return NewScaler(form);
}

void Scalers::Keep(const Form &form, ScalerPtr scaler)
{
    std::list<Resting> gone; // behind the lock
    const KyScopedLock lock(lock_);
    resting_.push_front({form, std::move(scaler)});
    if (resting_.size() > kMost)
        gone.splice(gone.begin(), resting_, std::prev(resting_.end()));
}

} // namespace kyh::media
