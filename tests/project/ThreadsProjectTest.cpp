#include "ImageFiles.h"
#include "Loading.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/project/ImageAsset.h>
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

/// A composition of point layers, each the child of the one before it, that move and turn.
WideString ChainOfLayers(int count)
{
    const auto project = Project::Create(nullptr);
    const auto composition = CompositionAsset::Create(u"", AudioVideoSettings::Preset::Pal, 100);
    project->Assets().All().Add(composition);
    for (int i = 0; i < count; ++i) {
        const auto layer = PointLayer::Create(u"");
        layer->SetParentComposition(composition->ID());
        if (i > 0)
            layer->SetParentLayer(composition->Layers().back()->ID());
        KeyFrame bent(1000, 90.0f);
        bent.SetType(KeyFrameType::Bezier);
        bent.SetIncomingPoint({-300, 10});
        layer->Animation().KeyFrames("rotationZ").Add(KeyFrame(0, 0.0f));
        layer->Animation().KeyFrames("rotationZ").Add(bent);
        for (int key = 0; key < 3; ++key)
            layer->Animation()
                .KeyFrames("position")
                .Add(KeyFrame(500 * key,
                              kytl::matl::KyPoint<3, float>{float(10 * key), float(key * key), float(i)}));
        composition->Layers().Add(layer);
    }
    return project->Serialize();
}

std::vector<AbstractLayer::Matrix> MatricesOf(const std::shared_ptr<Project> &project)
{
    std::vector<AbstractLayer::Matrix> result;
    for (const auto &layer : OnlyComposition(*project)->Layers())
        for (int time = -100; time < 1200; time += 90)
            result.push_back(layer->WorldTransformationAtTime(time, project, false));
    return result;
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

TEST(Threads, EvaluateADocumentThatHasJustBeenLoaded)
{
    const WideString text = ChainOfLayers(8);
    const auto expected = MatricesOf(Load(text));
    for (int round = 0; round < 10; ++round) {
        const auto project = Load(text);
        std::atomic<int> differences = 0;
        OnAllThreads([&](int) {
            differences += MatricesOf(project) != expected;
            for (const auto &layer : OnlyComposition(*project)->Layers()) {
                differences +=
                    layer->ParentComposition(project->Assets())->ID() != layer->ParentCompositionID();
                differences += layer->HasParentLayer() &&
                               layer->ParentLayer(project->Assets())->ID() != layer->ParentLayerID();
            }
        });
        EXPECT_EQ(differences, 0);
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
