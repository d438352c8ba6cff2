#include <marlet/tracking/TrackingFrame.h>

#include <marlet/platform/media/KyMediaTypes.h>
#include <marlet/project/MediaVideoStream.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

using kyh::media::KyImageChannels;

constexpr std::size_t kChannels = 4;

std::size_t PixelCount(const MediaVideoStream &stream)
{
    const std::int64_t count = static_cast<std::int64_t>(stream.Width()) * stream.Height();
    return static_cast<std::size_t>(std::max<std::int64_t>(count, 0));
}

std::size_t BufferSize(const MediaVideoStream &stream)
{
    return static_cast<std::size_t>(std::max(stream.FrameBufferSize(KyImageChannels::Four), 0));
}

/// The usual weights of luma, in the order of the bytes. The first byte is blue, so that the result is not
/// the brightness that an eye sees; a feature stands out in it as well, and it is the gray that stored
/// tolerances were chosen for.
void ConvertToGray(const unsigned char *pixel, std::vector<unsigned char> &gray)
{
    // 0.299, 0.587 and 0.114 as parts of 65536.
    constexpr unsigned int kFirst = 19595, kSecond = 38470, kThird = 7471, kHalf = 32768;
    for (unsigned char &value : gray) {
        value = static_cast<unsigned char>(
            (kFirst * pixel[0] + kSecond * pixel[1] + kThird * pixel[2] + kHalf) >> 16);
        pixel += kChannels;
    }
}

} // namespace

TrackingFrame::TrackingFrame(const MediaVideoStream &stream, bool inColour)
    : colour_(std::max(BufferSize(stream), PixelCount(stream) * kChannels)),
      gray_(inColour ? 0 : PixelCount(stream)),
      isInColour_(inColour)
{
}

bool TrackingFrame::Read(const MediaVideoStream &stream, double frameRate, std::int64_t number)
{
    if (number < 0 || number >= stream.FrameCount(frameRate))
        return false;
    const int code = stream.GetFrame(frameRate, static_cast<int>(number), KyImageChannels::Four,
                                     colour_.data(), static_cast<int>(colour_.size()), nullptr, 0);
    if (code != 0)
        return false;
    width_ = stream.Width();
    height_ = stream.Height();
    const std::size_t pixelCount = PixelCount(stream);
    if (pixelCount * kChannels > colour_.size())
        return false;
    if (!isInColour_) {
        gray_.resize(pixelCount);
        ConvertToGray(colour_.data(), gray_);
    }
    return true;
}

TrackingImage TrackingFrame::Image() const
{
    if (isInColour_)
        return {colour_.data(), width_, height_, kChannels};
    return {gray_.data(), width_, height_, 1};
}

} // namespace marlet::project
