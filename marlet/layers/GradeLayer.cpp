#include <marlet/layers/GradeLayer.h>

#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/layers/LayerHelper.h>
#include <marlet/layers/LayerMaker.h>
#include <marlet/layers/LayerProperties.h>
#include <marlet/layers/LayerValues.h>
#include <marlet/plugins/EffectsHelper.h>

namespace marlet::project
{

struct GradeLayer_Impl {
    LayerDimensions dimensions = LayerDimensions::TwoD;
    int width = 0;
    int height = 0;
    GradeLayer::EffectList effects;
    GradeLayer::MaskList masks;
};

namespace
{

constexpr char kTag[] = "GradeLayer";
constexpr unsigned int kVersion = 0;

const LayerProperties &Properties()
{
    static const LayerProperties properties = LayerProperties{OpacityProperty()} + TransformationProperties();
    return properties;
}

template <class Xml, class Data> void GradeLayerFields(Xml &xml, Data &data)
{
    xml.Child("Dimensions", data.dimensions);
    xml.Child("Width", data.width);
    xml.Child("Height", data.height);
}

} // namespace

GradeLayer::GradeLayer() = default;

GradeLayer::GradeLayer(const WideString &name, int width, int height) : AbstractLayer(name)
{
    impl_->width = width;
    impl_->height = height;
    CreateProperties(Animation(), Properties());
}

GradeLayer::GradeLayer(const XmlCursor &element, const std::shared_ptr<AbstractPluginManager> &pluginManager)
    : GradeLayer()
{
    const unsigned int version = element.RequireHeader(kTag, kVersion);
    GradeLayerFields(element, *impl_);
    EffectsHelper::DeserializeEffects(element, impl_->effects, pluginManager);
    LayerHelper::DeserializeMasks(element, impl_->masks);
    Deserialize(element.Find("LayerBase"));
    RequireProperties(element, Animation(), Properties(), version);
    Keep(element);
}

GradeLayer::GradeLayer(const GradeLayer &other) = default;

GradeLayer::~GradeLayer() = default;

std::shared_ptr<GradeLayer> GradeLayer::Create(const WideString &name, int width, int height)
{
    return LayerMaker::Make<GradeLayer>(name, width, height);
}

std::shared_ptr<GradeLayer>
GradeLayer::CreateFromXml(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &pluginManager)
{
    return LayerMaker::FromText<GradeLayer>(xml, pluginManager);
}

void GradeLayer::Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const
{
    const XmlElement element(writer, kTag, kVersion, Kept());
    GradeLayerFields(writer, *impl_);
    EffectsHelper::SerializeEffects(writer, impl_->effects);
    LayerHelper::SerializeMasks(writer, impl_->masks);
    AbstractLayer::Serialize(writer, textures);
}

std::shared_ptr<AbstractLayer> GradeLayer::Clone(const kytl::KyID &compositionID) const
{
    const std::shared_ptr<GradeLayer> clone = LayerMaker::Copy(*this);
    LayerHelper::CopyEffectsAndMasks(*this, *clone, compositionID);
    return clone;
}

LayerType GradeLayer::Type() const
{
    return LayerType::Grade;
}

bool GradeLayer::HasAudio() const
{
    return false;
}

bool GradeLayer::HasVideo() const
{
    return true;
}

LayerDimensions GradeLayer::Dimensions() const
{
    return impl_->dimensions;
}

void GradeLayer::SetDimensions(LayerDimensions dimensions)
{
    if (dimensions != LayerDimensions::ThreeDContent)
        impl_->dimensions = dimensions;
}

void GradeLayer::RestoreDimensions(LayerDimensions dimensions)
{
    impl_->dimensions = dimensions;
}

AbstractLayer::Matrix GradeLayer::TransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                                       bool avoidZeroScale) const
{
    return PlacementMatrix(*this, time, project, avoidZeroScale);
}

AbstractLayer::Matrix GradeLayer::OriginAtTime(int time, const std::shared_ptr<Project> &project) const
{
    return AnchorMatrix(*this, time, project) * MiddleMatrix(impl_->width, impl_->height);
}

AbstractLayer::Matrix GradeLayer::ParentingWorldTransformationAtTime(int time,
                                                                     const std::shared_ptr<Project> &project,
                                                                     bool avoidZeroScale) const
{
    // What the children of each class hang on stands with the chain of parents, which is walked in one loop.
    return AbstractLayer::ParentingWorldTransformationAtTime(time, project, avoidZeroScale);
}

AbstractLayer::Matrix GradeLayer::AlignToMotion(const Matrix &, int, const std::shared_ptr<Project> &,
                                                bool) const
{
    return {};
}

int GradeLayer::Width() const
{
    return impl_->width;
}

void GradeLayer::SetWidth(int width)
{
    impl_->width = width;
}

int GradeLayer::Height() const
{
    return impl_->height;
}

void GradeLayer::SetHeight(int height)
{
    impl_->height = height;
}

GradeLayer::EffectList &GradeLayer::Effects()
{
    return impl_->effects;
}

const GradeLayer::EffectList &GradeLayer::Effects() const
{
    return impl_->effects;
}

GradeLayer::MaskList &GradeLayer::Masks()
{
    return impl_->masks;
}

const GradeLayer::MaskList &GradeLayer::Masks() const
{
    return impl_->masks;
}

std::vector<ObjectPropertyList> GradeLayer::ChildLayerReferencePropertyNames() const
{
    return LayerHelper::LayerReferencePropertyNames(impl_->effects);
}

void GradeLayer::ClearChildInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs)
{
    LayerHelper::ClearInvalidLayerReferences(impl_->effects, validIDs);
}

void GradeLayer::ChangeChildLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes)
{
    LayerHelper::ChangeLayerReferences(impl_->effects, changes);
}

bool GradeLayer::IsChildLayerReferenced(const std::shared_ptr<CompositionAsset> &,
                                        const kytl::KyID &layerID) const
{
    return LayerHelper::IsLayerReferenced(impl_->effects, layerID);
}

} // namespace marlet::project
