#pragma once

#include <marlet/foundation/Strings.h>

namespace marlet::project
{

class Project;
class Step;

/// Finds changes that were not announced: what a step puts back must be the text from before.
class AnnouncementCheck
{
public:
    explicit AnnouncementCheck(const Project &project);

    /// Undoes the step and redoes it.
    /// @throws std::logic_error with the first line that differs
    void Check(const Project &project, Step &step, const WideString &label) const;

private:
    WideString before_;
};

} // namespace marlet::project
