#pragma once

#include "Document.h"

#include <string>
#include <vector>

namespace marlet::tool
{

/// What became of an asset whose file is not there.
struct RelinkedAsset {
    std::string name;
    std::string before; ///< its path
    /// The file that was taken; several where it could not be told which, and none of these was taken then.
    std::vector<std::string> found;
};

/// Looks for the missing files of a project's media and image assets below a folder, which is gone through
/// once, and points the assets at them. Files of the same name count before those that differ from it in
/// case. Of several, those count that can be what the uses of the asset ask for, then those whose folders
/// have the names that they had, and of copies that are the same in every byte the first.
/// @throws Failure if the folder cannot be read
std::vector<RelinkedAsset> RelinkMissing(project::Project &project, const std::string &folder);

} // namespace marlet::tool
