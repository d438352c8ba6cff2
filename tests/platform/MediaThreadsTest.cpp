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
