#pragma once

#include <marlet/layers/AbstractLayer.h>

namespace marlet::test
{

/// A layer of any type with fixed matrices and no properties, by default one pixel to the right of its
/// parent.
class FixedLayer : public project::AbstractLayer
{
public:
    explicit FixedLayer(project::LayerType type = project::LayerType::Point)
        : AbstractLayer(u"Fixed"), transformation(Matrix::Translation(1, 0, 0)), type_(type)
    {
    }

    std::shared_ptr<AbstractLayer> Clone(const kytl::KyID &) const override { return nullptr; }
    project::LayerType Type() const override { return type_; }
    bool HasAudio() const override { return false; }
    bool HasVideo() const override { return false; }
    project::LayerDimensions Dimensions() const override { return project::LayerDimensions::TwoD; }
    void SetDimensions(project::LayerDimensions) override {}
    Matrix TransformationAtTime(int, const std::shared_ptr<project::Project> &, bool) const override
    {
        return transformation;
    }
    Matrix OriginAtTime(int, const std::shared_ptr<project::Project> &) const override { return origin; }
    Matrix AlignToMotion(const Matrix &, int, const std::shared_ptr<project::Project> &, bool) const override
    {
        return {};
    }
    kytl::WideString Serialize(const project::ProjectTextureImageCache &) const override { return {}; }

    Matrix transformation;
    Matrix origin;

private:
    project::LayerType type_;
};

} // namespace marlet::test
