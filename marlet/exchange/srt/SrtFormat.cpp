#include <marlet/exchange/srt/SrtFormat.h>

#include <marlet/exchange/Selection.h>
#include <marlet/exchange/srt/SrtLayers.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/operations/assets/ProjectOperations.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

constexpr double kUsualRate = 25;
constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

} // namespace

NarrowString SrtFormat::Write(const std::shared_ptr<Project> &project, const ExchangeOptions &options) const
{
    Require(project, "project");
    return SrtTextOf(SubtitlesOf(*SelectedComposition(*project, options), options));
}

/// Times with an arrow between them stand in one of the first lines, also in UTF-16.
bool SrtFormat::Recognises(std::string_view bytes) const
{
    constexpr std::size_t kFirst = 200;
    try {
        return !ParseSrt(bytes.substr(0, kFirst), {}).empty();
    } catch (const std::runtime_error &) {
        return false;
    }
}

std::shared_ptr<Project> SrtFormat::Read(std::string_view bytes, const ExchangeOptions &options) const
{
    const std::vector<Subtitle> subtitles = ParseSrt(bytes, options);
    const double rate = options.frameRate > 0 && options.frameRate < 1e6 ? options.frameRate : kUsualRate;
    std::int64_t end = 1;
    for (const Subtitle &subtitle : subtitles)
        end = std::max(end, FrameOfTime(subtitle.end, rate));
    const auto project = Project::Create(options.plugins, options.load.media);
    const auto composition =
        CompositionAsset::Create(u"Subtitles", AudioVideoSettings::Preset::None, Saturate(end));
    AudioVideoSettings &settings = composition->Settings();
    settings.SetFrameRate(rate);
    settings.SetWidth(kWidth);
    settings.SetHeight(kHeight);
    AddAsset(project, composition);
    AddSubtitles(project, composition, subtitles, options);
    return project;
}

void SrtFormat::ReadInto(const std::shared_ptr<Project> &project, std::string_view bytes,
                         const ExchangeOptions &options) const
{
    Require(project, "project");
    const auto composition = SelectedComposition(*project, options);
    AddSubtitles(project, composition, ParseSrt(bytes, options), options);
}

} // namespace marlet::project
