#include <marlet/editor/SequenceObject.h>

#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObject_Impl.h>
#include <marlet/editor/Transition.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/foundation/xml/RelaxedXml.h>
#include <marlet/layers/LayerHelper.h>
#include <marlet/plugins/EffectsHelper.h>
#include <marlet/project/AssetList.h>

#include <stdexcept>
#include <utility>

namespace marlet::project
{

namespace
{

constexpr unsigned int kVersion = 0;
constexpr char kIncoming[] = "InTrans";
constexpr char kOutgoing[] = "OutTrans";

template <class Xml, class Data> void SequenceObjectFields(Xml &xml, Data &data)
{
    xml.Child("ID", data.id);
    xml.Child("SequenceID", data.parentSequenceID);
    xml.Child("Name", data.name);
    xml.Child("AssetID", data.assetID);
    Child(xml, "AssetType", data.assetType);
    xml.Child("AssetInstanceStart", data.assetInstanceStart);
    xml.Child("StartFrame", data.startFrame);
    xml.Child("EndFrame", data.endFrame);
    if (data.kind->canBeMuted)
        xml.Child("Muted", data.muted);
    xml.Child("ParentTrackID", data.parentTrackID);
    xml.Child("LinkedObjectID", data.linkedObjectID);
}

} // namespace

SequenceObject::SequenceObject(const SequenceObjectKind &kind)
    : impl_(std::make_unique<SequenceObject_Impl>(kind))
{
}

SequenceObject::SequenceObject(const SequenceObjectKind &kind, const std::shared_ptr<AbstractAsset> &asset,
                               const std::shared_ptr<EditorSequence> &sequence)
    : SequenceObject(kind)
{
    Require(asset, "asset");
    Require(sequence, "sequence");
    impl_->id = kytl::KyID::Generate();
    impl_->parentSequenceID = sequence->ID();
    impl_->name = asset->Name();
    SetAsset(asset);
    CreateProperties(*impl_->properties, kind.properties);
}

SequenceObject::SequenceObject(const SequenceObjectKind &kind, const XmlCursor &element,
                               const std::shared_ptr<AbstractPluginManager> &pluginManager,
                               const SequenceObjectList *objects)
    : SequenceObject(kind)
{
    const unsigned int version = element.RequireHeader(kind.tag, kVersion);
    SequenceObjectFields(element, *impl_);
    if (const XmlCursor properties = element.Find("PropertyManager"); !properties.IsNull())
        impl_->properties->Deserialize(properties);
    EffectsHelper::DeserializeEffects(element, impl_->effects, pluginManager);
    if (objects != nullptr) {
        EffectsHelper::DeserializeTransition(element, kIncoming, pluginManager, impl_->incomingTransition,
                                             objects);
        EffectsHelper::DeserializeTransition(element, kOutgoing, pluginManager, impl_->outgoingTransition,
                                             objects);
    }
    RequireProperties(element, *impl_->properties, kind.properties, version);
    impl_->kept = KeptXml(element);
}

SequenceObject::SequenceObject(const SequenceObject &other) = default;

SequenceObject &SequenceObject::operator=(const SequenceObject &other)
{
    ValuePtr<SequenceObject_Impl> data(other.impl_);
    data->id = impl_->id;
    impl_.Swap(data);
    return *this;
}

SequenceObject::~SequenceObject() = default;

void SequenceObject::PartFromSource(bool copyTransitions)
{
    SequenceObject_Impl &data = *impl_;
    data.id = kytl::KyID::Generate();
    data.parentTrackID = {};
    data.linkedObjectID = {};
    const std::shared_ptr<Transition> incoming = std::exchange(data.incomingTransition, nullptr);
    const std::shared_ptr<Transition> outgoing = std::exchange(data.outgoingTransition, nullptr);
    // A transition that is shared with a neighbour stays behind: the copy has none. So does one whose plug-in
    // is gone.
    if (copyTransitions && incoming && incoming->FromObject().IsNull()) {
        data.incomingTransition = Transition::Copy(incoming);
        if (data.incomingTransition)
            data.incomingTransition->SetToObject(data.id);
    }
    if (copyTransitions && outgoing && outgoing->ToObject().IsNull()) {
        data.outgoingTransition = Transition::Copy(outgoing);
        if (data.outgoingTransition)
            data.outgoingTransition->SetFromObject(data.id);
    }
    data.properties = PropertyManager::Copy(data.properties);
    data.effects = LayerHelper::CopyEffects(data.effects, data.id, data.parentSequenceID);
}

WideString SequenceObject::Serialize() const
{
    return XmlText([this](XmlWriter &writer) { Serialize(writer); });
}

void SequenceObject::Serialize(XmlWriter &writer) const
{
    const XmlElement element(writer, impl_->kind->tag, kVersion, impl_->kept);
    SequenceObjectFields(writer, *impl_);
    impl_->properties->Serialize(writer);
    EffectsHelper::SerializeEffects(writer, impl_->effects);
    EffectsHelper::SerializeTransition(writer, kIncoming, impl_->incomingTransition, true);
    EffectsHelper::SerializeTransition(writer, kOutgoing, impl_->outgoingTransition, false);
}

const kytl::KyID &SequenceObject::ID() const
{
    return impl_->id;
}

const WideString &SequenceObject::Name() const
{
    return impl_->name;
}

void SequenceObject::SetName(const WideString &name)
{
    impl_->name = name;
}

const kytl::KyID &SequenceObject::AssetID() const
{
    return impl_->assetID;
}

AssetType SequenceObject::AssetType() const
{
    const AbstractAsset *asset = impl_->asset.Find(impl_->assetID);
    return asset ? asset->Type() : impl_->assetType.Load();
}

int SequenceObject::AssetInstanceStart() const
{
    return impl_->assetInstanceStart;
}

void SequenceObject::SetAssetInstanceStart(int frame)
{
    impl_->assetInstanceStart = frame;
}

int SequenceObject::AssetInstanceEnd() const
{
    return Saturate(std::int64_t{impl_->assetInstanceStart} + impl_->endFrame - impl_->startFrame - 1);
}

void SequenceObject::SetAsset(const std::shared_ptr<AbstractAsset> &asset)
{
    Require(asset, "asset");
    impl_->assetID = asset->ID();
    impl_->Remember(asset);
}

AssetUse SequenceObject::Use() const
{
    AssetUse use;
    use.assetID = impl_->assetID;
    use.type = impl_->assetType.Load();
    return use;
}

void SequenceObject::SetUse(const AssetUse &use)
{
    impl_->assetID = use.assetID;
    impl_->assetType.Store(use.type);
}

const kytl::KyID &SequenceObject::ParentSequenceID() const
{
    return impl_->parentSequenceID;
}

PropertyManager &SequenceObject::Properties()
{
    return *impl_->properties;
}

const PropertyManager &SequenceObject::Properties() const
{
    return *impl_->properties;
}

std::shared_ptr<AbstractAsset> SequenceObject::Asset(const AssetList &assets) const
{
    if (std::shared_ptr<AbstractAsset> asset = impl_->asset.Lock(impl_->assetID))
        return asset;
    std::shared_ptr<AbstractAsset> found = assets.GetByID(impl_->assetID);
    // A miss is not remembered: the asset may be added later.
    if (found)
        impl_->Remember(found);
    return found;
}

std::shared_ptr<AbstractAsset> SequenceObject::RequireAsset(const AssetList &assets) const
{
    std::shared_ptr<AbstractAsset> asset = Asset(assets);
    if (!asset)
        throw std::logic_error("The asset " + impl_->assetID.ToNarrowString() + " of the object \"" +
                               ToUtf8(impl_->name) + "\" is missing");
    return asset;
}

int SequenceObject::StartFrame() const
{
    return impl_->startFrame;
}

void SequenceObject::SetStartFrame(int frame)
{
    impl_->startFrame = frame;
}

int SequenceObject::EndFrame() const
{
    return impl_->endFrame;
}

void SequenceObject::SetEndFrame(int frame)
{
    impl_->endFrame = frame;
    TellListOfEndFrame();
}

int SequenceObject::Length() const
{
    return Saturate(std::int64_t{impl_->endFrame} - impl_->startFrame);
}

SequenceObject::EffectList &SequenceObject::Effects()
{
    return impl_->effects;
}

const SequenceObject::EffectList &SequenceObject::Effects() const
{
    return impl_->effects;
}

double SequenceObject::Speed() const
{
    return StaticValueOf<double>(Properties(), "speed");
}

void SequenceObject::SetSpeed(double speed)
{
    Properties().StaticValue("speed") = speed;
}

const kytl::KyID &SequenceObject::ParentTrackID() const
{
    return impl_->parentTrackID;
}

void SequenceObject::SetParentTrackID(const kytl::KyID &id)
{
    impl_->parentTrackID = id;
}

void SequenceObject::ClearParentTrackID()
{
    impl_->parentTrackID = {};
}

const kytl::KyID &SequenceObject::LinkedObjectID() const
{
    return impl_->linkedObjectID;
}

void SequenceObject::SetLinkedObjectID(const kytl::KyID &id)
{
    impl_->linkedObjectID = id;
}

void SequenceObject::ClearLinkedObject()
{
    impl_->linkedObjectID = {};
}

const std::shared_ptr<Transition> &SequenceObject::IncomingTransition() const
{
    return impl_->incomingTransition;
}

void SequenceObject::SetIncomingTransition(const std::shared_ptr<Transition> &transition)
{
    impl_->incomingTransition = transition;
}

void SequenceObject::ClearIncomingTransition()
{
    impl_->incomingTransition.reset();
}

const std::shared_ptr<Transition> &SequenceObject::OutgoingTransition() const
{
    return impl_->outgoingTransition;
}

void SequenceObject::SetOutgoingTransition(const std::shared_ptr<Transition> &transition)
{
    impl_->outgoingTransition = transition;
}

void SequenceObject::ClearOutgoingTransition()
{
    impl_->outgoingTransition.reset();
}

} // namespace marlet::project
