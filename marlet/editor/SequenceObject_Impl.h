#pragma once

#include <marlet/animation/PropertyTable.h>
#include <marlet/editor/SequenceObject.h>
#include <marlet/foundation/Relaxed.h>
#include <marlet/foundation/xml/KeptXml.h>
#include <marlet/layers/CachedLink.h>
#include <marlet/project/AbstractAsset.h>

namespace marlet::project
{

/// What tells the classes of objects apart in the file.
struct SequenceObjectKind {
    const char *tag;
    bool canBeMuted;
    PropertyTable properties;
};

struct SequenceObject_Impl {
    explicit SequenceObject_Impl(const SequenceObjectKind &ofKind) : kind(&ofKind) {}

    // What lists ask for stands together in front.
    const SequenceObjectKind *kind;
    kytl::KyID parentTrackID;
    int startFrame = 0;
    int endFrame = 0;
    kytl::KyID id;
    kytl::KyID parentSequenceID;
    std::shared_ptr<PropertyManager> properties = PropertyManager::Create();
    WideString name;
    // The ID is what is stored. The link only saves looking it up, and the type is what it was when the asset
    // was looked up last. Many readers may be the first to look.
    CachedLink<AbstractAsset> asset;
    kytl::KyID assetID;
    mutable Relaxed<AssetType> assetType;
    int assetInstanceStart = 0;
    bool muted = false;
    kytl::KyID linkedObjectID;
    std::shared_ptr<Transition> incomingTransition;
    std::shared_ptr<Transition> outgoingTransition;
    AbstractSequenceObject::EffectList effects;
    KeptXml kept;

    void Remember(const std::shared_ptr<AbstractAsset> &found) const
    {
        asset.Remember(found);
        assetType.Store(found->Type());
    }
};

/// The static value of a property.
/// @throws boost::bad_get if the property is of another type
template <class T> const T &StaticValueOf(const PropertyManager &properties, const char *name)
{
    return boost::get<T>(properties.StaticValue(name));
}

} // namespace marlet::project
