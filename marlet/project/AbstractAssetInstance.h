#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>

namespace marlet::project
{

enum class AssetType : int;

/// What an instance of an asset remembers of it, so that it outlives it.
struct AssetUse {
    kytl::KyID assetID;
    project::AssetType type{};
    bool hasVideo = false;
    bool hasAudio = false;
    /// What the asset offered when it was first used here. Layers alone keep these.
    bool hadVideo = false;
    bool hadAudio = false;

    bool operator==(const AssetUse &other) const = default;
};

/// What uses an asset: a layer of a composition or an object of the editor timeline. Start and end are frames
/// of the asset.
class MARLET_EXPORT AbstractAssetInstance
{
public:
    enum class Type : int { VisualObject, AudioObject, AssetLayer };

    virtual ~AbstractAssetInstance();

    virtual const kytl::KyID &ID() const = 0;
    virtual const WideString &Name() const = 0;
    virtual void SetName(const WideString &name) = 0;
    virtual const kytl::KyID &AssetID() const = 0;
    virtual project::AssetType AssetType() const = 0;
    virtual Type AssetInstanceType() const = 0;
    virtual int AssetInstanceStart() const = 0;
    virtual void SetAssetInstanceStart(int frame) = 0;
    virtual int AssetInstanceEnd() const = 0;
};

} // namespace marlet::project
