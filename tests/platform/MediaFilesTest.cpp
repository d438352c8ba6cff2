// What is open after opening and between readings, and what becomes of files that change in the meantime.

#include "MediaClips.h"

#include <marlet/platform/media/files/FileSource.h>

#include <functional>
#include <utility>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace clips;
namespace fs = std::filesystem;

namespace
{

std::ptrdiff_t CountIn(const char *folder)
{
    return std::distance(fs::directory_iterator(folder), {});
}

std::ptrdiff_t OpenDescriptors()
{
    return CountIn("/proc/self/fd");
}

/// The limit of the process on open files, until the end.
class Limit
{
public:
    explicit Limit(rlim_t most)
    {
        ::getrlimit(RLIMIT_NOFILE, &before_);
        const struct rlimit limit = {most, before_.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
    Limit(const Limit &) = delete;
    Limit &operator=(const Limit &) = delete;
    ~Limit() { ::setrlimit(RLIMIT_NOFILE, &before_); }

private:
    struct rlimit before_ {
    };
};

std::string TinyClip(const Folder &folder, const std::string &name, int frames, int samples = 0)
{
    EncoderOptions options = SmallClip();
    options.sampleRate = samples > 0 ? 8000 : 0;
    return MakeClip(folder.Path(name), options, frames, samples);
}

using MediaPtr = std::unique_ptr<Media>;

std::vector<MediaPtr> OpenCopies(const Folder &folder, const std::string &clip, int count,
                                 const MediaResourcesPtr &resources)
{
    std::vector<MediaPtr> media;
    for (int i = 0; i < count; ++i) {
        const std::string copy = folder.Path(std::to_string(i) + ".avi");
        fs::copy_file(clip, copy);
        media.push_back(std::make_unique<Media>(copy, std::nullopt, resources));
    }
    return media;
}

/// How many give their frame 2, asked one after the other, with nothing left of the last time.
int CountThatRead(const std::vector<MediaPtr> &media)
{
    int right = 0;
    for (const MediaPtr &one : media) {
        one->file->Sleep();
        one->file->Wake();
        right += NumberIn(one->Frame(2), 80) == 2;
    }
    return right;
}

int CodeOfFrame(KyAbstractVideoStream &video, int number)
{
    Bytes bytes(static_cast<std::size_t>(video.FrameBufferSize(KyImageChannels::Four)));
    return video.GetFrame(number, KyImageChannels::Four, bytes.data(), static_cast<int>(bytes.size()),
                          nullptr, 0);
}

} // namespace

TEST(MediaFiles, NothingIsHeldOfAFileThatNobodyReads)
{
    const Folder folder;
    for (const char *name : {"clip.mov", "clip.avi", "clip.mkv"}) {
        SCOPED_TRACE(name);
        const std::string path = TinyClip(folder, name, 20, 4000);
        const auto descriptors = OpenDescriptors();
        const auto threads = CountIn("/proc/self/task");
        const Media media(path);
        ASSERT_EQ(media.code, kSuccess);
        EXPECT_EQ(OpenDescriptors(), descriptors);
        EXPECT_EQ(CountIn("/proc/self/task"), threads);
    }
}

TEST(MediaFiles, AreOpenInABoundedNumberAndReadInTurn)
{
    constexpr int kClips = 90;
    const Folder folder;
    const auto resources = std::make_shared<MediaResources>();
    const auto media = OpenCopies(folder, TinyClip(folder, "clip.avi", 4), kClips, resources);
    EXPECT_EQ(CountThatRead(media), kClips);
    EXPECT_EQ(resources->Files()->Count(), OpenFiles::kMost);
    {
        const Limit limit(80);
        EXPECT_EQ(CountThatRead(media), kClips);
        EXPECT_LE(resources->Files()->Count(), 80 / 4);
    }
    // The process has used all others up.
    const Limit limit(200);
    std::vector<int> others;
    for (int other = 0; other >= 0 && others.size() < 200;)
        others.push_back(other = ::open("/dev/null", O_RDONLY));
    EXPECT_EQ(CountThatRead(media), kClips);
    for (const int other : others)
        ::close(other);
}

TEST(MediaFiles, AFileThatIsNotWhatItWasGivesACodeAndNoFrame)
{
    struct {
        const char *what;
        std::function<void(const fs::path &)> change;
        int code;
    } const kChanges[] = {
        {"vanished", [](const fs::path &path) { fs::remove(path); }, kNotFound},
        {"a folder", [](const fs::path &path) { fs::remove(path), fs::create_directory(path); }, kNotAFile},
        {"shrunk", [](const fs::path &path) { fs::resize_file(path, fs::file_size(path) - 100); }, kDamaged},
        {"grown", [](const fs::path &path) { std::ofstream(path, std::ios::app) << "more"; }, kDamaged},
        {"written over",
         [](const fs::path &path) {
             std::fstream(path, std::ios::in | std::ios::out | std::ios::binary).write("RIFF", 4);
             fs::last_write_time(path, fs::last_write_time(path) + std::chrono::seconds(1));
         },
         kDamaged},
        {"replaced",
         [](const fs::path &path) {
             fs::copy_file(path, path.string() + "2");
             fs::rename(path.string() + "2", path);
         },
         kDamaged},
    };
    for (const bool isReadBefore : {false, true})
        for (const auto &change : kChanges) {
            SCOPED_TRACE(std::string(change.what) + (isReadBefore ? " after reading" : " before reading"));
            const Folder folder;
            const std::string path = TinyClip(folder, "clip.avi", 60, 8000);
            Media media(path);
            ASSERT_EQ(media.code, kSuccess);
            const bool isOpen = isReadBefore && NumberIn(media.Frame(0), 80) == 0;
            change.change(path);
            // What is open goes on to be what it was, as long as nobody writes into it.
            const bool isKept = isOpen && (change.code != kDamaged || change.what == std::string("replaced"));
            EXPECT_EQ(CodeOfFrame(*media.video, 50), isKept ? kSuccess : change.code);
            EXPECT_EQ(media.file->State(), isKept ? kSuccess : change.code);
        }
}

TEST(MediaFiles, WakingGivesTheStreamsOfAnotherFileAndTheOldOnesNoMore)
{
    struct {
        int frames;
        int samples;
        bool sameVideo;
        bool sameAudio;
    } const kOthers[] = {{9, 4000, false, true},
                         {12, 5000, true, false},
                         {12, 0, true, false},
                         {11, 3000, false, false},
                         {12, 4000, true, true}};
    for (const auto &other : kOthers) {
        SCOPED_TRACE(std::to_string(other.frames) + ", " + std::to_string(other.samples));
        const Folder folder;
        Media media(TinyClip(folder, "clip.mov", 12, 4000));
        const auto video = media.video;
        const auto audio = media.audio;
        media.file->Sleep();
        TinyClip(folder, "clip.mov", other.frames, other.samples);
        ASSERT_EQ(media.file->Wake(), kSuccess);
        EXPECT_EQ(media.file->State(), kSuccess);
        media.TakeStreams();
        EXPECT_EQ(media.video == video, other.sameVideo);
        EXPECT_EQ(media.audio == audio, other.sameAudio);
        EXPECT_EQ(media.video->FrameCount(), other.frames);
        EXPECT_EQ(NumberIn(media.Frame(8), 80), 8);
        EXPECT_EQ(CodeOfFrame(*video, 3), other.sameVideo ? kSuccess : kDamaged);
        unsigned char sample[4];
        EXPECT_EQ(audio->GetSamples(0, 1, sample, 4, nullptr), other.sameAudio ? kSuccess : kDamaged);
    }
}

TEST(MediaFiles, OneThatChangesWhileItIsAwakeIsOpenedAgainByWaking)
{
    const Folder folder;
    Media media(TinyClip(folder, "clip.avi", 12));
    TinyClip(folder, "clip.avi", 20);
    EXPECT_EQ(CodeOfFrame(*media.video, 3), kDamaged);
    EXPECT_EQ(media.file->Wake(), kSuccess);
    media.TakeStreams();
    EXPECT_EQ(media.video->FrameCount(), 20);
    EXPECT_EQ(NumberIn(media.Frame(19), 80), 19);
    EXPECT_EQ(media.file->Wake(), kNothingToReport);
}

TEST(MediaFiles, OneThatWasNotOpenedSleepsUntilItIsWoken)
{
    const Folder folder;
    const auto wide = fs::path(folder.Path("clip.avi")).u16string();
    KyAbstractMediaFile *file = CreateUnopenedFile(wide.c_str(), std::nullopt, CommonResources());
    EXPECT_EQ(file->State(), kAsleep);
    EXPECT_EQ(file->Stream(kVideoStream), nullptr);
    EXPECT_EQ(file->Sleep(), kNothingToReport);
    EXPECT_EQ(file->Wake(), kNotFound);
    EXPECT_EQ(file->State(), kNotFound);
    TinyClip(folder, "clip.avi", 5);
    EXPECT_EQ(file->Wake(), kSuccess);
    EXPECT_EQ(file->State(), kSuccess);
    EXPECT_NE(file->Stream(kVideoStream), nullptr);
    KyMediaFileRelease(file);
}
