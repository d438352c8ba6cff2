#pragma once

#include <marlet/foundation/Export.h>
#include <marlet/foundation/Strings.h>

#include <vector>

namespace marlet::project
{

/// One thing in which two documents differ, for a person and, exactly, for whoever makes one into the other.
/// Texts are in UTF-8.
struct Difference {
    enum class Kind : int { Added, Removed, Moved, Changed };

    Kind kind = Kind::Changed;

    // For a person.

    std::vector<NarrowString> place; ///< from the outside in, such as "layer "Title"", "property position"
    NarrowString what;   ///< the field that changed; empty where the innermost place itself is meant
    NarrowString before; ///< a value, or a place among its neighbours, counted from 1
    NarrowString after;

    // Exactly.

    /// The keys of the elements from below the root to the one that is meant.
    std::vector<NarrowString> path;
    /// The attribute that changed; empty where the element itself is meant.
    NarrowString attribute;
    /// Of what is added, removed or moved: the key of the neighbour, or the name of the attribute, in front
    /// of it where it is, or was; empty if it comes first.
    NarrowString behind;
    /// The element, or the attribute with its value; empty where there is none.
    NarrowString oldXml;
    NarrowString newXml;
};

} // namespace marlet::project
