#include <marlet/checks/CheckScope.h>

#include <marlet/project/AbstractAssetInstance.h>
#include <marlet/project/AssetLength.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <utility>

namespace marlet::project
{

namespace
{

using AssetPointer = std::shared_ptr<AbstractAsset>;

/// Null for the root, which a project hands out itself.
using FolderPointer = std::shared_ptr<BinFolder>;

BinFolder &Resolve(const FolderPointer &folder, Project &project)
{
    return folder ? *folder : project.Assets().Bin();
}

/// Where an asset is held.
struct Holders {
    std::size_t count = 0;
    kytl::KyID first;
};

class FolderChecker
{
public:
    explicit FolderChecker(CheckScope &scope) : scope_(scope), assets_(scope.project.Assets())
    {
        for (const AssetPointer &asset : assets_.All())
            known_.insert(asset.get());
    }

    void CheckFolders()
    {
        const BinFolder &root = assets_.Bin();
        visited_.insert(&root);
        places_.push_back({nullptr, &root});
        for (std::size_t i = 0; i < places_.size(); ++i)
            CollectFolder(places_[i].first, *places_[i].second);
        for (const auto &[folder, content] : places_)
            CheckParent(folder, *content);
    }

    void CheckAsset(const AssetPointer &asset, const Place &place)
    {
        const kytl::KyID &parent = asset->ParentFolderID();
        const auto held = holders_.find(asset.get());
        if (held == holders_.end())
            return CheckUnheldAsset(asset, place);
        const kytl::KyID folder = held->second.first;
        if (held->second.count > 1)
            scope_.findings.Warn(FindingKind::Folder, place,
                                 "it is in " + Counted(held->second.count, "folder") + " at once");
        else if (parent.IsNull())
            scope_.findings.Warn(FindingKind::Folder, place, "it does not name the folder that it is in",
                                 NameFolder(asset, folder));
        else if (parent != folder)
            scope_.findings.AddDangling(
                kWarning, place, kParent, parent,
                folders_.contains(parent) ? "that it names is another one than it is in" : kNowhere,
                NameFolder(asset, folder));
    }

private:
    static constexpr auto kWarning = Finding::Severity::Warning;
    static constexpr const char *kParent = "the parent folder";
    static constexpr const char *kNowhere = "does not exist";

    static Remedy NameFolder(const AssetPointer &asset, const kytl::KyID &folder)
    {
        return {"names the folder that it is in",
                [asset, folder](Project &) { asset->SetParentFolderID(folder); }};
    }

    void CollectFolder(const FolderPointer &folder, const BinFolder &content)
    {
        const Place place("folder", content.Name(), content.ID());
        scope_.findings.CheckID(place, content.ID(), folders_);
        byID_.try_emplace(content.ID(), folder);
        CollectAssets(folder, content, place);
        for (const FolderPointer &inner : content.Folders()) {
            if (!inner)
                continue;
            if (visited_.insert(inner.get()).second)
                places_.emplace_back(inner, inner.get());
            else
                scope_.findings.Error(FindingKind::Nesting, place,
                                      "it holds the folder \"" + ToUtf8(inner->Name()) +
                                          "\", which is held elsewhere or holds it");
        }
    }

    void CollectAssets(const FolderPointer &folder, const BinFolder &content, const Place &place)
    {
        std::size_t stray = 0;
        std::size_t twice = 0;
        std::unordered_set<const AbstractAsset *> here;
        for (const std::weak_ptr<AbstractAsset> &reference : content.Assets()) {
            const AssetPointer asset = reference.lock();
            if (!asset || !known_.contains(asset.get())) {
                ++stray;
            } else if (!here.insert(asset.get()).second) {
                ++twice;
            } else {
                Holders &holders = holders_[asset.get()];
                if (holders.count++ == 0)
                    holders.first = content.ID();
            }
        }
        if (stray > 0)
            scope_.findings.Warn(FindingKind::Folder, place,
                                 "it holds " + Counted(stray, "asset") + " that the project does not have",
                                 {"drops what the project does not have",
                                  [folder](Project &project) { KeepAssets(folder, project, DropStrays); }});
        if (twice > 0)
            scope_.findings.Warn(FindingKind::Twice, place,
                                 "it holds " + Counted(twice, "asset") + " a second time",
                                 {"drops second entries",
                                  [folder](Project &project) { KeepAssets(folder, project, DropRepeated); }});
    }

    using References = BinFolder::AssetReferences;

    static void KeepAssets(const FolderPointer &folder, Project &project,
                           void (*drop)(References &, const Project &))
    {
        drop(Resolve(folder, project).Assets(), project);
    }

    static void DropStrays(References &references, const Project &project)
    {
        std::unordered_set<const AbstractAsset *> known;
        for (const AssetPointer &asset : project.Assets().All())
            known.insert(asset.get());
        std::erase_if(references, [&](const std::weak_ptr<AbstractAsset> &reference) {
            const AssetPointer asset = reference.lock();
            return !asset || !known.contains(asset.get());
        });
    }

    static void DropRepeated(References &references, const Project &)
    {
        std::unordered_set<const AbstractAsset *> seen;
        std::erase_if(references, [&](const std::weak_ptr<AbstractAsset> &reference) {
            const AssetPointer asset = reference.lock();
            return asset && !seen.insert(asset.get()).second;
        });
    }

    void CheckParent(const FolderPointer &folder, const BinFolder &content)
    {
        const kytl::KyID &parent = content.ParentFolderID();
        if (parent.IsNull() || folders_.contains(parent))
            return;
        scope_.findings.AddDangling(kWarning, Place("folder", content.Name(), content.ID()), kParent, parent,
                                    kNowhere, {"clears the parent folder", [folder](Project &project) {
                                                   Resolve(folder, project).ClearParentBinFolder();
                                               }});
    }

