#include <marlet/platform/media/contents/MediaContents.h>

#include <marlet/platform/media/MediaFailure.h>
#include <marlet/platform/media/contents/FrameOrder.h>
#include <marlet/platform/media/contents/NalUnits.h>
#include <marlet/platform/media/contents/PictureOrder.h>
#include <marlet/platform/media/contents/SoundCounter.h>
#include <marlet/platform/media/decoding/SampleFormat.h>
#include <marlet/platform/media/files/PacketReader.h>

#include <limits>
#include <string_view>
#include <utility>
#include <vector>

namespace kyh::media
{

namespace
{

/// What the packets of a container tell.
struct Scan {
    int video = -1;
    int audio = -1;
    std::optional<FrameIndex> frames;
    std::optional<PictureOrder> order; ///< if the container does not tell it
    PacketPtr firstPicture;            ///< the packet
    std::optional<SoundCounter> sound;
    int code = kUnknownFormat; ///< why there is nothing, if there is nothing
};

/// The stream that libav takes for the best, or -1. The cover of a record is no moving picture.
int BestStream(Demuxer &demuxer, AVMediaType type, int related)
{
    const AVCodec *decoder = nullptr;
    const int index = av_find_best_stream(&demuxer.Format(), type, -1, related, &decoder, 0);
    const bool isUsed = index >= 0 && !(demuxer.Stream(index).disposition & AV_DISPOSITION_ATTACHED_PIC);
    return isUsed ? index : -1;
}

/// Runs what may find a stream unusable, which leaves the others.
template <class Operation> void TryStream(int &code, Operation &&operation)
{
    try {
        operation();
    } catch (const MediaFailure &failure) {
        code = failure.code;
    }
}

/// Containers that have the time at which each picture is shown.
bool HasTimes(Demuxer &demuxer)
{
    const std::string_view name = demuxer.Format().iformat->name;
    return name.starts_with("mov,") || name.starts_with("matroska,") || name == "flv";
}

Scan SelectStreams(Demuxer &demuxer)
{
    Scan scan;
    scan.video = BestStream(demuxer, AVMEDIA_TYPE_VIDEO, -1);
    scan.audio = BestStream(demuxer, AVMEDIA_TYPE_AUDIO, scan.video);
    if (scan.video >= 0) {
        const AVCodecParameters &parameters = *demuxer.Stream(scan.video).codecpar;
        scan.frames.emplace(parameters.codec_id);
        if (PictureOrder::IsTold(parameters.codec_id) && !HasTimes(demuxer))
            scan.order.emplace(parameters);
    }
    if (scan.audio >= 0)
        TryStream(scan.code, [&] { scan.sound.emplace(*demuxer.Stream(scan.audio).codecpar); });
    demuxer.Select({scan.video, scan.audio});
    return scan;
}

void TakePacket(Scan &scan, Demuxer &demuxer, AVPacket &packet)
{
    if (scan.frames && packet.stream_index == scan.video) {
        if (!scan.firstPicture)
            scan.firstPicture = Allocated(PacketPtr(av_packet_clone(&packet)));
        scan.frames->Add(packet, av_stream_get_parser(&demuxer.Stream(scan.video)));
        if (scan.order)
            scan.order->Add(packet);
    } else if (scan.sound && packet.stream_index == scan.audio) {
        scan.sound->Add(packet);
    }
}

void ReadPackets(Scan &scan, Demuxer &demuxer)
{
    const PacketPtr packet = NewPacket();
    while ((scan.frames || scan.sound) && demuxer.Read(*packet))
        TakePacket(scan, demuxer, *packet);
}

/// Whether nothing but its time, its size and its flags tells what comes of a packet.
bool AreTablesEnough(const AVCodecParameters &video)
{
    switch (video.codec_id) {
    case AV_CODEC_ID_H264:
        return HasFramesOnly(video);
    case AV_CODEC_ID_AV1:
    case AV_CODEC_ID_DNXHD:
    case AV_CODEC_ID_FFV1:
    case AV_CODEC_ID_H263:
    case AV_CODEC_ID_HEVC:
    case AV_CODEC_ID_MJPEG:
    case AV_CODEC_ID_MPEG4:
    case AV_CODEC_ID_PNG:
    case AV_CODEC_ID_PRORES:
    case AV_CODEC_ID_QTRLE:
    case AV_CODEC_ID_RAWVIDEO:
    case AV_CODEC_ID_VP9:
        return true;
    default:
        return false;
    }
}

bool MayHaveTables(Demuxer &demuxer, const Scan &scan)
{
    return std::string_view(demuxer.Format().iformat->name).starts_with("mov,") &&
           (scan.video < 0 || AreTablesEnough(*demuxer.Stream(scan.video).codecpar));
}

/// Whether the packets are read sooner than it takes to see whether an index is true.
bool IsShort(const FileSource &source, Demuxer &demuxer, const Scan &scan)
{
    constexpr std::int64_t kSmall = 1 << 20;
    constexpr int kFew = 300;
    int packets = 0;
    for (const int stream : {scan.video, scan.audio})
        packets += stream < 0 ? 0 : avformat_index_get_entries_count(&demuxer.Stream(stream));
    return source.Size() < kSmall && packets < kFew;
}

/// Reads until it is clear what each stream begins with, and how its sound is counted.
void ReadFirstPackets(Scan &scan, Demuxer &demuxer)
{
    constexpr int kMost = 200;
    const PacketPtr packet = NewPacket();
    for (int i = 0; i < kMost; ++i) {
        const bool isSoundClear =
            !scan.sound || (!scan.sound->Packets().empty() && !scan.sound->IsUndecided());
        if ((isSoundClear && (!scan.frames || scan.firstPicture)) || !demuxer.Read(*packet))
            return;
        TakePacket(scan, demuxer, *packet);
    }
}

void TakeTables(Scan &scan, const std::optional<PacketTable> &video, const std::optional<PacketTable> &sound)
{
    if (video) {
        scan.frames.emplace(scan.frames->Codec());
        for (const ListedPacket &packet : *video)
            scan.frames->Add(packet);
    }
    if (sound)
        for (std::size_t i = scan.sound->Packets().size(); i < sound->size(); ++i)
            scan.sound->Add((*sound)[i]);
}

enum class Tables {
    Taken,
    Insufficient, ///< the packets behind those that were taken are still to be read
    Wrong         ///< all packets are, and the demuxer is elsewhere
};

/// Takes over what the index of the container says.
Tables ReadTables(Scan &scan, const FileSource &source, Demuxer &demuxer)
{
    if (!MayHaveTables(demuxer, scan) || IsShort(source, demuxer, scan))
        return Tables::Insufficient;
    const auto tracks = ReadMovTracks(source);
    if (!tracks)
        return Tables::Insufficient;
    ReadFirstPackets(scan, demuxer);
    if ((scan.frames && !scan.firstPicture) || (scan.sound && !scan.sound->IsBySize()))
        return Tables::Insufficient;
    std::optional<PacketTable> video;
    std::optional<PacketTable> sound;
    if (scan.frames)
        video = ReadPacketTable(source, *tracks, demuxer, scan.video, MarkOf(*scan.firstPicture));
    if (scan.sound)
        sound = ReadPacketTable(source, *tracks, demuxer, scan.audio, scan.sound->Packets().front());
    if (video.has_value() != scan.frames.has_value() || sound.has_value() != scan.sound.has_value())
        return Tables::Insufficient;
    if ((video && !IsTrue(*video, demuxer, scan.video)) || (sound && !IsTrue(*sound, demuxer, scan.audio)))
        return Tables::Wrong;
    TakeTables(scan, video, sound);
    return Tables::Taken;
}

VideoContents TakeVideo(const FileSourcePtr &source, Demuxer &demuxer, Scan &scan)
{
    AVStream &stream = demuxer.Stream(scan.video);
    FramePtr first = OrderFrames(source, scan.video, scan.order ? &*scan.order : nullptr, *scan.frames);
    if (!first && AreFactsKnown(stream, *scan.firstPicture))
        first = DescribedFrame(*stream.codecpar);
    if (!first)
        first = DecodeFirst(*stream.codecpar, *scan.firstPicture);
    if (!first)
        first = TrimToFirst(source, scan.video, *scan.frames);
    scan.frames->Tighten();
    const VideoFacts facts = FactsOfClip(demuxer.Format(), stream, *scan.frames, *first);
    return {scan.video, facts, std::move(*scan.frames)};
}

/// With each packet decoded.
SoundIndex CountSound(const FileSourcePtr &source, int stream, AVCodecParameters &parameters,
                      const std::vector<PacketMark> &packets)
{
    SoundCounter counter(parameters, SoundCounter::Decoding::All);
    PacketReader reader(source, stream, packets);
    while (AVPacket *packet = reader.Read())
        counter.Add(*packet);
    return counter.Finish();
}

SoundContents TakeSound(const FileSourcePtr &source, Demuxer &demuxer, Scan &scan)
{
    SoundCounter &counter = *scan.sound;
    SoundIndex samples =
        counter.HasUntold()
            ? CountSound(source, scan.audio, *demuxer.Stream(scan.audio).codecpar, counter.Packets())
            : counter.Finish();
    if (samples.Channels() > std::numeric_limits<unsigned char>::max())
        throw MediaFailure{kUnknownFormat};
    const SoundFacts facts = {samples.SampleRate(),
                              samples.Channels(),
                              BytesPerSample(samples.Format()),
                              samples.Count(),
                              demuxer.Stream(scan.audio).codecpar->codec_id,
                              samples.Profile()};
    return {scan.audio, facts, std::move(samples)};
}

MediaContents Finish(const FileSourcePtr &source, Demuxer &demuxer, Scan &scan)
{
    MediaContents contents;
    if (scan.frames)
        TryStream(scan.code, [&] { contents.video = TakeVideo(source, demuxer, scan); });
    if (scan.sound)
        TryStream(scan.code, [&] { contents.sound = TakeSound(source, demuxer, scan); });
    if (!contents.video && !contents.sound)
        throw MediaFailure{scan.code};
    return contents;
}

} // namespace

MediaContents LearnContents(const FileSourcePtr &source, std::unique_ptr<Demuxer> demuxer, UseOfTables use)
{
    demuxer->OpenStreams();
    Scan scan = SelectStreams(*demuxer);
    Tables tables = Tables::Insufficient;
    if (use == UseOfTables::Allowed)
        tables = ReadTables(scan, *source, *demuxer);
    if (tables == Tables::Wrong) {
        scan = {};
        demuxer = std::make_unique<Demuxer>(source);
        demuxer->OpenStreams();
        scan = SelectStreams(*demuxer);
    }
    if (tables != Tables::Taken)
        ReadPackets(scan, *demuxer);
    return Finish(source, *demuxer, scan);
}

} // namespace kyh::media
