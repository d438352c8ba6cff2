#pragma once

#include <marlet/foundation/KyList.h>
#include <marlet/layers/AbstractLayer.h>

namespace marlet::project
{

class EffectInstance;
class Mask;
struct GradeLayer_Impl;

/// A layer without a picture of its own, whose effects and masks act on what lies beneath it. It owns both.
/// Sizes are in pixels.
class MARLET_EXPORT GradeLayer : public AbstractLayer
{
public:
    using EffectList = kytl::KyList<std::shared_ptr<EffectInstance>, std::vector>;
    using MaskList = kytl::KyList<std::shared_ptr<Mask>, std::vector>;

    static std::shared_ptr<GradeLayer> Create(const WideString &name, int width, int height);
    /// @throws XmlParseException, InvalidProjectVersionException, ProjectException, std::runtime_error,
    /// MissingPluginException, InvalidPluginVersionException
    static std::shared_ptr<GradeLayer>
    CreateFromXml(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &pluginManager);
    ~GradeLayer() override;

    std::shared_ptr<AbstractLayer> Clone(const kytl::KyID &compositionID) const override;
    LayerType Type() const override;
    bool HasAudio() const override;
    bool HasVideo() const override;
    LayerDimensions Dimensions() const override;
    void SetDimensions(LayerDimensions dimensions) override; ///< takes any value but ThreeDContent
    Matrix TransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                bool avoidZeroScale) const override;
    Matrix OriginAtTime(int time, const std::shared_ptr<Project> &project) const override;
    using AbstractLayer::Serialize;
    Matrix ParentingWorldTransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                              bool avoidZeroScale) const override;
    Matrix AlignToMotion(const Matrix &world, int time, const std::shared_ptr<Project> &project,
                         bool avoidZeroScale) const override;

    int Width() const;
    void SetWidth(int width);
    int Height() const;
    void SetHeight(int height);
    /// In order of application.
    EffectList &Effects();
    const EffectList &Effects() const;
    MaskList &Masks();
    const MaskList &Masks() const;

private:
    friend class LayerMaker;
    friend class StoredFields;

    GradeLayer();
    GradeLayer(const WideString &name, int width, int height);
    GradeLayer(const XmlCursor &element, const std::shared_ptr<AbstractPluginManager> &pluginManager);
    GradeLayer(const GradeLayer &other);

    void RestoreDimensions(LayerDimensions dimensions); ///< any value, as a file may have it
    void Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const override;
    std::vector<ObjectPropertyList> ChildLayerReferencePropertyNames() const override;
    void ClearChildInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs) override;
    void ChangeChildLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes) override;
    bool IsChildLayerReferenced(const std::shared_ptr<CompositionAsset> &composition,
                                const kytl::KyID &layerID) const override;

    ValuePtr<GradeLayer_Impl> impl_;
};

} // namespace marlet::project
