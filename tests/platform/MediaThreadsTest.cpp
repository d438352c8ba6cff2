// One file on several threads: pictures, sound and sleep at the same time.

#include "MediaClips.h"

#include <marlet/platform/media/VideoStream.h>
#include <marlet/platform/media/decoding/StreamCache.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <random>
#include <thread>
#include <utility>

using namespace clips;

namespace
{

/// A frame during whose decoding something else happens.
class BusyFrame final : public FrameSource
{
public:
    BusyFrame(MediaResourcesPtr resources, std::function<void()> meanwhile)
        : cache_(std::move(resources)), meanwhile_(std::move(meanwhile))
    {
    }

    int Count() const override { return 1; }
    StreamCache &Cache() override { return cache_; }
    void Close() override {}
    FramePtr Frame(int) override
    {
        meanwhile_();
        FramePtr frame = NewFrame();
        frame->width = 16;
        frame->height = 8;
        frame->format = AV_PIX_FMT_GRAY8;
        EXPECT_GE(av_frame_get_buffer(frame.get(), 0), 0);
        return frame;
    }

private:
    StreamCache cache_;
    std::function<void()> meanwhile_;
};

} // namespace

TEST(MediaThreads, NeitherFactsNorOtherFilesWaitForAFrameThatIsDecoded)
{
    const Folder folder;
    EncoderOptions options = SmallClip();
    options.sampleRate = 8000;
    const auto resources = std::make_shared<MediaResources>();
    const Media other(MakeClip(folder.Path("clip.mov"), options, 10, 8000), std::nullopt, resources);
    ASSERT_EQ(other.code, kSuccess);
    VideoFacts facts;
    facts.width = 16;
    facts.height = 8;
    facts.frameCount = 1;
    std::future<int> others;
    bool isDone = false;
    const std::unique_ptr<VideoStream> stream = std::make_unique<VideoStream>(
        facts, std::make_unique<BusyFrame>(resources, [&] {
            others = std::async(std::launch::async, [&] {
                return stream->Width() + stream->Height() + stream->FrameCount() +
                       NumberIn(other.Frame(3), 80) + other.file->State() +
                       static_cast<int>(other.Samples<std::int16_t>(0, 5).size());
            });
            isDone = others.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
        }));
    Bytes bytes(16 * 8 * 4);
    EXPECT_EQ(
        stream->GetFrame(0, KyImageChannels::Four, bytes.data(), static_cast<int>(bytes.size()), nullptr, 0),
        kSuccess);
    EXPECT_TRUE(isDone);
    EXPECT_EQ(others.get(), 16 + 8 + 1 + 3 + kSuccess + 5 * other.audio->ChannelCount());
}

TEST(MediaThreads, ReadWhileTheFileSleepsAndWakes)
{
    constexpr int kFrames = 30;
    const Folder folder;
    EncoderOptions options = SmallClip();
    options.bFrames = 1;
    options.sampleRate = 8000;
    const Media media(MakeClip(folder.Path("clip.mov"), options, kFrames, 8000));
    ASSERT_EQ(media.code, kSuccess);
    // Whoever is kept from the processor while the file sleeps still gets to see it awake.
    std::atomic<bool> isDone = false;
    std::atomic<int> wrong = 0;
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    for (unsigned int seed : {1u, 2u})
        threads.emplace_back([&, seed] {
            std::mt19937 random(seed);
            Bytes bytes(80 * 48 * 4);
            for (bool isLast = false; !isLast;) {
                isLast = isDone;
                const int number = static_cast<int>(random() % kFrames);
                const int code = media.video->GetFrame(number, KyImageChannels::Four, bytes.data(),
                                                       static_cast<int>(bytes.size()), nullptr, 0);
                wrong += code == kSuccess ? NumberIn(bytes, 80) != number : code != kAsleep;
                right += code == kSuccess;
            }
        });
    threads.emplace_back([&] {
        std::mt19937 random(3);
        std::int16_t sample[2];
        for (bool isLast = false; !isLast;) {
            isLast = isDone;
            const int place = static_cast<int>(random() % 8000);
            const int code = media.audio->GetSamples(place, 1, reinterpret_cast<unsigned char *>(sample),
                                                     sizeof sample, nullptr);
            wrong += code == kSuccess ? sample[1] != Sine(place, 1) : code != kAsleep;
        }
    });
    for (int i = 0; i < 40; ++i) {
        EXPECT_EQ(media.file->Sleep(), kSuccess);
        EXPECT_EQ(media.file->Wake(), kSuccess);
        std::this_thread::yield();
    }
    isDone = true;
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(right, 0);
}

TEST(MediaThreads, ReadSideBySideOutOfOneCacheThatIsTooSmall)
{
    constexpr int kFrames = 24;
    constexpr int kFiles = 4;
    constexpr std::size_t kFrameBytes = 80 * 48 * 3 / 2;
    const Folder folder;
    const auto resources = std::make_shared<MediaResources>();
    resources->Frames().SetBudget(20 * kFrameBytes);
    EncoderOptions options = SmallClip();
    options.bFrames = 1;
    options.sampleRate = 8000;
    std::vector<std::unique_ptr<Media>> files;
    for (int i = 0; i < kFiles; ++i) {
        const std::string path =
            MakeClip(folder.Path("clip" + std::to_string(i) + ".mov"), options, kFrames, 8000);
        files.push_back(std::make_unique<Media>(path, std::nullopt, resources));
        ASSERT_EQ(files.back()->code, kSuccess);
    }
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (unsigned int seed = 1; seed <= 3; ++seed)
        threads.emplace_back([&, seed] {
            std::mt19937 random(seed);
            for (int i = 0; i < 60; ++i) {
                // Two threads have a file of their own, and all share the others.
                const Media &media = *files[random() % 2 ? seed % kFiles : random() % kFiles];
                const int number = static_cast<int>(random() % kFrames);
                wrong += NumberIn(media.Frame(number), 80) != number;
                const int place = static_cast<int>(random() % 7000);
                wrong += media.Samples<std::int16_t>(place, 10)[3] != Sine(place + 1, 1);
                wrong += media.video->FrameCount() != kFrames;
                if (i % 20 == 7)
                    resources->Frames().SetBudget((i / 20) * 10 * kFrameBytes);
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    files.clear();
    EXPECT_EQ(resources->Frames().Used(), 0u);
}
