#pragma once

#include <marlet/foundation/Export.h>
#include <marlet/foundation/Strings.h>
#include <marlet/layers/ObjectPropertyList.h>

#include <memory>
#include <unordered_map>
#include <vector>

namespace marlet::project
{

class CompositionAsset;
class ProjectTextureImageCache;

/// A three-dimensional object that a layer shows, implemented by the host: its content and the content of its
/// element are the host's.
class MARLET_EXPORT Abstract3DEffect
{
public:
    Abstract3DEffect() = default;
    Abstract3DEffect(const Abstract3DEffect &) = default;
    Abstract3DEffect &operator=(const Abstract3DEffect &) = default;
    virtual ~Abstract3DEffect();

    virtual std::shared_ptr<Abstract3DEffect> Clone() const = 0;
    virtual void HostOperation1() = 0;
    virtual void HostOperation2() = 0;
    virtual void HostOperation3() = 0;
    /// Tells the effect which layer holds it.
    virtual void SetLayerID(const kytl::KyID &layerID) = 0;
    virtual void HostOperation4() = 0;
    virtual void HostOperation5() = 0;
    virtual void HostOperation6() = 0;
    virtual void HostOperation7() = 0;
    virtual void HostOperation8() = 0;
    virtual void HostOperation9() = 0;
    /// Writes the content of the effect's element, a QDomElement that stands in the QDomDocument.
    virtual void Serialize(void *document, void *effectElement,
                           const ProjectTextureImageCache &textures) const = 0;
    virtual void HostOperation10() = 0;
    /// The properties of the effect that hold layer IDs.
    virtual std::vector<ObjectPropertyList> LayerReferencePropertyNames() const;
    /// From old to new layer IDs, both in text form.
    virtual void ChangeLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes);
    /// The keys are the valid layer IDs.
    virtual void ClearInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs);
    virtual bool IsLayerReferenced(const std::shared_ptr<CompositionAsset> &composition,
                                   const kytl::KyID &layerID) const;
    /// A question that the host puts to its own effects.
    virtual bool IsTextureListReferenced(const kytl::KyID &textureID) const;

protected:
    /// Whether a layer hangs below an ancestor, directly or through others. A layer is not its own ancestor.
    /// @throws std::logic_error if the parents run in a circle
    bool IsAncestorOfReferencedLayer(const std::shared_ptr<CompositionAsset> &composition,
                                     const kytl::KyID &layerID, const kytl::KyID &ancestorID) const;
};

} // namespace marlet::project
