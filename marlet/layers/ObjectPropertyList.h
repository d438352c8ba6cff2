#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>

#include <vector>

namespace marlet::project
{

/// Which properties of an object hold layer IDs.
struct ObjectPropertyList {
    kytl::KyID objectID;
    std::vector<NarrowString> propertyNames;
};

} // namespace marlet::project
