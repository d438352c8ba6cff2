#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/KyList.h>
#include <marlet/foundation/Strings.h>
#include <marlet/foundation/ValuePtr.h>

#include <memory>

namespace marlet::project
{

class AbstractAsset;
class AssetsByID;
class XmlCursor;
class XmlWriter;
struct BinFolder_Impl;

/// A folder of the asset bin: weak references to assets, and sub-folders, which it owns. An asset stores the
/// ID of its folder as well; the host keeps both sides. Belongs to the thread that edits the project.
///
/// The folders form a tree. What walks a whole tree (Copy, FindIDsIntoFolder) throws std::logic_error, naming
/// the folder, if one holds itself.
class MARLET_EXPORT BinFolder
{
public:
    using AssetReferences = kytl::KyList<std::weak_ptr<AbstractAsset>, std::vector>;
    using AssetPointers = kytl::KyList<std::shared_ptr<AbstractAsset>, std::vector>;
    using SubFolders = kytl::KyList<std::shared_ptr<BinFolder>, std::vector>;

    BinFolder &operator=(const BinFolder &) = delete;
    ~BinFolder();

    static std::shared_ptr<BinFolder> Create(const WideString &name);
    /// Assets are looked up in the list; IDs of others are dropped.
    /// @throws XmlParseException, InvalidProjectVersionException, std::runtime_error, boost::bad_lexical_cast
    static std::shared_ptr<BinFolder> CreateFromXml(const WideString &xml, const AssetPointers &assets);
    /// @throws as CreateFromXml; what was read until then stays.
    void Deserialize(const WideString &xml, const AssetPointers &assets);
    WideString Serialize() const;
    /// A folder with copies of the sub-folders, all with new IDs, that refers to the same assets. The parent
    /// folder IDs stay those of the source.
    static std::shared_ptr<BinFolder> Copy(const std::shared_ptr<BinFolder> &other);

    const kytl::KyID &ID() const;
    const WideString &Name() const;
    void SetName(const WideString &name);
    /// Whether the host's tree view shows what is in it.
    bool IsExpanded() const;
    void SetExpanded(bool expanded);
    const kytl::KyID &ParentFolderID() const;
    void SetParentFolderID(const kytl::KyID &id);
    void ClearParentBinFolder();
    AssetReferences &Assets();
    const AssetReferences &Assets() const;
    SubFolders &Folders();
    const SubFolders &Folders() const;

    // The searches look below this folder and never at the folder itself. They answer a miss with an empty
    // pointer or the null ID.

    std::shared_ptr<BinFolder> FindFolderByID(const kytl::KyID &id) const;
    /// The folder that holds the folder with that ID: this one for a direct child.
    kytl::KyID FindParentFolderID(const kytl::KyID &id) const;
    kytl::KyID FindFolderIDContainingAsset(const kytl::KyID &assetID) const;
    /// This folder's ID, then those of each sub-folder's subtree, then those of the assets directly in it.
    /// @throws std::bad_weak_ptr if an asset has gone.
    kytl::KyList<kytl::KyID, std::vector> FindIDsIntoFolder() const;

private:
    friend class AssetList;
    friend struct AssetList_Impl;

    /// The root folder.
    BinFolder();
    explicit BinFolder(const WideString &name);
    BinFolder(const XmlCursor &element, const AssetsByID &assets);
    /// Without the sub-folders, and with a new ID.
    BinFolder(const BinFolder &other);

    void Serialize(XmlWriter &writer) const;
    void Deserialize(const XmlCursor &element, const AssetsByID &assets);

    ValuePtr<BinFolder_Impl> impl_;
};

} // namespace marlet::project
