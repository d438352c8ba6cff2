#include <marlet/layers/AbstractLayer.h>

#include <marlet/foundation/Numbers.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/layers/AbstractLayerImpl.h>
#include <marlet/layers/LayerMaker.h>
#include <marlet/project/AssetList.h>

#include <cstdint>
#include <stdexcept>

namespace marlet::project
{

namespace
{

constexpr unsigned int kVersion = 0;

template <class Xml, class Data> void LayerBaseFields(Xml &xml, Data &data)
{
    xml.Child("ID", data.id);
    xml.Child("Name", data.name);
    xml.Child("CompID", data.parentCompositionID);
    xml.Child("ParentLayerID", data.parentLayerID);
    xml.Child("StartFrame", data.startFrame);
    xml.Child("EndFrame", data.endFrame);
    xml.Child("BlendMode", data.blendMode);
    xml.Child("Visible", data.visible);
    xml.Child("Muted", data.muted);
    xml.Child("Locked", data.locked);
    xml.Child("MotionBlurOn", data.motionBlur);
}

} // namespace

AbstractLayer::AbstractLayer() = default;

AbstractLayer::AbstractLayer(const WideString &name)
{
    impl_->id = kytl::KyID::Generate();
    impl_->properties = PropertyManager::Create();
    impl_->name = name;
}

AbstractLayer::AbstractLayer(const AbstractLayer &other) = default;

AbstractLayer::~AbstractLayer() = default;

std::shared_ptr<AbstractLayer>
AbstractLayer::CreateFromXml(const WideString &xml,
                             const std::shared_ptr<AbstractPluginManager> &pluginManager,
                             const Abstract3DEffectFactory &effectFactory, ProjectTextureImageCache &textures)
{
    const XmlDocument document(xml);
    return LayerMaker::Read(document.Root(), pluginManager, effectFactory, textures);
}

void AbstractLayer::Serialize(XmlWriter &writer, const ProjectTextureImageCache &) const
{
    const XmlElement element(writer, "LayerBase", kVersion);
    LayerBaseFields(writer, *impl_);
    impl_->properties->Serialize(writer);
}

WideString AbstractLayer::Serialize(const ProjectTextureImageCache &textures) const
{
    return XmlText([&](XmlWriter &writer) { Serialize(writer, textures); });
}

void AbstractLayer::Deserialize(const XmlCursor &element)
{
    impl_->properties = PropertyManager::Create();
    if (element.IsNull())
        return;
    element.RequireHeader("LayerBase", kVersion);
    LayerBaseFields(element, *impl_);
    if (const XmlCursor properties = element.Find("PropertyManager"); !properties.IsNull())
        impl_->properties->Deserialize(properties);
}

const KeptXml &AbstractLayer::Kept() const
{
    return impl_->kept;
}

void AbstractLayer::Keep(const XmlCursor &element)
{
    impl_->kept = KeptXml(element);
}

const kytl::KyID &AbstractLayer::ID() const
{
    return impl_->id;
}

void AbstractLayer::SetID(const kytl::KyID &id)
{
    impl_->id = id;
}

const WideString &AbstractLayer::Name() const
{
    return impl_->name;
}

void AbstractLayer::SetName(const WideString &name)
{
    impl_->name = name;
}

PropertyManager &AbstractLayer::Animation()
{
    return *impl_->properties;
}

const PropertyManager &AbstractLayer::Animation() const
{
    return *impl_->properties;
}

void AbstractLayer::SetPropertyManager(const std::shared_ptr<PropertyManager> &properties)
{
    impl_->properties = properties;
}

int AbstractLayer::StartFrame() const
{
    return impl_->startFrame;
}

void AbstractLayer::SetStartFrame(int frame)
{
    impl_->startFrame = frame;
}

int AbstractLayer::EndFrame() const
{
    return impl_->endFrame;
}

void AbstractLayer::SetEndFrame(int frame)
{
    impl_->endFrame = frame;
}

int AbstractLayer::Length() const
{
    return Saturate(std::int64_t{impl_->endFrame} - impl_->startFrame);
}

void AbstractLayer::MoveLayer(int newStartFrame)
{
    impl_->endFrame = Saturate(std::int64_t{newStartFrame} + impl_->endFrame - impl_->startFrame);
    impl_->startFrame = newStartFrame;
}

Blend AbstractLayer::BlendMode() const
{
    return impl_->blendMode;
}

void AbstractLayer::SetBlendMode(Blend mode)
{
    impl_->blendMode = mode;
}

bool AbstractLayer::IsVisible() const
{
    return impl_->visible;
}

void AbstractLayer::SetVisible(bool visible)
{
    impl_->visible = visible;
}

bool AbstractLayer::IsSelected() const
{
    return impl_->selected;
}

void AbstractLayer::SetSelected(bool selected)
{
    impl_->selected = selected;
}

bool AbstractLayer::IsMuted() const
{
    return impl_->muted;
}

void AbstractLayer::SetMuted(bool muted)
{
    impl_->muted = muted;
}

bool AbstractLayer::IsLocked() const
{
    return impl_->locked;
}

void AbstractLayer::SetLocked(bool locked)
{
    impl_->locked = locked;
}

bool AbstractLayer::IsMotionBlurEnabled() const
{
    return impl_->motionBlur;
}

void AbstractLayer::SetMotionBlur(bool enabled)
{
    impl_->motionBlur = enabled;
}

const kytl::KyID &AbstractLayer::ParentCompositionID() const
{
    return impl_->parentCompositionID;
}

void AbstractLayer::SetParentComposition(const std::shared_ptr<CompositionAsset> &composition)
{
    SetParentComposition(composition ? composition->ID() : kytl::KyID());
    if (composition)
        impl_->parentComposition.Remember(composition);
}

void AbstractLayer::SetParentComposition(const kytl::KyID &id)
{
    impl_->parentCompositionID = id;
    impl_->parentComposition.Forget();
}

void AbstractLayer::ClearParentComposition()
{
    SetParentComposition(kytl::KyID());
}

std::shared_ptr<CompositionAsset> AbstractLayer::ParentComposition(const AssetList &assets) const
{
    if (auto composition = impl_->parentComposition.Lock(impl_->parentCompositionID))
        return composition;
    auto composition =
        std::dynamic_pointer_cast<CompositionAsset>(assets.GetByID(impl_->parentCompositionID));
    if (!composition)
        throw std::runtime_error("Composition not found for ID: " +
                                 impl_->parentCompositionID.ToNarrowString());
    impl_->parentComposition.Remember(composition);
    return composition;
}

void AbstractLayer::SetParentLayer(const std::shared_ptr<AbstractLayer> &layer)
{
    SetParentLayer(layer ? layer->ID() : kytl::KyID());
    if (layer)
        impl_->parentLayer.Remember(layer);
}

void AbstractLayer::SetParentLayer(const kytl::KyID &id)
{
    impl_->parentLayerID = id;
    impl_->parentLayer.Forget();
}

void AbstractLayer::RemoveParentLayer()
{
    SetParentLayer(kytl::KyID());
}

const kytl::KyID &AbstractLayer::ParentLayerID() const
{
    return impl_->parentLayerID;
}

bool AbstractLayer::HasParentLayer() const
{
    return !impl_->parentLayerID.IsNull();
}

std::shared_ptr<AbstractLayer> AbstractLayer::ParentLayer(const AssetList &assets) const
{
    if (auto layer = impl_->parentLayer.Lock(impl_->parentLayerID))
        return layer;
    const std::shared_ptr<CompositionAsset> composition = ParentComposition(assets);
    // The null ID means no parent, even where a layer of a file has it.
    auto layer = HasParentLayer() ? composition->FindLayerByID(impl_->parentLayerID) : nullptr;
    // A miss is not remembered: the layer may be added later.
    if (layer)
        impl_->parentLayer.Remember(layer);
    return layer;
}

bool AbstractLayer::IsLayerReferenced(const std::shared_ptr<CompositionAsset> &composition,
                                      const kytl::KyID &layerID) const
{
    return (HasParentLayer() && impl_->parentLayerID == layerID) ||
           IsChildLayerReferenced(composition, layerID);
}

void AbstractLayer::ClearInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs)
{
    if (HasParentLayer() && !validIDs.contains(impl_->parentLayerID.ToNarrowString()))
        RemoveParentLayer();
    ClearChildInvalidLayerReferences(validIDs);
}

void AbstractLayer::ChangeLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes)
{
    if (HasParentLayer())
        if (const auto change = changes.find(impl_->parentLayerID.ToNarrowString()); change != changes.end())
            SetParentLayer(kytl::KyID::FromString(change->second));
    ChangeChildLayerReferences(changes);
}

std::vector<ObjectPropertyList> AbstractLayer::LayerReferencePropertyNames() const
{
    return ChildLayerReferencePropertyNames();
}

std::vector<ObjectPropertyList> AbstractLayer::ChildLayerReferencePropertyNames() const
{
    return {};
}

void AbstractLayer::ClearChildInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &)
{
}

void AbstractLayer::ChangeChildLayerReferences(const std::unordered_map<NarrowString, NarrowString> &)
{
}

bool AbstractLayer::IsChildLayerReferenced(const std::shared_ptr<CompositionAsset> &,
                                           const kytl::KyID &) const
{
    return false;
}

} // namespace marlet::project
