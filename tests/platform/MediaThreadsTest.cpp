// One file on several threads: pictures, sound and sleep at the same time.

#include "MediaClips.h"

#include <atomic>
#include <random>
#include <thread>

using namespace clips;

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
