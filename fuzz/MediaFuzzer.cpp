// Any bytes either open as media or are refused with a code. Of what opens, frames and samples are asked for
// in and out of order: none is written beyond its buffer. A file that sleeps and wakes, and one that opens by
// the index that is kept of it, is what it was. Any bytes as a kept index are refused or can be read by.

#include "support/FuzzInput.h"
#include "support/MemoryFile.h"

#include <marlet/platform/media/KyAbstractAudioStream.h>
#include <marlet/platform/media/KyAbstractMediaFile.h>
#include <marlet/platform/media/KyAbstractVideoStream.h>
#include <marlet/platform/media/KyMedia.h>
#include <marlet/platform/media/MediaResources.h>
#include <marlet/platform/media/contents/ContentsForm.h>

#include <encode/Encoder.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

using namespace kyh::media;
using marlet::project::Fail;
using marlet::project::MemoryFile;

namespace
{

using Bytes = std::vector<unsigned char>;

/// Pictures above this size only take time.
constexpr int kLargestFrame = 1 << 20;

std::string MakeClip(const std::string &ending)
{
    const std::string path = "/tmp/marlet-fuzz-" + std::to_string(::getpid()) + ending;
    marlet::tool::EncoderOptions options;
    options.width = 32;
    options.height = 32;
    options.bFrames = 1;
    options.groupSize = 4;
    options.sampleRate = 8000;
    marlet::tool::Encoder encoder(path, options);
    for (int i = 0; i < 8; ++i) {
        Bytes frame(32 * 32 * 4);
        for (std::size_t place = 0; place < frame.size(); ++place)
            frame[place] = static_cast<unsigned char>(place * 7 + static_cast<std::size_t>(i) * 31);
        encoder.AddFrame(frame.data(), 32 * 4);
    }
    encoder.AddSamples(std::vector<std::int16_t>(2 * 500, 1000).data(), 500);
    encoder.Finish();
    std::ifstream file(path, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(file), {}};
    ::unlink(path.c_str());
    return bytes;
}

/// The code, and the frame in a buffer of just its size.
int GetFrame(KyAbstractVideoStream &video, int number, Bytes &frame)
{
    frame.assign(static_cast<std::size_t>(video.FrameBufferSize(KyImageChannels::Four)), 0);
    return video.GetFrame(number, KyImageChannels::Four, frame.data(), static_cast<int>(frame.size()),
                          nullptr, 0);
}

void AskVideo(KyAbstractVideoStream &video)
{
    if (video.Width() <= 0 || video.Height() <= 0 || video.FrameCount() <= 0)
        Fail("a clip without a picture");
    if (video.FrameBufferSize(KyImageChannels::Four) > kLargestFrame)
        return;
    const int count = std::min(video.FrameCount(), 12);
    Bytes frame;
    for (int i = 0; i < count; ++i)
        GetFrame(video, i, frame);
    for (int i = count - 1; i >= 0; --i)
        GetFrame(video, i, frame);
}

void AskAudio(KyAbstractAudioStream &audio)
{
    const std::size_t bytesOfSample = audio.ChannelCount() * (audio.BitsPerSample() / 8u);
    const auto last = static_cast<long long>(audio.SampleCount());
    for (const long long start : {last - 50, 0LL, last / 2}) {
        Bytes first(bytesOfSample * 100, 1);
        Bytes second(bytesOfSample * 100, 2);
        const int size = static_cast<int>(first.size());
        const bool isRead = audio.GetSamples(start, 100, first.data(), size, nullptr) == kSuccess;
        if (isRead && audio.GetSamples(start, 100, second.data(), size, nullptr) == kSuccess &&
            first != second)
            Fail("the same samples are others");
    }
}

/// Resources whose folder goes with the process.
const MediaResourcesPtr &KeepingResources()
{
    struct Keeping {
        std::string folder = "/tmp/marlet-fuzz-kept-" + std::to_string(::getpid());
        MediaResourcesPtr resources = std::make_shared<MediaResources>();

        Keeping() { resources->Index().SetPath(folder); }
        ~Keeping() { std::filesystem::remove_all(folder); }
    };
    static const Keeping keeping;
    return keeping.resources;
}

/// An open file with its streams.
struct Opened {
    KyAbstractMediaFile *file = nullptr;
    int code;
    std::shared_ptr<KyAbstractVideoStream> video;
    std::shared_ptr<KyAbstractAudioStream> audio;

    explicit Opened(const std::u16string &path)
        : code(CreateMediaFile(path.c_str(), KeepingResources(), &file))
    {
        if (code != kSuccess)
            return;
        video = std::static_pointer_cast<KyAbstractVideoStream>(file->Stream(kVideoStream));
        audio = std::static_pointer_cast<KyAbstractAudioStream>(file->Stream(kAudioStream));
    }
    Opened(const Opened &) = delete;
    Opened &operator=(const Opened &) = delete;
    ~Opened() { KyMediaFileRelease(file); }
};

void ExpectSame(const Opened &first, const Opened &second)
{
    if (second.code != kSuccess || !first.video != !second.video || !first.audio != !second.audio)
        Fail("a kept index tells of other streams");
    if (first.audio && first.audio->SampleCount() != second.audio->SampleCount())
        Fail("a kept index tells of other sound");
    if (!first.video)
        return;
    if (first.video->FrameCount() != second.video->FrameCount() ||
        first.video->FrameBufferSize(KyImageChannels::Four) !=
            second.video->FrameBufferSize(KyImageChannels::Four))
        Fail("a kept index tells of another clip");
    if (first.video->FrameBufferSize(KyImageChannels::Four) > kLargestFrame)
        return;
    Bytes frame;
    Bytes again;
    if (GetFrame(*first.video, 0, frame) != GetFrame(*second.video, 0, again))
        Fail("a frame comes by one index alone");
}

/// The bytes as what stands in an index, which is signed so that it is read.
void ReadAsIndex(const std::uint8_t *bytes, std::size_t size)
{
    const ContentsOrigin origin{"/clip", {}};
    const std::string_view content(reinterpret_cast<const char *>(bytes), size);
    if (const auto contents = ContentsFromBytes(origin, SignedContents(origin, content));
        contents && ContentsFromBytes(origin, ContentsToBytes(origin, *contents)) != contents)
        Fail("an index is not read back as it was written");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    static const std::string clips[] = {MakeClip(".mov"), MakeClip(".avi"), MakeClip(".mkv")};
    static MemoryFile memory;
    ReadAsIndex(bytes, size);
    memory.Fill(marlet::project::FileOfInput(bytes, size, clips));
    const Opened opened(memory.Path());
    if (opened.code != kSuccess) {
        if (opened.file)
            Fail("a file that is refused is handed out");
        return 0;
    }
    if (opened.video)
        AskVideo(*opened.video);
    if (opened.audio)
        AskAudio(*opened.audio);
    opened.file->Sleep();
    if (opened.file->Wake() != kSuccess)
        Fail("a file is not what it was");
    ExpectSame(opened, Opened(memory.Path()));
    return 0;
}
