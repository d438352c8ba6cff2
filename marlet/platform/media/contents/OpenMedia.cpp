#include <marlet/platform/media/contents/OpenMedia.h>

#include <marlet/platform/media/MediaFailure.h>
#include <marlet/platform/media/contents/FrameOrder.h>
#include <marlet/platform/media/decoding/ClipFrames.h>
#include <marlet/platform/media/decoding/StillFrames.h>
#include <marlet/platform/media/files/Demuxer.h>

#include <limits>
#include <optional>
#include <utility>

namespace kyh::media
{

namespace
{

/// What one reading of a container tells, without decoding its pictures.
struct Scan {
    int video = -1;
    int audio = -1;
    std::optional<FrameIndex> frames;
    std::optional<SoundIndex> sound;
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

Scan ScanStreams(Demuxer &demuxer)
{
    Scan scan;
    scan.video = BestStream(demuxer, AVMEDIA_TYPE_VIDEO, -1);
    scan.audio = BestStream(demuxer, AVMEDIA_TYPE_AUDIO, scan.video);
    if (scan.video >= 0)
        scan.frames.emplace(demuxer.Stream(scan.video).codecpar->codec_id);
    if (scan.audio >= 0)
        TryStream(scan.code, [&] { scan.sound.emplace(*demuxer.Stream(scan.audio).codecpar); });
    demuxer.Select({scan.video, scan.audio});
    const PacketPtr packet = NewPacket();
    while ((scan.frames || scan.sound) && demuxer.Read(*packet)) {
        if (scan.frames && packet->stream_index == scan.video)
            scan.frames->Add(*packet, av_stream_get_parser(&demuxer.Stream(scan.video)));
        else if (scan.sound && packet->stream_index == scan.audio)
            scan.sound->Add(*packet);
    }
    return scan;
}

void TakeVideo(OpenedMedia &media, Demuxer &demuxer, Scan &scan)
{
    OrderFrames(media.source, scan.video, *scan.frames);
    auto frames =
        std::make_unique<ClipFrames>(media.source, scan.video, std::move(*scan.frames), media.resources);
    media.videoFacts =
        FactsOfClip(demuxer.Format(), demuxer.Stream(scan.video), frames->Index(), *frames->Frame(0));
    media.frames = std::move(frames);
}

void TakeSound(OpenedMedia &media, Demuxer &demuxer, Scan &scan)
{
    scan.sound->Finish();
    if (scan.sound->Channels() > std::numeric_limits<unsigned char>::max())
        throw MediaFailure{kUnknownFormat};
    auto sound =
        std::make_unique<SoundReader>(media.source, scan.audio, std::move(*scan.sound), media.resources);
    const SoundIndex &index = sound->Index();
    media.soundFacts = {index.SampleRate(),
                        index.Channels(),
                        sound->BytesOfSample(),
                        index.Count(),
                        demuxer.Stream(scan.audio).codecpar->codec_id,
                        index.Profile()};
    media.sound = std::move(sound);
}

OpenedMedia OpenPictures(ImageSequence sequence, double frameRate, const MediaResourcesPtr &resources)
{
    OpenedMedia media;
    media.resources = resources;
    auto frames = std::make_unique<StillFrames>(std::move(sequence), resources);
    const FramePtr first = frames->Frame(0);
    media.videoFacts = FactsOfStills(frames->Codec(), frames->Profile(), frames->Count(), frameRate, *first);
    media.frames = std::move(frames);
    return media;
}

} // namespace

OpenedMedia OpenMediaFile(const std::string &path, const MediaResourcesPtr &resources)
{
    constexpr double kNoRate = 0;
    OpenedMedia media;
    media.resources = resources;
    media.source = std::make_shared<FileSource>(path);
    Demuxer demuxer(media.source);
    if (demuxer.IsStill())
        return OpenPictures(SinglePicture(path), kNoRate, resources);
    demuxer.OpenStreams();
    Scan scan = ScanStreams(demuxer);
    if (scan.frames)
        TryStream(scan.code, [&] { TakeVideo(media, demuxer, scan); });
    if (scan.sound)
        TryStream(scan.code, [&] { TakeSound(media, demuxer, scan); });
    if (!media.frames && !media.sound)
        throw MediaFailure{scan.code};
    return media;
}

OpenedMedia OpenImageSequence(const std::string &path, double frameRate, const MediaResourcesPtr &resources)
{
    // What the path names must be there, whatever stands beside it.
    FileSource{path}.Close();
    return OpenPictures(FindImageSequence(path), frameRate, resources);
}

} // namespace kyh::media
