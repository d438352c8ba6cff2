#include <marlet/layers/Effect3DLayer.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/DomBridge.h>
#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/layers/Abstract3DEffect.h>
#include <marlet/layers/Abstract3DEffectFactory.h>
#include <marlet/layers/LayerMaker.h>
#include <marlet/layers/LayerProperties.h>
#include <marlet/layers/LayerValues.h>

#include <QDomDocument>

#include <stdexcept>

namespace marlet::project
{

struct Effect3DLayer_Impl {
    std::shared_ptr<Abstract3DEffect> effect;
};

namespace
{

constexpr char kTag[] = "Effect3DLayer";
constexpr char kEffectTag[] = "Effect";
constexpr unsigned int kVersion = 1;

const LayerProperties &Properties()
{
    static const LayerProperties properties =
        TransformationProperties() + LayerProperties{OpacityProperty()} + MaterialProperties();
    return properties;
}

std::shared_ptr<Abstract3DEffect> ReadEffect(const XmlCursor &element,
                                             const Abstract3DEffectFactory &effectFactory,
                                             ProjectTextureImageCache &textures)
{
    std::shared_ptr<Abstract3DEffect> effect;
    if (!element.IsNull()) {
        QDomDocument document;
        AppendXmlToDom(element, &document, &document);
        QDomElement root = document.documentElement();
        effect = effectFactory.Create(&root, textures);
    }
    if (!effect)
        throw ProjectException(ProjectException::kMissingEffect, {});
    return effect;
}

void WriteEffect(XmlWriter &writer, const Abstract3DEffect &effect, const ProjectTextureImageCache &textures)
{
    QDomDocument document;
    QDomElement element = document.createElement(kEffectTag);
    document.appendChild(element);
    effect.Serialize(&document, &element, textures);
    WriteDom(writer, &element);
}

/// What the host's effect does not write again, nobody knows.
void TellOfEffect(const XmlCursor &element, const Abstract3DEffect &effect,
                  const ProjectTextureImageCache &textures)
{
    LoadContext *const context = LoadContext::Current();
    if (!context || element.IsNull())
        return;
    for (const auto &[id, properties] : effect.LayerReferencePropertyNames())
        for (const NarrowString &property : properties)
            context->AddLayerNamed(element.Find("PropertyManager").Find(property.c_str()).Find("Static"));
    try {
        const XmlDocument written(XmlText([&](XmlWriter &writer) { WriteEffect(writer, effect, textures); }));
        context->MarkUnknownBut(element, written.Root());
    } catch (const std::exception &) { // then saving fails as well, and says so
    }
}

} // namespace

Effect3DLayer::Effect3DLayer() = default;

Effect3DLayer::Effect3DLayer(std::shared_ptr<Abstract3DEffect> effect, const WideString &name)
    : AbstractLayer(name)
{
    SetEffect(std::move(effect));
    CreateProperties(Animation(), Properties());
}

Effect3DLayer::Effect3DLayer(const XmlCursor &element, const Abstract3DEffectFactory &effectFactory,
                             ProjectTextureImageCache &textures)
    : Effect3DLayer()
{
    const unsigned int version = element.RequireHeader(kTag, kVersion);
    Deserialize(element.Find("LayerBase"));
    impl_->effect = ReadEffect(element.Find(kEffectTag), effectFactory, textures);
    RequireProperties(element, Animation(), Properties(), version);
    TellOfEffect(element.Find(kEffectTag), *impl_->effect, textures);
    Keep(element);
}

Effect3DLayer::Effect3DLayer(const Effect3DLayer &other) = default;

Effect3DLayer::~Effect3DLayer() = default;

std::shared_ptr<Effect3DLayer> Effect3DLayer::Create(std::shared_ptr<Abstract3DEffect> effect,
                                                     const WideString &name)
{
    return LayerMaker::Make<Effect3DLayer>(std::move(effect), name);
}

std::shared_ptr<Effect3DLayer> Effect3DLayer::CreateFromXml(const WideString &xml,
                                                            const Abstract3DEffectFactory &effectFactory,
                                                            ProjectTextureImageCache &textures)
{
    return LayerMaker::FromText<Effect3DLayer>(xml, effectFactory, textures);
}

void Effect3DLayer::Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const
{
    const XmlElement element(writer, kTag, kVersion, Kept());
    AbstractLayer::Serialize(writer, textures);
    WriteEffect(writer, *impl_->effect, textures);
}

std::shared_ptr<AbstractLayer> Effect3DLayer::Clone(const kytl::KyID &) const
{
    const std::shared_ptr<Effect3DLayer> clone = LayerMaker::Copy(*this);
    clone->impl_->effect = impl_->effect->Clone();
    if (!clone->impl_->effect)
        throw std::logic_error("A 3D effect gave no clone of itself");
    clone->impl_->effect->SetLayerID(clone->ID());
    return clone;
}

LayerType Effect3DLayer::Type() const
{
    return LayerType::Effect3D;
}

bool Effect3DLayer::HasAudio() const
{
    return false;
}

bool Effect3DLayer::HasVideo() const
{
    return true;
}

LayerDimensions Effect3DLayer::Dimensions() const
{
    return LayerDimensions::ThreeDContent;
}

void Effect3DLayer::SetDimensions(LayerDimensions)
{
}

AbstractLayer::Matrix Effect3DLayer::TransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                                          bool avoidZeroScale) const
{
    return PlacementMatrix(*this, time, project, avoidZeroScale);
}

AbstractLayer::Matrix Effect3DLayer::OriginAtTime(int time, const std::shared_ptr<Project> &project) const
{
    return AnchorMatrix(*this, time, project);
}

AbstractLayer::Matrix Effect3DLayer::AlignToMotion(const Matrix &, int, const std::shared_ptr<Project> &,
                                                   bool) const
{
    return {};
}

std::shared_ptr<Abstract3DEffect> Effect3DLayer::Effect() const
{
    return impl_->effect;
}

void Effect3DLayer::SetEffect(std::shared_ptr<Abstract3DEffect> effect)
{
    Require(effect, "effect");
    impl_->effect = std::move(effect);
    impl_->effect->SetLayerID(ID());
}

std::vector<ObjectPropertyList> Effect3DLayer::ChildLayerReferencePropertyNames() const
{
    return impl_->effect->LayerReferencePropertyNames();
}

void Effect3DLayer::ClearChildInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs)
{
    impl_->effect->ClearInvalidLayerReferences(validIDs);
}

void Effect3DLayer::ChangeChildLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes)
{
    impl_->effect->ChangeLayerReferences(changes);
}

bool Effect3DLayer::IsChildLayerReferenced(const std::shared_ptr<CompositionAsset> &composition,
                                           const kytl::KyID &layerID) const
{
    return impl_->effect->IsLayerReferenced(composition, layerID);
}

} // namespace marlet::project
