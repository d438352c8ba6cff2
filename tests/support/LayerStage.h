#pragma once

#include <marlet/animation/KeyFrameList.h>
#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectTextureImageCache.h>

namespace marlet::test
{

using namespace marlet::project;
using kytl::KyID;
using Matrix = AbstractLayer::Matrix;
using Point = kytl::matl::KyPoint<3, float>;
using Vector = kytl::matl::KyVector<3, float>;

/// A project with one composition of 30 frames a second, and layers that have only IDs to find it by.
struct LayerStage {
    std::shared_ptr<Project> project = Project::Create(nullptr);
    std::shared_ptr<CompositionAsset> composition =
        CompositionAsset::Create(u"Stage", AudioVideoSettings::Preset::None, 300);
    ProjectTextureImageCache textures;

    LayerStage()
    {
        composition->Settings().SetFrameRate(30);
        project->Assets().All().Add(composition);
    }

    template <class Layer> std::shared_ptr<Layer> Add(const std::shared_ptr<Layer> &layer) const
    {
        layer->SetParentComposition(composition->ID());
        composition->Layers().Add(layer);
        return layer;
    }

    std::shared_ptr<PointLayer> AddPoint(const WideString &name = u"Point") const
    {
        return Add(PointLayer::Create(name));
    }
    std::shared_ptr<CameraLayer> AddCamera() const
    {
        return Add(CameraLayer::Create(u"Camera", 1, 1000, 1, 1));
    }
    std::shared_ptr<LightLayer> AddLight() const { return Add(LightLayer::Create(u"Light", {})); }

    const AssetList &Assets() const { return project->Assets(); }
};

inline void Set(AbstractLayer &layer, const char *property, const PropertyValue &value)
{
    layer.Animation().StaticValue(property) = value;
}

inline void SetAt(AbstractLayer &layer, const char *property, int time, const PropertyValue &value)
{
    layer.Animation().KeyFrames(property).Add(KeyFrame(time, value));
}

template <class T> T Get(const AbstractLayer &layer, const char *property, int time = 0)
{
    return boost::get<T>(layer.Animation().ValueAtTime(property, time));
}

} // namespace marlet::test
