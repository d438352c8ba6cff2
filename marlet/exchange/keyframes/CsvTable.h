#pragma once

#include <marlet/foundation/Strings.h>

#include <string_view>
#include <vector>

namespace marlet::project
{

/// Takes a text of cells apart, line by line: the first line says by which character they are parted. Cells
/// may be quoted, with two quotes for one, and then hold that character and ends of lines; blanks around
/// other cells are left out. Lines without a cell that holds something are passed over, as are those that
/// start with "#".
class CsvTable
{
public:
    explicit CsvTable(std::string_view text);

    /// The cells of the next line; false at the end. @throws ExchangeException for a quote that does not end
    bool Next(std::vector<NarrowString> &cells);
    /// Where those cells begin, from 1 on.
    int Line() const { return line_; }

private:
    NarrowString TakeCell();
    NarrowString TakeQuoted();
    void TakeLineEnd();

    std::string_view rest_;
    char comma_ = ',';
    int line_ = 0;
    int next_ = 1; ///< the line that the rest is in
};

} // namespace marlet::project
