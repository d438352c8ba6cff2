#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/KyMatrix.h>
#include <marlet/foundation/Strings.h>
#include <marlet/foundation/ValuePtr.h>
#include <marlet/layers/LayerTypes.h>
#include <marlet/layers/ObjectPropertyList.h>

#include <memory>
#include <unordered_map>
#include <vector>

namespace marlet::project
{

class Abstract3DEffectFactory;
class AbstractPluginManager;
class AssetList;
class CompositionAsset;
class Project;
class ProjectTextureImageCache;
class PropertyManager;
class KeptXml;
class XmlCursor;
class XmlWriter;
struct AbstractLayer_Impl;

/// What every layer of a composition has: an identity, a name, a span of frames, key-framed properties, the
/// links to its composition and to a parent layer, switches, and matrices at any time.
///
/// A layer owns its properties. Its composition and parent are named by ID and looked up when they are asked
/// for; it keeps neither alive.
///
/// Units: frames of the composition (an end frame is exclusive); a layer's relative time in integer
/// milliseconds since its start frame; property angles in degrees, scales and opacities in percent, positions
/// in pixels. Conversions to integers truncate towards zero. Matrices: see KyMatrix.
///
/// Const operations may be called from any number of threads at once while nothing changes the document.
///
/// Operations that take an AssetList or a Project throw std::runtime_error "Composition not found for ID: "
/// with the ID if the layer's composition is not in it, and std::logic_error, naming the layer, if a parent
/// is missing or the parents run in a circle. A property of another type than its class expects throws
/// boost::bad_get.
class MARLET_EXPORT AbstractLayer
{
public:
    using Matrix = kytl::matl::KyMatrix<4, 4, float>;

    AbstractLayer &operator=(const AbstractLayer &) = delete;
    virtual ~AbstractLayer();

    /// A copy with a new ID and its own properties, with the same parent composition and parent layer. Adds
    /// it to no composition; classes with effects tell them that the given composition holds the copy.
    virtual std::shared_ptr<AbstractLayer> Clone(const kytl::KyID &compositionID) const = 0;
    virtual LayerType Type() const = 0;
    virtual bool HasAudio() const = 0;
    virtual bool HasVideo() const = 0;
    virtual LayerDimensions Dimensions() const = 0;
    /// Values that a class does not take are ignored.
    virtual void SetDimensions(LayerDimensions dimensions) = 0;
    /// The layer's own placement. With avoidZeroScale a scale of zero becomes a very small one, so that the
    /// matrix can be inverted.
    virtual Matrix TransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                        bool avoidZeroScale) const = 0;
    /// The offset of the content from the anchor point.
    virtual Matrix OriginAtTime(int time, const std::shared_ptr<Project> &project) const = 0;

protected:
    /// Writes the element "LayerBase".
    virtual void Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const;

public:
    /// The layer as a text of its own.
    virtual WideString Serialize(const ProjectTextureImageCache &textures) const;
    /// What the layer offers to its children.
    virtual Matrix ParentingWorldTransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                                      bool avoidZeroScale) const;
    /// Where the layer stands, for ParentHelper.
    virtual Matrix WorldTransformationAtTimeToSetParent(int time, const std::shared_ptr<Project> &project,
                                                        bool avoidZeroScale) const;

protected:
    virtual std::vector<ObjectPropertyList> ChildLayerReferencePropertyNames() const;
    virtual void ClearChildInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs);
    virtual void ChangeChildLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes);

public:
    /// What auto-orientation along the path of motion adds to the layer's world matrix.
    virtual Matrix AlignToMotion(const Matrix &world, int time, const std::shared_ptr<Project> &project,
                                 bool avoidZeroScale) const = 0;

protected:
    virtual bool IsChildLayerReferenced(const std::shared_ptr<CompositionAsset> &composition,
                                        const kytl::KyID &layerID) const;