    void CheckUnheldAsset(const AssetPointer &asset, const Place &place)
    {
        const kytl::KyID &parent = asset->ParentFolderID();
        if (parent.IsNull())
            scope_.findings.Note(FindingKind::Folder, place, "it is in no folder");
        else if (const auto folder = byID_.find(parent); folder != byID_.end())
            scope_.findings.AddDangling(
                kWarning, place, kParent, parent, "that it names does not hold it",
                {"puts it into that folder", [asset, into = folder->second](Project &project) {
                     Resolve(into, project).Assets().Add(asset);
                 }});
        else
            scope_.findings.AddDangling(
                kWarning, place, kParent, parent, kNowhere,
                {"clears the parent folder", [asset](Project &) { asset->ClearParentBinFolder(); }});
    }

    CheckScope &scope_;
    const AssetList &assets_;
    std::unordered_set<const AbstractAsset *> known_;
    std::unordered_set<const BinFolder *> visited_;
    std::vector<std::pair<FolderPointer, const BinFolder *>> places_; ///< in breadth first order
    Findings::IDSet folders_;
    std::unordered_map<kytl::KyID, FolderPointer> byID_;
    std::unordered_map<const AbstractAsset *, Holders> holders_;
};

/// Whatever keeps the file of a media asset from being used counts as offline.
NarrowString FileFault(const AbstractAsset &asset)
{
    if (const auto *media = dynamic_cast<const MediaAsset *>(&asset)) {
        const NarrowString file = ToUtf8(media->Filename());
        if (media->MediaFileStatus() == MediaAsset::Status::Missing)
            return file + " is not there";
        return media->IsOffline() ? file + " cannot be read as media" : NarrowString();
    }
    if (asset.IsOffline())
        return "its file is not there";
    const auto *image = dynamic_cast<const ImageAsset *>(&asset);
    return image && image->Status() == ImageAsset::FileStatus::Unreadable
               ? ToUtf8(image->Filename()) + " cannot be read as an image"
               : NarrowString();
}

/// Takes all entries of an asset but the first out of the project.
void DropRepeatedAsset(Project &project, const AbstractAsset *asset)
{
    AssetList::Assets &all = project.Assets().All();
    bool isFirst = true;
    std::erase_if(all, [&](const AssetPointer &entry) {
        return entry.get() == asset && !std::exchange(isFirst, false);
    });
}

} // namespace

void CheckAssets(CheckScope &scope)
{
    FolderChecker folders(scope);
    folders.CheckFolders();
    std::unordered_set<const AbstractAsset *> visited;
    Findings::IDSet ids;
    for (const AssetPointer &asset : scope.project.Assets().All()) {
        if (!asset)
            continue;
        const Place place("asset", asset->Name(), asset->ID());
        if (!visited.insert(asset.get()).second) {
            scope.findings.Warn(FindingKind::Twice, place, "it is in the project a second time",
                                {"drops the second entry",
                                 [asset](Project &project) { DropRepeatedAsset(project, asset.get()); }});
            continue;
        }
        scope.findings.CheckID(place, asset->ID(), ids);
        scope.assets.try_emplace(asset->ID(), asset);
        folders.CheckAsset(asset, place);
        if (NarrowString fault = FileFault(*asset); !fault.empty()) {
            scope.offline.insert(asset.get());
            scope.findings.Warn(FindingKind::MissingFile, place, std::move(fault));
        }
    }
    scope.assets.erase(kytl::KyID());
}

void CheckShownFrames(CheckScope &scope, const Place &place, const AbstractAsset &asset, double rate,
                      std::int64_t start, std::int64_t end)
{
    const auto [known, isNew] = scope.lengths.try_emplace({&asset, rate});
    if (isNew)
        known->second = AssetLength(asset, rate);
    if (known->second && (start < 0 || end > *known->second))
        scope.findings.Warn(FindingKind::BeyondAsset, place,
                            "it shows frames " + std::to_string(start) + " to " + std::to_string(end) +
                                " of the asset \"" + ToUtf8(asset.Name()) + "\", which has " +
                                std::to_string(*known->second));
}

void CheckInstances(CheckScope &scope)
{
    std::unordered_set<const AbstractAsset *> visited;
    for (const AssetPointer &asset : scope.project.Assets().All()) {
        if (!asset || !visited.insert(asset.get()).second)
            continue;
        const auto &uses = scope.uses[asset.get()];
        std::unordered_set<const AbstractAssetInstance *> missing;
        for (const auto &use : uses)
            missing.insert(use.get());
        std::size_t stale = 0;
        for (const auto &reference : std::as_const(*asset).Instances()) {
            const std::shared_ptr<AbstractAssetInstance> instance = reference.lock();
            stale += !instance || missing.erase(instance.get()) == 0;
        }
        // A host that keeps no lists has none that are wrong.
        const bool isKept = !std::as_const(*asset).Instances().IsEmpty();
        if (!isKept || (stale == 0 && missing.empty()))
            continue;
        scope.findings.Warn(FindingKind::Instances, Place("asset", asset->Name(), asset->ID()),
                            "its list of instances has " + std::to_string(stale) +
                                " that use it no more and lacks " + std::to_string(missing.size()) +
                                " that do",
                            {"lists the uses anew", [asset, uses](Project &) {
                                 asset->Instances().Clear();
                                 for (const auto &use : uses)
                                     asset->Instances().Add(use);
                             }});
    }
}

} // namespace marlet::project
