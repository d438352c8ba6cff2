#pragma once

#include <marlet/platform/media/LibavHandles.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kyh::media
{

using Bytes = std::span<const std::uint8_t>;

inline Bytes BytesOf(const AVPacket &packet)
{
    return {packet.data, static_cast<std::size_t>(packet.size)};
}

/// What the container has of a stream's headers.
inline Bytes HeaderOf(const AVCodecParameters &parameters)
{
    return {parameters.extradata, static_cast<std::size_t>(parameters.extradata_size)};
}

/// The bits of a header from front to back. Behind its end all are 0.
class HeaderBits
{
public:
    explicit HeaderBits(Bytes bytes) : bytes_(bytes) {}

    unsigned int Take(int count)
    {
        unsigned int number = 0;
        for (; count > 0; --count, ++place_) {
            const bool isInside = place_ / 8 < bytes_.size();
            number = number << 1 | (isInside ? bytes_[place_ / 8] >> (7 - place_ % 8) & 1u : 0u);
        }
        return number;
    }
    void Pass(std::size_t count) { place_ += count; }

private:
    Bytes bytes_;
    std::size_t place_ = 0;
};

/// The units behind the start codes of a stream of MPEG.
std::vector<Bytes> SplitAtStartCodes(Bytes bytes);

} // namespace kyh::media
