// What cannot be opened or read, what changes while it is open, and that nothing is left behind.

#include "MediaClips.h"

#include <algorithm>
#include <random>

#include <malloc.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace clips;
namespace fs = std::filesystem;

namespace
{

std::string SmallClipIn(const Folder &folder, const std::string &name, int frames = 12)
{
    EncoderOptions options = SmallClip();
    options.width = 64;
    options.height = 32;
    options.bFrames = 1;
    options.groupSize = 5;
    options.sampleRate = 8000;
    return MakeClip(folder.Path(name), options, frames, 4000);
}

/// Asks for everything. The codes do not matter, but no byte may be written behind the buffer.
void ReadAll(const Media &media)
{
    constexpr int kMostBytes = 1 << 22;
    constexpr unsigned char kUntouched = 0x5A;
    const int size = media.video ? media.video->FrameBufferSize(KyImageChannels::Four) : 0;
    if (media.video && size > 0 && size <= kMostBytes) {
        Bytes bytes(static_cast<std::size_t>(size) + 64, kUntouched);
        const int count = std::min(media.video->FrameCount(), 100);
        for (int i = 0; i < 2 * count; ++i)
            media.video->GetFrame(i < count ? i : 2 * count - 1 - i, KyImageChannels::Four, bytes.data(),
                                  size, nullptr, 0);
        EXPECT_TRUE(std::all_of(bytes.end() - 64, bytes.end(), [](auto byte) { return byte == kUntouched; }));
    }
    if (media.audio) {
        Bytes bytes(static_cast<std::size_t>(media.audio->ChannelCount() * 4 * 1000));
        for (long long start = 0; start < 5000; start += 500)
            media.audio->GetSamples(start, 1000, bytes.data(), static_cast<int>(bytes.size()), nullptr);
    }
}

std::string Damaged(std::string bytes, unsigned int seed)
{
    std::mt19937 random(seed);
    const std::size_t changes = 1 + random() % 30;
    for (std::size_t i = 0; i < changes; ++i) {
        // Headers and indices stand at both ends.
        const std::size_t range = i % 2 ? bytes.size() : std::min<std::size_t>(bytes.size(), 1500);
        const std::size_t place = random() % range;
        bytes[seed % 3 ? place : bytes.size() - 1 - place] = static_cast<char>(random());
    }
    if (seed % 5 == 0)
        bytes.resize(random() % bytes.size());
    return bytes;
}

std::ptrdiff_t OpenDescriptors()
{
    return std::distance(fs::directory_iterator("/proc/self/fd"), {});
}

std::ptrdiff_t UsedHeap()
{
    malloc_trim(0);
    return static_cast<std::ptrdiff_t>(mallinfo2().uordblks);
}

} // namespace

TEST(MediaFailures, TellWhyAFileDoesNotOpen)
{
    const Folder folder;
    fs::create_directory(folder.Path("folder"));
    ASSERT_EQ(::mkfifo(folder.Path("pipe").c_str(), 0600), 0);
    folder.Write("empty.mov", "");
    folder.Write("text.txt", std::string(3000, 'x') + "\nmore words\n");
    folder.Write("subtitles.srt", "1\n00:00:01,000 --> 00:00:02,000\nWords\n\n");
    SmallClipIn(folder, "cut.mov");
    folder.Write("cut.mov", folder.Read("cut.mov").substr(0, 2000));
    folder.Write("list.m3u8", "#EXTM3U\n#EXT-X-TARGETDURATION:9\n#EXTINF:9,\ncut.mov\n#EXT-X-ENDLIST\n");
    struct {
        const char *name;
        int code;
    } const kFiles[] = {{"missing.mov", kNotFound},
                        {"text.txt/below.mov", kNotFound},
                        {"folder", kNotAFile},
                        {"pipe", kNotAFile},
                        {"empty.mov", kUnknownFormat},
                        {"text.txt", kUnknownFormat},
                        {"subtitles.srt", kUnknownFormat},
                        {"cut.mov", kDamaged},
                        {"list.m3u8", kDamaged}};
    for (const auto &file : kFiles)
        EXPECT_EQ(Media(folder.Path(file.name)).code, file.code) << file.name;
    SmallClipIn(folder, "whole.mov");
    folder.Write("list.ffconcat", "ffconcat version 1.0\nfile whole.mov\n");
    const fs::path workingFolder = fs::current_path();
    fs::current_path(folder.Path(""));
    EXPECT_EQ(Media("list.ffconcat").code, kDamaged);
    fs::current_path(workingFolder);
    EXPECT_EQ(Media("/dev/zero").code, kNotAFile);
    EXPECT_EQ(Media(folder.Path("missing.0001.png"), 25).code, kNotFound);
    EXPECT_EQ(Media(folder.Path("text.txt"), 25).code, kUnknownFormat);
    KyAbstractMediaFile *file = nullptr;
    EXPECT_EQ(KyMediaFileCreate(nullptr, &file), kFailed);
    EXPECT_EQ(KyMediaFileCreate(u"", &file), kNotFound);
    EXPECT_EQ(file, nullptr);
    EXPECT_EQ(KyMediaFileRelease(nullptr), kSuccess);
    if (::geteuid() == 0)
        return; // who may read everything
    fs::permissions(SmallClipIn(folder, "secret.mov"), fs::perms::none);
    EXPECT_EQ(Media(folder.Path("secret.mov")).code, kNoPermission);
}

