#pragma once

#include <marlet/layers/AbstractLayer.h>

namespace marlet::project
{

struct LightLayer_Impl;

/// A light in the space of a composition. Its values are for the renderer.
class MARLET_EXPORT LightLayer : public AbstractLayer
{
public:
    /// The host names the kinds of lights; a light of kind 3 starts turned by 90 degrees about X.
    enum class LightType : int {};

    static std::shared_ptr<LightLayer> Create(const WideString &name, LightType type);
    /// @throws XmlParseException, InvalidProjectVersionException, ProjectException, std::runtime_error
    static std::shared_ptr<LightLayer> CreateFromXml(const WideString &xml);
    ~LightLayer() override;

    std::shared_ptr<AbstractLayer> Clone(const kytl::KyID &compositionID) const override;
    LayerType Type() const override;
    bool HasAudio() const override;
    bool HasVideo() const override;
    LayerDimensions Dimensions() const override;
    void SetDimensions(LayerDimensions dimensions) override; ///< ignored
    Matrix TransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                bool avoidZeroScale) const override;
    Matrix OriginAtTime(int time, const std::shared_ptr<Project> &project) const override;
    Matrix AlignToMotion(const Matrix &world, int time, const std::shared_ptr<Project> &project,
                         bool avoidZeroScale) const override;
    using AbstractLayer::Serialize;

    LightType LightSourceType() const;
    /// Leaves "orientation" as it is.
    void SetLightSourceType(LightType type);
    AutoOrient AutoOrientation() const;
    /// Takes any value but 2 and 3.
    void SetAutoOrientation(AutoOrient mode);
    /// The turn towards the target; the identity in any other mode.
    Matrix AutoOrientAtTime(int time) const;

private:
    friend class LayerMaker;
    friend class StoredFields;

    LightLayer();
    LightLayer(const WideString &name, LightType type);
    explicit LightLayer(const XmlCursor &element);
    LightLayer(const LightLayer &other);

    void RestoreAutoOrientation(AutoOrient mode); ///< any value, as a file may have it
    void Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const override;

    ValuePtr<LightLayer_Impl> impl_;
};

} // namespace marlet::project
