#pragma once

#include <tests/checks/CheckedProject.h>

#include <marlet/checks/Validate.h>
#include <marlet/history/EditHistory.h>
#include <marlet/operations/OperationException.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>

namespace marlet::test
{

/// A project with a history that finds what an operation did not announce.
struct UndoableProject : CheckedProject {
    EditHistory history{project};

    /// Does one thing, undoes it and does it again; it must be one step, and leave no more faults than there
    /// were. What refuses must change nothing. Returns the words of the refusal, or nothing.
    std::string Do(const std::function<void()> &operation)
    {
        history.SetChecksAnnouncements(true); // what the test itself has set is how it is
        const WideString before = project->Serialize();
        const std::size_t steps = history.UndoCount();
        const auto faults = Faults();
        try {
            operation();
        } catch (const OperationException &refusal) {
            EXPECT_TRUE(project->Serialize() == before);
            return refusal.what();
        }
        const WideString after = project->Serialize();
        EXPECT_LE(Faults(), faults);
        EXPECT_EQ(history.UndoCount(), steps + (after == before ? 0 : 1));
        if (after != before) {
            history.Undo();
            EXPECT_TRUE(project->Serialize() == before);
            history.Redo();
            EXPECT_TRUE(project->Serialize() == after);
        }
        return {};
    }

private:
    /// What is found beside notes of what may well be meant.
    std::ptrdiff_t Faults() const
    {
        return std::ranges::count_if(Validate(*project), [](const Finding &finding) {
            return finding.severity != Finding::Severity::Note;
        });
    }
};

} // namespace marlet::test
