#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/KyList.h>
#include <marlet/foundation/Strings.h>

#include <memory>

namespace marlet::project
{

class Abstract3DEffectFactory;
class AbstractAssetInstance;
class AbstractPluginManager;
class ProjectTextureImageCache;
class XmlWriter;

enum class AssetType : int { Media, Image, Solid, Composition };

/// Whatever a project can place on a timeline. Assets are shared by pointer and named by ID; the project's
/// AssetList owns them. Sizes are in pixels. Unless a class says otherwise, an asset belongs to the thread
/// that edits the project, and may be read from any number of threads while nothing changes it.
class MARLET_EXPORT AbstractAsset
{
public:
    using InstanceList = kytl::KyList<std::weak_ptr<AbstractAssetInstance>, std::vector>;

    AbstractAsset() = default;
    AbstractAsset(const AbstractAsset &) {}
    AbstractAsset &operator=(const AbstractAsset &) = delete;
    virtual ~AbstractAsset();

    /// A copy with a new ID and no instances.
    virtual std::shared_ptr<AbstractAsset> Clone() const = 0;
    virtual const kytl::KyID &ID() const = 0;
    virtual AssetType Type() const = 0;
    virtual const WideString &Name() const = 0;
    virtual void SetName(const WideString &name) = 0;
    virtual bool HasAudio() const = 0;
    virtual bool HasVideo() const = 0;
    virtual bool IsOffline() const = 0;
    virtual int Width() const = 0;
    virtual int Height() const = 0;
    /// What uses the asset. The host keeps this list; it is written to the file but not read back.
    virtual InstanceList &Instances() = 0;
    virtual const InstanceList &Instances() const = 0;
    /// The bin folder that holds the asset. The host keeps the folder's side, too.
    virtual const kytl::KyID &ParentFolderID() const = 0;
    virtual void SetParentFolderID(const kytl::KyID &id) = 0;
    virtual void ClearParentBinFolder() = 0;

private:
    virtual void Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const = 0;

public:
    virtual WideString Serialize(const ProjectTextureImageCache &textures) const = 0;
    /// Reads the asset's element into this object. A failure leaves what was read until then.
    /// @throws XmlParseException, InvalidProjectVersionException, std::runtime_error, boost::bad_lexical_cast
    virtual void Deserialize(const WideString &xml,
                             const std::shared_ptr<AbstractPluginManager> &pluginManager,
                             const Abstract3DEffectFactory &effectFactory,
                             ProjectTextureImageCache &textures) = 0;

    /// The pixel aspect ratio of an asset, 1 while its file cannot be used, 0 for a custom ratio of anything
    /// but a composition.
    static double AspectRatio(const std::shared_ptr<AbstractAsset> &asset);

private:
    friend class AssetList;
};

/// The first asset of a list with that ID, or an empty pointer.
MARLET_EXPORT std::shared_ptr<AbstractAsset>
FindAssetByID(const kytl::KyList<std::shared_ptr<AbstractAsset>, std::vector> &assets, const kytl::KyID &id);

} // namespace marlet::project
