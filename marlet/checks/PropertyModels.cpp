#include <marlet/checks/PropertyModels.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AudioObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/layers/Abstract3DEffect.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/WithoutHostOperations.h>
#include <marlet/project/SolidAsset.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

#include <unordered_map>

namespace marlet::project
{

namespace
{

/// A layer of the class cannot be made without one.
class NoEffect final : public WithoutHostOperations<Abstract3DEffect>
{
public:
    std::shared_ptr<Abstract3DEffect> Clone() const override { return std::make_shared<NoEffect>(); }
    void SetLayerID(const kytl::KyID &) override {}
    void Serialize(void *, void *, const ProjectTextureImageCache &) const override {}
};

/// Whatever the asset, the types of the properties are the same.
std::shared_ptr<AbstractAsset> AnyAsset()
{
    return SolidAsset::Create({}, {}, 1, 1, PAR::Square);
}

std::shared_ptr<AbstractLayer> NewLayer(LayerType type)
{
    switch (type) {
    case LayerType::Asset:
        return AssetLayer::Create(AnyAsset());
    case LayerType::Effect3D:
        return Effect3DLayer::Create(std::make_shared<NoEffect>(), {});
    case LayerType::Camera:
        return CameraLayer::Create({}, 0, 0, 0, 0);
    case LayerType::Light:
        return LightLayer::Create({}, LightLayer::LightType{});
    case LayerType::Grade:
        return GradeLayer::Create({}, 0, 0);
    case LayerType::Point:
        return PointLayer::Create({});
    case LayerType::Text:
        return TextLayer::Create({}, 0, 0);
    }
    return nullptr;
}

} // namespace

struct PropertyModels::Made {
    std::unordered_map<LayerType, std::shared_ptr<const AbstractLayer>> layers;
    std::shared_ptr<EditorSequence> sequence;
    std::shared_ptr<const AbstractSequenceObject> picture;
    std::shared_ptr<const AbstractSequenceObject> sound;
    std::shared_ptr<const Mask> mask;
    std::shared_ptr<const PathPoint> pathPoint;
    std::shared_ptr<const Tracker> tracker;
};

PropertyModels::PropertyModels() : made_(std::make_unique<Made>())
{
}
PropertyModels::~PropertyModels() = default;

const PropertyManager *PropertyModels::OfLayer(LayerType type)
{
    const auto [place, isNew] = made_->layers.try_emplace(type);
    if (isNew)
        place->second = NewLayer(type);
    return place->second ? &place->second->Animation() : nullptr;
}

const PropertyManager *PropertyModels::OfObject(ObjectType type)
{
    if (!made_->sequence) {
        made_->sequence = EditorSequence::Create(AudioVideoSettings::Preset::Pal, 1);
        made_->picture = VisualObject::Create(AnyAsset(), made_->sequence);
        made_->sound = AudioObject::Create(AnyAsset(), made_->sequence);
    }
    return &(type == ObjectType::Visual ? made_->picture : made_->sound)->Properties();
}

const PropertyManager *PropertyModels::OfMask()
{
    if (!made_->mask)
        made_->mask = Mask::Create({});
    return &made_->mask->Animation();
}

const PropertyManager *PropertyModels::OfPathPoint()
{
    if (!made_->pathPoint)
        made_->pathPoint = PathPoint::Create(0, 0, {});
    return &made_->pathPoint->Animation();
}

const PropertyManager *PropertyModels::OfTrackingPoint()
{
    if (!made_->tracker)
        made_->tracker = Tracker::Create({}, {}, {}, 0, 0);
    const std::shared_ptr<const TrackingPoint> point = made_->tracker->PrimaryTrackingPoint();
    return &point->Animation();
}

} // namespace marlet::project