TEST(MediaFailures, SleepKeepsTheFactsAndWakeFindsTheFileAgain)
{
    const Folder folder;
    const std::string path = SmallClipIn(folder, "clip.mov");
    const auto descriptors = OpenDescriptors();
    const Media media(path);
    const Bytes frame = media.Frame(7);
    EXPECT_EQ(media.file->Wake(), kNothingToReport);
    EXPECT_EQ(media.file->Sleep(), kSuccess);
    EXPECT_EQ(OpenDescriptors(), descriptors);
    EXPECT_EQ(media.video->FrameCount(), 12);
    Bytes bytes(frame.size());
    const int size = static_cast<int>(bytes.size());
    EXPECT_EQ(media.video->GetFrame(7, KyImageChannels::Four, bytes.data(), size, nullptr, 0), kAsleep);
    EXPECT_EQ(media.audio->GetSamples(0, 1, bytes.data(), size, nullptr), kAsleep);
    EXPECT_EQ(media.file->Wake(), kSuccess);
    EXPECT_EQ(media.Frame(7), frame);

    // Gone, cut off, and back.
    const std::string content = folder.Read("clip.mov");
    media.file->Sleep();
    fs::remove(path);
    EXPECT_EQ(media.file->Wake(), kNotFound);
    EXPECT_EQ(media.file->State(), kNotFound);
    folder.Write("clip.mov", content.substr(0, content.size() / 3));
    EXPECT_EQ(media.file->Wake(), kDamaged);
    EXPECT_EQ(media.file->State(), kDamaged);
    folder.Write("clip.mov", content);
    media.file->NotifyRelinked();
    EXPECT_EQ(media.file->Wake(), kNothingToReport);
    EXPECT_EQ(media.file->State(), kSuccess);
    EXPECT_EQ(media.Frame(7), frame);
    EXPECT_EQ(media.Samples<std::int16_t>(10, 1)[0], Sine(10, 0));
}

TEST(MediaFailures, AFileThatIsDeletedWhileItIsReadStays)
{
    const Folder folder;
    const Media deleted(SmallClipIn(folder, "deleted.avi"));
    EXPECT_EQ(NumberIn(deleted.Frame(0), 64), 0);
    fs::remove(folder.Path("deleted.avi"));
    EXPECT_EQ(NumberIn(deleted.Frame(9), 64), 9);
}

TEST(MediaFailures, StreamsOutliveTheirFile)
{
    const Folder folder;
    const std::string path = SmallClipIn(folder, "clip.mkv");
    std::shared_ptr<KyAbstractVideoStream> video;
    {
        const Media media(path);
        video = media.video;
        EXPECT_EQ(media.file->Stream(kVideoStream), video);
        EXPECT_EQ(media.file->Stream(2), nullptr);
    }
    Bytes bytes(64 * 32 * 4);
    ASSERT_EQ(video->GetFrame(5, KyImageChannels::Four, bytes.data(), 64 * 32 * 4, nullptr, 0), kSuccess);
    EXPECT_EQ(NumberIn(bytes, 64), 5);
}

TEST(MediaFailures, ADamagedFrameNeverShiftsThoseBehindIt)
{
    const Folder folder;
    EncoderOptions options = SmallClip();
    options.groupSize = 1;
    std::string bytes = (MakeClip(folder.Path("clip.avi"), options, 30), folder.Read("clip.avi"));
    // The start code of the tenth picture.
    std::size_t place = 0;
    for (int i = 0; i < 10; ++i)
        place = bytes.find(std::string("\0\0\1\xB6", 4), place + 1);
    bytes.replace(place, 4, "junk");
    const Media media(folder.Write("damaged.avi", bytes));
    ASSERT_EQ(media.code, kSuccess);
    ASSERT_EQ(media.video->FrameCount(), 30);
    for (const int number : {29, 10, 8, 20, 11, 10})
        EXPECT_EQ(NumberIn(media.Frame(number), 80), number);
    const int shown = NumberIn(media.Frame(9), 80);
    EXPECT_TRUE(shown == 8 || shown == -1) << shown;
}

TEST(MediaFailures, TwoHundredDamagedFilesGiveCodes)
{
    const Folder folder;
    constexpr const char *kEndings[] = {"mov", "avi", "mkv"};
    std::vector<std::string> clips;
    for (const char *ending : kEndings) {
        const std::string name = std::string("clip.") + ending;
        SmallClipIn(folder, name);
        clips.push_back(folder.Read(name));
    }
    int opened = 0;
    for (unsigned int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        const std::string name = std::string("damaged.") + kEndings[i % 3];
        const Media media(folder.Write(name, Damaged(clips[i % 3], i)));
        if (media.code == kSuccess)
            ReadAll(media);
        opened += media.code == kSuccess;
    }
    // Otherwise the damage would be too much, or too little, to show anything.
    EXPECT_GT(opened, 50);
    EXPECT_LT(opened, 200);
}

TEST(MediaFailures, OpeningAThousandTimesLeavesNothingBehind)
{
    const Folder folder;
    const std::string good = SmallClipIn(folder, "good.mov", 4);
    const std::string damaged = folder.Write("damaged.mov", Damaged(folder.Read("good.mov"), 11));
    const std::string cut = folder.Write("cut.mov", folder.Read("good.mov").substr(0, 900));
    const auto openAll = [&] {
        for (const std::string &path : {good, damaged, cut, good}) {
            const Media media(path);
            if (media.code == kSuccess)
                ReadAll(media);
        }
    };
    openAll();
    const auto descriptors = OpenDescriptors();
    const auto heap = UsedHeap();
    for (int i = 0; i < 250; ++i)
        openAll();
    EXPECT_EQ(OpenDescriptors(), descriptors);
    constexpr std::ptrdiff_t kNoise = 200'000;
    EXPECT_LT(UsedHeap() - heap, kNoise);
}
