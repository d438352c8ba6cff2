#include <marlet/platform/media/contents/ContentsForm.h>

#include <marlet/platform/media/decoding/SampleFormat.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace kyh::media
{

namespace
{

/// Another for every change of the form, and of what an index means.
constexpr std::int64_t kFormNumber = 1;
constexpr std::string_view kBeginning = "marlet media index\n";
constexpr std::size_t kSumBytes = 8;

struct Damaged {
};

void Require(bool condition)
{
    if (!condition)
        throw Damaged();
}

std::uint64_t SumOf(std::string_view bytes)
{
    // Fowler, Noll and Vo's, by words to be fast.
    std::uint64_t sum = 0xCBF29CE484222325u;
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        word = word << 8 | static_cast<unsigned char>(bytes[i]);
        if (i % 8 == 7 || i + 1 == bytes.size()) {
            sum = std::rotl((sum ^ word) * 0x100000001B3u, 29);
            word = 0;
        }
    }
    return sum;
}

/// Writes numbers in as few bytes as they need, seven bits in each. Reading has the same operations, so that
/// both directions share the descriptions below.
class Writing
{
public:
    void Number(std::int64_t number)
    {
        const auto bits = static_cast<std::uint64_t>(number);
        // Small numbers below 0 are small as well.
        std::uint64_t rest = bits << 1 ^ (number < 0 ? ~std::uint64_t{0} : 0);
        for (; rest > 127; rest >>= 7)
            bytes_.push_back(static_cast<char>(rest | 128));
        bytes_.push_back(static_cast<char>(rest));
    }
    void Text(std::string_view text)
    {
        Number(static_cast<std::int64_t>(text.size()));
        bytes_ += text;
    }
    std::string &Bytes() { return bytes_; }

private:
    std::string bytes_;
};

class Reading
{
public:
    explicit Reading(std::string_view bytes) : left_(bytes) {}

    std::int64_t Number()
    {
        std::uint64_t bits = 0;
        for (int shift = 0;; shift += 7) {
            Require(!left_.empty() && shift < 64);
            const auto byte = static_cast<unsigned char>(left_.front());
            left_.remove_prefix(1);
            bits |= std::uint64_t{byte & 127u} << shift;
            if (byte < 128)
                break;
        }
        return static_cast<std::int64_t>(bits >> 1 ^ (bits & 1 ? ~std::uint64_t{0} : 0));
    }
    std::string_view Text()
    {
        const std::size_t size = Size();
        const std::string_view text = left_.substr(0, size);
        left_.remove_prefix(size);
        return text;
    }
    /// Of something that takes at least a byte for each.
    std::size_t Size()
    {
        const std::int64_t size = Number();
        Require(size >= 0 && static_cast<std::uint64_t>(size) <= left_.size());
        return static_cast<std::size_t>(size);
    }
    bool IsAtEnd() const { return left_.empty(); }

private:
    std::string_view left_;
};

template <class Integer> void Field(Writing &to, const Integer &value)
{
    to.Number(static_cast<std::int64_t>(value));
}

template <class Integer> void Field(Reading &from, Integer &value)
{
    const std::int64_t number = from.Number();
    value = static_cast<Integer>(number);
    Require(static_cast<std::int64_t>(value) == number);
}

void Field(Reading &from, AVCodecID &codec)
{
    const std::int64_t number = from.Number();
    Require(number >= 0 && number <= AV_CODEC_ID_WRAPPED_AVFRAME);
    codec = static_cast<AVCodecID>(number);
}

void Field(Reading &from, AVSampleFormat &format)
{
    const std::int64_t number = from.Number();
    Require(number >= 0 && number < AV_SAMPLE_FMT_NB);
    format = static_cast<AVSampleFormat>(number);
}

void Field(Writing &to, const double &value)
{
    to.Number(std::bit_cast<std::int64_t>(value));
}

void Field(Reading &from, double &value)
{
    value = std::bit_cast<double>(from.Number());
}

/// As what it is more than the one before, which mostly stays the same from packet to packet.
template <class Integer> void Step(Writing &to, const Integer &value, std::uint64_t &before)
{
    const auto bits = static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
    to.Number(static_cast<std::int64_t>(bits - std::exchange(before, bits)));
}

template <class Integer> void Step(Reading &from, Integer &value, std::uint64_t &before)
{
    before += static_cast<std::uint64_t>(from.Number());
    const auto number = static_cast<std::int64_t>(before);
    value = static_cast<Integer>(number);
    Require(static_cast<std::int64_t>(value) == number);
}

template <class Item> void Sized(Writing &to, const std::vector<Item> &items)
{
    Field(to, items.size());
}

template <class Item> void Sized(Reading &from, std::vector<Item> &items)
{
    items.resize(from.Size());
}

template <class Form, class Facts> void TurnFields(Form &form, Facts &turn)
{
    Field(form, turn.isTransposed);
    Field(form, turn.isMirroredAcross);
    Field(form, turn.isMirroredDown);
}

template <class Form, class Facts> void VideoFactFields(Form &form, Facts &facts)
{
    Field(form, facts.width);
    Field(form, facts.height);
    TurnFields(form, facts.turn);
    Field(form, facts.pixelAspect);
    Field(form, facts.frameRate);
    Field(form, facts.frameCount);
    Field(form, facts.fieldOrder);
    Field(form, facts.hasAlpha);
    Field(form, facts.isStill);
    Field(form, facts.codec);
    Field(form, facts.profile);
}

template <class Form, class Facts> void SoundFactFields(Form &form, Facts &facts)
{
    Field(form, facts.sampleRate);
    Field(form, facts.channels);
    Field(form, facts.bytesPerSample);
    Field(form, facts.count);
    Field(form, facts.codec);
    Field(form, facts.profile);
}

template <class Form, class Marks> void PacketFields(Form &form, Marks &packets)
{
    Sized(form, packets);
    std::uint64_t position = 0;
    std::uint64_t pts = 0;
    std::uint64_t dts = 0;
    std::uint64_t size = 0;
    for (auto &packet : packets) {
        Step(form, packet.position, position);
        Step(form, packet.pts, pts);
        Step(form, packet.dts, dts);
        Step(form, packet.size, size);
        Field(form, packet.isKey);
    }
}

template <class Form, class Numbers> void NumberFields(Form &form, Numbers &numbers)
{
    Sized(form, numbers);
    std::uint64_t before = 0;
    for (auto &number : numbers)
        Step(form, number, before);
}

template <class Form, class Starts> void StartFields(Form &form, Starts &starts)
{
    Sized(form, starts);
    std::uint64_t packet = 0;
    std::uint64_t frame = 0;
    for (auto &start : starts) {
        Step(form, start.packet, packet);
        Step(form, start.frame, frame);
    }
}

template <class Form, class Contents> void ContentFields(Form &form, Contents &contents)
{
    Sized(form, contents);
    std::uint64_t first = 0;
    std::uint64_t length = 0;
    for (auto &content : contents) {
        Step(form, content.first, first);
        Step(form, content.length, length);
        Field(form, content.skipped);
    }
}

template <class Form, class Sound> void SoundFormFields(Form &form, Sound &sound)
{
    Field(form, sound.sampleRate);
    Field(form, sound.channels);
    Field(form, sound.format);
    Field(form, sound.profile);
}

void Write(Writing &to, const VideoContents &video)
{
    Field(to, video.stream);
    VideoFactFields(to, video.facts);
    Field(to, video.frames.Codec());
    PacketFields(to, video.frames.Packets());
    NumberFields(to, video.frames.Frames());
    StartFields(to, video.frames.Starts());
}

void Write(Writing &to, const SoundContents &sound)
{
    Field(to, sound.stream);
    SoundFactFields(to, sound.facts);
    SoundFormFields(to, sound.samples.Form());
    PacketFields(to, sound.samples.Packets());
    ContentFields(to, sound.samples.Contents());
}

/// Numbers that lead from the first of `count` things on.
template <class Item, class NumberOf>
bool AreInside(const std::vector<Item> &items, std::size_t count, NumberOf &&numberOf)
{
    return std::ranges::all_of(items, [&](const Item &item) {
        const int number = numberOf(item);
        return number >= 0 && static_cast<std::size_t>(number) < count;
    });
}

VideoContents ReadVideo(Reading &from)
{
    constexpr std::int64_t kBytesPerPixel = 4;
    using Start = FrameIndex::Start;
    int stream = 0;
    VideoFacts facts;
    AVCodecID codec = AV_CODEC_ID_NONE;
    std::vector<PacketMark> packets;
    std::vector<int> frames;
    std::vector<Start> starts;
    Field(from, stream);
    VideoFactFields(from, facts);
    Field(from, codec);
    PacketFields(from, packets);
    NumberFields(from, frames);
    StartFields(from, starts);
    Require(stream >= 0 && facts.width > 0 && facts.height > 0);
    Require(std::isfinite(facts.pixelAspect) && std::isfinite(facts.frameRate));
    Require(facts.height <= std::numeric_limits<int>::max() / kBytesPerPixel / facts.width);
    Require(!frames.empty() && facts.frameCount == static_cast<int>(frames.size()));
    Require(AreInside(frames, packets.size(), [](int packet) { return packet; }));
    Require(!starts.empty() && starts.front() == Start{0, 0});
    Require(AreInside(starts, packets.size(), [](const Start &start) { return start.packet; }));
    Require(AreInside(starts, frames.size(), [](const Start &start) { return start.frame; }));
    Require(std::ranges::is_sorted(starts, {}, &Start::packet) &&
            std::ranges::is_sorted(starts, {}, &Start::frame));
    return {stream, facts, FrameIndex(codec, std::move(packets), std::move(frames), std::move(starts))};
}

SoundContents ReadSound(Reading &from)
{
    int stream = 0;
    SoundFacts facts;
    SoundForm sound;
    std::vector<PacketMark> packets;
    std::vector<SoundIndex::Content> contents;
    Field(from, stream);
    SoundFactFields(from, facts);
    SoundFormFields(from, sound);
    PacketFields(from, packets);
    ContentFields(from, contents);
    Require(stream >= 0 && sound.sampleRate > 0 && sound.channels > 0);
    Require(sound.channels <= std::numeric_limits<unsigned char>::max());
    Require(packets.size() == contents.size());
    std::int64_t behind = 0;
    for (const SoundIndex::Content &content : contents) {
        Require(content.first >= behind && content.length >= 0 && content.skipped >= 0);
        behind = content.first + content.length;
    }
    Require(facts == SoundFacts{sound.sampleRate, sound.channels, BytesPerSample(sound.format), behind,
                                facts.codec, sound.profile});
    return {stream, facts, SoundIndex(std::move(packets), std::move(contents), sound)};
}

/// What must be the same, byte for byte.
void WriteOrigin(Writing &to, const ContentsOrigin &origin)
{
    Field(to, kFormNumber);
    to.Text(MARLET_VERSION);
    Field(to, avformat_version());
    Field(to, avcodec_version());
    to.Text(origin.path);
    Field(to, origin.identity.device);
    Field(to, origin.identity.inode);
    Field(to, origin.identity.size);
    Field(to, origin.identity.writtenAt);
    Field(to, origin.identity.changedAt);
}

std::string Signed(std::string_view content)
{
    std::string bytes(kBeginning);
    const std::uint64_t sum = SumOf(content);
    for (std::size_t i = 0; i < kSumBytes; ++i)
        bytes.push_back(static_cast<char>(sum >> 8 * i));
    bytes += content;
    return bytes;
}

MediaContents ReadContents(std::string_view bytes)
{
    Reading from(bytes);
    MediaContents contents;
    if (from.Number() != 0)
        contents.video = ReadVideo(from);
    if (from.Number() != 0)
        contents.sound = ReadSound(from);
    Require(from.IsAtEnd() && (contents.video || contents.sound));
    return contents;
}

} // namespace

std::string SignedContents(const ContentsOrigin &origin, std::string_view contents)
{
    Writing to;
    WriteOrigin(to, origin);
    return Signed(to.Bytes().append(contents));
}

std::string ContentsToBytes(const ContentsOrigin &origin, const MediaContents &contents)
{
    Writing to;
    to.Number(contents.video.has_value());
    if (contents.video)
        Write(to, *contents.video);
    to.Number(contents.sound.has_value());
    if (contents.sound)
        Write(to, *contents.sound);
    return SignedContents(origin, to.Bytes());
}

std::optional<MediaContents> ContentsFromBytes(const ContentsOrigin &origin, std::string_view bytes)
{
    constexpr std::size_t kContent = kBeginning.size() + kSumBytes;
    Writing expected;
    WriteOrigin(expected, origin);
    if (bytes.size() < kContent || !bytes.substr(kContent).starts_with(expected.Bytes()) ||
        Signed(bytes.substr(kContent)) != bytes)
        return std::nullopt;
    try {
        return ReadContents(bytes.substr(kContent + expected.Bytes().size()));
    } catch (const Damaged &) {
        return std::nullopt;
    }
}

} // namespace kyh::media
