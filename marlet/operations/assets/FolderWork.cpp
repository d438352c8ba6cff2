#include <marlet/operations/assets/FolderWork.h>

#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>
#include <marlet/project/AbstractAsset.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <unordered_set>

namespace marlet::project
{

using FolderPointer = std::shared_ptr<BinFolder>;

FolderPointer RootOf(const std::shared_ptr<Project> &project)
{
    return {project, &project->Assets().Bin()};
}

std::vector<FolderPointer> FoldersOf(const std::shared_ptr<Project> &project)
{
    std::vector<FolderPointer> folders{RootOf(project)};
    std::unordered_set<const BinFolder *> seen;
    for (std::size_t i = 0; i < folders.size(); ++i) {
        const FolderPointer folder = folders[i];
        for (const FolderPointer &inner : folder->Folders())
            if (inner && seen.insert(inner.get()).second)
                folders.push_back(inner);
    }
    return folders;
}

FolderPointer FolderOf(const std::shared_ptr<Project> &project, const AbstractAsset &asset)
{
    const auto lists = [&](const FolderPointer &folder) {
        return std::ranges::any_of(folder->Assets(),
                                   [&](const auto &reference) { return reference.lock().get() == &asset; });
    };
    const std::vector<FolderPointer> folders = FoldersOf(project);
    const auto found = std::ranges::find_if(folders, lists);
    return found == folders.end() ? nullptr : *found;
}

FolderPointer RequireFolder(const std::shared_ptr<Project> &project, const FolderPointer &folder)
{
    if (!folder)
        return RootOf(project);
    const std::vector<FolderPointer> folders = FoldersOf(project);
    if (std::ranges::none_of(folders,
                             [&](const FolderPointer &known) { return known.get() == folder.get(); }))
        throw OperationException("Folder " + Quoted(folder->Name()) + " is not in the project");
    return folder;
}

} // namespace marlet::project
