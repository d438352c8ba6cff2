#include <marlet/animation/PropertyManager.h>

#include <marlet/animation/KeyFrameList_Impl.h>
#include <marlet/animation/PropertyManager_Impl.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/xml/XmlText.h>

#include <algorithm>
#include <stdexcept>

namespace marlet::project
{

namespace
{

std::string_view View(const char *name)
{
    return name != nullptr ? name : "";
}

bool IsStatic(const Property &property)
{
    return property.type == PropertyManager::Type::NotAnimatable || property.keyFrames.IsEmpty();
}

bool IsDefault(const Property &property)
{
    return IsStatic(property) && property.staticValue == property.defaultValue;
}

int Create(PropertyManager_Impl &impl, const char *name, const PropertyValue &value,
           PropertyManager::Type type, bool spatial, PropertyManager::PropertyID *id)
{
    if (impl.positions.contains(View(name)))
        return PropertyManager::kNameInUse;
    if (!IsXmlName(View(name)))
        return PropertyManager::kNotAName;
    impl.Create(View(name), value, type, spatial);
    if (id != nullptr)
        id->index = static_cast<unsigned int>(impl.properties.size() - 1);
    return PropertyManager::kCreated;
}

} // namespace

PropertyManager_Impl::PropertyManager_Impl(const PropertyManager_Impl &other)
    : properties(other.properties), kept(other.kept)
{
    for (std::size_t i = 0; i < properties.size(); ++i)
        positions.emplace(properties[i]->name, i);
}

std::size_t PropertyManager_Impl::Find(const char *name) const
{
    const auto found = positions.find(View(name));
    if (found == positions.end())
        throw std::out_of_range("There is no property \"" + NarrowString(View(name)) + '"');
    return found->second;
}

std::size_t PropertyManager_Impl::Check(PropertyManager::PropertyID id) const
{
    if (id.index >= properties.size())
        throw std::out_of_range("There is no property with the ID " + std::to_string(id.index));
    return id.index;
}

Property *PropertyManager_Impl::Create(std::string_view name, const PropertyValue &value,
                                       PropertyManager::Type type, bool spatial)
{
    if (positions.contains(name))
        return nullptr;
    Property &property = *properties.emplace_back();
    positions.emplace(property.name = name, properties.size() - 1);
    property.defaultValue = value;
    property.staticValue = value;
    property.type = type;
    if (!spatial)
        return &property;
    if (boost::get<kytl::matl::KyPoint<2, float>>(&value) != nullptr)
        property.keyFrames.SetSpatialType(KeyFrameList::SpatialDataType::Spatial2D);
    else if (boost::get<kytl::matl::KyPoint<3, float>>(&value) != nullptr)
        property.keyFrames.SetSpatialType(KeyFrameList::SpatialDataType::Spatial3D);
    property.isSpatial = property.keyFrames.IsSpatial();
    return &property;
}

PropertyManager::PropertyManager() = default;
PropertyManager::PropertyManager(const PropertyManager &other) = default;
PropertyManager::~PropertyManager() = default;

std::shared_ptr<PropertyManager> PropertyManager::Create()
{
    return std::make_shared<PropertyManager>();
}

std::shared_ptr<PropertyManager> PropertyManager::CreateFromXml(const WideString &xml)
{
    auto manager = Create();
    manager->Deserialize(xml);
    return manager;
}

std::shared_ptr<PropertyManager> PropertyManager::Copy(const PropertyManager &other)
{
    std::shared_ptr<PropertyManager> copy(new PropertyManager(other));
    for (ValuePtr<Property> &property : copy->impl_->properties)
        property->keyFrames.impl_->GenerateIDs();
    return copy;
}

std::shared_ptr<PropertyManager> PropertyManager::Copy(const std::shared_ptr<PropertyManager> &other)
{
    Require(other, "property manager");
    return Copy(*other);
}

std::shared_ptr<PropertyManager> PropertyManager::CopyWithIDs(const PropertyManager &other)
{
    return std::shared_ptr<PropertyManager>(new PropertyManager(other));
}

void PropertyManager::Swap(PropertyManager &other) noexcept
{
    impl_.Swap(other.impl_);
}

void PropertyManager::TakeCopyOf(const PropertyManager &other)
{
    impl_.Swap(Copy(other)->impl_);
}

void PropertyManager::Clear()
{
    impl_->positions.clear();
    impl_->properties.clear();
    impl_->kept = {};
}

void PropertyManager::Reset()
{
    for (ValuePtr<Property> &property : impl_->properties) {
        if (!project::IsStatic(*property))
            property->keyFrames.Clear();
        property->staticValue = property->defaultValue;
    }
}

int PropertyManager::CreateProperty(const char *name, const PropertyValue &value, Type type, PropertyID *id)
{
    return project::Create(*impl_, name, value, type, false, id);
}

int PropertyManager::CreateSpatialProperty(const char *name, const PropertyValue &value, Type type,
                                           PropertyID *id)
{
    return project::Create(*impl_, name, value, type, true, id);
}

bool PropertyManager::HasProperty(const char *name) const
{
    return impl_->positions.contains(View(name));
}

PropertyManager::PropertyID PropertyManager::GetPropertyID(const char *name) const
{
    return {static_cast<unsigned int>(impl_->Find(name))};
}

unsigned int PropertyManager::PropertyCount() const
{
    return static_cast<unsigned int>(impl_->properties.size());
}

std::vector<NarrowString> PropertyManager::PropertyNames() const
{
    std::vector<NarrowString> names;
    for (const ValuePtr<Property> &property : impl_->properties)
        names.push_back(property->name);
    return names;
}

PropertyValue &PropertyManager::StaticValue(const char *name)
{
    return impl_->At(name).staticValue;
}

const PropertyValue &PropertyManager::StaticValue(const char *name) const
{
    return impl_->At(name).staticValue;
}

PropertyValue &PropertyManager::StaticValue(const PropertyID &id)
{
    return impl_->At(id).staticValue;
}

const PropertyValue &PropertyManager::StaticValue(const PropertyID &id) const
{
    return impl_->At(id).staticValue;
}

const PropertyValue &PropertyManager::DefaultValue(const char *name) const
{
    return impl_->At(name).defaultValue;
}

KeyFrameList &PropertyManager::KeyFrames(const char *name)
{
    return impl_->At(name).keyFrames;
}

const KeyFrameList &PropertyManager::KeyFrames(const char *name) const
{
    return impl_->At(name).keyFrames;
}

PropertyValue PropertyManager::ValueAtTime(const char *name, int time,
                                           std::shared_ptr<AbstractExpressionEngine> &,
                                           const std::shared_ptr<CompositionAsset> &) const
{
    return ValueAtTime(name, time);
}

PropertyValue PropertyManager::ValueAtTime(const PropertyID &id, int time,
                                           std::shared_ptr<AbstractExpressionEngine> &,
                                           const std::shared_ptr<CompositionAsset> &) const
{
    return ValueAtTime(id, time);
}

PropertyValue PropertyManager::ValueAtTime(const char *name, int time) const
{
    return ValueAtTime(GetPropertyID(name), time);
}

PropertyValue PropertyManager::ValueAtTime(const PropertyID &id, int time) const
{
    const Property &property = impl_->At(id);
    const KeyFrameList_Impl &keyFrames = property.keyFrames.impl_->InOrder();
    return keyFrames.Size() == 0 ? property.staticValue : keyFrames.ValueAt(time, property.isSpatial);
}

bool PropertyManager::CanAnimate(const char *name) const
{
    return impl_->At(name).type == Type::Animatable;
}

bool PropertyManager::IsStatic(const char *name) const
{
    return project::IsStatic(impl_->At(name));
}

bool PropertyManager::IsDefault(const char *name) const
{
    return project::IsDefault(impl_->At(name));
}

bool PropertyManager::IsDirty() const
{
    return !std::ranges::all_of(impl_->properties,
                                [](const auto &property) { return project::IsDefault(*property); });
}

bool PropertyManager::IsSpatial(const char *name) const
{
    return impl_->At(name).isSpatial;
}

bool PropertyManager::IsSpatial(const PropertyID &id) const
{
    return impl_->At(id).isSpatial;
}

bool PropertyManager::HasExpression(const char *name) const
{
    return !Expression(name).empty();
}

bool PropertyManager::HasExpression(const PropertyID &id) const
{
    return !Expression(id).empty();
}

const NarrowString &PropertyManager::Expression(const char *name) const
{
    return impl_->At(name).expression;
}

const NarrowString &PropertyManager::Expression(const PropertyID &id) const
{
    return impl_->At(id).expression;
}

NarrowString &PropertyManager::Expression(const char *name)
{
    return impl_->At(name).expression;
}

void PropertyManager::RemoveExpression(const char *name)
{
    Expression(name).clear();
}

} // namespace marlet::project
