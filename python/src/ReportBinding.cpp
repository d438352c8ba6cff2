#include "Bindings.h"
#include "Values.h"

#include <marlet/foundation/LoadReport.h>

#include <memory>

namespace marlet::python
{

namespace
{

void BindEntry(py::module_ &module)
{
    py::class_<LoadEntry> type(module, "ReportEntry", "Something that a load has to tell.");
    type.def_property_readonly(
        "severity", [](const LoadEntry &entry) { return SeverityName(entry.severity); },
        "'note', 'warning', 'loss' (something is not in the document) or 'error' (the load ended there).");
    type.def_readonly("what", &LoadEntry::what, "A sentence.");
    type.def_readonly("path", &LoadEntry::path, "The element and those around it, from the root down.");
    type.def_readonly("line", &LoadEntry::line, "Of the text, from 1 on; 0 if it stands nowhere.");
    type.def_readonly("column", &LoadEntry::column, "In characters, from 1 on; 0 if it stands nowhere.");
    type.def_readonly("offset", &LoadEntry::offset, "In bytes of the text in UTF-8.");
    type.def_property_readonly(
        "ids", [](const LoadEntry &entry) { return ToTexts(entry.ids); },
        "Those of the objects that it is about.");
    type.def_readonly("is_kept", &LoadEntry::isKept,
                      "Whether it is a loss that is written again as it came.");
    type.def("__repr__", [](const LoadEntry &entry) {
        return "<marlet.ReportEntry " + std::to_string(entry.line) + ":" + std::to_string(entry.column) +
               ": " + SeverityName(entry.severity) + ": " + entry.what + ">";
    });
}

void BindUnresolved(py::module_ &module)
{
    py::class_<UnresolvedPlugin> type(
        module, "UnresolvedPlugin",
        "A plug-in that a project uses and that is missing, or there only in an older version.");
    type.def_property_readonly(
        "id", [](const UnresolvedPlugin &plugin) { return plugin.id.ToNarrowString(); },
        "The text of its ID.");
    type.def_readonly("name", &UnresolvedPlugin::name, "Its name.");
    type.def_readonly("version", &UnresolvedPlugin::version,
                      "Of the text, as four numbers with points between them.");
    type.def_readonly("is_older", &UnresolvedPlugin::isOlder, "Whether it is there in an older version.");
    type.def_readonly("uses", &UnresolvedPlugin::uses, "How many effects and transitions are of it.");
}

} // namespace

void BindReport(py::module_ &module)
{
    BindEntry(module);
    BindUnresolved(module);
    using Report = LoadReport;
    py::class_<Report, std::shared_ptr<Report>> type(
        module, "Report", "What a load found, as a sequence of entries in the order of the text.");
    type.def("__len__", [](const Report &report) { return report.Entries().size(); });
    type.def("__getitem__", [](const Report &report, const py::object &index) -> py::object {
        return py::cast(report.Entries())[index];
    });
    type.def("__iter__", [](const Report &report) { return py::iter(py::cast(report.Entries())); });
    type.def_property_readonly("unresolved_plugins", &Report::UnresolvedPlugins,
                               "The plug-ins that are missing, each once.");
    type.def_property_readonly(
        "dropped", &Report::CountDropped,
        "How many of the losses the next save drops: where there are some, keep the old file.");
    type.def(
        "count",
        [](const Report &report, const std::string &severity) {
            for (std::size_t i = 0; i < LoadEntry::kSeverities; ++i)
                if (severity == SeverityName(static_cast<LoadEntry::Severity>(i)))
                    return report.Count(static_cast<LoadEntry::Severity>(i));
            throw py::value_error("'" + severity + "' is none of 'note', 'warning', 'loss', 'error'");
        },
        py::arg("severity"),
        "How many entries have a severity, with those beyond the first 10,000, which are not kept.");
    type.def("__repr__", [](const Report &report) {
        return "<marlet.Report, " + std::to_string(report.Count()) + " entries>";
    });
}

} // namespace marlet::python
