#pragma once

#include <marlet/editor/SequenceObject.h>
#include <marlet/foundation/KyMatrix.h>
#include <marlet/foundation/KyPoint.h>

namespace marlet::project
{

class Project;

/// A picture on a VideoTrack, with its placement in the sequence's frame: position and anchor point in
/// pixels, scale and opacity in percent, "rotationZ" in degrees.
class MARLET_EXPORT VisualObject : public SequenceObject
{
public:
    using Matrix = kytl::matl::KyMatrix<4, 4, float>;

    static std::shared_ptr<VisualObject> Create(std::shared_ptr<AbstractAsset> asset,
                                                const std::shared_ptr<EditorSequence> &sequence);
    /// Reads all but the transitions, which only a track can.
    /// @throws XmlParseException, InvalidProjectVersionException, ProjectException, std::runtime_error,
    /// boost::bad_lexical_cast, MissingPluginException, InvalidPluginVersionException
    static std::shared_ptr<VisualObject>
    CreateFromXml(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &pluginManager);
    /// A copy on no track and without a partner, with properties and effects of its own. One-sided
    /// transitions are copied if that is asked for.
    static std::shared_ptr<VisualObject> Copy(const std::shared_ptr<VisualObject> &other,
                                              bool copyTransitions);
    ~VisualObject() override;

    AbstractAssetInstance::Type AssetInstanceType() const override;
    ObjectType Type() const override;

    // Static values of properties; key frames play no part. Reading one that holds another type throws
    // boost::bad_get.

    float Opacity() const;
    void SetOpacity(float opacity);
    kytl::matl::KyPoint<2, float> AnchorPoint() const;
    void SetAnchorPoint(const kytl::matl::KyPoint<2, float> &point);
    kytl::matl::KyPoint<2, float> Position() const;
    void SetPosition(const kytl::matl::KyPoint<2, float> &position);
    /// The link is kept for the host: setting one scale never changes the other.
    bool IsScaleLinked() const;
    void SetScaleLinked(bool linked);
    double ScaleX() const;
    double ScaleY() const;
    void SetScaleX(double percent);
    void SetScaleY(double percent);
    float Rotation() const; ///< degrees
    void SetRotation(float radians);
    void SetRotation(unsigned int turns, float degrees);

    /// Transformation * OriginTransformation: from the asset's pixels to the sequence's frame.
    /// @throws std::logic_error, as the next one, if the asset cannot be found
    Matrix WorldTransformation(const std::shared_ptr<Project> &project) const;
    Matrix OriginTransformation(const std::shared_ptr<Project> &project) const;
    Matrix Transformation(const std::shared_ptr<Project> &project) const;

private:
    friend class VideoTrack;

    VisualObject(const std::shared_ptr<AbstractAsset> &asset,
                 const std::shared_ptr<EditorSequence> &sequence);
    /// Without a list the transitions are not read.
    VisualObject(const XmlCursor &element, const std::shared_ptr<AbstractPluginManager> &pluginManager,
                 const SequenceObjectList *objects);
    VisualObject(const VisualObject &other);
    VisualObject &operator=(const VisualObject &other);
};

} // namespace marlet::project
