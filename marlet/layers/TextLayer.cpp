#include <marlet/layers/TextLayer.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/layers/LayerHelper.h>
#include <marlet/layers/LayerMaker.h>
#include <marlet/layers/LayerProperties.h>
#include <marlet/layers/LayerValues.h>
#include <marlet/layers/StyledText.h>
#include <marlet/plugins/EffectsHelper.h>

#include <cstdint>
#include <utility>

namespace marlet::project
{

struct TextLayer_Impl {
    /// What is selected and where the cursor is while the host edits the text.
    struct EditingState {
        std::shared_ptr<TextLayer::Token> selectionStart;
        std::shared_ptr<TextLayer::Token> selectionEnd;
        std::shared_ptr<TextLayer::Token> cursor;
        bool isEditing = false;
    };

    LayerDimensions dimensions = LayerDimensions::TwoD;
    float minX = 0;
    float maxX = 0;
    float minY = 0;
    float maxY = 0;
    StyledText text;
    TextLayer::EffectList effects;
    TextLayer::MaskList masks;
    Uncopied<EditingState> editing;
    TextLayer::CursorPositionType cursorRenderPosition{};
};

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

void Order(float &minimum, float &maximum)
{
    if (minimum > maximum)
        std::swap(minimum, maximum);
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

TextLayer::TokenList &TextLayer::Text()
{
    return impl_->text.tokens;
}

const TextLayer::TokenList &TextLayer::Text() const
{
    return impl_->text.tokens;
}

TextLayer::FormatList &TextLayer::Formats()
{
    return impl_->text.formats;
}

const TextLayer::FormatList &TextLayer::Formats() const
{
    return impl_->text.formats;
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

int TextLayer::GetTokenIndex(const std::shared_ptr<Token> &token) const
{
    if (!token)
        return -1;
    int index = 0;
    for (const Token &other : TokenChain(impl_->text.tokens.first)) {
        if (&other == token.get())
            return index;
        ++index;
    }
    return -1;
}

const std::shared_ptr<TextLayer::Format> &
TextLayer::TextFormat(const WideString &family, const WideString &style, int size,
                      const kytl::KyColorRGBA_32f &fill, const kytl::KyColorRGBA_32f &stroke,
                      float strokeWidth, float tracking, float leading)
{
    const Format format{.id = kytl::KyID::Generate(),
                        .family = family,
                        .style = style,
                        .size = size,
                        .fillColor = fill,
                        .strokeColor = stroke,
                        .strokeWidth = strokeWidth,
                        .tracking = tracking,
                        .leading = leading};
    if (const std::shared_ptr<Format> *entry = impl_->text.FindFormat(format))
        return *entry;
    impl_->text.formats.Add(std::make_shared<Format>(format));
    return impl_->text.formats.back();
}

const std::shared_ptr<TextLayer::Format> &TextLayer::GetOrAddFormat(const std::shared_ptr<Format> &format)
{
    Require(format, "format");
    if (const std::shared_ptr<Format> *entry = impl_->text.FindFormat(*format))
        return *entry;
    impl_->text.formats.Add(format);
    return format;
}

void TextLayer::CleanUpFormat()
{
    impl_->text.DropUnusedFormats();
}

float TextLayer::MinX() const
{
    return impl_->minX;
}

float TextLayer::MaxX() const
{
    return impl_->maxX;
}

float TextLayer::MinY() const
{
    return impl_->minY;
}

float TextLayer::MaxY() const
{
    return impl_->maxY;
}

void TextLayer::SetMinX(float x)
{
    impl_->minX = x;
    Order(impl_->minX, impl_->maxX);
}

void TextLayer::SetMaxX(float x)
{
    impl_->maxX = x;
    Order(impl_->minX, impl_->maxX);
}

void TextLayer::SetMinY(float y)
{
    impl_->minY = y;
    Order(impl_->minY, impl_->maxY);
}

void TextLayer::SetMaxY(float y)
{
    impl_->maxY = y;
    Order(impl_->minY, impl_->maxY);
}

float TextLayer::Width() const
{
    return impl_->maxX - impl_->minX;
}

float TextLayer::Height() const
{
    return impl_->maxY - impl_->minY;
}

const std::shared_ptr<TextLayer::Token> &TextLayer::SelectionStart() const
{
    return impl_->editing->selectionStart;
}

const std::shared_ptr<TextLayer::Token> &TextLayer::SelectionEnd() const
{
    return impl_->editing->selectionEnd;
}

void TextLayer::SetSelectionStart(const std::shared_ptr<Token> &token)
{
    impl_->editing->selectionStart = token;
}

void TextLayer::SetSelectionEnd(const std::shared_ptr<Token> &token)
{
    impl_->editing->selectionEnd = token;
}

void TextLayer::ClearSelection()
{
    impl_->editing->selectionStart.reset();
    impl_->editing->selectionEnd.reset();
}

const std::shared_ptr<TextLayer::Token> &TextLayer::CursorPosition() const
{
    return impl_->editing->cursor;
}

TextLayer::CursorPositionType TextLayer::CursorRenderPosition() const
{
    return impl_->cursorRenderPosition;
}

void TextLayer::SetCursorPosition(const std::shared_ptr<Token> &token, CursorPositionType renderPosition)
{
    impl_->editing->cursor = token;
    impl_->cursorRenderPosition = renderPosition;
}

bool TextLayer::IsEditingMode() const
{
    return impl_->editing->isEditing;
}

void TextLayer::SetEditingMode(bool editing)
{
    impl_->editing->isEditing = editing;
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
