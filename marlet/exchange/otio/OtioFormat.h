#pragma once

#include <marlet/exchange/ExchangeFormat.h>

namespace marlet::project
{

/// The JSON of OpenTimelineIO, of all versions of its schemas. A text that this library wrote holds all of
/// the project, so that reading it gives the same one, with what other programs have changed in the timeline;
/// what these have added is kept in the project.
class OtioFormat final : public ExchangeFormat
{
public:
    std::string_view Name() const override { return "otio"; }
    std::string_view Title() const override { return "OpenTimelineIO"; }
    std::vector<std::string_view> Endings() const override { return {".otio"}; }
    std::string_view Holds() const override { return "the sequence"; }
    bool CanWrite() const override { return true; }
    NarrowString Write(const std::shared_ptr<Project> &project,
                       const ExchangeOptions &options) const override;
    bool Recognises(std::string_view bytes) const override;
    bool CanRead() const override { return true; }
    std::shared_ptr<Project> Read(std::string_view bytes, const ExchangeOptions &options) const override;
    bool CanReadInto() const override { return true; }
    /// The sequence takes the place of the project's, with the assets that it shows. Those that the project
    /// has, by their ID or their file, are the project's own.
    void ReadInto(const std::shared_ptr<Project> &project, std::string_view bytes,
                  const ExchangeOptions &options) const override;
};

} // namespace marlet::project
