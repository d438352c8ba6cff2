#include <marlet/operations/assets/FolderOperations.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/history/Edit.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/assets/FolderWork.h>
#include <marlet/project/AbstractAsset.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/Project.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

using FolderPointer = std::shared_ptr<BinFolder>;

FolderPointer HolderOf(const std::shared_ptr<Project> &project, const FolderPointer &folder)
{
    for (const FolderPointer &holder : FoldersOf(project))
        if (std::ranges::find(holder->Folders(), folder) != holder->Folders().end())
            return holder;
    throw OperationException("The root folder stays");
}

} // namespace

FolderPointer AddFolder(const std::shared_ptr<Project> &project, const WideString &name,
                        const FolderPointer &into)
{
    Edit edit(project, u"Add folder");
    const FolderPointer holder = RequireFolder(project, into);
    const FolderPointer folder = BinFolder::Create(name);
    folder->SetParentFolderID(holder->ID());
    edit.Touch(holder);
    holder->Folders().Add(folder);
    edit.Commit();
    return folder;
}

void RemoveFolder(const std::shared_ptr<Project> &project, const FolderPointer &folder)
{
    Edit edit(project, u"Remove folder");
    const FolderPointer removed = RequireFolder(project, folder);
    const FolderPointer holder = HolderOf(project, removed);
    edit.Touch(holder);
    std::erase(holder->Folders(), removed);
    for (const auto &reference : removed->Assets()) {
        const std::shared_ptr<AbstractAsset> asset = reference.lock();
        if (!asset)
            continue;
        edit.Touch(asset);
        asset->SetParentFolderID(holder->ID());
        holder->Assets().Add(asset);
    }
    for (const FolderPointer &inner : removed->Folders()) {
        edit.Touch(inner);
        inner->SetParentFolderID(holder->ID());
        holder->Folders().Add(inner);
    }
    edit.Touch(removed);
    removed->Assets().clear();
    removed->Folders().clear();
    edit.Commit();
}

void RenameFolder(const std::shared_ptr<Project> &project, const FolderPointer &folder,
                  const WideString &name)
{
    Edit edit(project, u"Rename folder");
    const FolderPointer renamed = RequireFolder(project, folder);
    edit.Touch(renamed);
    renamed->SetName(name);
    edit.Commit();
}

} // namespace marlet::project
