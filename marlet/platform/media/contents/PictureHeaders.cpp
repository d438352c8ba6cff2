#include <marlet/platform/media/contents/PictureHeaders.h>

#include <marlet/platform/media/contents/NalUnits.h>

extern "C" {
#include <libavutil/intreadwrite.h>
}

#include <bit>

namespace kyh::media
{

namespace
{

// The codes that units of MPEG begin with.
constexpr std::uint8_t kPicture = 0x00;
constexpr std::uint8_t kExtension = 0xB5;
constexpr std::uint8_t kObjectPlane = 0xB6; ///< a picture of MPEG-4
constexpr std::uint8_t kFirstObjectLayer = 0x20;
constexpr std::uint8_t kLastObjectLayer = 0x2F;

// The kinds of extensions in MPEG-2.
constexpr unsigned int kOfSequence = 1;
constexpr unsigned int kOfPicture = 8;

SequenceHeader ReadObjectLayer(Bytes layer)
{
    constexpr unsigned int kOwnAspect = 15;
    constexpr unsigned int kGrayscale = 3;
    HeaderBits bits(layer.subspan(1));
    SequenceHeader header;
    unsigned int version = 1;
    bits.Pass(9);
    if (bits.Take(1) != 0) {
        version = bits.Take(4);
        bits.Pass(3);
    }
    if (bits.Take(4) == kOwnAspect)
        bits.Pass(16);
    // Without its word decoders find out as they go.
    if (bits.Take(1) != 0) {
        bits.Pass(2);
        header.mayReorder = bits.Take(1) == 0;
        if (bits.Take(1) != 0)
            bits.Pass(79);
    }
    const unsigned int shape = bits.Take(2);
    if (shape == kGrayscale && version != 1)
        bits.Pass(4);
    bits.Pass(1);
    const unsigned int resolution = bits.Take(16);
    bits.Pass(1);
    if (bits.Take(1) != 0)
        bits.Pass(resolution > 1 ? std::bit_width(resolution - 1) : 1);
    if (shape == 0)
        bits.Pass(29);
    header.isProgressive = shape == 0 && bits.Take(1) == 0;
    return header;
}

SequenceHeader ReadSequenceExtension(HeaderBits bits)
{
    SequenceHeader header;
    bits.Pass(8);
    header.isProgressive = bits.Take(1) != 0;
    bits.Pass(27);
    header.mayReorder = bits.Take(1) == 0;
    return header;
}

std::optional<PictureHeader> FindObjectPlane(const std::vector<Bytes> &units)
{
    constexpr unsigned int kBidirectional = 2;
    std::optional<PictureHeader> picture;
    for (const Bytes unit : units) {
        if (unit.size() < 2 || unit[0] != kObjectPlane)
            continue;
        if (picture)
            return std::nullopt;
        picture = PictureHeader{HeaderBits(unit.subspan(1)).Take(2) != kBidirectional};
    }
    return picture;
}

/// Of MPEG-1 or 2. Two fields make one picture.
std::optional<PictureHeader> FindPicture(const std::vector<Bytes> &units)
{
    constexpr unsigned int kIntra = 1;
    constexpr unsigned int kBidirectional = 3;
    constexpr unsigned int kFrame = 3;
    std::optional<PictureHeader> picture;
    int pictures = 0;
    int fields = 0;
    for (const Bytes unit : units) {
        if (unit.size() < 4)
            continue;
        HeaderBits bits(unit.subspan(1));
        if (unit[0] == kPicture) {
            bits.Pass(10);
            const unsigned int type = bits.Take(3);
            if (type < kIntra || type > kBidirectional)
                return std::nullopt;
            if (++pictures == 1)
                picture = PictureHeader{type != kBidirectional};
            else if (picture->isReference != (type != kBidirectional))
                return std::nullopt;
        } else if (unit[0] == kExtension && bits.Take(4) == kOfPicture) {
            bits.Pass(18);
            fields += bits.Take(2) != kFrame;
        }
    }
    const bool isOne = (pictures == 1 && fields == 0) || (pictures == 2 && fields == 2);
    return isOne ? picture : std::nullopt;
}

/// Whether a picture of JPEG has all rows of a frame, and says nothing else that its decoder would.
bool IsWholeJpeg(Bytes picture, int height)
{
    constexpr std::uint8_t kCamera = 0xE1; // which may also say how the picture is turned
    for (std::size_t place = 2; place + 9 <= picture.size();) {
        const std::uint8_t marker = picture[place + 1];
        if (picture[place] != 0xFF || marker == kCamera)
            return false;
        const bool isFrame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (isFrame)
            return AV_RB16(&picture[place + 5]) == height;
        place += 2 + AV_RB16(&picture[place + 2]);
    }
    return false;
}

bool IsProgressive(const AVCodecParameters &parameters, Bytes packet)
{
    auto header = FindSequenceHeader(parameters.codec_id, SplitAtStartCodes(packet));
    if (!header)
        header = FindSequenceHeader(parameters.codec_id, SplitAtStartCodes(HeaderOf(parameters)));
    return header && header->isProgressive;
}

} // namespace

std::optional<SequenceHeader> FindSequenceHeader(AVCodecID codec, const std::vector<Bytes> &units)
{
    std::optional<SequenceHeader> header;
    for (const Bytes unit : units) {
        if (unit.size() < 2)
            continue;
        HeaderBits bits(unit.subspan(1));
        if (codec == AV_CODEC_ID_MPEG4 && unit[0] >= kFirstObjectLayer && unit[0] <= kLastObjectLayer)
            header = ReadObjectLayer(unit);
        else if (codec == AV_CODEC_ID_MPEG2VIDEO && unit[0] == kExtension && bits.Take(4) == kOfSequence)
            header = ReadSequenceExtension(bits);
    }
    return header;
}

std::optional<PictureHeader> FindPictureHeader(AVCodecID codec, const std::vector<Bytes> &units)
{
    return codec == AV_CODEC_ID_MPEG4 ? FindObjectPlane(units) : FindPicture(units);
}

bool IsWholeFrame(const AVCodecParameters &parameters, const AVPacket &packet)
{
    const Bytes bytes = BytesOf(packet);
    switch (parameters.codec_id) {
    case AV_CODEC_ID_DNXHD:
        return bytes.size() > 5 && (bytes[5] & 2) == 0;
    case AV_CODEC_ID_HEVC:
        return !HasPictureTiming(parameters, packet);
    case AV_CODEC_ID_MJPEG:
        return IsWholeJpeg(bytes, parameters.height);
    case AV_CODEC_ID_MPEG2VIDEO:
    case AV_CODEC_ID_MPEG4:
        return IsProgressive(parameters, bytes);
    case AV_CODEC_ID_PRORES:
        return bytes.size() > 20 && (bytes[20] >> 2 & 3) == 0;
    default:
        return false;
    }
}

} // namespace kyh::media
