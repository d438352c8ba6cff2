#include <marlet/project/BinFolder.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/project/AbstractAsset.h>
#include <marlet/project/AssetsByID.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <unordered_set>

namespace marlet::project
{

struct BinFolder_Impl {
    bool isExpanded = false;
    kytl::KyID id;
    WideString name;
    BinFolder::AssetReferences assets;
    Uncopied<BinFolder::SubFolders> folders;
    kytl::KyID parentFolderID;
    KeptXml kept;
};

namespace
{

template <class Xml, class Self> void BinFolderFields(Xml &xml, Self &self)
{
    xml.Child("ID", self.id);
    xml.Child("IsExpanded", self.isExpanded);
    xml.Child("Name", self.name);
    xml.Child("ParentFolderID", self.parentFolderID);
}

enum class Step { Descend, Pass, Stop };

/// Walks the folders below a root in the order of the file, each before those below it. Calls
/// enter(parent, folder), which says how to go on, and leave(folder) once all below a folder, and at last
/// below the root, is done. Hosts build trees of any depth, hence no recursion.
template <class Enter, class Leave> void Walk(const BinFolder &root, Enter &&enter, Leave &&leave)
{
    struct Level {
        const BinFolder *folder;
        std::size_t next;
    };
    std::vector<Level> path{{&root, 0}};
    std::unordered_set<const BinFolder *> onPath{&root};
    while (!path.empty()) {
        const BinFolder &parent = *path.back().folder;
        if (path.back().next == parent.Folders().size()) {
            leave(parent);
            onPath.erase(&parent);
            path.pop_back();
            continue;
        }
        const std::shared_ptr<BinFolder> &folder = parent.Folders()[path.back().next++];
        if (!folder)
            continue;
        const Step step = enter(parent, folder);
        if (step == Step::Stop)
            return;
        if (step == Step::Pass)
            continue;
        if (!onPath.insert(folder.get()).second)
            throw std::logic_error("Bin folder holds itself: " + folder->ID().ToNarrowString());
        path.push_back({folder.get(), 0});
    }
}

struct FoundFolder {
    const BinFolder *parent = nullptr;
    std::shared_ptr<BinFolder> folder;
};

/// The first folder below the root that the test accepts. Looks at no folder's content twice, so that one
/// which stands in two places for a while, or holds itself, does no harm.
template <class Test> FoundFolder FindBelow(const BinFolder &root, Test &&test)
{
    FoundFolder found;
    std::unordered_set<const BinFolder *> visited{&root};
    Walk(
        root,
        [&](const BinFolder &parent, const std::shared_ptr<BinFolder> &folder) {
            if (test(*folder)) {
                found = {&parent, folder};
                return Step::Stop;
            }
            return visited.insert(folder.get()).second ? Step::Descend : Step::Pass;
        },
        [](const BinFolder &) {});
    return found;
}

FoundFolder FindBelow(const BinFolder &root, const kytl::KyID &id)
{
    return FindBelow(root, [&id](const BinFolder &folder) { return folder.ID() == id; });
}

bool HoldsAsset(const BinFolder &folder, const kytl::KyID &assetID)
{
    return std::ranges::any_of(folder.Assets(), [&](const std::weak_ptr<AbstractAsset> &reference) {
        const std::shared_ptr<AbstractAsset> asset = reference.lock();
        return asset && asset->ID() == assetID;
    });
}

} // namespace

BinFolder::BinFolder() : BinFolder(u"Root")
{
}

BinFolder::BinFolder(const WideString &name)
{
    impl_->id = kytl::KyID::Generate();
    impl_->name = name;
}

BinFolder::BinFolder(const XmlCursor &element, const AssetsByID &assets) : BinFolder(WideString())
{
    Deserialize(element, assets);
}

BinFolder::BinFolder(const BinFolder &other) : impl_(other.impl_)
{
    impl_->id = kytl::KyID::Generate();
}

BinFolder::~BinFolder()
{
    // One level at a time: a deep tree would overflow the stack if each folder destroyed its own.
    SubFolders doomed = std::move(*impl_->folders);
    while (!doomed.empty()) {
        const std::shared_ptr<BinFolder> folder = std::move(doomed.back());
        doomed.pop_back();
        if (folder.use_count() != 1)
            continue;
        SubFolders &below = *folder->impl_->folders;
        std::ranges::move(below, std::back_inserter(doomed));
        below.Clear();
    }
}

std::shared_ptr<BinFolder> BinFolder::Create(const WideString &name)
{
    return std::shared_ptr<BinFolder>(new BinFolder(name));
}

std::shared_ptr<BinFolder> BinFolder::CreateFromXml(const WideString &xml, const AssetPointers &assets)
{
    const XmlDocument document(xml);
    return std::shared_ptr<BinFolder>(new BinFolder(document.Root(), AssetsByID(assets)));
}

void BinFolder::Deserialize(const WideString &xml, const AssetPointers &assets)
{
    const XmlDocument document(xml);
    Deserialize(document.Root(), AssetsByID(assets));
}

WideString BinFolder::Serialize() const
{
    return XmlText([this](XmlWriter &writer) { Serialize(writer); });
}

std::shared_ptr<BinFolder> BinFolder::Copy(const std::shared_ptr<BinFolder> &other)
{
    Require(other, "folder");
    std::shared_ptr<BinFolder> root(new BinFolder(*other));
    std::vector<BinFolder *> path{root.get()};
    Walk(
        *other,
        [&path](const BinFolder &, const std::shared_ptr<BinFolder> &folder) {
            std::shared_ptr<BinFolder> copy(new BinFolder(*folder));
            path.back()->Folders().Add(copy);
            path.push_back(copy.get());
            return Step::Descend;
        },
        [&path](const BinFolder &) { path.pop_back(); });
    return root;
}

void BinFolder::Serialize(XmlWriter &writer) const
{
    const XmlElement element(writer, "BinFolder", 0, impl_->kept);
    BinFolderFields(writer, *impl_);
    {
        const XmlElement assets(writer, "Assets");
        for (const std::weak_ptr<AbstractAsset> &reference : impl_->assets)
            if (const std::shared_ptr<AbstractAsset> asset = reference.lock())
                writer.Child("ID", asset->ID());
    }
    const XmlElement subFolders(writer, "SubFolders");
    for (const std::shared_ptr<BinFolder> &folder : Folders())
        if (folder)
            folder->Serialize(writer);
}

void BinFolder::Deserialize(const XmlCursor &element, const AssetsByID &assets)
{
    element.RequireHeader("BinFolder", 0);
    BinFolderFields(element, *impl_);

    impl_->assets.Clear();
    for (XmlCursor child = element.Find("Assets").Find("ID"); !child.IsNull(); child = child.Next("ID")) {
        kytl::KyID id;
        child.Get(id);
        if (const std::shared_ptr<AbstractAsset> asset = assets.Find(id))
            impl_->assets.Add(asset);
        else if (IsKept(id))
            LoadContext::Current()->KeepReference(child);
        else
            TellLoad(LoadEntry::Severity::Loss, child, "the folder names an asset that is not there", {id});
    }

    Folders().Clear();
    for (XmlCursor child = element.Find("SubFolders").Find("BinFolder"); !child.IsNull();
         child = child.Next("BinFolder"))
        Folders().Add(std::shared_ptr<BinFolder>(new BinFolder(child, assets)));
    impl_->kept = KeptXml(element);
}

const kytl::KyID &BinFolder::ID() const
{
    return impl_->id;
}

const WideString &BinFolder::Name() const
{
    return impl_->name;
}

void BinFolder::SetName(const WideString &name)
{
    impl_->name = name;
}

bool BinFolder::IsExpanded() const
{
    return impl_->isExpanded;
}

void BinFolder::SetExpanded(bool expanded)
{
    impl_->isExpanded = expanded;
}

const kytl::KyID &BinFolder::ParentFolderID() const
{
    return impl_->parentFolderID;
}

void BinFolder::SetParentFolderID(const kytl::KyID &id)
{
    impl_->parentFolderID = id;
}

void BinFolder::ClearParentBinFolder()
{
    impl_->parentFolderID = kytl::KyID();
}

BinFolder::AssetReferences &BinFolder::Assets()
{
    return impl_->assets;
}

const BinFolder::AssetReferences &BinFolder::Assets() const
{
    return impl_->assets;
}

BinFolder::SubFolders &BinFolder::Folders()
{
    return *impl_->folders;
}

const BinFolder::SubFolders &BinFolder::Folders() const
{
    return *impl_->folders;
}

std::shared_ptr<BinFolder> BinFolder::FindFolderByID(const kytl::KyID &id) const
{
    return FindBelow(*this, id).folder;
}

kytl::KyID BinFolder::FindParentFolderID(const kytl::KyID &id) const
{
    const FoundFolder found = FindBelow(*this, id);
    return found.parent ? found.parent->ID() : kytl::KyID();
}

kytl::KyID BinFolder::FindFolderIDContainingAsset(const kytl::KyID &assetID) const
{
    const FoundFolder found =
        FindBelow(*this, [&assetID](const BinFolder &folder) { return HoldsAsset(folder, assetID); });
    return found.folder ? found.folder->ID() : kytl::KyID();
}

kytl::KyList<kytl::KyID, std::vector> BinFolder::FindIDsIntoFolder() const
{
    kytl::KyList<kytl::KyID, std::vector> result;
    result.Add(ID());
    Walk(
        *this,
        [&result](const BinFolder &, const std::shared_ptr<BinFolder> &folder) {
            result.Add(folder->ID());
            return Step::Descend;
        },
        [&result](const BinFolder &folder) {
            for (const std::weak_ptr<AbstractAsset> &asset : folder.Assets())
                result.Add(std::shared_ptr<AbstractAsset>(asset)->ID());
        });
    return result;
}

} // namespace marlet::project
