#pragma once

#include <marlet/foundation/Export.h>
#include <marlet/foundation/Strings.h>

#include <memory>

namespace marlet::project
{

class BinFolder;
class Project;

// Folders of the asset bin, as one Edit each; MoveToFolder moves assets and folders between them. A folder
// that is not given is the root. What cannot be done is an OperationException, and nothing is changed. A null
// project is std::invalid_argument. Belongs to the thread that edits the project.

/// A new folder behind those that are in the other one.
MARLET_EXPORT std::shared_ptr<BinFolder> AddFolder(const std::shared_ptr<Project> &project,
                                                   const WideString &name,
                                                   const std::shared_ptr<BinFolder> &into = {});
/// What is in it moves up, behind what is in the folder that holds it. The root is refused.
MARLET_EXPORT void RemoveFolder(const std::shared_ptr<Project> &project,
                                const std::shared_ptr<BinFolder> &folder);
MARLET_EXPORT void RenameFolder(const std::shared_ptr<Project> &project,
                                const std::shared_ptr<BinFolder> &folder, const WideString &name);

} // namespace marlet::project
