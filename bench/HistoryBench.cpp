// Editing with a history: what one edit costs in a small and in a large document, and what going back costs
// beside going there.

#include <bench/support/Documents.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/history/EditHistory.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <benchmark/benchmark.h>

#include <chrono>

using namespace bench;
using namespace marlet::project;

namespace
{

struct Edited {
    explicit Edited(std::shared_ptr<Project> loaded) : project(std::move(loaded)), history(project)
    {
        const auto compositions = project->Assets().GetByType(AssetType::Composition);
        for (const auto &layer : std::static_pointer_cast<CompositionAsset>(compositions.at(0))->Layers())
            layers.push_back(layer);
        history.SetChecksAnnouncements(false);
    }

    void Rotate(std::size_t layer, float degrees)
    {
        Edit edit(project, u"Rotate");
        edit.Touch(layers[layer % layers.size()], "rotationZ");
        layers[layer % layers.size()]->Animation().StaticValue("rotationZ") = degrees;
        edit.Commit();
    }

    std::shared_ptr<Project> project;
    EditHistory history;
    std::vector<std::shared_ptr<AbstractLayer>> layers;
};

std::shared_ptr<Project> WithoutCurves(std::shared_ptr<Project> project)
{
    const auto compositions = project->Assets().GetByType(AssetType::Composition);
    for (const auto &layer : std::static_pointer_cast<CompositionAsset>(compositions.at(0))->Layers())
        if (layer->Animation().HasProperty("rotationZ"))
            layer->Animation().KeyFrames("rotationZ").Clear();
    return project;
}

void CommitAndUndo(benchmark::State &state)
{
    Edited edited(WithoutCurves(Load(TextOfMegabytes(static_cast<int>(state.range(0))))));
    std::size_t layer = 0;
    for (auto _ : state) {
        edited.Rotate(layer, static_cast<float>(layer));
        ++layer;
        edited.history.Undo();
    }
}

constexpr int kEdits = 10000;

template <class Work> void Time(benchmark::State &state, Work &&work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
}

void MakeEdits(Edited &edited)
{
    for (int i = 0; i < kEdits; ++i)
        edited.Rotate(static_cast<std::size_t>(i), static_cast<float>(i));
}

void MakeManyEdits(benchmark::State &state)
{
    for (auto _ : state) {
        Edited edited(WithoutCurves(Load(TextOfMegabytes(1))));
        edited.history.SetLimits({kEdits, std::size_t{1} << 30});
        Time(state, [&] { MakeEdits(edited); });
    }
}

void UndoAndRedoManyEdits(benchmark::State &state)
{
    for (auto _ : state) {
        Edited edited(WithoutCurves(Load(TextOfMegabytes(1))));
        edited.history.SetLimits({kEdits, std::size_t{1} << 30});
        MakeEdits(edited);
        Time(state, [&] {
            while (edited.history.Undo()) {
            }
            while (edited.history.Redo()) {
            }
        });
    }
}

BENCHMARK(CommitAndUndo)->Arg(1)->Arg(100);
BENCHMARK(MakeManyEdits)->UseManualTime();
BENCHMARK(UndoAndRedoManyEdits)->UseManualTime();

} // namespace
