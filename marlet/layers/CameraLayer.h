#pragma once

#include <marlet/layers/AbstractLayer.h>

namespace marlet::project
{

struct CameraLayer_Impl;

/// A viewpoint of a composition: where it stands, what it looks at and how its lens is set. It has no picture
/// and no sound. Clip distances are in pixels, fields of view in degrees.
class MARLET_EXPORT CameraLayer : public AbstractLayer
{
public:
    /// A preset lens, named by its focal length on a frame 36 wide.
    enum class Lens : int { Focal24, Focal28, Focal35, Focal50, Focal80 };

    /// A camera on the Z axis, at a distance equal to its zoom, that looks at the origin.
    static std::shared_ptr<CameraLayer> Create(const WideString &name, float aperture, float zoom,
                                               float focusDistance, float blurDoF);
    /// @throws XmlParseException, InvalidProjectVersionException, ProjectException, std::runtime_error
    static std::shared_ptr<CameraLayer> CreateFromXml(const WideString &xml);
    ~CameraLayer() override;

    /// 0 for a value outside the enumeration.
    static double HorizontalFieldOfView(Lens lens);
    /// The zoom at which a frame of that width (in pixels of that aspect) fills the field of view.
    static float CalculateLensZoom(double fieldOfView, int width, double aspect);

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

    bool HasDepthOfField() const;
    void SetDepthOfField(bool enabled);
    float NearClip() const;
    void SetNearClip(float distance);
    float FarClip() const;
    void SetFarClip(float distance);
    AutoOrient AutoOrientation() const;
    /// Takes any value but 2 and 3.
    void SetAutoOrientation(AutoOrient mode);
    /// The turn towards the target; the identity in any other mode.
    Matrix AutoOrientAtTime(int time) const;

private:
    friend class LayerMaker;
    friend class StoredFields;

    CameraLayer();
    CameraLayer(const WideString &name, float aperture, float zoom, float focusDistance, float blurDoF);
    explicit CameraLayer(const XmlCursor &element);
    CameraLayer(const CameraLayer &other);

    void RestoreAutoOrientation(AutoOrient mode); ///< any value, as a file may have it
    void Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const override;

    ValuePtr<CameraLayer_Impl> impl_;
};

} // namespace marlet::project
