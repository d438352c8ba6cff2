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

/// By what contexts of many sizes and formats were seen to allocate, which grows with the sides alone.
std::size_t BytesOf(const Scalers::Form &form)
{
    constexpr std::size_t kAtLeast = 90'000;
    const auto inside = static_cast<std::size_t>(form.width + form.height);
    const auto outside = static_cast<std::size_t>(form.outWidth + form.outHeight);
    return kAtLeast + 40 * inside + 60 * outside;
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
            bytes_ -= BytesOf(form);
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
    bytes_ += BytesOf(form);
    while (resting_.size() > kMost || bytes_ > kMostBytes) {
        bytes_ -= BytesOf(resting_.back().form);
        gone.splice(gone.begin(), resting_, std::prev(resting_.end()));
    }
}

std::size_t Scalers::Bytes() const
{
    const KyScopedLock lock(lock_);
    return bytes_;
}

} // namespace kyh::media
