#pragma once

#include <marlet/foundation/KyID.h>

#include <cstddef>
#include <string>
#include <vector>

namespace marlet::project
{
class Project;
}

namespace marlet::tool
{

/// One object of a project. Those that it owns follow it, one step deeper.
struct OwnedObject {
    std::size_t depth = 0;
    std::string kind; ///< "layer", "effect"
    std::string name;
    kytl::KyID id;
};

/// That an object names another one by ID.
struct ObjectReference {
    std::size_t from = 0; ///< the place of the object
    std::string role;     ///< "asset", "parent"
    kytl::KyID target;
};

struct OwnershipTree {
    std::vector<OwnedObject> objects;
    std::vector<ObjectReference> references; ///< none to the null ID
};

/// Folders, assets, compositions with their layers and what these own, and the sequence with its tracks.
OwnershipTree OwnershipOf(const project::Project &project);

} // namespace marlet::tool
