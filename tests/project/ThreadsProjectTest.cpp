#include "ImageFiles.h"

#include <marlet/project/AssetList.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>

#include <boost/smart_ptr/shared_array.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <thread>

using namespace marlet::project;

namespace
{

constexpr int kThreads = 4;

/// Runs the function, which takes the thread's number, on all threads at once.
template <class Function> void OnAllThreads(Function &&function)
{
    std::latch start(kThreads);
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&, i] {
            start.arrive_and_wait();
            function(i);
        });
    for (std::thread &thread : threads)
        thread.join();
}

} // namespace

TEST(Threads, FindAssetsOfAListThatHasJustChanged)
{
    const auto project = Project::Create(nullptr);
    for (int round = 0; round < 20; ++round) {
        for (int i = 0; i < 20; ++i)
            project->Assets().All().Add(SolidAsset::Create(u"", {}, i, i, PAR::Square));
        const AssetList &list = project->Assets();
        std::atomic<int> misses = 0;
        OnAllThreads([&](int) {
            for (const auto &asset : list.All())
                misses += list.GetByID(asset->ID()) != asset;
            misses += list.GetByType(AssetType::Solid).Count() != list.All().Count();
        });
        EXPECT_EQ(misses, 0);
    }
}

TEST(Threads, ReadAnImageWhileTheHostChangesIt)
{
    const ImageFiles files;
    const WideString wide = files.Write("wide.png", files.Plain(40, 10));
    const WideString high = files.Write("high.png", files.Plain(10, 40, QImage::Format_ARGB32));
    const auto asset = ImageAsset::Create(wide);
    std::atomic<int> faults = 0;
    std::atomic<int> changes = 0;
    std::atomic<int> reads = 0;
    const auto change = [&] {
        asset->SetFilename(++changes % 2 ? wide : high);
        faults += asset->Filename().empty();
        asset->Sleep();
    };
    const auto readPixels = [&] {
        boost::shared_array<unsigned char> pixels;
        int width = 0;
        int height = 0;
        faults += asset->ReadPixelData(100, 100, pixels, &width, &height) != 0;
        faults += width * height != 400 || pixels[0] == 0;
        faults += ImageAsset::Copy(asset)->PixelBitCount() == 0;
    };
    const auto readHeader = [&] {
        faults += asset->Width() + asset->Height() == 0;
        faults += asset->Status() != ImageAsset::FileStatus::Usable || asset->IsOffline();
        ++reads;
    };
    OnAllThreads([&](int thread) {
        // Until each side has got its turn often enough to meet the other.
        while (changes < 200 || reads < 1000) {
            if (thread == 0)
                change();
            else if (thread == 1)
                readPixels();
            else
                readHeader();
        }
    });
    EXPECT_EQ(faults, 0);
}
