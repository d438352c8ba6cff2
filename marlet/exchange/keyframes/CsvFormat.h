#pragma once

#include <marlet/exchange/ExchangeFormat.h>

namespace marlet::project
{

/// The key frames of a property as a table, one a line, with the names of the columns in the first:
///
///     id,type,time,frame,x,y,interpolation,in time,in value,out time,out value
///
/// "time" is in milliseconds and "frame" in frames from the start of the layer, handles are offsets in
/// milliseconds and in the unit of the value. The components are x, y and z, or r, g, b and a, or "value"
/// where there is one. Nothing of the key frames is lost.
///
/// A text that comes needs the columns of the components, and a time or a frame, of which the time counts;
/// others may be missing or empty, and stand in any order: key frames are linear then, without handles, with
/// IDs of their own, and of the type of the property. Cells are parted by commas, semicolons or tabs, may be
/// quoted, and have decimal points; lines end in any way. Other columns are lost.
class CsvFormat final : public ExchangeFormat
{
public:
    std::string_view Name() const override { return "csv"; }
    std::string_view Title() const override { return "comma-separated values"; }
    std::vector<std::string_view> Endings() const override { return {".csv"}; }
    std::string_view Holds() const override { return "the key frames of a property"; }

    bool CanWrite() const override { return true; }
    NarrowString Write(const std::shared_ptr<Project> &project,
                       const ExchangeOptions &options) const override;

    bool Recognises(std::string_view bytes) const override;
    bool CanReadInto() const override { return true; }
    void ReadInto(const std::shared_ptr<Project> &project, std::string_view bytes,
                  const ExchangeOptions &options) const override;
};

} // namespace marlet::project
