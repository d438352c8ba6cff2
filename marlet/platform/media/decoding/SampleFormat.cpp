#include <marlet/platform/media/decoding/SampleFormat.h>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/samplefmt.h>
}

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

namespace kyh::media
{

namespace
{

// Samples of 32 bits in which full scale is full scale.

std::int32_t Full(std::uint8_t sample)
{
    return (sample - 128) * (1 << 24);
}

std::int32_t Full(std::int16_t sample)
{
    return sample * (1 << 16);
}

std::int32_t Full(std::int32_t sample)
{
    return sample;
}

std::int32_t Full(std::int64_t sample)
{
    return static_cast<std::int32_t>(sample >> 32);
}

std::int32_t Full(double sample)
{
    constexpr double kScale = 2147483648.0;
    if (std::isnan(sample))
        return 0;
    return static_cast<std::int32_t>(std::clamp(std::nearbyint(sample * kScale), -kScale, kScale - 1));
}

/// Where the samples of a channel are, and how far apart.
struct Channel {
    const unsigned char *bytes;
    std::size_t step;
};

Channel ChannelOf(const AVFrame &frame, int channel)
{
    const auto format = static_cast<AVSampleFormat>(frame.format);
    const auto size = static_cast<std::size_t>(av_get_bytes_per_sample(format));
    if (av_sample_fmt_is_planar(format))
        return {frame.extended_data[channel], size};
    return {frame.extended_data[0] + channel * size, size * frame.ch_layout.nb_channels};
}

template <class In, class Out>
void Copy(Channel channel, int from, int count, unsigned char *to, std::size_t outStep)
{
    constexpr int kShift = 32 - std::numeric_limits<Out>::digits - 1;
    const unsigned char *bytes = channel.bytes + static_cast<std::size_t>(from) * channel.step;
    for (int i = 0; i < count; ++i, bytes += channel.step, to += outStep) {
        In sample;
        std::memcpy(&sample, bytes, sizeof sample);
        const Out out = static_cast<Out>(Full(sample) >> kShift);
        std::memcpy(to, &out, sizeof out);
    }
}

template <class Out>
void CopyChannel(const AVFrame &frame, int channel, int from, int count, unsigned char *to, std::size_t step)
{
    const Channel source = ChannelOf(frame, channel);
    switch (av_get_packed_sample_fmt(static_cast<AVSampleFormat>(frame.format))) {
    case AV_SAMPLE_FMT_U8:
        return Copy<std::uint8_t, Out>(source, from, count, to, step);
    case AV_SAMPLE_FMT_S16:
        return Copy<std::int16_t, Out>(source, from, count, to, step);
    case AV_SAMPLE_FMT_S32:
        return Copy<std::int32_t, Out>(source, from, count, to, step);
    case AV_SAMPLE_FMT_S64:
        return Copy<std::int64_t, Out>(source, from, count, to, step);
    case AV_SAMPLE_FMT_FLT:
        return Copy<float, Out>(source, from, count, to, step);
    case AV_SAMPLE_FMT_DBL:
        return Copy<double, Out>(source, from, count, to, step);
    default:
        return;
    }
}

} // namespace

int BytesPerSample(int format)
{
    return av_get_bytes_per_sample(static_cast<AVSampleFormat>(format)) > 2 ? 4 : 2;
}

void CopySamples(const AVFrame &frame, int from, int count, int channels, int bytesPerSample,
                 unsigned char *to)
{
    const std::size_t step = static_cast<std::size_t>(channels) * bytesPerSample;
    if (frame.ch_layout.nb_channels < channels)
        std::memset(to, 0, step * count);
    for (int channel = 0; channel < std::min(channels, frame.ch_layout.nb_channels); ++channel) {
        unsigned char *place = to + channel * bytesPerSample;
        if (bytesPerSample == 2)
            CopyChannel<std::int16_t>(frame, channel, from, count, place, step);
        else
            CopyChannel<std::int32_t>(frame, channel, from, count, place, step);
    }
}

} // namespace kyh::media
