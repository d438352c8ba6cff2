#pragma once

#include <marlet/compare/Difference.h>

namespace marlet::project
{

class Project;

/// Two differences from a base that cannot both be: a fact that both sides made another one, an object that
/// one side removed and the other changed, added objects with the same ID that are not the same, or an object
/// that both moved. The path of both is where they meet, or that of one is within what the other removed.
struct MergeConflict {
    Difference ours;
    Difference theirs;
};

struct MergeResult {
    /// What theirs changed since the base and ours has not: applied to ours, it makes the merged document.
    std::vector<Difference> changes;
    /// Where ours stays as it is.
    std::vector<MergeConflict> conflicts;
};

/// Brings together what two sides made of a base. Lists are merged by the identity of what is in them; what
/// both sides changed alike is no conflict, and neither is an order that follows from times.
///
/// What it cannot see is that two changes do not go together, each of which is right: a layer that shows an
/// asset which the other side removed. Validate tells of that in the merged project.
MARLET_EXPORT MergeResult Merge(const Project &base, const Project &ours, const Project &theirs);

/// The same for texts as Project::Serialize and ProjectFile::TextFor make them.
/// @throws XmlParseException if one is not whole
MARLET_EXPORT MergeResult MergeTexts(const WideString &base, const WideString &ours,
                                     const WideString &theirs);

} // namespace marlet::project
