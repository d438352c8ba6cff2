#pragma once

#include <marlet/animation/KeyFrameList.h>
#include <marlet/animation/PropertyValue.h>
#include <marlet/foundation/Strings.h>

#include <memory>
#include <vector>

namespace marlet::project
{

class AbstractExpressionEngine;
class CompositionAsset;
class XmlCursor;
class XmlWriter;
struct Property;
struct PropertyManager_Impl;

/// The named, animatable properties of one object: for each a default, a static value, key frames, a spatial
/// flag and an expression text. Properties stand in the order of their creation, which is also the order of
/// the file.
///
/// It owns all of that. Times are milliseconds relative to the owner. A name is an XML name, since it is the
/// tag of the property's element. Operations that take a name or PropertyID throw std::out_of_range, naming
/// it, if there is no such property; a null name is that of none.
///
/// Const operations may be called from any number of threads at once; a change needs the manager for itself
/// alone.
class MARLET_EXPORT PropertyManager
{
public:
    enum class Type : int {
        Animatable,
        NotAnimatable, ///< is meant to have a static value only
    };

    /// The place of a property in this manager; not valid for another one, nor after Clear or Deserialize.
    struct PropertyID {
        unsigned int index = 0;
    };

    /// Results of CreateProperty and CreateSpatialProperty.
    static constexpr int kCreated = 0;
    static constexpr int kNameInUse = 1000;
    static constexpr int kNotAName = 1001;

    PropertyManager();
    PropertyManager &operator=(const PropertyManager &) = delete;
    ~PropertyManager();

    static std::shared_ptr<PropertyManager> Create();
    /// @throws as Deserialize
    static std::shared_ptr<PropertyManager> CreateFromXml(const WideString &xml);
    /// A deep copy in which the key frames have new IDs.
    static std::shared_ptr<PropertyManager> Copy(const PropertyManager &other);
    /// @throws std::invalid_argument if the pointer is null
    static std::shared_ptr<PropertyManager> Copy(const std::shared_ptr<PropertyManager> &other);
    /// The same in which they keep their IDs.
    static std::shared_ptr<PropertyManager> CopyWithIDs(const PropertyManager &other);
    /// Exchanges all properties; each keeps the addresses of its values with it.
    void Swap(PropertyManager &other) noexcept;
    /// Replaces all properties by those of a Copy.
    void TakeCopyOf(const PropertyManager &other);
    /// Removes all properties.
    void Clear();
    /// Removes the key frames of every property that IsStatic does not hide, and sets all static values to
    /// their defaults. Expressions stay.
    void Reset();

    /// Makes a property and stores its ID if the pointer is not null. Any result but kCreated changes
    /// nothing.
    int CreateProperty(const char *name, const PropertyValue &value, Type type, PropertyID *id);
    /// The same for a point that moves along a path in space. A value of any other alternative makes an
    /// ordinary property.
    int CreateSpatialProperty(const char *name, const PropertyValue &value, Type type, PropertyID *id);
    bool HasProperty(const char *name) const;
    PropertyID GetPropertyID(const char *name) const;
    unsigned int PropertyCount() const;
    std::vector<NarrowString> PropertyNames() const;

    /// Assigning through it is the way to change a property without key frames. Its address stays as long as
    /// the property does.
    PropertyValue &StaticValue(const char *name);
    const PropertyValue &StaticValue(const char *name) const;
    PropertyValue &StaticValue(const PropertyID &id);
    const PropertyValue &StaticValue(const PropertyID &id) const;
    const PropertyValue &DefaultValue(const char *name) const;
    KeyFrameList &KeyFrames(const char *name);
    const KeyFrameList &KeyFrames(const char *name) const;

    /// The value at a time: the static value if there are no key frames; the first and the last key frame
    /// hold theirs before and after the animation. The engine and the composition have no effect on the
    /// result and may be null.
    /// @throws std::runtime_error if two neighbouring key frames hold different alternatives
    /// @throws boost::bad_get if a key frame of a spatial property holds no point of its dimension
    PropertyValue ValueAtTime(const char *name, int time, std::shared_ptr<AbstractExpressionEngine> &engine,
                              const std::shared_ptr<CompositionAsset> &composition) const;
    PropertyValue ValueAtTime(const PropertyID &id, int time,
                              std::shared_ptr<AbstractExpressionEngine> &engine,
                              const std::shared_ptr<CompositionAsset> &composition) const;
    /// The same for callers that have neither.
    PropertyValue ValueAtTime(const char *name, int time) const;
    PropertyValue ValueAtTime(const PropertyID &id, int time) const;

    bool CanAnimate(const char *name) const;
    /// Not animatable, or without key frames.
    bool IsStatic(const char *name) const;
    /// Static, with its static value equal to the default.
    bool IsDefault(const char *name) const;
    /// Some property is not at its default.
    bool IsDirty() const;
    bool IsSpatial(const char *name) const;
    bool IsSpatial(const PropertyID &id) const;
    bool HasExpression(const char *name) const;
    bool HasExpression(const PropertyID &id) const;
    const NarrowString &Expression(const char *name) const;
    const NarrowString &Expression(const PropertyID &id) const;
    /// Assigning through it is the way to set a text.
    NarrowString &Expression(const char *name);
    void RemoveExpression(const char *name);

    WideString Serialize() const;
    /// Appends the element to a QDomElement that stands in a QDomDocument.
    /// @throws std::invalid_argument if one of them is null
    void Serialize(void *document, void *parent) const;
    /// Replaces all properties by those of the text. A failure leaves what was read until then.
    /// @throws XmlParseException, InvalidProjectVersionException, std::runtime_error, boost::bad_lexical_cast
    void Deserialize(const WideString &xml);
    /// The same from a QDomElement. @throws std::invalid_argument if it is null
    void Deserialize(void *element);

    /// The form in which the element travels inside a larger text of this library.
    void Serialize(XmlWriter &writer) const;
    void Deserialize(const XmlCursor &element);
    /// Keeps what nobody knows in an element, if the load that goes on does.
    void Keep(const XmlCursor &element);

private:
    friend class EffectsHelper;

    PropertyManager(const PropertyManager &other);

    static void Write(XmlWriter &writer, const Property &property);
    static void ReadKeyFrames(const XmlCursor &element, KeyFrameList &keyFrames);
    static std::size_t HashOfText(const Property &property);
    /// A property that another manager holds as it came is written so by this one, too.
    void KeepAsItCame(const char *name, const PropertyManager &from);

    ValuePtr<PropertyManager_Impl> impl_;
};

} // namespace marlet::project
