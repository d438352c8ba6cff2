// Texts of many characters: loaded, cloned, saved and dropped. Each is to take time in step with its length.

#include <bench/support/Stopwatch.h>

#include <marlet/layers/TextLayer.h>
#include <marlet/project/ProjectTextureImageCache.h>

#include <map>
#include <vector>

using namespace marlet::project;

namespace
{

constexpr int kCharacters = 1'000'000;
constexpr int kFormats = 20;
constexpr int kRun = 50;
constexpr int kLine = 80;

/// Runs of several formats, in lines.
std::shared_ptr<TextLayer> MakeText(int length)
{
    const auto layer = TextLayer::Create(u"Text", 1280, 720);
    for (int i = 0; i < length; ++i) {
        if (i % kLine == kLine - 1) {
            layer->Text().Append(TextLayer::CreateParagraphToken(TextLayer::JustificationType{0}, {}));
            continue;
        }
        const auto &format =
            layer->TextFormat(u"Sans", u"Bold", i / kRun % kFormats, {1, 1, 1, 1}, {}, 0, 0, 0);
        layer->Text().Append(TextLayer::CreateCharToken(static_cast<char16_t>(u'a' + i % 26), format, {}));
    }
    return layer;
}

using Texts = std::vector<std::shared_ptr<TextLayer>>;

int CountOf(const Texts &texts)
{
    return static_cast<int>(texts.size());
}

/// As many texts of that length as have all the characters together.
const Texts &TextsOfLength(std::int64_t length)
{
    static std::map<std::int64_t, Texts> textsByLength;
    Texts &texts = textsByLength[length];
    while (CountOf(texts) * length < kCharacters)
        texts.push_back(MakeText(static_cast<int>(length)));
    return texts;
}

void LoadText(benchmark::State &state)
{
    const Texts &texts = TextsOfLength(state.range(0));
    std::vector<WideString> saved;
    for (const auto &text : texts)
        saved.push_back(text->Serialize(ProjectTextureImageCache()));
    bench::TimeMakingEach(state, CountOf(texts),
                          [&](int i) { return TextLayer::CreateFromXml(saved[i], nullptr); });
}

void CloneText(benchmark::State &state)
{
    const Texts &texts = TextsOfLength(state.range(0));
    bench::TimeMakingEach(state, CountOf(texts), [&](int i) { return texts[i]->Clone({}); });
}

void SaveText(benchmark::State &state)
{
    const Texts &texts = TextsOfLength(state.range(0));
    const ProjectTextureImageCache textures;
    bench::TimeMakingEach(state, CountOf(texts), [&](int i) { return texts[i]->Serialize(textures); });
}

void DropText(benchmark::State &state)
{
    const Texts &texts = TextsOfLength(state.range(0));
    bench::TimeDroppingEach(state, CountOf(texts), [&](int i) { return texts[i]->Clone({}); });
}

void Lengths(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Arg(100'000)->Arg(kCharacters)->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(LoadText)->Apply(Lengths);
BENCHMARK(CloneText)->Apply(Lengths);
BENCHMARK(SaveText)->Apply(Lengths);
BENCHMARK(DropText)->Apply(Lengths);

} // namespace
