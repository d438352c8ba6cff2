#include "Document.h"

#include "Errors.h"

#include <algorithm>
#include <stdexcept>

namespace marlet::python
{

Document::Document(std::shared_ptr<Project> project, std::shared_ptr<AbstractPluginManager> plugins,
                   std::shared_ptr<LoadReport> report)
    : plugins_(std::move(plugins)), project_(std::move(project)), report_(std::move(report))
{
    history_ = std::make_unique<EditHistory>(project_);
    // Like what a callback throws anywhere in Python that nobody can catch.
    history_->SetFailureFunction([](std::exception_ptr failure) {
        const py::gil_scoped_acquire acquire;
        try {
            std::rethrow_exception(std::move(failure));
        } catch (py::error_already_set &error) {
            error.discard_as_unraisable("an observer of a marlet.Project");
        } catch (const std::exception &error) {
            PyErr_SetString(PyExc_RuntimeError, error.what());
            PyErr_WriteUnraisable(nullptr);
        }
    });
}

Document::~Document()
{
    while (!edits_.empty())
        edits_.pop_back();
}

const std::shared_ptr<Project> &Document::Open() const
{
    if (!project_)
        throw Failure("ClosedError", "The project is closed");
    return project_;
}

EditHistory &Document::History() const
{
    Open();
    return *history_;
}

void Document::Close()
{
    if (!project_)
        return;
    RequireChangeable();
    if (changes_ > 0)
        throw Failure("BusyError", "The project is being changed");
    while (!edits_.empty())
        EndEdit();
    ++generation_;
    // What they hold may run Python code when it goes, which must find the project closed.
    const auto project = std::move(project_);
    const auto history = std::move(history_);
}

void Document::RequireChangeable()
{
    DropAbandoned();
    if (readings_ > 0)
        throw Failure("BusyError", "The project is being read and cannot be changed meanwhile");
    if ((changes_ > 0 || !edits_.empty()) && editor_ != std::this_thread::get_id())
        throw Failure("BusyError", "Another thread is editing the project");
}

Document::Reading::Reading(Document &document) : document_(document), project_(document.Open())
{
    if (document.changes_ > 0 && document.editor_ != std::this_thread::get_id())
        throw Failure("BusyError", "Another thread is editing the project");
    ++document.readings_;
}

Document::Change::Change(Document &document) : document_(document)
{
    document.Open();
    document.RequireChangeable();
    document.editor_ = std::this_thread::get_id();
    ++document.changes_;
    ++document.generation_;
}

Document::Change::~Change()
{
    --document_.changes_;
    ++document_.generation_;
}

std::uint64_t Document::BeginEdit(const WideString &label, const WideString &gesture)
{
    const Change change(*this);
    edits_.push_back({++lastEdit_, std::make_unique<Edit>(project_, label, gesture)});
    return lastEdit_;
}

Edit *Document::FindEdit(std::uint64_t number) const
{
    const auto found = std::ranges::find(edits_, number, &OpenEdit::number);
    return found != edits_.end() ? found->edit.get() : nullptr;
}

void Document::EndEdit() noexcept
{
    const auto edit = std::move(edits_.back().edit);
    edits_.pop_back();
}

void Document::CommitEdit(std::uint64_t number)
{
    const Change change(*this);
    Edit *const edit = FindEdit(number);
    if (!edit)
        throw std::logic_error("The edit has ended");
    try {
        edit->Commit(); // refuses where one that began later goes on
    } catch (...) {
        if (!edit->IsOpen())
            EndEdit();
        throw;
    }
    EndEdit();
}

void Document::DropEdit(std::uint64_t number)
{
    if (!FindEdit(number))
        return;
    const Change change(*this);
    while (FindEdit(number))
        EndEdit();
}

void Document::AbandonEdit(std::uint64_t number) noexcept
{
    if (!FindEdit(number))
        return;
    abandoned_ = abandoned_ == 0 ? number : std::min(abandoned_, number);
    DropAbandoned();
}

void Document::DropAbandoned() noexcept
{
    if (abandoned_ == 0 || readings_ > 0 || changes_ > 0)
        return;
    while (FindEdit(abandoned_))
        EndEdit();
    abandoned_ = 0;
    ++generation_;
}

} // namespace marlet::python
