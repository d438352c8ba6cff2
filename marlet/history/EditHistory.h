#pragma once

#include <marlet/history/ChangeNotice.h>
#include <marlet/history/Edit.h>

#include <exception>
#include <functional>
#include <memory>

namespace marlet::project
{

class Project;

/// The steps of editing one project that can be undone and redone, and whom to tell of changes. A project has
/// at most one history, and costs nothing more without one. Edits that are committed while the history lives
/// become its steps.
///
/// Undo and redo put back in place what was there: objects, property managers and instances keep their
/// addresses, key frames their IDs, lists their order. A step keeps alive what it took out of the project.
///
/// What is changed without an edit is not undone, and an undo that meets it may put back less, or fail with
/// what the model throws; the history is cleared then. Belongs to the thread that edits the project.
class MARLET_EXPORT EditHistory
{
public:
    struct Limits {
        std::size_t steps = 1000;
        /// Of what the steps keep, about. An object that is not in the project counts with all that it holds.
        std::size_t bytes = std::size_t{256} << 20;
    };

    /// Tells the host of an exception that an observer threw.
    using FailureFunction = std::function<void(std::exception_ptr)>;

    /// @throws std::invalid_argument for a null pointer, std::logic_error if the project has a history
    explicit EditHistory(const std::shared_ptr<Project> &project);
    EditHistory(const EditHistory &) = delete;
    EditHistory &operator=(const EditHistory &) = delete;
    ~EditHistory();

    bool CanUndo() const;
    bool CanRedo() const;
    /// Of the step that would be undone or redone; empty if there is none.
    const WideString &UndoLabel() const;
    const WideString &RedoLabel() const;
    /// False if there is nothing to undo or redo. @throws std::logic_error while an edit goes on, and where
    /// the history checks and finds that the project was changed without an edit, which stays
    bool Undo();
    bool Redo();
    /// What was edited since can be undone, but not be joined by an edit of the same gesture.
    void EndGesture();

    std::size_t UndoCount() const;
    std::size_t RedoCount() const;
    /// About how many bytes the steps keep, those that can be redone too.
    std::size_t Size() const;
    /// The oldest steps go first, then those furthest away to redo, and never the last one.
    Limits GetLimits() const;
    void SetLimits(const Limits &limits);
    /// Forgets all steps. The saved mark stays only if the document is as saved.
    void Clear();

    /// The document as it is now is what is saved. A new project, and one that was just loaded, is as saved.
    void MarkSaved();
    bool IsSaved() const;

    /// An observer is held until it is removed. Those that are added inside of a notice hear of the next
    /// one, those that are removed are not called any more.
    void AddObserver(const std::shared_ptr<ChangeObserver> &observer);
    void RemoveObserver(const std::shared_ptr<ChangeObserver> &observer);
    void SetFailureFunction(FailureFunction function);

    /// Whether the history looks for changes that were not announced: in each edit when it is committed, and
    /// between two of them when the next one or an undo or a redo begins, but for what only panels show,
    /// which a host may change as it likes. For the tests of a host: the project is written as text before
    /// the edit, after it, and once more undone. Very long texts are not looked at. It is on in debug builds
    /// of the library, off in others.
    bool ChecksAnnouncements() const;
    void SetChecksAnnouncements(bool checks);

private:
    friend class Edit;

    struct Data;

    void RequireNoEdit() const;

    std::unique_ptr<Data> data_;
};

} // namespace marlet::project
