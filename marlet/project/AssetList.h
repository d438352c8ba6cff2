#pragma once

#include <marlet/foundation/KyList.h>
#include <marlet/project/AbstractAsset.h>

#include <memory>

namespace marlet::project
{

class BinFolder;
class MediaManager;
class MediaProgress;
class XmlCursor;
class XmlWriter;
struct AssetList_Impl;

/// All assets of a project, which it owns, and the root of the folders over them.
///
/// GetByID, GetByType and the const forms may be called from any number of threads at once; a change needs
/// the list for itself alone.
class MARLET_EXPORT AssetList
{
public:
    using Assets = kytl::KyList<std::shared_ptr<AbstractAsset>, std::vector>;

    AssetList(const AssetList &) = delete;
    AssetList &operator=(const AssetList &) = delete;
    ~AssetList();

    /// In file order. The form that can be changed makes the next GetByID look the list through again; a
    /// change through a reference that was kept from before is not noticed until the next call.
    Assets &All();
    const Assets &All() const;
    /// The first asset with that ID, or an empty pointer; always an empty pointer for the null ID.
    std::shared_ptr<AbstractAsset> GetByID(const kytl::KyID &id) const;
    Assets GetByType(AssetType type) const;
    BinFolder &Bin();
    const BinFolder &Bin() const;

private:
    friend struct Project_Impl;
    friend class Project;

    AssetList();
    void Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const;
    void Deserialize(const XmlCursor &element, MediaManager &media, MediaProgress *progress,
                     const std::shared_ptr<AbstractPluginManager> &pluginManager,
                     const Abstract3DEffectFactory &effectFactory, ProjectTextureImageCache &textures);

    std::unique_ptr<AssetList_Impl> impl_;
};

} // namespace marlet::project
