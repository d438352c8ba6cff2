// Loading, beside a bare pugixml parse with a walk over all nodes, and beside Qt's DOM. All three get the
// same text, in UTF-16. The heap is warm: it keeps what earlier rounds have freed.

#include <bench/support/BareParse.h>
#include <bench/support/Documents.h>
#include <bench/support/Stopwatch.h>

#include <marlet/project/Project.h>

#include <QDomDocument>

using namespace bench;
using marlet::project::WideString;

namespace
{

void Load(benchmark::State &state)
{
    const WideString &text = TextOfMegabytes(static_cast<int>(state.range(0)));
    TimeMaking(state, [&] { return bench::Load(text); });
}

void ParseAndWalk(benchmark::State &state)
{
    const WideString &text = TextOfMegabytes(static_cast<int>(state.range(0)));
    TimeMaking(state, [&] {
        auto document = bench::ParseAndWalk(text);
        if (!document)
            state.SkipWithError("the document does not parse");
        return document;
    });
}

void SetContent(benchmark::State &state)
{
    const QString text = QString::fromStdU16String(TextOfMegabytes(static_cast<int>(state.range(0))));
    TimeMaking(state, [&] {
        auto document = std::make_unique<QDomDocument>();
        if (!document->setContent(text))
            state.SkipWithError("the document does not parse");
        return document;
    });
}

BENCHMARK(Load)->Arg(1)->Arg(10)->Arg(100)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ParseAndWalk)->Arg(1)->Arg(10)->Arg(100)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(SetContent)->Arg(1)->Arg(10)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
