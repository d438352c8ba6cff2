#include <marlet/exchange/srt/SrtLayers.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/animation/PropertyValue.h>
#include <marlet/exchange/Telling.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/history/Edit.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/layers/TextOperations.h>
#include <marlet/project/CompositionAsset.h>

#include <algorithm>
#include <cmath>

namespace marlet::project
{

namespace
{

constexpr std::size_t kLongestName = 40;
constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr double kLines = 18; ///< of text that would fill the picture
constexpr char16_t kFamily[] = u"DejaVu Sans";

double RateOf(const CompositionAsset &composition)
{
    const double rate = composition.Settings().FrameRate();
    if (!(rate > 0 && rate < 1e6))
        throw OperationException("The composition has no frame rate");
    return rate;
}

float Channel(std::uint32_t color, int shift)
{
    return static_cast<float>(color >> shift & 0xFF) / 255.f;
}

std::uint32_t ColorOf(const kytl::KyColorRGBA_32f &color)
{
    const auto channel = [](float value) {
        return static_cast<std::uint32_t>(Truncate<int>(std::clamp(value, 0.f, 1.f) * 255.f + 0.5f));
    };
    return channel(color.R) << 16 | channel(color.G) << 8 | channel(color.B);
}

TextLayer::Format FormatFor(const SrtStyle &style, int size)
{
    TextLayer::Format format;
    const std::uint32_t color = style.color.value_or(kWhite);
    format.family = kFamily;
    format.style =
        style.isBold ? (style.isItalic ? u"Bold Oblique" : u"Bold") : (style.isItalic ? u"Oblique" : u"Book");
    format.size = size;
    format.fillColor = {Channel(color, 16), Channel(color, 8), Channel(color, 0), 1};
    format.strokeColor = {0, 0, 0, 1};
    format.strokeWidth = static_cast<float>(size) / 12;
    return format;
}

SrtStyle StyleOf(const TextLayer::Format &format)
{
    const auto has = [&](const char16_t *word) { return format.style.find(word) != WideString::npos; };
    SrtStyle style{has(u"Bold") || has(u"bold"), has(u"Italic") || has(u"Oblique") || has(u"italic")};
    if (const std::uint32_t color = ColorOf(format.fillColor); color != kWhite)
        style.color = color;
    return style;
}

FormattedText TextFor(const Subtitle &subtitle, int size)
{
    FormattedText text;
    text.text = subtitle.text;
    std::size_t at = 0;
    const auto add = [&](std::size_t end, const SrtStyle &style) {
        if (end > at)
            text.formats.push_back({at, end - at, FormatFor(style, size)});
        at = end;
    };
    for (const SrtRun &run : subtitle.runs) {
        add(run.first, {});
        add(run.first + run.count, run.style);
    }
    add(subtitle.text.size(), {});
    return text;
}

WideString NameFor(const Subtitle &subtitle)
{
    WideString name = subtitle.text.substr(0, kLongestName);
    // Not the first half of a character.
    if (!name.empty() && (name.back() & 0xFC00) == 0xD800)
        name.pop_back();
    std::ranges::replace(name, u'\n', u' ');
    return name;
}

std::shared_ptr<TextLayer> LayerFor(const Subtitle &subtitle, const CompositionAsset &composition)
{
    const int width = composition.Settings().Width();
    const int height = composition.Settings().Height();
    const auto layer = TextLayer::Create(NameFor(subtitle), width * 3 / 4, height / 5);
    // Near the lower edge of the picture, whose middle is the origin.
    layer->Animation().StaticValue("position") =
        kytl::matl::KyPoint<3, float>{0, -static_cast<float>(height) * 0.375f, 0};
    return layer;
}

/// The blank end of a text is none of a subtitle.
Subtitle SubtitleOf(const TextLayer &layer, double rate)
{
    const FormattedText text = ReadText(layer);
    Subtitle subtitle;
    const auto time = [&](int frame) { return std::llround(frame * 1000.0 / rate); };
    subtitle.start = time(layer.StartFrame());
    subtitle.end = time(layer.EndFrame());
    subtitle.text = text.text.substr(0, text.text.find_last_not_of(u" \n") + 1);
    for (const FormattedText::Run &run : text.formats) {
        const SrtStyle style = StyleOf(run.format);
        const std::size_t end = std::min(run.first + run.count, subtitle.text.size());
        if (style != SrtStyle() && run.first < end)
            subtitle.runs.push_back({run.first, end - run.first, style});
    }
    return subtitle;
}

} // namespace

std::int64_t FrameOfTime(std::int64_t milliseconds, double rate)
{
    return Truncate<std::int64_t>(RoundHalfAway(static_cast<double>(milliseconds) * rate / 1000));
}

std::vector<Subtitle> SubtitlesOf(const CompositionAsset &composition, const ExchangeOptions &options)
{
    const double rate = RateOf(composition);
    std::vector<Subtitle> subtitles;
    std::size_t others = 0;
    for (const auto &layer : composition.Layers()) {
        const auto *const text = dynamic_cast<const TextLayer *>(layer.get());
        Subtitle subtitle = text && text->IsVisible() ? SubtitleOf(*text, rate) : Subtitle();
        if (subtitle.text.empty() || subtitle.end <= subtitle.start || subtitle.end <= 0)
            ++others;
        else
            subtitles.push_back(std::move(subtitle));
    }
    std::ranges::stable_sort(subtitles, {}, &Subtitle::start);
    if (others > 0)
        Tell(options, LoadEntry::Severity::Loss,
             std::to_string(others) + " layers that are not visible text within the composition");
    if (!subtitles.empty())
        Tell(options, LoadEntry::Severity::Loss, "fonts, sizes, places and effects of the texts");
    return subtitles;
}

void AddSubtitles(const std::shared_ptr<Project> &project,
                  const std::shared_ptr<CompositionAsset> &composition,
                  const std::vector<Subtitle> &subtitles, const ExchangeOptions &options)
{
    Edit edit(project, u"Add subtitles");
    const double rate = RateOf(*composition);
    const int size = std::max(1, Truncate<int>(composition->Settings().Height() / kLines));
    std::size_t beyond = 0;
    std::size_t shortest = 0;
    std::vector<std::shared_ptr<AbstractLayer>> layers;
    for (const Subtitle &subtitle : subtitles) {
        const std::int64_t start = FrameOfTime(subtitle.start, rate);
        const std::int64_t end = FrameOfTime(subtitle.end, rate);
        const auto layer = LayerFor(subtitle, *composition);
        layer->SetStartFrame(Saturate(start));
        layer->SetEndFrame(Saturate(std::max(end, start + 1)));
        beyond += end > composition->Settings().FrameCount() ? 1 : 0;
        shortest += end <= start ? 1 : 0;
        layer->SetParentComposition(composition);
        SetText(project, layer, TextFor(subtitle, size));
        layers.push_back(layer);
    }
    // All at once, since many layers one by one move those below each time.
    edit.TouchLayers(composition);
    composition->Layers().insert(composition->Layers().begin(), layers.begin(), layers.end());
    if (beyond > 0)
        Tell(options, LoadEntry::Severity::Warning,
             std::to_string(beyond) + " subtitles last longer than the composition");
    if (shortest > 0)
        Tell(options, LoadEntry::Severity::Warning,
             std::to_string(shortest) + " subtitles are shorter than a frame and last one");
    edit.Commit();
}

} // namespace marlet::project
