#include "Comparing.h"

#include "Sphere.h"

#include <marlet/compare/Apply.h>
#include <marlet/compare/Merge.h>

namespace guide
{

// Takes over what somebody else changed since both had one text, as one step that can be undone. Where both
// changed the same, the project stays as it is: a line for each.
std::vector<std::string> TakeChanges(const std::shared_ptr<Project> &project, const WideString &base,
                                     const WideString &theirs)
{
    const MergeResult merged = MergeTexts(base, project->Serialize(), theirs);
    Apply(project, merged.changes, EffectFactory());
    std::vector<std::string> lines;
    for (const MergeConflict &conflict : merged.conflicts)
        lines.push_back(conflict.theirs.place.back() + ": " + conflict.ours.after + " or " +
                        conflict.theirs.after);
    return lines;
}

} // namespace guide
