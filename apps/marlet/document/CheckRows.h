#pragma once

#include <marlet/checks/Finding.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/foundation/TextPlace.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace marlet::tool
{

/// One thing that a check of a file tells.
struct CheckRow {
    project::LoadEntry::Severity severity = {};
    std::optional<project::TextPlace> place; ///< none if it stands nowhere
    std::string kind;
    std::string object; ///< of what it is; for what a load told the path of the element
    std::string what;
    std::vector<kytl::KyID> ids;
    std::string remedy = {};
};

/// All that there is to tell of a file: what its load reported, and what is wrong in the project that came of
/// it. In the order of the text; what stands nowhere comes last. What both know of is told once.
class CheckRows
{
public:
    CheckRows(const project::WideString &text, const project::LoadReport &report,
              std::vector<project::Finding> findings);

    const std::vector<CheckRow> &Rows() const { return rows_; }
    std::size_t Count(project::LoadEntry::Severity severity) const
    {
        return counts_[static_cast<std::size_t>(severity)];
    }
    /// All but the notes.
    std::size_t Problems() const;
    /// "2 errors, 1 loss, 3 warnings"; empty if there is nothing to count.
    std::string CountsText() const;

private:
    void AddEntries(const project::LoadReport &report, const std::vector<project::Finding> &findings);
    void AddFindings(const project::WideString &text, std::vector<project::Finding> findings,
                     bool loadToldOfPlugins);

    std::vector<CheckRow> rows_;
    std::array<std::size_t, project::LoadEntry::kSeverities> counts_{};
};

/// "FILE:LINE:COLUMN: warning: layer "Moon" of composition "Orbit": what is wrong [kind]", as compilers do.
std::string RowText(const std::string &file, const CheckRow &row);
std::string RowJson(const CheckRow &row);

} // namespace marlet::tool
