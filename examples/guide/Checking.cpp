#include "Checking.h"

#include <marlet/checks/Validate.h>

namespace guide
{

// A line for each thing that the user should look at. Notes may well be meant.
std::vector<std::string> Problems(const Project &project)
{
    std::vector<std::string> lines;
    for (const Finding &finding : Validate(project))
        if (finding.severity != Finding::Severity::Note)
            lines.push_back(finding.place + ": " + finding.what);
    return lines;
}

// Mends references that lead nowhere, and tells what was done. The rest is left to the user.
std::vector<std::string> RepairReferences(Project &project)
{
    const auto dangles = [](const Finding &finding) { return finding.kind == FindingKind::DanglingID; };
    std::vector<std::string> lines;
    for (const Finding &finding : Repair(project, RepairMode::Apply, dangles))
        lines.push_back(finding.place + ": " + finding.remedy);
    return lines;
}

} // namespace guide
