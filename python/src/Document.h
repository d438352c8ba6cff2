#pragma once

#include "Common.h"

#include <marlet/history/Edit.h>
#include <marlet/history/EditHistory.h>
#include <marlet/project/Project.h>

#include <cstdint>
#include <memory>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace marlet::project
{

class LoadReport;

} // namespace marlet::project

namespace marlet::python
{

/// A project as Python has it: with a history, the edits that go on, and all that must end before it does.
///
/// Every handle shares the document and refers to its object weakly, so a project lives until the last handle
/// goes or until it is closed, and nothing of it outlives it. All members are guarded by the interpreter's
/// lock; what runs without that lock holds the project itself and says so by a Reading.
class Document
{
public:
    Document(std::shared_ptr<Project> project, std::shared_ptr<AbstractPluginManager> plugins,
             std::shared_ptr<LoadReport> report);
    Document(const Document &) = delete;
    Document &operator=(const Document &) = delete;
    ~Document();

    /// @throws Failure ClosedError
    const std::shared_ptr<Project> &Open() const;
    bool IsOpen() const { return project_ != nullptr; }
    /// Drops the edits that go on and lets go of the project. @throws Failure BusyError
    void Close();
    /// @throws Failure ClosedError
    EditHistory &History() const;

    /// What the load found; never null.
    const std::shared_ptr<LoadReport> &Report() const { return report_; }

    /// Is another one after each change, so that what was found before holds as long as it stays. While a
    /// change goes on it is another one each time.
    std::uint64_t Generation() const { return changes_ > 0 ? ++generation_ : generation_; }

    /// One who reads the whole project without the interpreter's lock. Nobody changes it meanwhile.
    class Reading
    {
    public:
        /// @throws Failure ClosedError, BusyError in the middle of another thread's change
        explicit Reading(Document &document);
        Reading(const Reading &) = delete;
        Reading &operator=(const Reading &) = delete;
        ~Reading() { --document_.readings_; }

        Project &operator*() const { return *project_; }

    private:
        Document &document_;
        std::shared_ptr<Project> project_;
    };

    /// One who changes the project.
    class Change
    {
    public:
        /// @throws Failure ClosedError, BusyError
        explicit Change(Document &document);
        Change(const Change &) = delete;
        Change &operator=(const Change &) = delete;
        ~Change();

    private:
        Document &document_;
    };

    // The edits that a script has begun, in the order of their beginning, each known by a number.

    /// @throws Failure ClosedError, BusyError
    std::uint64_t BeginEdit(const WideString &label, const WideString &gesture);
    Edit *FindEdit(std::uint64_t number) const;
    /// @throws std::logic_error if one that began later goes on; what the library throws
    void CommitEdit(std::uint64_t number);
    /// With those that began later. Nothing if it has ended.
    void DropEdit(std::uint64_t number);
    /// Drops an edit that nobody can end any more, such as that of a generator which is given up: at once, or
    /// before the next change if the project is being read or changed. Any thread.
    void AbandonEdit(std::uint64_t number) noexcept;

private:
    struct OpenEdit {
        std::uint64_t number;
        std::unique_ptr<Edit> edit;
    };

    /// @throws Failure BusyError
    void RequireChangeable();
    void DropAbandoned() noexcept;
    void EndEdit() noexcept;

    std::shared_ptr<AbstractPluginManager> plugins_; ///< outlives the instances of its plug-ins
    std::shared_ptr<Project> project_;
    std::unique_ptr<EditHistory> history_;
    std::shared_ptr<LoadReport> report_;
    std::vector<OpenEdit> edits_;
    std::thread::id editor_; ///< the thread whose changes or edits go on, if there are any
    std::uint64_t lastEdit_ = 0;
    std::uint64_t abandoned_ = 0; ///< the first edit that nobody ends, or 0
    mutable std::uint64_t generation_ = 1;
    int readings_ = 0;
    int changes_ = 0;
};

using DocumentPointer = std::shared_ptr<Document>;

/// Changes something as an edit of its own, or as a part of the one that goes on.
/// @param change is handed the edit, to be told what is going to be changed
template <class Function> auto Edited(Document &document, const WideString &label, const Function &change)
{
    const Document::Change guard(document);
    Edit edit(document.Open(), label);
    if constexpr (std::is_void_v<decltype(change(edit))>) {
        change(edit);
        edit.Commit();
    } else {
        auto result = change(edit);
        edit.Commit();
        return result;
    }
}

/// Runs an operation of the library, which makes its own edit.
template <class Function> auto Operate(Document &document, const Function &operation)
{
    const Document::Change guard(document);
    return operation(document.Open());
}

/// Runs what reads the whole project without the interpreter's lock.
template <class Function> auto Unlocked(Document &document, const Function &function)
{
    const Document::Reading reading(document);
    const py::gil_scoped_release release;
    return function(*reading);
}

} // namespace marlet::python
