#include <marlet/history/EditHistory.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/history/HistoryData.h>
#include <marlet/history/StaleSearch.h>
#include <marlet/history/TimelinePart.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace marlet::project
{

namespace
{

const WideString kNoLabel;

/// True while it lives.
class Mark
{
public:
    explicit Mark(bool &mark) : mark_(mark) { mark_ = true; }
    Mark(const Mark &) = delete;
    Mark &operator=(const Mark &) = delete;
    ~Mark() { mark_ = false; }

private:
    bool &mark_;
};

} // namespace

void EditHistory::Data::Take(const WideString &label, const WideString &gesture, Step step)
{
    ChangeList changes;
    if (!observers.empty())
        step.Describe(changes);
    const bool joins = Joins(label, gesture, step);
    ForgetUndone();
    hasGestureEnded = gesture.empty();
    if (joins) {
        Join(std::move(step));
    } else {
        done.push_back({label, gesture, std::move(step)});
        Measure(done.back());
    }
    KeepToLimits();
    Tell(ChangeCause::Commit, label, changes);
}

/// A gesture is about one place at least that it had in the last edit. What was saved in between has to stay
/// a state of its own.
bool EditHistory::Data::Joins(const WideString &label, const WideString &gesture, const Step &step) const
{
    return !hasGestureEnded && !done.empty() && undone.empty() && saved != Position() &&
           done.back().gesture == gesture && done.back().label == label && done.back().step.Meets(step);
}

/// The parts of places that the last entry has already keep what stood there still earlier. A gesture that
/// comes back to where it began leaves no step.
void EditHistory::Data::Join(Step step)
{
    Entry &entry = done.back();
    const auto lastTimeline = [](const Step &of) {
        const TimelinePart *last = nullptr;
        for (const std::unique_ptr<EditedPart> &part : of.Parts())
            if (const auto *timeline = dynamic_cast<const TimelinePart *>(part.get()))
                last = timeline;
        return last;
    };
    const TimelinePart *const known = lastTimeline(entry.step);
    for (std::unique_ptr<EditedPart> &part : step.TakeParts()) {
        const auto *timeline = dynamic_cast<const TimelinePart *>(part.get());
        if (!(timeline && known && timeline->IsCoveredBy(*known)))
            entry.step.Add(std::move(part));
    }
    Measure(entry);
    if (!entry.step.IsChange()) {
        size -= entry.size;
        done.pop_back();
        hasGestureEnded = true; // the one before it may be an earlier gesture of that name
    }
}

void EditHistory::Data::Measure(Entry &entry)
{
    size -= entry.size;
    entry.size = sizeof entry + entry.step.Size() + (entry.label.size() + entry.gesture.size()) * 2;
    size += entry.size;
}

void EditHistory::Data::ForgetUndone()
{
    if (saved && *saved > Position())
        saved.reset();
    for (const Entry &entry : undone)
        size -= entry.size;
    undone.clear();
}

void EditHistory::Data::KeepToLimits()
{
    const auto isTooMuch = [this] {
        return done.size() + undone.size() > limits.steps || size > limits.bytes;
    };
    while (done.size() > 1 && isTooMuch()) {
        size -= done.front().size;
        done.pop_front();
        ++letGoOf;
    }
    while (undone.size() > 1 && isTooMuch()) {
        size -= undone.front().size;
        undone.pop_front();
    }
}

void EditHistory::Data::Break()
{
    Clear();
    saved.reset();
    check.Forget();
}

void EditHistory::Data::Clear()
{
    const bool isSaved = saved == Position();
    done.clear();
    undone.clear();
    letGoOf = 0;
    size = 0;
    saved = isSaved ? std::optional<std::size_t>(0) : std::nullopt;
    hasGestureEnded = true;
}

bool EditHistory::Data::Go(ChangeCause cause)
{
    const std::shared_ptr<Project> locked = project.lock();
    if (isTelling)
        throw std::logic_error("An observer of changes must not undo");
    const bool isUndo = cause == ChangeCause::Undo;
    std::deque<Entry> &from = isUndo ? done : undone;
    std::deque<Entry> &to = isUndo ? undone : done;
    if (from.empty() || !locked)
        return false;
    if (checks)
        check.RequireKnown(*locked);
    hasGestureEnded = true;
    Step &step = from.back().step;
    try {
        isUndo ? step.Undo() : step.Redo();
    } catch (...) {
        Break();
        throw;
    }
    if (checks)
        check.Know(*locked);
    to.push_back(std::move(from.back()));
    from.pop_back();
    Measure(to.back());
    ChangeList changes;
    if (!observers.empty())
        to.back().step.Describe(changes);
    const WideString label = to.back().label;
    KeepToLimits();
    Tell(cause, label, changes);
    return true;
}

void EditHistory::Data::Tell(ChangeCause cause, const WideString &label, const ChangeList &changes)
{
    if (observers.empty())
        return;
    const ChangeNotice notice(cause, label, changes.Changes(), [&](const std::vector<ObjectChange> &all) {
        const std::shared_ptr<Project> locked = project.lock();
        return locked ? FindStaleFrames(*locked, all, changes.Former()) : std::vector<StaleFrames>();
    });
    const Mark telling(isTelling);
    const std::vector<std::shared_ptr<ChangeObserver>> told = observers;
    for (const std::shared_ptr<ChangeObserver> &observer : told) {
        if (std::ranges::find(observers, observer) == observers.end())
            continue;
        try {
            observer->Changed(notice);
        } catch (...) {
            if (failure)
                failure(std::current_exception());
        }
    }
}

EditHistory::EditHistory(const std::shared_ptr<Project> &project)
{
    Require(project, "project");
    if (project->editing_.history)
        throw std::logic_error("The project \"" + ToUtf8(project->Name()) + "\" has a history");
    if (project->editing_.innermost)
        throw std::logic_error("A history cannot begin while an edit goes on");
    data_ = std::make_unique<Data>(project);
    project->editing_.history = this;
    SetChecksAnnouncements(data_->checks);
}

EditHistory::~EditHistory()
{
    if (const std::shared_ptr<Project> project = data_->project.lock())
        project->editing_.history = nullptr;
}

bool EditHistory::CanUndo() const
{
    return !data_->done.empty();
}

bool EditHistory::CanRedo() const
{
    return !data_->undone.empty();
}

const WideString &EditHistory::UndoLabel() const
{
    return CanUndo() ? data_->done.back().label : kNoLabel;
}

const WideString &EditHistory::RedoLabel() const
{
    return CanRedo() ? data_->undone.back().label : kNoLabel;
}

void EditHistory::RequireNoEdit() const
{
    const std::shared_ptr<Project> project = data_->project.lock();
    if (project && project->editing_.innermost)
        throw std::logic_error("An edit goes on");
}

bool EditHistory::Undo()
{
    RequireNoEdit();
    return data_->Go(ChangeCause::Undo);
}

bool EditHistory::Redo()
{
    RequireNoEdit();
    return data_->Go(ChangeCause::Redo);
}

void EditHistory::EndGesture()
{
    data_->hasGestureEnded = true;
}

std::size_t EditHistory::UndoCount() const
{
    return data_->done.size();
}

std::size_t EditHistory::RedoCount() const
{
    return data_->undone.size();
}

std::size_t EditHistory::Size() const
{
    return data_->size;
}

EditHistory::Limits EditHistory::GetLimits() const
{
    return data_->limits;
}

void EditHistory::SetLimits(const Limits &limits)
{
    data_->limits = limits;
    data_->KeepToLimits();
}

void EditHistory::Clear()
{
    data_->Clear();
}

void EditHistory::MarkSaved()
{
    data_->saved = data_->Position();
}

bool EditHistory::IsSaved() const
{
    return data_->saved == data_->Position();
}

void EditHistory::AddObserver(const std::shared_ptr<ChangeObserver> &observer)
{
    Require(observer, "observer");
    data_->observers.push_back(observer);
}

void EditHistory::RemoveObserver(const std::shared_ptr<ChangeObserver> &observer)
{
    std::erase(data_->observers, observer);
}

void EditHistory::SetFailureFunction(FailureFunction function)
{
    data_->failure = std::move(function);
}

bool EditHistory::ChecksAnnouncements() const
{
    return data_->checks;
}

void EditHistory::SetChecksAnnouncements(bool checks)
{
    data_->checks = checks;
    data_->check = {};
    const std::shared_ptr<Project> project = data_->project.lock();
    if (checks && project)
        data_->check.Know(*project);
}

} // namespace marlet::project
