#pragma once

#include <marlet/foundation/Deserializer.h>
#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>
#include <marlet/foundation/ValuePtr.h>

#include <memory>

namespace marlet::project
{

class MotionPath;
class PropertyManager;
class XmlCursor;
class XmlWriter;
struct Mask_Impl;

/// How a mask joins those above it, and how its edge is softened; the host names the values.
enum class MaskBlend : int {};
enum class MaskFeather : int {};

/// A shape on a layer: an outline, and key-framed properties for opacity (percent), expansion, feather and
/// roundness. It owns both. The library describes masks and does not apply them. Belongs to the thread that
/// edits the project.
class MARLET_EXPORT Mask
{
public:
    static std::shared_ptr<Mask> Create(const WideString &name);
    /// @throws as Deserialize
    static std::shared_ptr<Mask> CreateFromXml(const WideString &xml);
    /// A copy in which mask, path, points and key frames have new IDs, on the same layer.
    static std::shared_ptr<Mask> Copy(const std::shared_ptr<Mask> &mask);
    Mask &operator=(const Mask &) = delete;
    ~Mask();

    const kytl::KyID &ID() const;
    const kytl::KyID &ParentLayerID() const;
    void SetParentLayerID(const kytl::KyID &id);
    void ClearParentLayerID();
    const WideString &Name() const;
    void SetName(const WideString &name);
    bool IsVisible() const;
    void SetVisible(bool visible);
    MotionPath &Path();
    const MotionPath &Path() const;
    PropertyManager &Animation();
    const PropertyManager &Animation() const;

    // These are properties without key frames. Reading one that holds another type throws boost::bad_get.

    MaskBlend BlendMode() const;
    void SetBlendMode(MaskBlend mode);
    MaskFeather FeatherMode() const;
    void SetFeatherMode(MaskFeather mode);
    bool IsInverted() const;
    void SetInverted(bool inverted);

    WideString Serialize() const;
    /// A failure leaves what was read until then.
    /// @throws XmlParseException, InvalidProjectVersionException, ProjectException, std::runtime_error,
    /// boost::bad_lexical_cast
    void Deserialize(const WideString &xml);

private:
    friend class LayerHelper;

    Mask();
    explicit Mask(const WideString &name);
    Mask(const XmlCursor &element, const Deserializer &);
    Mask(const Mask &other);

    void Serialize(XmlWriter &writer) const;
    void Deserialize(const XmlCursor &element);

    ValuePtr<Mask_Impl> impl_;
};

} // namespace marlet::project
