#pragma once

#include <marlet/foundation/KyID.h>

#include <memory>
#include <vector>

namespace marlet::project
{

class AbstractAsset;
class BinFolder;
class Project;

/// The root shares the ownership of the project.
std::shared_ptr<BinFolder> RootOf(const std::shared_ptr<Project> &project);
/// The root and all below it.
std::vector<std::shared_ptr<BinFolder>> FoldersOf(const std::shared_ptr<Project> &project);
/// The first folder that lists the asset, or an empty pointer.
std::shared_ptr<BinFolder> FolderOf(const std::shared_ptr<Project> &project, const AbstractAsset &asset);
/// The folder itself, the root for none.
/// @throws OperationException if it is not in the project
std::shared_ptr<BinFolder> RequireFolder(const std::shared_ptr<Project> &project,
                                         const std::shared_ptr<BinFolder> &folder);

} // namespace marlet::project
