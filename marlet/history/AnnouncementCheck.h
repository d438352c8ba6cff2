#pragma once

#include <marlet/foundation/Strings.h>

#include <optional>

namespace marlet::project
{

class Project;
class Step;

/// Finds changes that were not announced. It knows the text of a project as the last step left it: when the
/// next one begins, the text must be that, but for what only panels show, which hosts change as they like;
/// and what a step puts back must be the text from before it.
///
/// Writing a project costs its size, so that those whose text is very long are not looked at.
class AnnouncementCheck
{
public:
    /// From now on the project is to be as it is now.
    void Know(const Project &project);
    /// Knows no project until the next look at one.
    void Forget() { known_.reset(); }
    /// Before something begins. Knows the project as it is now.
    /// @throws std::logic_error with the first line that is another one than the last step left
    void RequireKnown(const Project &project);
    /// Undoes the step and redoes it.
    /// @throws std::logic_error with the first line that differs from the project before the step
    void Check(const Project &project, Step &step, const WideString &label);

private:
    std::optional<WideString> known_;
    bool isTooLong_ = false;
};

} // namespace marlet::project
