#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>

#include <cstddef>
#include <functional>
#include <vector>

namespace marlet::project
{

class AbstractLayer;
class Project;

/// One object of a project. Those that it owns follow it, one step deeper. Texts are in UTF-8.
struct OwnedObject {
    std::size_t depth = 0;
    NarrowString kind; ///< "text layer", "effect", "video track"
    NarrowString name;
    kytl::KyID id;
};

/// That an object names another one by ID.
struct ObjectReference {
    std::size_t from = 0; ///< the place of the object
    NarrowString role;    ///< "asset", "parent", "layer", "folder", "partner", "transition"
    kytl::KyID target;
};

/// Who owns whom in a project, and who names whom.
struct OwnershipTree {
    std::vector<OwnedObject> objects;
    std::vector<ObjectReference> references; ///< none to the null ID
};

/// Which layers the 3D effect of a layer names, if it has one, as its host knows.
using NamedBy3DEffect = std::function<std::vector<kytl::KyID>(const AbstractLayer &)>;

/// Folders, assets, compositions with their layers and what these own, and the sequence with its tracks,
/// objects and transitions, in a walk over the project. Changes nothing; any number of threads may do it
/// while nothing changes the project.
MARLET_EXPORT OwnershipTree OwnershipOf(const Project &project, const NamedBy3DEffect &namedBy3DEffect = {});

} // namespace marlet::project
