#include <marlet/checks/Validate.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/checks/CheckScope.h>
#include <marlet/checks/PropertyCheck.h>
#include <marlet/project/Project.h>

namespace marlet::project
{

namespace
{

Findings Check(const Project &project)
{
    CheckScope scope{.project = project,
                     .findings = Findings(&project.KeptIDs()),
                     .hasExpressionEngine = project.ExpressionEngine() != nullptr};
    CheckAssets(scope);
    CheckCompositions(scope);
    CheckSequence(scope);
    CheckInstances(scope);
    return std::move(scope.findings);
}

} // namespace

std::vector<Finding> Validate(const Project &project)
{
    return Check(project).Take();
}

std::vector<Finding> Validate(const PropertyManager &properties, const PropertyManager &model,
                              const NarrowString &place)
{
    Findings findings;
    CheckProperties(findings, Place(nullptr, place), properties, {.model = &model});
    return findings.Take();
}

std::vector<Finding> Repair(Project &project, RepairMode mode,
                            const std::function<bool(const Finding &)> &accepts)
{
    const Findings findings = Check(project);
    std::vector<Finding> repaired;
    for (std::size_t i = 0; i < findings.All().size(); ++i) {
        const Finding &finding = findings.All()[i];
        if (finding.remedy.empty() || (accepts && !accepts(finding)))
            continue;
        repaired.push_back(finding);
        if (mode == RepairMode::Apply)
            findings.Apply(i, project);
    }
    return repaired;
}

} // namespace marlet::project
