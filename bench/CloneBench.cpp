// Compositions of many layers with five effects each, cloned. Each layer hangs on the one before it, and its
// effects pick it, so that all of these references are redirected.

#include <bench/support/BenchPlugin.h>
#include <bench/support/Documents.h>
#include <bench/support/Stopwatch.h>

#include <marlet/layers/GradeLayer.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/CompositionAsset.h>

using namespace marlet::project;

namespace
{

constexpr int kLayers = 1000;
constexpr int kEffects = 5;
constexpr int kKeys = 10;

void AddEffects(GradeLayer &layer, const std::shared_ptr<AbstractPlugin> &plugin, const kytl::KyID &picked,
                const kytl::KyID &compositionID)
{
    for (int i = 0; i < kEffects; ++i) {
        const auto effect = EffectInstance::Create(plugin);
        bench::Animate(effect->Properties(), bench::BenchPlugin::kAmount, kKeys);
        effect->Properties().StaticValue(bench::BenchPlugin::kLayer) = picked;
        effect->SetParent(layer.ID(), compositionID);
        layer.Effects().Add(effect);
    }
}

bench::Document MakeDocument(int layerCount, const std::shared_ptr<AbstractPlugin> &plugin)
{
    bench::Document document;
    kytl::KyID last;
    for (int i = 0; i < layerCount; ++i) {
        const auto layer = GradeLayer::Create(u"Grade", 1280, 720);
        layer->SetParentLayer(last);
        AddEffects(*layer, plugin, last, document.composition->ID());
        document.Add(layer);
        last = layer->ID();
    }
    return document;
}

void CloneEffects(benchmark::State &state)
{
    const auto plugin = std::make_shared<bench::BenchPlugin>();
    const int layerCount = static_cast<int>(state.range(0));
    std::vector<bench::Document> documents;
    for (int layers = 0; layers < kLayers; layers += layerCount)
        documents.push_back(MakeDocument(layerCount, plugin));
    bench::TimeMakingEach(state, static_cast<int>(documents.size()),
                          [&](int i) { return documents[i].composition->Clone(); });
}

BENCHMARK(CloneEffects)->Arg(100)->Arg(kLayers)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
