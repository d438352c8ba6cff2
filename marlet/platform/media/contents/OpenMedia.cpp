#include <marlet/platform/media/contents/OpenMedia.h>

#include <marlet/platform/media/contents/MediaContents.h>
#include <marlet/platform/media/decoding/ClipFrames.h>
#include <marlet/platform/media/decoding/StillFrames.h>
#include <marlet/platform/media/files/Demuxer.h>

#include <optional>
#include <utility>

namespace kyh::media
{

namespace
{

OpenedMedia MakeStreams(MediaContents contents, FileSourcePtr source, const MediaResourcesPtr &resources)
{
    OpenedMedia media;
    if (contents.video) {
        media.videoFacts = contents.video->facts;
        media.frames = std::make_unique<ClipFrames>(source, contents.video->stream,
                                                    std::move(contents.video->frames), resources);
    }
    if (contents.sound) {
        media.soundFacts = contents.sound->facts;
        media.sound = std::make_unique<SoundReader>(source, contents.sound->stream,
                                                    std::move(contents.sound->samples), resources);
    }
    media.source = std::move(source);
    return media;
}

OpenedMedia OpenPictures(ImageSequence sequence, double frameRate, const MediaResourcesPtr &resources)
{
    OpenedMedia media;
    auto frames = std::make_unique<StillFrames>(std::move(sequence), resources);
    const FramePtr first = frames->Frame(0);
    media.videoFacts = FactsOfStills(frames->Codec(), frames->Profile(), frames->Count(), frameRate, *first);
    // Whoever opens many pictures reads few of them.
    frames->Close();
    media.frames = std::move(frames);
    return media;
}

} // namespace

OpenedMedia OpenMediaFile(const std::string &path, const MediaResourcesPtr &resources)
{
    constexpr double kNoRate = 0;
    const auto source = std::make_shared<FileSource>(path, resources->Files());
    std::optional<MediaContents> contents = resources->Index().Find(path, source->Identity());
    if (!contents) {
        auto demuxer = std::make_unique<Demuxer>(source);
        if (demuxer->IsStill())
            return OpenPictures(SinglePicture(path), kNoRate, resources);
        contents = LearnContents(source, std::move(demuxer));
        resources->Index().Keep(path, source->Identity(), *contents);
    }
    source->Close();
    return MakeStreams(std::move(*contents), source, resources);
}

OpenedMedia OpenImageSequence(const std::string &path, double frameRate, const MediaResourcesPtr &resources)
{
    // What the path names must be there, whatever stands beside it.
    FileSource{path}.Close();
    return OpenPictures(FindImageSequence(path), frameRate, resources);
}

} // namespace kyh::media
