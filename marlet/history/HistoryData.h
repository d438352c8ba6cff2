#pragma once

#include <marlet/history/AnnouncementCheck.h>
#include <marlet/history/EditHistory.h>
#include <marlet/history/Step.h>

#include <deque>
#include <optional>

namespace marlet::project
{

struct EditHistory::Data {
    struct Entry {
        WideString label;
        WideString gesture;
        Step step;
        std::size_t size = 0;
    };

    explicit Data(const std::shared_ptr<Project> &ofProject) : project(ofProject) {}

    /// Makes what was done a step, or a part of the last one.
    void Take(const WideString &label, const WideString &gesture, Step step);
    bool Go(ChangeCause cause);
    void Tell(ChangeCause cause, const WideString &label, const ChangeList &changes);
    void Clear();
    /// The document is not what the steps say, and not what was saved.
    void Break();
    void KeepToLimits();

    /// Which edits a document holds is told by how many steps lead to it, those that were let go of
    /// included.
    std::size_t Position() const { return letGoOf + done.size(); }

    std::weak_ptr<Project> project;
    std::deque<Entry> done;
    std::deque<Entry> undone; ///< the next to redo last
    std::size_t letGoOf = 0;
    std::size_t size = 0;
    std::optional<std::size_t> saved = 0;
    bool hasGestureEnded = true;
    Limits limits;
    std::vector<std::shared_ptr<ChangeObserver>> observers;
    FailureFunction failure;
    bool isTelling = false;
    AnnouncementCheck check;
#ifdef NDEBUG
    bool checks = false;
#else
    bool checks = true;
#endif

private:
    bool Joins(const WideString &label, const WideString &gesture, const Step &step) const;
    void Join(Step step);
    void ForgetUndone();
    void Measure(Entry &entry);
};

} // namespace marlet::project
