#pragma once

#include <marlet/exchange/ExchangeFormat.h>

namespace marlet::project
{

/// The key frames of a property in JSON, one a line:
///
///     {
///         "format": "marlet-key-frames",
///         "version": 1,
///         "property": "position",
///         "frameRate": 25,
///         "keyFrames": [
///             {"id": "…", "type": "KyPoint2_32f", "time": 40, "frame": 1, "value": [8, -2.5],
///              "interpolation": "bezier", "in": [0, 0], "out": [20, 3]}
///         ]
///     }
///
/// What the members of a key frame mean and which may be missing is told at CsvFormat, whose columns they
/// are. Values and handles of several numbers are lists. Numbers that JSON does not have are texts: "nan",
/// "inf". Nothing of the key frames is lost; other members of what comes are.
class JsonKeyFramesFormat final : public ExchangeFormat
{
public:
    std::string_view Name() const override { return "keyframes"; }
    std::string_view Title() const override { return "key frames in JSON"; }
    std::vector<std::string_view> Endings() const override { return {".json"}; }
    std::string_view Holds() const override { return "the key frames of a property"; }

    bool CanWrite() const override { return true; }
    NarrowString Write(const std::shared_ptr<Project> &project,
                       const ExchangeOptions &options) const override;

    bool Recognises(std::string_view bytes) const override;
    bool CanReadInto() const override { return true; }
    /// The property is that of the options, or else the one that the text names. The rate is that of the
    /// text, where it has one.
    void ReadInto(const std::shared_ptr<Project> &project, std::string_view bytes,
                  const ExchangeOptions &options) const override;
};

} // namespace marlet::project
