#pragma once

#include <marlet/foundation/Strings.h>
#include <marlet/recovery/RecoveredTree.h>

#include <unordered_map>
#include <unordered_set>

namespace marlet::project
{

/// Says where elements of a recovered tree stand, in the words of a load's report. The tree stays as it is
/// meanwhile.
class RecoveredPaths
{
public:
    const NarrowString &PathTo(const RecoveredElement &element);

private:
    int PlaceAmongEqual(const RecoveredElement &element);

    // Of those that were asked for, and those around them.
    std::unordered_map<const RecoveredElement *, NarrowString> paths_;
    std::unordered_map<const RecoveredElement *, int> places_; ///< not of the only ones of their tag
    std::unordered_set<const RecoveredElement *> numbered_;    ///< those whose children have places
};

} // namespace marlet::project
