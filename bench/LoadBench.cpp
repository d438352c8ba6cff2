// Loading, beside a bare pugixml parse with a walk over all nodes, and beside Qt's DOM. All three get the
// same text, in UTF-16. The heap is warm: it keeps what earlier rounds have freed.

#include <bench/support/Documents.h>
#include <bench/support/Stopwatch.h>

#include <marlet/project/Project.h>

#include <QDomDocument>

#include <pugixml.hpp>

using namespace bench;
using marlet::project::WideString;

namespace
{

std::size_t CountNodes(const pugi::xml_document &document)
{
    std::size_t count = 0;
    pugi::xml_node node = document.first_child();
    while (node) {
        ++count;
        if (node.first_child()) {
            node = node.first_child();
            continue;
        }
        while (node && !node.next_sibling())
            node = node.parent();
        node = node.next_sibling();
    }
    return count;
}

void Load(benchmark::State &state)
{
    const WideString &text = TextOfMegabytes(static_cast<int>(state.range(0)));
    TimeMaking(state, [&] { return bench::Load(text); });
}

void ParseAndWalk(benchmark::State &state)
{
    const WideString &text = TextOfMegabytes(static_cast<int>(state.range(0)));
    TimeMaking(state, [&] {
        auto document = std::make_unique<pugi::xml_document>();
        const auto result = document->load_buffer(text.data(), text.size() * sizeof(char16_t),
                                                  pugi::parse_default, pugi::encoding_utf16);
        if (!result || CountNodes(*document) == 0)
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
