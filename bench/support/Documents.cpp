#include <bench/support/Documents.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

#include <map>

using namespace marlet::project;

namespace bench
{

namespace
{

constexpr int kKeysPerProperty = 100;

/// The value of a key frame, of the alternative that the property has.
struct ValueLike : boost::static_visitor<PropertyValue> {
    float x;

    explicit ValueLike(float value) : x(value) {}

    PropertyValue operator()(float) const { return x; }
    PropertyValue operator()(const Scale3D &) const { return Scale3D{50.0 + x, 100.0 - x, 100.0}; }
    PropertyValue operator()(const Orientation3D &) const { return Orientation3D{x, 2 * x, 3 * x}; }
    PropertyValue operator()(const kytl::matl::KyPoint<3, float> &) const
    {
        return kytl::matl::KyPoint<3, float>{4 * x, 3 * x - 100, -x};
    }
    template <class Other> PropertyValue operator()(const Other &other) const { return other; }
};

std::shared_ptr<AbstractLayer> MakeLayer(int index)
{
    const WideString name = FromUtf8("Layer " + std::to_string(index));
    switch (index % 8) {
    case 6:
        return LightLayer::Create(name, LightLayer::LightType{1});
    case 7:
        return CameraLayer::Create(name, 25, 1000, 1000, 100);
    default:
        return PointLayer::Create(name);
    }
}

Document MakeDocument(int layerCount)
{
    Document document;
    for (int i = 0; i < layerCount; ++i) {
        const auto layer = MakeLayer(i);
        for (const char *name : {"position", "scale", "rotationX", "rotationZ", "orientation"})
            if (layer->Animation().HasProperty(name))
                Animate(layer->Animation(), name, kKeysPerProperty);
        if (i % 4 != 0)
            layer->SetParentLayer(document.composition->Layers().back());
        document.Add(layer);
    }
    return document;
}

WideString TextOfLayers(int layerCount)
{
    return MakeDocument(layerCount).project->Serialize();
}

} // namespace

float ValueOfKey(int index)
{
    return static_cast<float>(index * 37 % 101) + 0.5F;
}

void Animate(PropertyManager &properties, const char *name, int keyCount)
{
    const PropertyValue sample = properties.DefaultValue(name);
    KeyFrameList &keys = properties.KeyFrames(name);
    for (int i = 0; i < keyCount; ++i) {
        KeyFrame key(i * kKeyDistance, boost::apply_visitor(ValueLike(ValueOfKey(i)), sample));
        key.SetType(KeyFrameType::Bezier);
        key.SetIncomingPoint({-kEase, 0});
        key.SetOutgoingPoint({kEase, 0});
        keys.Add(key);
    }
}

Document::Document()
    : project(Project::Create(nullptr)),
      composition(CompositionAsset::Create(u"Composition", AudioVideoSettings::Preset::Hd720At25, 250))
{
    project->Assets().All().Add(composition);
}

void Document::Add(const std::shared_ptr<AbstractLayer> &layer)
{
    layer->SetStartFrame(0);
    layer->SetEndFrame(250);
    layer->SetParentComposition(composition);
    composition->Layers().Add(layer);
}

const WideString &TextOfMegabytes(int megabytes)
{
    static std::map<int, WideString> texts;
    WideString &text = texts[megabytes];
    if (text.empty()) {
        const std::size_t few = TextOfLayers(8).size();
        const std::size_t eightMore = TextOfLayers(16).size() - few;
        const std::size_t wanted = static_cast<std::size_t>(megabytes) * 1000 * 1000;
        text = TextOfLayers(static_cast<int>((wanted - few) * 8 / eightMore) + 8);
    }
    return text;
}

std::shared_ptr<Project> Load(const WideString &text)
{
    return Project::CreateFromXml(text, u"", nullptr, NoEffects());
}

} // namespace bench
