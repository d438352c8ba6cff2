#include "ClipFiles.h"

#include <marlet/platform/media/KyMedia.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/MediaVideoStream.h>

#include <boost/smart_ptr/shared_array.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace marlet::project;

TEST(Threads, ReadFramesWhileTheHostRelinksAndSleeps)
{
    const ClipFiles clips;
    const WideString paths[] = {clips.Write("dark.mov", 40), clips.Write("bright.mov", 200)};
    MediaManager manager;
    auto asset = manager.CreateMediaAsset(paths[0]);
    ASSERT_FALSE(asset->IsOffline());
    std::atomic<bool> stop = false;
    std::atomic<int> reads = 0;
    std::atomic<int> faults = 0;
    std::thread reader([&, asset] {
        boost::shared_array<unsigned char> scratch;
        const boost::shared_array<unsigned char> destination(new unsigned char[16 * 8 * 4]());
        unsigned int scratchSize = 0;
        int width = 0;
        int height = 0;
        for (int frame = 0; !stop; frame = (frame + 3) % ClipFiles::kFrames, ++reads) {
            // The host may drop the stream at any moment.
            const auto stream = asset->VideoStream();
            const int code = stream->GetFrame(25.0, frame, 16, 16, scratch, scratchSize, destination,
                                              16 * 8 * 4, &width, &height, 0);
            const int grey = destination[0];
            const bool isOfAClip = std::abs(grey - 40) <= 4 || std::abs(grey - 200) <= 4;
            faults += code != kyh::media::kAsleep && (code != 0 || !isOfAClip || width != 16 || height != 8);
            faults += asset->IsOffline() || asset->Width() != ClipFiles::kWidth || asset->HasAudio();
        }
    });
    const auto awaitReads = [&](int count) {
        for (const int goal = reads + count; reads < goal;)
            std::this_thread::yield();
    };
    for (int round = 0; round < 20; ++round) {
        manager.RelinkMediaFile(asset, paths[round % 2]);
        awaitReads(2);
        asset->Sleep();
        awaitReads(1);
        asset->Wake();
        awaitReads(1);
        manager.SleepAll();
        manager.WakeAll();
    }
    stop = true;
    reader.join();
    EXPECT_EQ(faults, 0);
}

TEST(Threads, RelinkOneAssetWhileAThirdReads)
{
    const ClipFiles clips;
    const WideString paths[] = {clips.Write("dark.mov", 40), clips.Write("bright.mov", 200),
                                clips.Path("gone.mov")};
    MediaManager manager;
    const auto asset = manager.CreateMediaAsset(paths[0]);
    std::atomic<int> relinking = 2;
    const auto relink = [&, asset](std::size_t first) {
        auto own = asset;
        for (std::size_t round = first; round < first + 60; ++round)
            manager.RelinkMediaFile(own, paths[round % 3]);
        --relinking;
    };
    std::thread relinkers[] = {std::thread(relink, 0), std::thread(relink, 1)};
    int faults = 0;
    int reads = 0;
    for (; relinking > 0 || reads == 0; ++reads) {
        std::vector<unsigned char> picture(ClipFiles::kWidth * ClipFiles::kHeight * 4);
        if (const auto stream = asset->VideoStream()) {
            const int code = stream->GetFrame(reads % ClipFiles::kFrames, kyh::media::KyImageChannels::Four,
                                              picture.data(), static_cast<int>(picture.size()), nullptr, 0);
            faults += code != 0 || (std::abs(picture[0] - 40) > 4 && std::abs(picture[0] - 200) > 4);
        }
    }
    for (std::thread &thread : relinkers)
        thread.join();
    EXPECT_EQ(faults, 0);
}
