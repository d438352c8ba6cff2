#pragma once

#include <marlet/exchange/ExchangeFormat.h>

namespace marlet::project
{

/// Subtitles of SubRip. Each is a text layer of a composition, at the bottom of its picture. Bold, italic and
/// coloured parts become formats.
class SrtFormat final : public ExchangeFormat
{
public:
    std::string_view Name() const override { return "srt"; }
    std::string_view Title() const override { return "SubRip subtitles"; }
    std::vector<std::string_view> Endings() const override { return {".srt"}; }
    std::string_view Holds() const override { return "the text layers of a composition"; }
    bool CanWrite() const override { return true; }
    NarrowString Write(const std::shared_ptr<Project> &project,
                       const ExchangeOptions &options) const override;
    bool Recognises(std::string_view bytes) const override;
    bool CanRead() const override { return true; }
    /// A project with one composition, as long as the subtitles.
    std::shared_ptr<Project> Read(std::string_view bytes, const ExchangeOptions &options) const override;
    bool CanReadInto() const override { return true; }
    void ReadInto(const std::shared_ptr<Project> &project, std::string_view bytes,
                  const ExchangeOptions &options) const override;
};

} // namespace marlet::project
