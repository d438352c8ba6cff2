#include "Bindings.h"
#include "Handles.h"
#include "KeptEffect.h"
#include "Values.h"

#include <marlet/compare/Apply.h>
#include <marlet/compare/Compare.h>
#include <marlet/compare/Merge.h>

namespace marlet::python
{

namespace
{

using Kind = Difference::Kind;
using Differences = std::vector<Difference>;

const Words<Kind> kKinds{
    {Kind::Added, "added"}, {Kind::Removed, "removed"}, {Kind::Moved, "moved"}, {Kind::Changed, "changed"}};

Differences Diff(const ProjectHandle &before, const ProjectHandle &after)
{
    const Document::Reading first(*before.document);
    return Unlocked(*after.document, [&](const Project &second) { return Compare(*first, second); });
}

MergeResult MergeProjects(const ProjectHandle &base, const ProjectHandle &ours, const ProjectHandle &theirs)
{
    const Document::Reading first(*base.document);
    const Document::Reading second(*ours.document);
    return Unlocked(*theirs.document, [&](const Project &third) { return Merge(*first, *second, third); });
}

std::string PlaceOf(const Difference &difference)
{
    std::string place;
    for (const NarrowString &part : difference.place)
        place += (place.empty() ? "" : ", ") + part;
    return place;
}

void BindDifference(py::module_ &module)
{
    py::class_<Difference> type(module, "Difference", "One thing in which two projects differ.");
    type.def_property_readonly(
        "kind", [](const Difference &difference) { return kKinds.Of(difference.kind); },
        "'added', 'removed', 'moved' or 'changed'.");
    type.def_readonly("place", &Difference::place, "A list from the outside in, such as 'layer \"Title\"'.");
    type.def_readonly("what", &Difference::what,
                      "The field that changed; empty where the place itself is meant.");
    type.def_readonly("before", &Difference::before, "A value, or a place among its neighbours.");
    type.def_readonly("after", &Difference::after, "A value, or a place among its neighbours.");
    type.def_readonly("old_xml", &Difference::oldXml, "The element, or the attribute with its value.");
    type.def_readonly("new_xml", &Difference::newXml, "The element, or the attribute with its value.");
    type.def("__repr__", [](const Difference &difference) {
        return "<marlet.Difference " + kKinds.Of(difference.kind) + ": " + PlaceOf(difference) +
               (difference.what.empty() ? "" : ", " + difference.what) + ">";
    });
}

void BindMerge(py::module_ &module)
{
    py::class_<MergeConflict>(module, "Conflict", "Two differences from a base that cannot both be.")
        .def_readonly("ours", &MergeConflict::ours, "The Difference that stays.")
        .def_readonly("theirs", &MergeConflict::theirs, "The Difference that is left out.");
    py::class_<MergeResult>(module, "MergeResult", "What a merge found.")
        .def_readonly("changes", &MergeResult::changes,
                      "What theirs changed and ours has not, for Project.apply.")
        .def_readonly("conflicts", &MergeResult::conflicts, "Where ours stays as it is.");
}

} // namespace

void BindCompare(py::module_ &module)
{
    BindDifference(module);
    BindMerge(module);
    module.def(
        "diff", &Diff, py::arg("before"), py::arg("after"),
        "A list of all differences between two projects. Applied to the first, they make it the second.");
    module.def("merge", &MergeProjects, py::arg("base"), py::arg("ours"), py::arg("theirs"),
               "Brings together what two sides made of a base: apply the result's changes to ours.");
}

void BindApplying(py::class_<ProjectHandle> &type)
{
    type.def(
        "apply",
        [](const ProjectHandle &project, const Differences &differences, const WideString &label) {
            Operate(*project.document, [&](const std::shared_ptr<Project> &changed) {
                Apply(changed, differences, KeptEffectFactory(), label);
            });
        },
        py::arg("differences"), py::arg("label") = u"Apply changes",
        "Makes the project another one by differences from it, as one edit. Objects that stay are the same "
        "objects.");
}

} // namespace marlet::python
