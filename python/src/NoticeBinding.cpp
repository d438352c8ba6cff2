#include "Bindings.h"
#include "Handles.h"
#include "Values.h"

#include <marlet/history/ChangeNotice.h>

#include <limits>
#include <optional>
#include <set>

namespace marlet::python
{

namespace
{

const Words<ObjectKind> kKinds{{ObjectKind::Project, "project"},
                               {ObjectKind::Folder, "folder"},
                               {ObjectKind::Asset, "asset"},
                               {ObjectKind::Layer, "layer"},
                               {ObjectKind::Mask, "mask"},
                               {ObjectKind::PathPoint, "path point"},
                               {ObjectKind::Tracker, "tracker"},
                               {ObjectKind::TrackingPoint, "tracking point"},
                               {ObjectKind::Effect, "effect"},
                               {ObjectKind::Transition, "transition"},
                               {ObjectKind::Sequence, "sequence"},
                               {ObjectKind::Track, "track"},
                               {ObjectKind::SequenceObject, "sequence object"},
                               {ObjectKind::HostObject, "host object"}};
const Words<ChangeCause> kCauses{
    {ChangeCause::Commit, "commit"}, {ChangeCause::Undo, "undo"}, {ChangeCause::Redo, "redo"}};

std::set<std::string> AspectsOf(const ObjectChange &change)
{
    static constexpr std::pair<Aspect, const char *> kAspects[] = {
        {Aspect::Name, "name"},   {Aspect::Frames, "frames"},   {Aspect::Settings, "settings"},
        {Aspect::Links, "links"}, {Aspect::Members, "members"}, {Aspect::Properties, "properties"},
        {Aspect::Text, "text"},   {Aspect::File, "file"},       {Aspect::PrivateData, "private data"},
        {Aspect::View, "view"}};
    std::set<std::string> words;
    for (const auto &[aspect, word] : kAspects)
        if (change.aspects.Has(aspect))
            words.insert(word);
    return words;
}

std::optional<int> TimeUnless(int open, int time)
{
    return time == open ? std::nullopt : std::optional(time);
}

/// A notice in Python, which may be kept: what was not asked for before the call ended is not to be had.
class Notice
{
public:
    explicit Notice(const ChangeNotice &notice)
        : notice_(&notice), cause_(notice.Cause()), label_(notice.Label()), changes_(notice.Changes())
    {
    }

    void End() { notice_ = nullptr; }
    std::string Cause() const { return kCauses.Of(cause_); }
    const WideString &Label() const { return label_; }
    const std::vector<ObjectChange> &Changes() const { return changes_; }

    const std::vector<StaleFrames> &Stale()
    {
        if (!stale_ && !notice_)
            throw Failure("GoneError", "Which frames are stale is to be asked while the observer is called");
        if (!stale_)
            stale_ = notice_->Stale();
        return *stale_;
    }

private:
    const ChangeNotice *notice_;
    ChangeCause cause_;
    WideString label_;
    std::vector<ObjectChange> changes_;
    std::optional<std::vector<StaleFrames>> stale_;
};

class PythonObserver : public ChangeObserver
{
public:
    explicit PythonObserver(py::function function) : function_(std::move(function)) {}

    void Changed(const ChangeNotice &notice) override
    {
        const py::gil_scoped_acquire acquire;
        const auto shown = std::make_shared<Notice>(notice);
        struct Ending {
            Notice &notice;
            ~Ending() { notice.End(); }
        } const ending{*shown};
        // The function may remove the observer, and with it itself.
        const py::function function = function_;
        function(shown);
    }

private:
    py::function function_;
};

/// An observer that can be removed.
class Observation
{
public:
    Observation(DocumentPointer document, const py::function &function)
        : document_(std::move(document)), observer_(std::make_shared<PythonObserver>(function))
    {
        document_->History().AddObserver(observer_);
    }

    void Remove()
    {
        if (observer_ && document_->IsOpen())
            document_->History().RemoveObserver(observer_);
        observer_ = nullptr;
    }

private:
    DocumentPointer document_;
    std::shared_ptr<ChangeObserver> observer_;
};

void BindChange(py::module_ &module)
{
    py::class_<PropertyChange>(module, "PropertyChange",
                               "The times at which a property may have other values.")
        .def_readonly("name", &PropertyChange::name, "Of the property.")
        .def_property_readonly(
            "first_time",
            [](const PropertyChange &change) {
                return TimeUnless(std::numeric_limits<int>::min(), change.firstTime);
            },
            "In milliseconds, or None for all times before the last.")
        .def_property_readonly(
            "last_time",
            [](const PropertyChange &change) {
                return TimeUnless(std::numeric_limits<int>::max(), change.lastTime);
            },
            "In milliseconds, or None for all times behind the first.");
    py::class_<ObjectChange>(module, "ObjectChange",
                             "What became another one about an object, which may be gone.")
        .def_property_readonly(
            "kind", [](const ObjectChange &change) { return kKinds.Of(change.kind); },
            "'layer', 'asset', 'sequence object' and so on.")
        .def_property_readonly(
            "id", [](const ObjectChange &change) { return ToPython(change.id); }, "The text of its ID.")
        .def_property_readonly(
            "aspects", &AspectsOf,
            "A set of 'name', 'frames', 'settings', 'links', 'members', 'properties', 'text', 'file', "
            "'private data' and 'view'.")
        .def_readonly("properties", &ObjectChange::properties, "The properties that changed.")
        .def_property_readonly(
            "added", [](const ObjectChange &change) { return ToTexts(change.added); },
            "The IDs of the objects that came into its lists.")
        .def_property_readonly(
            "removed", [](const ObjectChange &change) { return ToTexts(change.removed); },
            "The IDs of those that left them.");
    py::class_<StaleFrames>(module, "StaleFrames", "Frames that may look or sound different.")
        .def_property_readonly(
            "timeline", [](const StaleFrames &stale) { return ToPython(stale.timeline); },
            "The ID of the composition or the sequence.")
        .def_readonly("first", &StaleFrames::first, "The first of them.")
        .def_readonly("end", &StaleFrames::end, "The first behind them.");
}

} // namespace

void BindNotices(py::module_ &module)
{
    BindChange(module);
    py::class_<Notice, std::shared_ptr<Notice>>(module, "Notice", "What an edit, an undo or a redo changed.")
        .def_property_readonly("cause", &Notice::Cause, "'commit', 'undo' or 'redo'.")
        .def_property_readonly("label", &Notice::Label, "Of the edit.")
        .def_property_readonly("changes", &Notice::Changes, "A list of ObjectChange, each object once.")
        .def_property_readonly(
            "stale", &Notice::Stale,
            "A list of StaleFrames: the frames of each timeline whose picture or sound may be another one. "
            "Worked out when it is first asked for, which has to be while the observer is called.");
    py::class_<Observation>(module, "Observation",
                            "An observer of a project, which can be removed; also by a with statement.")
        .def("remove", &Observation::Remove, "Ends it.")
        .def("__enter__", [](const py::object &self) { return self; })
        .def("__exit__", [](Observation &observation, const py::args &) { observation.Remove(); });
}

void BindObserving(py::class_<ProjectHandle> &type)
{
    type.def(
        "observe",
        [](const ProjectHandle &project, const py::function &function) {
            return Observation(project.document, function);
        },
        py::arg("function"),
        "Has a function called with a Notice after each commit, undo and redo, until the observation that "
        "is returned is removed. It must not edit. What it raises goes to sys.unraisablehook.");
}

} // namespace marlet::python
