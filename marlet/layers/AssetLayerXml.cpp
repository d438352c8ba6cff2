// The element of an asset layer, in all its versions.

#include <marlet/layers/AssetLayer.h>

#include <marlet/foundation/xml/RelaxedXml.h>
#include <marlet/layers/AssetLayerImpl.h>
#include <marlet/layers/LayerHelper.h>
#include <marlet/layers/LayerMaker.h>
#include <marlet/plugins/EffectsHelper.h>
#include <marlet/tracking/Tracker.h>

namespace marlet::project
{

namespace
{

constexpr char kTag[] = "AssetLayer";
constexpr char kTrackersTag[] = "Trackers";
constexpr unsigned int kVersion = 2;
/// The first version that tells what the asset once had from what it has.
constexpr unsigned int kVersionOfHad = 2;

// What the asset had stands in the middle of the file but is looked for last, being younger than the rest.

template <class Xml, class Data> void AssetFields(Xml &xml, Data &data)
{
    xml.Child("AssetID", data.assetID);
    xml.Child("AssetInstanceStart", data.assetInstanceStart);
    Child(xml, "AssetHasAudio", data.assetHasAudio);
    Child(xml, "AssetHasVideo", data.assetHasVideo);
}

template <class Xml, class Data> void AssetHadFields(Xml &xml, Data &data)
{
    xml.Child("AssetHadAudio", data.assetHadAudio);
    xml.Child("AssetHadVideo", data.assetHadVideo);
}

template <class Xml, class Data> void AssetLayerFields(Xml &xml, Data &data)
{
    Child(xml, "AssetType", data.assetType);
    xml.Child("Dimensions", data.dimensions);
    xml.Child("AutoOrient", data.autoOrientation);
    xml.Child("PromoteLights", data.promoteLights);
}

} // namespace

const LayerProperties &AssetLayerProperties()
{
    static const LayerProperties properties = TransformationProperties() +
                                              LayerProperties{OpacityProperty(), {"audioLevel", 0.f}} +
                                              MaterialProperties();
    return properties;
}

AssetLayer::AssetLayer(const XmlCursor &element, const std::shared_ptr<AbstractPluginManager> &pluginManager)
    : AssetLayer()
{
    const unsigned int version = element.RequireHeader(kTag, kVersion);
    AssetFields(element, *impl_);
    AssetLayerFields(element, *impl_);
    impl_->assetHadAudio = impl_->assetHasAudio.Load();
    impl_->assetHadVideo = impl_->assetHasVideo.Load();
    if (version >= kVersionOfHad)
        AssetHadFields(element, *impl_);
    for (XmlCursor tracker = element.Find(kTrackersTag).Find("Tracker"); !tracker.IsNull();
         tracker = tracker.Next("Tracker"))
        impl_->trackers.Add(std::shared_ptr<Tracker>(new Tracker(tracker, Deserializer())));
    EffectsHelper::DeserializeEffects(element, impl_->effects, pluginManager);
    LayerHelper::DeserializeMasks(element, impl_->masks);
    Deserialize(element.Find("LayerBase"));
    RequireProperties(element, Animation(), AssetLayerProperties(), version);
    Keep(element);
}

void AssetLayer::Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const
{
    const XmlElement element(writer, kTag, kVersion, Kept());
    AssetFields(writer, *impl_);
    AssetHadFields(writer, *impl_);
    AssetLayerFields(writer, *impl_);
    {
        const XmlElement trackers(writer, kTrackersTag);
        for (const std::shared_ptr<Tracker> &tracker : impl_->trackers)
            if (tracker)
                tracker->Serialize(writer);
    }
    EffectsHelper::SerializeEffects(writer, impl_->effects);
    LayerHelper::SerializeMasks(writer, impl_->masks);
    AbstractLayer::Serialize(writer, textures);
}

std::shared_ptr<AssetLayer>
AssetLayer::CreateFromXml(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &pluginManager)
{
    return LayerMaker::FromText<AssetLayer>(xml, pluginManager);
}

} // namespace marlet::project
