#pragma once

#include <marlet/layers/AbstractLayer.h>

namespace marlet::project
{

class Abstract3DEffect;
struct Effect3DLayer_Impl;

/// A layer that shows a 3D effect, an object of the host's, which it shares with the host.
class MARLET_EXPORT Effect3DLayer : public AbstractLayer
{
public:
    /// The effect is told which layer holds it. @throws std::invalid_argument if it is empty
    static std::shared_ptr<Effect3DLayer> Create(std::shared_ptr<Abstract3DEffect> effect,
                                                 const WideString &name);
    /// @throws XmlParseException, InvalidProjectVersionException, std::runtime_error, and what the factory
    /// throws
    /// @throws ProjectException for a missing property, or if there is no effect
    static std::shared_ptr<Effect3DLayer> CreateFromXml(const WideString &xml,
                                                        const Abstract3DEffectFactory &effectFactory,
                                                        ProjectTextureImageCache &textures);
    ~Effect3DLayer() override;

    /// The clone shows a clone of the effect.
    std::shared_ptr<AbstractLayer> Clone(const kytl::KyID &compositionID) const override;
    LayerType Type() const override;
    bool HasAudio() const override;
    bool HasVideo() const override;
    LayerDimensions Dimensions() const override;
    void SetDimensions(LayerDimensions dimensions) override; ///< ignored
    Matrix TransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                bool avoidZeroScale) const override;
    Matrix OriginAtTime(int time, const std::shared_ptr<Project> &project) const override;
    using AbstractLayer::Serialize;
    Matrix AlignToMotion(const Matrix &world, int time, const std::shared_ptr<Project> &project,
                         bool avoidZeroScale) const override;

    std::shared_ptr<Abstract3DEffect> Effect() const;
    /// The effect is told which layer holds it. @throws std::invalid_argument if it is empty
    void SetEffect(std::shared_ptr<Abstract3DEffect> effect);

private:
    friend class LayerMaker;

    Effect3DLayer();
    Effect3DLayer(std::shared_ptr<Abstract3DEffect> effect, const WideString &name);
    Effect3DLayer(const XmlCursor &element, const Abstract3DEffectFactory &effectFactory,
                  ProjectTextureImageCache &textures);
    Effect3DLayer(const Effect3DLayer &other);

    void Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const override;
    std::vector<ObjectPropertyList> ChildLayerReferencePropertyNames() const override;
    void ClearChildInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs) override;
    void ChangeChildLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes) override;
    bool IsChildLayerReferenced(const std::shared_ptr<CompositionAsset> &composition,
                                const kytl::KyID &layerID) const override;

    ValuePtr<Effect3DLayer_Impl> impl_;
};

} // namespace marlet::project
