#include <marlet/layers/PointLayer.h>

#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/layers/LayerMaker.h>
#include <marlet/layers/LayerProperties.h>
#include <marlet/layers/LayerValues.h>

namespace marlet::project
{

struct PointLayer_Impl {
    LayerDimensions dimensions = LayerDimensions::TwoD;
};

namespace
{

constexpr char kTag[] = "PointLayer";
constexpr unsigned int kVersion = 0;

const LayerProperties &Properties()
{
    static const LayerProperties properties = TransformationProperties();
    return properties;
}

template <class Xml, class Data> void PointLayerFields(Xml &xml, Data &data)
{
    xml.Child("Dimensions", data.dimensions);
}

} // namespace

PointLayer::PointLayer() = default;

PointLayer::PointLayer(const WideString &name) : AbstractLayer(name)
{
    CreateProperties(Animation(), Properties());
}

PointLayer::PointLayer(const XmlCursor &element, const Deserializer &) : PointLayer()
{
    const unsigned int version = element.RequireHeader(kTag, kVersion);
    PointLayerFields(element, *impl_);
    Deserialize(element.Find("LayerBase"));
    RequireProperties(element, Animation(), Properties(), version);
    Keep(element);
}

PointLayer::PointLayer(const PointLayer &other) = default;

PointLayer::~PointLayer() = default;

std::shared_ptr<PointLayer> PointLayer::Create(const WideString &name)
{
    return LayerMaker::Make<PointLayer>(name);
}

std::shared_ptr<PointLayer> PointLayer::CreateFromXml(const WideString &xml)
{
    return LayerMaker::FromText<PointLayer>(xml, Deserializer());
}

void PointLayer::Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const
{
    const XmlElement element(writer, kTag, kVersion, Kept());
    PointLayerFields(writer, *impl_);
    AbstractLayer::Serialize(writer, textures);
}

std::shared_ptr<AbstractLayer> PointLayer::Clone(const kytl::KyID &) const
{
    return LayerMaker::Copy(*this);
}

LayerType PointLayer::Type() const
{
    return LayerType::Point;
}

bool PointLayer::HasAudio() const
{
    return false;
}

bool PointLayer::HasVideo() const
{
    return false;
}

LayerDimensions PointLayer::Dimensions() const
{
    return impl_->dimensions;
}

void PointLayer::SetDimensions(LayerDimensions dimensions)
{
    if (dimensions != LayerDimensions::ThreeDContent)
        impl_->dimensions = dimensions;
}

void PointLayer::RestoreDimensions(LayerDimensions dimensions)
{
    impl_->dimensions = dimensions;
}

AbstractLayer::Matrix PointLayer::TransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                                       bool avoidZeroScale) const
{
    return PlacementMatrix(*this, time, project, avoidZeroScale);
}

AbstractLayer::Matrix PointLayer::OriginAtTime(int time, const std::shared_ptr<Project> &project) const
{
    return AnchorMatrix(*this, time, project);
}

AbstractLayer::Matrix PointLayer::AlignToMotion(const Matrix &, int, const std::shared_ptr<Project> &,
                                                bool) const
{
    return {};
}

} // namespace marlet::project
