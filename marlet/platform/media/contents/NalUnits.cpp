#include <marlet/platform/media/contents/NalUnits.h>

#include <marlet/platform/media/contents/HeaderBits.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace kyh::media
{

namespace
{

/// The number of big-endian bytes in front, which are taken off, or all that is left if there are fewer.
std::size_t TakeNumber(Bytes &bytes, std::size_t count)
{
    std::size_t number = 0;
    for (count = std::min(count, bytes.size()); count > 0; --count) {
        number = number << 8 | bytes.front();
        bytes = bytes.subspan(1);
    }
    return number;
}

Bytes TakeUnit(Bytes &bytes, std::size_t size)
{
    const Bytes unit = bytes.first(std::min(size, bytes.size()));
    bytes = bytes.subspan(unit.size());
    return unit;
}

bool HasConfiguration(Bytes header)
{
    return !header.empty() && header.front() == 1;
}

/// The units of a packet, with their lengths before them where the header of the stream says of how many
/// bytes.
std::vector<Bytes> UnitsOf(const AVCodecParameters &parameters, Bytes packet)
{
    const Bytes header = HeaderOf(parameters);
    const std::size_t lengthAt = parameters.codec_id == AV_CODEC_ID_H264 ? 4 : 21;
    if (!HasConfiguration(header) || header.size() <= lengthAt)
        return SplitAtStartCodes(packet);
    const std::size_t lengthSize = (header[lengthAt] & 3) + 1u;
    std::vector<Bytes> units;
    while (!packet.empty())
        units.push_back(TakeUnit(packet, TakeNumber(packet, lengthSize)));
    return units;
}

/// The sequence headers of H.264 that stand in the header of the stream.
std::vector<Bytes> SequenceHeaders(const AVCodecParameters &parameters)
{
    constexpr std::uint8_t kSequenceHeader = 7;
    Bytes header = HeaderOf(parameters);
    std::vector<Bytes> headers;
    if (!HasConfiguration(header)) {
        headers = SplitAtStartCodes(header);
    } else {
        TakeUnit(header, 5);
        for (std::size_t count = TakeNumber(header, 1) & 31; count > 0; --count)
            headers.push_back(TakeUnit(header, TakeNumber(header, 2)));
    }
    std::erase_if(headers, [](Bytes unit) { return unit.empty() || (unit[0] & 31) != kSequenceHeader; });
    return headers;
}

/// A unit without the bytes that keep start codes from coming about by chance.
std::vector<std::uint8_t> Unescaped(Bytes unit)
{
    std::vector<std::uint8_t> bytes;
    int zeros = 0;
    for (const std::uint8_t byte : unit) {
        if (zeros < 2 || byte != 3)
            bytes.push_back(byte);
        zeros = byte == 0 ? zeros + 1 : 0;
    }
    return bytes;
}

/// Of as many bits as zeros stand before it.
unsigned int TakeNumber(HeaderBits &bits)
{
    constexpr int kMostZeros = 31;
    int zeros = 0;
    while (zeros < kMostZeros && bits.Take(1) == 0)
        ++zeros;
    return (1u << zeros) - 1 + bits.Take(zeros);
}

int TakeSigned(HeaderBits &bits)
{
    const unsigned int number = TakeNumber(bits);
    const int half = static_cast<int>((number >> 1) + (number & 1));
    return number & 1 ? half : -half;
}

void PassScalingList(HeaderBits &bits, int size)
{
    int next = 8;
    for (int i = 0; i < size && next != 0; ++i)
        next = (next + (TakeSigned(bits) & 255)) & 255;
}

void PassColourFormat(HeaderBits &bits)
{
    constexpr unsigned int kFullColour = 3;
    const unsigned int format = TakeNumber(bits);
    if (format == kFullColour)
        bits.Take(1);
    TakeNumber(bits);
    TakeNumber(bits);
    bits.Take(1);
    if (bits.Take(1) == 0)
        return;
    for (int list = 0; list < (format == kFullColour ? 12 : 8); ++list)
        if (bits.Take(1) != 0)
            PassScalingList(bits, list < 6 ? 16 : 64);
}

void PassPictureOrder(HeaderBits &bits)
{
    const unsigned int type = TakeNumber(bits);
    if (type == 0)
        TakeNumber(bits);
    if (type != 1)
        return;
    constexpr unsigned int kMost = 255;
    bits.Take(1);
    TakeSigned(bits);
    TakeSigned(bits);
    for (unsigned int count = std::min(TakeNumber(bits), kMost); count > 0; --count)
        TakeSigned(bits);
}

bool IsFramesOnly(Bytes header)
{
    constexpr unsigned int kWithColourFormat[] = {100, 110, 122, 244, 44,  83, 86,
                                                  118, 128, 138, 139, 134, 135};
    const std::vector<std::uint8_t> bytes = Unescaped(header.subspan(1));
    HeaderBits bits(bytes);
    const unsigned int profile = bits.Take(8);
    bits.Take(16);
    TakeNumber(bits);
    if (std::ranges::count(kWithColourFormat, profile) > 0)
        PassColourFormat(bits);
    TakeNumber(bits);
    PassPictureOrder(bits);
    TakeNumber(bits);
    bits.Take(1);
    TakeNumber(bits);
    TakeNumber(bits);
    return bits.Take(1) != 0;
}

/// The messages of a unit whose first byte is behind its own header.
bool HasMessage(Bytes unit, unsigned int wanted)
{
    constexpr unsigned int kMore = 255;
    const std::vector<std::uint8_t> bytes = Unescaped(unit);
    HeaderBits bits(bytes);
    for (std::size_t left = unit.size(); left > 2;) {
        unsigned int type = 0;
        unsigned int size = 0;
        for (unsigned int *number : {&type, &size})
            for (unsigned int byte = kMore; byte == kMore && left > 0; --left)
                *number += byte = bits.Take(8);
        if (type == wanted)
            return true;
        for (; size > 0 && left > 0; --size, --left)
            bits.Take(8);
    }
    return false;
}

/// Whether a packet carries a message before or behind its picture.
bool HasMessage(const AVCodecParameters &parameters, const AVPacket &packet, unsigned int wanted)
{
    const bool isHevc = parameters.codec_id == AV_CODEC_ID_HEVC;
    const auto saysIt = [isHevc, wanted](Bytes unit) {
        if (unit.size() < 2)
            return false;
        const int type = isHevc ? unit[0] >> 1 & 63 : unit[0] & 31;
        const bool isMessage = isHevc ? type == 39 || type == 40 : type == 6;
        return isMessage && HasMessage(unit.subspan(isHevc ? 2 : 1), wanted);
    };
    return std::ranges::any_of(UnitsOf(parameters, BytesOf(packet)), saysIt);
}

} // namespace

bool HasFramesOnly(const AVCodecParameters &parameters)
{
    const std::vector<Bytes> headers = SequenceHeaders(parameters);
    return !headers.empty() && std::ranges::all_of(headers, IsFramesOnly);
}

bool HasOrientation(const AVCodecParameters &parameters, const AVPacket &packet)
{
    constexpr unsigned int kDisplayOrientation = 47;
    return HasMessage(parameters, packet, kDisplayOrientation);
}

bool HasPictureTiming(const AVCodecParameters &parameters, const AVPacket &packet)
{
    constexpr unsigned int kPictureTiming = 1;
    return HasMessage(parameters, packet, kPictureTiming);
}

} // namespace kyh::media
