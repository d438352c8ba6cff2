#include <marlet/platform/media/contents/ContentsForm.h>

#include <marlet/platform/media/contents/FormBytes.h>
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

using namespace form;

/// Another for every change of the form, and of what an index means.
constexpr std::int64_t kFormNumber = 1;
constexpr std::string_view kBeginning = "marlet media index\n";
constexpr std::size_t kSumBytes = 8;

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

template <class Form, class Facts> void VideoFactFields(Form &form, Facts &facts)
{
    Fields(form, facts.width, facts.height);
    Fields(form, facts.turn.isTransposed, facts.turn.isMirroredAcross, facts.turn.isMirroredDown);
    Fields(form, facts.pixelAspect, facts.frameRate, facts.frameCount, facts.fieldOrder);
    Fields(form, facts.hasAlpha, facts.isStill, facts.codec, facts.profile);
}

template <class Form, class Facts> void SoundFactFields(Form &form, Facts &facts)
{
    Fields(form, facts.sampleRate, facts.channels, facts.bytesPerSample);
    Fields(form, facts.count, facts.codec, facts.profile);
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
    Fields(form, sound.sampleRate, sound.channels, sound.format, sound.profile);
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
    const FileIdentity &file = origin.identity;
    Fields(to, file.device, file.inode, file.size, file.writtenAt, file.changedAt);
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
