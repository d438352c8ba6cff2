#include "Bindings.h"
#include "Handles.h"

#include <stdexcept>

namespace marlet::python
{

namespace
{

/// An edit that a script begins: the steps of a with statement.
class ScriptEdit
{
public:
    ScriptEdit(DocumentPointer document, WideString label, WideString gesture)
        : document_(std::move(document)), label_(std::move(label)), gesture_(std::move(gesture))
    {
    }
    ScriptEdit(const ScriptEdit &) = delete;
    ScriptEdit &operator=(const ScriptEdit &) = delete;
    ~ScriptEdit() { document_->AbandonEdit(number_); }

    void Begin()
    {
        if (number_ != 0)
            throw std::logic_error("The edit has begun already");
        number_ = document_->BeginEdit(label_, gesture_);
    }
    void Commit() { document_->CommitEdit(number_); }
    void Drop() { document_->DropEdit(number_); }
    bool IsOpen() const { return number_ != 0 && document_->FindEdit(number_) != nullptr; }
    const WideString &Label() const { return label_; }

private:
    DocumentPointer document_;
    WideString label_;
    WideString gesture_;
    std::uint64_t number_ = 0; ///< once it has begun
};

struct HistoryHandle {
    DocumentPointer document;

    EditHistory &Get() const { return document->History(); }
};

std::optional<WideString> LabelIf(bool is, const WideString &label)
{
    return is ? std::optional(label) : std::nullopt;
}

void BindEdit(py::module_ &module)
{
    py::class_<ScriptEdit> type(
        module, "Edit",
        "One step of what a user does, for a with statement: what is changed in it is undone as one. An "
        "exception puts everything back. Edits may stand in one another.");
    type.def("__enter__", [](const py::object &self) {
        py::cast<ScriptEdit &>(self).Begin();
        return self;
    });
    type.def("__exit__",
             [](ScriptEdit &edit, const py::object &error, const py::object &, const py::object &) {
                 if (!error.is_none())
                     edit.Drop();
                 else if (edit.IsOpen())
                     edit.Commit();
             });
    type.def("drop", &ScriptEdit::Drop, "Puts everything back at once.");
    type.def("commit", &ScriptEdit::Commit, "Makes it a step at once.");
    type.def_property_readonly("is_open", &ScriptEdit::IsOpen, "Whether it goes on.");
    type.def_property_readonly("label", &ScriptEdit::Label, "For the user.");
}

void BindSteps(py::class_<HistoryHandle> &type)
{
    const auto change = [](bool (EditHistory::*step)()) {
        return [step](const HistoryHandle &history) {
            EditHistory &steps = history.Get();
            const Document::Change guard(*history.document);
            return (steps.*step)();
        };
    };
    type.def("undo", change(&EditHistory::Undo), "Undoes the last step. False if there is none.");
    type.def("redo", change(&EditHistory::Redo), "Redoes what was undone. False if there is nothing.");
    type.def(
        "clear",
        [](const HistoryHandle &history) {
            EditHistory &steps = history.Get();
            const Document::Change guard(*history.document);
            steps.Clear();
        },
        "Forgets all steps.");
    type.def(
        "end_gesture", [](const HistoryHandle &history) { history.Get().EndGesture(); },
        "Edits of the same gesture that follow make a new step.");
    type.def_property_readonly(
        "can_undo", [](const HistoryHandle &history) { return history.Get().CanUndo(); },
        "Whether there is a step to undo.");
    type.def_property_readonly(
        "can_redo", [](const HistoryHandle &history) { return history.Get().CanRedo(); },
        "Whether there is one to redo.");
    type.def_property_readonly(
        "undo_label",
        [](const HistoryHandle &history) {
            return LabelIf(history.Get().CanUndo(), history.Get().UndoLabel());
        },
        "Of the step that would be undone, or None.");
    type.def_property_readonly(
        "redo_label",
        [](const HistoryHandle &history) {
            return LabelIf(history.Get().CanRedo(), history.Get().RedoLabel());
        },
        "Of the step that would be redone, or None.");
    type.def_property_readonly(
        "undo_count", [](const HistoryHandle &history) { return history.Get().UndoCount(); },
        "How many can be undone.");
    type.def_property_readonly(
        "redo_count", [](const HistoryHandle &history) { return history.Get().RedoCount(); },
        "How many can be redone.");
}

void BindHistory(py::module_ &module)
{
    py::class_<HistoryHandle> type(module, "History",
                                   "The steps of editing a project that can be undone and redone.");
    BindSteps(type);
    type.def(
        "mark_saved", [](const HistoryHandle &history) { history.Get().MarkSaved(); },
        "Says that the project as it is now is what is saved. Project.save does so.");
    type.def_property_readonly(
        "is_saved", [](const HistoryHandle &history) { return history.Get().IsSaved(); },
        "Whether the project is as it was saved or loaded.");
    type.def(
        "set_limits",
        [](const HistoryHandle &history, std::size_t steps, std::size_t bytes) {
            const Document::Change guard(*history.document);
            history.Get().SetLimits({steps, bytes});
        },
        py::arg("steps") = 1000, py::arg("bytes") = std::size_t{256} << 20, "The oldest steps go first.");
}

} // namespace

void BindEdits(py::module_ &module)
{
    BindEdit(module);
    BindHistory(module);
}

void BindEditing(py::class_<ProjectHandle> &type)
{
    type.def(
        "edit",
        [](const ProjectHandle &project, const WideString &label, const WideString &gesture) {
            project.Get();
            return std::make_unique<ScriptEdit>(project.document, label, gesture);
        },
        py::arg("label"), py::kw_only(), py::arg("gesture") = u"",
        "An edit for a with statement. Edits of one gesture, such as the drag of a slider, that follow one "
        "another become one step. What is assigned outside of one is a step of its own.");
    type.def_property_readonly(
        "history",
        [](const ProjectHandle &project) {
            project.Get();
            return HistoryHandle{project.document};
        },
        "The steps that can be undone.");
}

} // namespace marlet::python
