#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>

#include <unordered_map>
#include <unordered_set>

namespace marlet::tool
{

/// Counted from 1; the column in characters.
struct TextPlace {
    int line = 0;
    int column = 0;
};

/// Where a project's text gives objects their IDs, of several with one ID the first. IDs that it does not
/// give are left out.
std::unordered_map<kytl::KyID, TextPlace> PlacesInText(const project::WideString &text,
                                                       const std::unordered_set<kytl::KyID> &ids);

} // namespace marlet::tool
