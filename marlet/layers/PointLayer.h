#pragma once

#include <marlet/foundation/Deserializer.h>
#include <marlet/layers/AbstractLayer.h>

namespace marlet::project
{

struct PointLayer_Impl;

/// A layer that shows nothing: other layers hang on it.
class MARLET_EXPORT PointLayer : public AbstractLayer
{
public:
    static std::shared_ptr<PointLayer> Create(const WideString &name);
    /// @throws XmlParseException, InvalidProjectVersionException, ProjectException, std::runtime_error
    static std::shared_ptr<PointLayer> CreateFromXml(const WideString &xml);
    ~PointLayer() override;

    std::shared_ptr<AbstractLayer> Clone(const kytl::KyID &compositionID) const override;
    LayerType Type() const override;
    bool HasAudio() const override;
    bool HasVideo() const override;
    LayerDimensions Dimensions() const override;
    void SetDimensions(LayerDimensions dimensions) override; ///< takes any value but ThreeDContent
    Matrix TransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                bool avoidZeroScale) const override;
    Matrix OriginAtTime(int time, const std::shared_ptr<Project> &project) const override;
    Matrix AlignToMotion(const Matrix &world, int time, const std::shared_ptr<Project> &project,
                         bool avoidZeroScale) const override;
    using AbstractLayer::Serialize;

private:
    friend class LayerMaker;
    friend class StoredFields;

    PointLayer();
    explicit PointLayer(const WideString &name);
    PointLayer(const XmlCursor &element, const Deserializer &);
    PointLayer(const PointLayer &other);

    void RestoreDimensions(LayerDimensions dimensions); ///< any value, as a file may have it
    void Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const override;

    ValuePtr<PointLayer_Impl> impl_;
};

} // namespace marlet::project