public:
    /// The class is that of the root's tag; an empty pointer for any other tag and for a text that is not
    /// whole.
    /// @throws as the class's own CreateFromXml
    static std::shared_ptr<AbstractLayer>
    CreateFromXml(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &pluginManager,
                  const Abstract3DEffectFactory &effectFactory, ProjectTextureImageCache &textures);

    const kytl::KyID &ID() const;
    const WideString &Name() const;
    void SetName(const WideString &name);
    /// The layer's properties.
    PropertyManager &Animation();
    const PropertyManager &Animation() const;

    int StartFrame() const;
    void SetStartFrame(int frame);
    int EndFrame() const;
    void SetEndFrame(int frame);
    int Length() const;
    /// Moves the whole span; its length stays, and key frames go with it.
    void MoveLayer(int newStartFrame);

    Blend BlendMode() const;
    void SetBlendMode(Blend mode);
    bool IsVisible() const;
    void SetVisible(bool visible);
    /// Selection is not saved.
    bool IsSelected() const;
    void SetSelected(bool selected);
    bool IsMuted() const;
    void SetMuted(bool muted);
    bool IsLocked() const;
    void SetLocked(bool locked);
    bool IsMotionBlurEnabled() const;
    void SetMotionBlur(bool enabled);

    /// In the setters of links an empty pointer stands for none.
    const kytl::KyID &ParentCompositionID() const;
    void SetParentComposition(const std::shared_ptr<CompositionAsset> &composition);
    void SetParentComposition(const kytl::KyID &id);
    void ClearParentComposition();
    /// @throws std::runtime_error "Composition not found for ID: " with the ID
    std::shared_ptr<CompositionAsset> ParentComposition(const AssetList &assets) const;

    /// These change the link only; ParentHelper also keeps the layer where it is.
    void SetParentLayer(const std::shared_ptr<AbstractLayer> &layer);
    void SetParentLayer(const kytl::KyID &id);
    void RemoveParentLayer();
    const kytl::KyID &ParentLayerID() const;
    bool HasParentLayer() const;
    /// An empty pointer if the composition has no such layer.
    std::shared_ptr<AbstractLayer> ParentLayer(const AssetList &assets) const;

    int GlobalFrameToRelativeTime(int frame, const std::shared_ptr<CompositionAsset> &composition) const;
    int GlobalFrameToRelativeTime(int frame, const AssetList &assets) const;
    /// A frame counted from the layer's start.
    int LayerFrameToRelativeTime(int frame, const std::shared_ptr<CompositionAsset> &composition) const;
    int LayerFrameToRelativeTime(int frame, const AssetList &assets) const;
    /// The start frame in milliseconds of the composition.
    int StartTime(const AssetList &assets) const;
    int PlayheadRelativeTime(const AssetList &assets) const;
    float RelativeTimeToGlobalFrameF(int time, const AssetList &assets) const;
    int RelativeTimeToGlobalFrame(int time, const AssetList &assets) const;
    /// The same moment in the relative time of another layer of the composition; 0 if there is no other
    /// layer.
    int RelativeTimeToLayerRelativeTime(int time, const std::shared_ptr<AbstractLayer> &other,
                                        const std::shared_ptr<Project> &project) const;

    /// AlignToMotion * parents * TransformationAtTime * OriginAtTime.
    Matrix WorldTransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                     bool avoidZeroScale) const;
    /// What the chain of parents adds; the identity without a parent.
    Matrix ParentTransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                      bool avoidZeroScale) const;

    /// Whether this layer refers to that one, as its parent or in what it owns.
    bool IsLayerReferenced(const std::shared_ptr<CompositionAsset> &composition,
                           const kytl::KyID &layerID) const;
    /// Clears references to layers whose IDs, in text form, are not among the keys.
    void ClearInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs);
    /// Rewrites references from old to new layer IDs, both in text form.
    /// @throws std::runtime_error if a new ID is malformed; what was changed before stays.
    void ChangeLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes);
    std::vector<ObjectPropertyList> LayerReferencePropertyNames() const;

protected:
    /// For an object that is about to be read: null IDs, no properties.
    AbstractLayer();
    explicit AbstractLayer(const WideString &name);
    /// Shares the properties until the copy is given its own.
    AbstractLayer(const AbstractLayer &other);

    void SetID(const kytl::KyID &id);
    void SetPropertyManager(const std::shared_ptr<PropertyManager> &properties);
    /// Reads the element "LayerBase".
    void Deserialize(const XmlCursor &element);
    /// What is kept of the element of its class, which Keep takes out of it at the end of its reading.
    const KeptXml &Kept() const;
    void Keep(const XmlCursor &element);
    /// WorldTransformationAtTime without AlignToMotion.
    Matrix WorldTransformationAtTimeHelper(int time, const std::shared_ptr<Project> &project,
                                           bool avoidZeroScale) const;

private:
    friend class CompositionAsset;
    friend class LayerChain;
    friend class LayerMaker;

    ValuePtr<AbstractLayer_Impl> impl_;
};

} // namespace marlet::project
