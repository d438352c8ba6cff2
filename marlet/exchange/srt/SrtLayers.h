#pragma once

#include <marlet/exchange/srt/SrtText.h>

#include <memory>

namespace marlet::project
{

class CompositionAsset;
class Project;

/// The text layers of a composition in order of time. What is left out is told.
std::vector<Subtitle> SubtitlesOf(const CompositionAsset &composition, const ExchangeOptions &options);

/// Adds a layer for each, the first one at the top of the stack, as one Edit.
void AddSubtitles(const std::shared_ptr<Project> &project,
                  const std::shared_ptr<CompositionAsset> &composition,
                  const std::vector<Subtitle> &subtitles, const ExchangeOptions &options);

/// The frame that a time falls on.
std::int64_t FrameOfTime(std::int64_t milliseconds, double rate);

} // namespace marlet::project
