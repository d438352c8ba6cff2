#include "Bindings.h"
#include "Handles.h"
#include "KeptEffect.h"
#include "Loading.h"
#include "Values.h"

#include <marlet/checks/Finding.h>
#include <marlet/checks/Validate.h>
#include <marlet/compare/Apply.h>
#include <marlet/compare/Compare.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/project/LoadOptions.h>

#include <functional>

#include <pybind11/functional.h>

namespace marlet::python
{

namespace
{

using Accepts = std::function<bool(const Finding &)>;

std::vector<Finding> ValidateUnlocked(const ProjectHandle &project)
{
    return Unlocked(*project.document, [](const Project &checked) { return Validate(checked); });
}

/// The library repairs in place, without steps. So a copy is repaired, and what differs then is an edit.
std::vector<Finding> RepairAsEdit(const ProjectHandle &handle, bool dryRun, const Accepts &accepts)
{
    const auto project = handle.Get();
    if (dryRun)
        return Repair(*project, RepairMode::DryRun, accepts);
    const KeptEffectFactory effects;
    LoadOptions options;
    options.media = project->SharedMedia();
    options.keepUnknown = true;
    const Document::Change guard(*handle.document);
    const auto copy =
        Project::CreateFromXml(project->Serialize(), u"", project->PluginManager(), effects, options);
    FillInstances(*copy);
    const WideString before = copy->Serialize();
    std::vector<Finding> repaired = Repair(*copy, RepairMode::Apply, accepts);
    const std::vector<Difference> differences = CompareTexts(before, copy->Serialize());
    if (!differences.empty())
        Apply(project, differences, effects, u"Repair");
    return repaired;
}

void BindFinding(py::module_ &module)
{
    py::class_<Finding> type(module, "Finding",
                             "Something about a project at rest that a person should look at.");
    type.def_property_readonly(
        "severity", [](const Finding &finding) { return SeverityName(finding.severity); },
        "'note' (may well be meant), 'warning' (hardly meant) or 'error' (cannot be answered for).");
    type.def_property_readonly(
        "kind", [](const Finding &finding) { return FindingKindName(finding.kind); },
        "'dangling ID', 'parent circle' and so on.");
    type.def_readonly("place", &Finding::place, "Of what it is.");
    type.def_readonly("what", &Finding::what, "A sentence.");
    type.def_property_readonly(
        "ids", [](const Finding &finding) { return ToTexts(finding.ids); },
        "Of the object, and of those around it, from the inside out.");
    type.def_property_readonly(
        "named", [](const Finding &finding) { return ToPython(finding.named); },
        "The ID that leads nowhere or elsewhere, or None.");
    type.def_property_readonly(
        "remedy",
        [](const Finding &finding) {
            return finding.remedy.empty() ? std::nullopt : std::optional(finding.remedy);
        },
        "What a repair does about it, or None.");
    type.def_property_readonly(
        "property",
        [](const Finding &finding) {
            return finding.property.empty() ? std::nullopt : std::optional(finding.property);
        },
        "The name of the property that it is about, or None.");
    type.def("__repr__", [](const Finding &finding) {
        return "<marlet.Finding " + std::string(SeverityName(finding.severity)) + ": " + finding.place +
               ": " + finding.what + ">";
    });
}

} // namespace

void BindChecks(py::module_ &module)
{
    BindFinding(module);
    module.def("validate", &ValidateUnlocked, py::arg("project"),
               "A list of what is wrong in a project. Other threads of Python run meanwhile, and may not "
               "change it.");
}

void BindChecking(py::class_<ProjectHandle> &type)
{
    type.def("validate", &ValidateUnlocked, "A list of what is wrong in the project.");
    type.def("repair", &RepairAsEdit, py::kw_only(), py::arg("dry_run") = false,
             py::arg("accept") = py::none(),
             "Does what is safe about what is wrong, or only tells, and returns what was repaired. It is "
             "one edit. A function that takes a finding may choose what is repaired.");
}

} // namespace marlet::python
