// What was learnt of a file and is kept for the next time.

#include "CodedClips.h"

#include <marlet/platform/media/contents/ContentsForm.h>
#include <marlet/platform/media/contents/IndexFolder.h>

#include <algorithm>
#include <csignal>
#include <fstream>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace clips;
namespace fs = std::filesystem;

TEST(MediaIndex, IsForTheSameFileAlone)
{
    const Folder folder;
    const std::string path = CodedClip(folder.Path("clip.mp4"), AV_CODEC_ID_MPEG4, 2, 40);
    const MediaContents contents = ContentsOf(path);
    const ContentsOrigin origin{path, FileSource(path).Identity()};
    const std::string bytes = ContentsToBytes(origin, contents);
    EXPECT_EQ(ContentsFromBytes(origin, bytes), contents);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        std::string damaged = bytes;
        damaged[i] = static_cast<char>(damaged[i] ^ 4);
        EXPECT_FALSE(ContentsFromBytes(origin, damaged)) << i;
        EXPECT_FALSE(ContentsFromBytes(origin, std::string_view(bytes).substr(0, i))) << i;
    }
    for (std::int64_t FileIdentity::*field :
         {&FileIdentity::size, &FileIdentity::writtenAt, &FileIdentity::changedAt}) {
        ContentsOrigin other = origin;
        other.identity.*field += 1;
        EXPECT_FALSE(ContentsFromBytes(other, bytes));
    }
    EXPECT_FALSE(ContentsFromBytes({path + "2", origin.identity}, bytes));
}

TEST(MediaIndex, IsKeptWhateverElseIsInTheFolder)
{
    const Folder folder;
    const std::string path = CodedClip(folder.Path("clip.mp4"), AV_CODEC_ID_MPEG4, 1, 30);
    const FileIdentity identity = FileSource(path).Identity();
    const MediaContents contents = ContentsOf(path);
    IndexFolder index;
    index.Keep(path, identity, contents);
    EXPECT_FALSE(index.Find(path, identity));
    EXPECT_FALSE(index.Describe(path));
    index.SetPath(folder.Path("deep/kept"));
    EXPECT_FALSE(index.Find(path, identity));
    index.Keep(path, identity, contents);
    EXPECT_EQ(index.Find(path, identity), contents);
    const KeptIndex kept = *index.Describe(path);
    EXPECT_TRUE(kept.isKept);
    EXPECT_EQ(kept.bytes, fs::file_size(kept.place));
    EXPECT_EQ(kept.frames, 30);
    EXPECT_EQ(kept.sounds, static_cast<int>(contents.sound->samples.Packets().size()));

    std::ofstream(kept.place, std::ios::binary) << "rubbish";
    EXPECT_FALSE(index.Find(path, identity));
    index.Keep(path, identity, contents);
    EXPECT_TRUE(index.Find(path, identity));
    fs::remove(kept.place);
    fs::create_directories(kept.place + "/in the way");
    EXPECT_FALSE(index.Find(path, identity));
    index.Keep(path, identity, contents);
    EXPECT_EQ(fs::directory_iterator(kept.place)->path().filename(), "in the way");
    // A file is no folder.
    index.SetPath(path);
    index.Keep(path, identity, contents);
    EXPECT_FALSE(index.Find(path, identity));
}

TEST(MediaIndex, IsNotKeptInAFolderThatTakesNoMore)
{
    const Folder folder;
    const std::string path = CodedClip(folder.Path("clip.mp4"), AV_CODEC_ID_MPEG4, 1, 30);
    const FileIdentity identity = FileSource(path).Identity();
    const MediaContents contents = ContentsOf(path);
    IndexFolder index;
    index.SetPath("/proc/self/kept");
    index.Keep(path, identity, contents);
    EXPECT_FALSE(index.Find(path, identity));

    index.SetPath(folder.Path("kept"));
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit before {
    };
    ::getrlimit(RLIMIT_FSIZE, &before);
    const struct rlimit full = {100, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &full);
    index.Keep(path, identity, contents);
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(index.Find(path, identity));
    EXPECT_EQ(fs::directory_iterator(folder.Path("kept")), fs::directory_iterator());
    index.Keep(path, identity, contents);
    EXPECT_EQ(index.Find(path, identity), contents);
}

TEST(MediaIndex, IsKeptWholeByTwoProcessesAtOnce)
{
    constexpr int kTimes = 200;
    const Folder folder;
    const std::string path = CodedClip(folder.Path("clip.mp4"), AV_CODEC_ID_MPEG4, 1, 30);
    const FileIdentity identity = FileSource(path).Identity();
    const MediaContents contents = ContentsOf(path);
    IndexFolder index;
    index.SetPath(folder.Path("kept"));
    index.Keep(path, identity, contents);
    const ::pid_t other = ::fork();
    for (int i = 0; i < kTimes; ++i) {
        index.Keep(path, identity, contents);
        if (other != 0) {
            EXPECT_EQ(index.Find(path, identity), contents) << i;
        }
    }
    if (other == 0)
        ::_exit(0);
    int status = -1;
    EXPECT_EQ(::waitpid(other, &status, 0), other);
    EXPECT_EQ(status, 0);
    // The entry, and the mark of the last pruning.
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path("kept")), {}), 2);
}

TEST(MediaIndex, OpensAFileAsItIs)
{
    const Folder folder;
    const auto resources = std::make_shared<MediaResources>();
    resources->Index().SetPath(folder.Path("kept"));
    for (const char *name : {"clip.mp4", "clip.avi", "clip.mkv"}) {
        SCOPED_TRACE(name);
        const std::string path = CodedClip(folder.Path(name), AV_CODEC_ID_MPEG4, 2, 60);
        const Media first(path, std::nullopt, resources);
        std::optional<Media> again;
        EXPECT_LT(BytesReadBy([&] { again.emplace(path, std::nullopt, resources); }), 20'000u);
        const Media &second = *again;
        ASSERT_EQ(second.code, kSuccess);
        for (const int number : {59, 0, 31})
            EXPECT_EQ(second.Frame(number), first.Frame(number));
        EXPECT_EQ(second.Samples<std::int32_t>(5000, 100), first.Samples<std::int32_t>(5000, 100));
        // Another file in its place is another.
        CodedClip(path, AV_CODEC_ID_MPEG4, 0, 20);
        EXPECT_EQ(Media(path, std::nullopt, resources).video->FrameCount(), 20);
    }
}

TEST(MediaIndex, IsThrownAwayByAgeAndBySize)
{
    const Folder folder;
    IndexFolder index;
    index.SetPath(folder.Path(""));
    const auto now = fs::file_time_type::clock::now();
    for (int day = 0; day < 70; day += 10) {
        const std::string entry = folder.Write(std::to_string(day) + ".mix", std::string(1000, 'x'));
        fs::last_write_time(entry, now - std::chrono::hours(24 * day) - std::chrono::minutes(1));
    }
    const std::string other = folder.Write("other.txt", std::string(9000, 'x'));
    fs::last_write_time(other, now - std::chrono::hours(24 * 100));
    const auto left = [&folder] {
        std::vector<std::string> names;
        for (const auto &entry : fs::directory_iterator(folder.Path("")))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    };
    index.Prune();
    EXPECT_EQ(left(), (std::vector<std::string>{"0.mix", "10.mix", "20.mix", "30.mix", "40.mix", "50.mix",
                                                "other.txt"}));
    index.Prune(3500);
    EXPECT_EQ(left(), (std::vector<std::string>{"0.mix", "10.mix", "20.mix", "other.txt"}));
}
