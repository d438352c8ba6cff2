#pragma once

#include <marlet/foundation/KyList.h>
#include <marlet/foundation/KyPoint.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/AbstractAssetInstance.h>

namespace marlet::project
{

class AbstractAsset;
class AssetList;
class EffectInstance;
class Mask;
class Tracker;
struct AssetLayer_Impl;

/// A layer that shows an asset: a media file, an image, a solid or another composition. It owns effects,
/// masks and trackers. It names its asset by ID and remembers what the asset offered, so that it outlives it;
/// the host keeps the asset's list of instances.
class MARLET_EXPORT AssetLayer : public AbstractLayer, public AbstractAssetInstance
{
public:
    using EffectList = kytl::KyList<std::shared_ptr<EffectInstance>, std::vector>;
    using MaskList = kytl::KyList<std::shared_ptr<Mask>, std::vector>;
    using TrackerList = kytl::KyList<std::shared_ptr<Tracker>, std::vector>;

    static std::shared_ptr<AssetLayer> Create(std::shared_ptr<AbstractAsset> asset);
    /// @throws XmlParseException, InvalidProjectVersionException, ProjectException, std::runtime_error,
    /// MissingPluginException, InvalidPluginVersionException
    static std::shared_ptr<AssetLayer>
    CreateFromXml(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &pluginManager);
    ~AssetLayer() override;

    // Of both bases.

    const kytl::KyID &ID() const override;
    const WideString &Name() const override;
    void SetName(const WideString &name) override;

    // As a layer. Matrices need the asset: std::logic_error if it cannot be found.

    std::shared_ptr<AbstractLayer> Clone(const kytl::KyID &compositionID) const override;
    LayerType Type() const override;
    bool HasAudio() const override;
    bool HasVideo() const override;
    LayerDimensions Dimensions() const override;
    void SetDimensions(LayerDimensions dimensions) override;
    Matrix TransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                bool avoidZeroScale) const override;
    Matrix OriginAtTime(int time, const std::shared_ptr<Project> &project) const override;
    using AbstractLayer::Serialize;
    Matrix ParentingWorldTransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                              bool avoidZeroScale) const override;
    Matrix WorldTransformationAtTimeToSetParent(int time, const std::shared_ptr<Project> &project,
                                                bool avoidZeroScale) const override;
    Matrix AlignToMotion(const Matrix &world, int time, const std::shared_ptr<Project> &project,
                         bool avoidZeroScale) const override;

    // As an instance of its asset.

    const kytl::KyID &AssetID() const override;
    project::AssetType AssetType() const override;
    AbstractAssetInstance::Type AssetInstanceType() const override;
    int AssetInstanceStart() const override; ///< the first frame of the asset that is used
    void SetAssetInstanceStart(int frame) override;
    int AssetInstanceEnd() const override;

    /// Shows another asset from now on, as a new layer of it would. Lists of instances stay.
    /// @throws std::invalid_argument for a null pointer
    void SetAsset(const std::shared_ptr<AbstractAsset> &asset);
    AssetUse Use() const;
    void SetUse(const AssetUse &use);
    /// The asset, or an empty pointer if the list has none of that ID.
    std::shared_ptr<AbstractAsset> Asset(const AssetList &assets) const;
    /// What the asset offered when the layer was made.
    bool AssetHadVideo() const;
    bool AssetHadAudio() const;
    AutoOrient AutoOrientation() const;
    void SetAutoOrientation(AutoOrient mode); ///< takes any value but TowardsTarget
    Matrix AutoOrientAtTime(int time) const;
    bool PromoteLights() const;
    /// Ignored unless the layer is ThreeDContent or shows a composition.
    void SetPromoteLights(bool promote);
    /// In order of application.
    EffectList &Effects();
    const EffectList &Effects() const;
    MaskList &Masks();
    const MaskList &Masks() const;
    TrackerList &Trackers();
    const TrackerList &Trackers() const;

    /// The rate by which the asset's sound counts frames, 0 for a solid or an image.
    double AudioFrameRate(const AssetList &assets) const;
    /// How large a frame of the asset is after the effects, and where the asset's frame lies in it, in
    /// pixels. The last two arguments before the results are handed on to the plug-ins' FilterMargins.
    static void ComputePostFilterDims(const std::shared_ptr<AbstractAsset> &asset, const EffectList &effects,
                                      int time, float aFloat, bool aBool,
                                      kytl::matl::KyPoint<2, float> &offset, int &width, int &height);

private:
    friend class LayerMaker;
    friend class StoredFields;

    AssetLayer();
    explicit AssetLayer(const std::shared_ptr<AbstractAsset> &asset);
    AssetLayer(const XmlCursor &element, const std::shared_ptr<AbstractPluginManager> &pluginManager);
    AssetLayer(const AssetLayer &other);

    void RestoreAutoOrientation(AutoOrient mode); ///< any value, as a file may have it
    /// Asset without a copy of the shared pointer. @throws std::logic_error if there is no such asset.
    const AbstractAsset &RequireAsset(const AssetList &assets) const;
    void Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const override;
    std::vector<ObjectPropertyList> ChildLayerReferencePropertyNames() const override;
    void ClearChildInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs) override;
    void ChangeChildLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes) override;
    bool IsChildLayerReferenced(const std::shared_ptr<CompositionAsset> &composition,
                                const kytl::KyID &layerID) const override;

    ValuePtr<AssetLayer_Impl> impl_;
};

} // namespace marlet::project
