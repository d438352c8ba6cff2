#include <marlet/layers/TextLayer.h>

#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/layers/LayerHelper.h>
#include <marlet/layers/LayerMaker.h>
#include <marlet/layers/LayerProperties.h>
#include <marlet/layers/LayerValues.h>
#include <marlet/layers/TextLayerImpl.h>
#include <marlet/plugins/EffectsHelper.h>

#include <cstdint>

namespace marlet::project
{

namespace
{

constexpr char kTag[] = "TextLayer";
constexpr char kTokensTag[] = "TextTokens";
constexpr unsigned int kVersion = 1;

const LayerProperties &Properties()
{
    static const LayerProperties properties =
        TransformationProperties() + LayerProperties{OpacityProperty()} + MaterialProperties();
    return properties;
}

template <class Xml, class Data> void TextLayerFields(Xml &xml, Data &data)
{
    xml.Child("Dimensions", data.dimensions);
    xml.Child("MinX", data.minX);
    xml.Child("MaxX", data.maxX);
    xml.Child("MinY", data.minY);
    xml.Child("MaxY", data.maxY);
}

float Half(std::int64_t size)
{
    return static_cast<float>(size) * 0.5f;
}

} // namespace

TextLayer::TextLayer() = default;

TextLayer::TextLayer(const WideString &name, int width, int height) : AbstractLayer(name)
{
    impl_->minX = Half(-std::int64_t{width});
    impl_->maxX = Half(width);
    impl_->minY = Half(-std::int64_t{height});
    impl_->maxY = Half(height);
    CreateProperties(Animation(), Properties());
}

TextLayer::TextLayer(const XmlCursor &element, const std::shared_ptr<AbstractPluginManager> &pluginManager)
    : TextLayer()
{
    const unsigned int version = element.RequireHeader(kTag, kVersion);
    TextLayerFields(element, *impl_);
    ReadStyledText(element, impl_->text.tokens, impl_->text.formats);
    EffectsHelper::DeserializeEffects(element, impl_->effects, pluginManager);
    LayerHelper::DeserializeMasks(element, impl_->masks);
    Deserialize(element.Find("LayerBase"));
    RequireProperties(element, Animation(), Properties(), version);
    Keep(element);
}

TextLayer::TextLayer(const TextLayer &other) = default;

TextLayer::~TextLayer() = default;

std::shared_ptr<TextLayer> TextLayer::Create(const WideString &name, int width, int height)
{
    return LayerMaker::Make<TextLayer>(name, width, height);
}

std::shared_ptr<TextLayer>
TextLayer::CreateFromXml(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &pluginManager)
{
    return LayerMaker::FromText<TextLayer>(xml, pluginManager);
}

void TextLayer::Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const
{
    const XmlElement element(writer, kTag, kVersion, Kept());
    TextLayerFields(writer, *impl_);
    WriteStyledText(writer, TokenChain(impl_->text.tokens.first), nullptr, impl_->text.formats);
    EffectsHelper::SerializeEffects(writer, impl_->effects);
    LayerHelper::SerializeMasks(writer, impl_->masks);
    AbstractLayer::Serialize(writer, textures);
}

WideString TextLayer::SerializeTokens(const std::shared_ptr<Token> &first, const std::shared_ptr<Token> &last)
{
    return XmlText([&](XmlWriter &writer) {
        const XmlElement element(writer, kTokensTag);
        WriteStyledText(writer, TokenChain(first), last ? &last->id : nullptr, impl_->text.formats);
    });
}

void TextLayer::DeserializeTokens(const WideString &xml, TokenList &tokens, FormatList &formats) const
{
    const XmlDocument document(xml);
    document.Root().RequireTag(kTokensTag);
    ReadStyledText(document.Root(), tokens, formats);
}

std::shared_ptr<AbstractLayer> TextLayer::Clone(const kytl::KyID &compositionID) const
{
    const std::shared_ptr<TextLayer> clone = LayerMaker::Copy(*this);
    LayerHelper::CopyEffectsAndMasks(*this, *clone, compositionID);
    return clone;
}

LayerType TextLayer::Type() const
{
    return LayerType::Text;
}

bool TextLayer::HasAudio() const
{
    return false;
}

bool TextLayer::HasVideo() const
{
    return true;
}

LayerDimensions TextLayer::Dimensions() const
{
    return impl_->dimensions;
}

void TextLayer::SetDimensions(LayerDimensions dimensions)
{
    if (dimensions != LayerDimensions::ThreeDContent)
        impl_->dimensions = dimensions;
}

void TextLayer::RestoreDimensions(LayerDimensions dimensions)
{
    impl_->dimensions = dimensions;
}

AbstractLayer::Matrix TextLayer::TransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                                      bool avoidZeroScale) const
{
    return PlacementMatrix(*this, time, project, avoidZeroScale);
}

AbstractLayer::Matrix TextLayer::OriginAtTime(int time, const std::shared_ptr<Project> &project) const
{
    return AnchorMatrix(*this, time, project);
}

AbstractLayer::Matrix TextLayer::AlignToMotion(const Matrix &, int, const std::shared_ptr<Project> &,
                                               bool) const
{
    return {};
}

TextLayer::EffectList &TextLayer::Effects()
{
    return impl_->effects;
}

const TextLayer::EffectList &TextLayer::Effects() const
{
    return impl_->effects;
}

TextLayer::MaskList &TextLayer::Masks()
{
    return impl_->masks;
}

const TextLayer::MaskList &TextLayer::Masks() const
{
    return impl_->masks;
}

std::vector<ObjectPropertyList> TextLayer::ChildLayerReferencePropertyNames() const
{
    return LayerHelper::LayerReferencePropertyNames(impl_->effects);
}

void TextLayer::ClearChildInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs)
{
    LayerHelper::ClearInvalidLayerReferences(impl_->effects, validIDs);
}

void TextLayer::ChangeChildLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes)
{
    LayerHelper::ChangeLayerReferences(impl_->effects, changes);
}

bool TextLayer::IsChildLayerReferenced(const std::shared_ptr<CompositionAsset> &,
                                       const kytl::KyID &layerID) const
{
    return LayerHelper::IsLayerReferenced(impl_->effects, layerID);
}

} // namespace marlet::project
