// Saving, beside Qt's DOM writing the same document.

#include <bench/support/Documents.h>
#include <bench/support/Stopwatch.h>

#include <marlet/project/Project.h>

#include <QDomDocument>

using namespace bench;

namespace
{

void Save(benchmark::State &state)
{
    const auto project = bench::Load(TextOfMegabytes(static_cast<int>(state.range(0))));
    TimeMaking(state, [&] { return project->Serialize(); });
}

void ToString(benchmark::State &state)
{
    QDomDocument document;
    if (!document.setContent(QString::fromStdU16String(TextOfMegabytes(static_cast<int>(state.range(0))))))
        state.SkipWithError("the document does not parse");
    TimeMaking(state, [&] { return document.toString(1); });
}

BENCHMARK(Save)->Arg(1)->Arg(10)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ToString)->Arg(1)->Arg(10)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
