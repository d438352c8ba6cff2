#include "Ribbon.h"

#include <marlet/foundation/Exceptions.h>
#include <marlet/plugins/EffectsHelper.h>
#include <marlet/project/ProjectTextureImageCache.h>
#include <marlet/project/TextureImage.h>

#include <QDomDocument>

namespace marlet::tool
{

using namespace project;

namespace
{

constexpr int kVersion = 0;
constexpr char kType[] = "Type";
constexpr char kVersionAttribute[] = "Version";
constexpr char kID[] = "ID";
constexpr char kLayerID[] = "LayerID";
constexpr char kTexture[] = "Texture";
constexpr char kFile[] = "File";
constexpr char kRelative[] = "Relative";

std::shared_ptr<PropertyManager> MakeProperties()
{
    constexpr auto kAnimatable = PropertyManager::Type::Animatable;
    const auto properties = PropertyManager::Create();
    properties->CreateProperty("radius", 150.f, kAnimatable, nullptr);
    properties->CreateProperty("height", 200.f, kAnimatable, nullptr);
    properties->CreateProperty("width", 40.f, kAnimatable, nullptr);
    properties->CreateProperty("turns", 3.f, kAnimatable, nullptr);
    properties->CreateProperty("color", kytl::KyColorRGBA_32f{1, 1, 1, 1}, kAnimatable, nullptr);
    properties->CreateProperty(Ribbon::kFollowed, kytl::KyID(), PropertyManager::Type::NotAnimatable,
                               nullptr);
    return properties;
}

QString ToQString(std::u16string_view text)
{
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

WideString FromQString(const QString &text)
{
    return text.toStdU16String();
}

QString IDText(const kytl::KyID &id)
{
    return ToQString(id.ToWideString());
}

QString RequireAttribute(const QDomElement &element, const char *name)
{
    if (!element.hasAttribute(name))
        throw XmlParseException(element.tagName().toStdString() + " is missing attribute " + name + "\n",
                                XmlParseException::Missing::Attribute, name);
    return element.attribute(name);
}

kytl::KyID RequireID(const QDomElement &element, const char *name)
{
    return kytl::KyID::FromString(FromQString(RequireAttribute(element, name)));
}

} // namespace

Ribbon::Ribbon() : id_(kytl::KyID::Generate()), properties_(MakeProperties())
{
}

Ribbon::Ribbon(const QDomElement &element, ProjectTextureImageCache &textures) : properties_(MakeProperties())
{
    if (RequireAttribute(element, kVersionAttribute).toUInt() > kVersion)
        throw InvalidProjectVersionException();
    id_ = RequireID(element, kID);
    layerID_ = RequireID(element, kLayerID);
    if (QDomElement child = element.firstChildElement("PropertyManager"); !child.isNull()) {
        PropertyManager fromFile;
        fromFile.Deserialize(&child);
        EffectsHelper::SynchronizeSourceWithDest(*properties_, fromFile);
    }
    if (const QDomElement child = element.firstChildElement(kTexture); !child.isNull()) {
        textureIsRelative_ = RequireAttribute(child, kRelative) == "1";
        texture_ = textures.CacheItem(FromQString(RequireAttribute(child, kFile)), textureIsRelative_);
    }
}

Ribbon::~Ribbon() = default;

std::shared_ptr<Abstract3DEffect> Ribbon::Clone() const
{
    const auto clone = std::make_shared<Ribbon>();
    clone->properties_->TakeCopyOf(*properties_);
    clone->SetTexture(texture_, textureIsRelative_);
    return clone;
}

void Ribbon::SetLayerID(const kytl::KyID &layerID)
{
    layerID_ = layerID;
}

void Ribbon::SetTexture(std::shared_ptr<TextureImage> texture, bool relative)
{
    texture_ = std::move(texture);
    textureIsRelative_ = relative;
}

void Ribbon::Serialize(void *document, void *effectElement, const ProjectTextureImageCache &textures) const
{
    auto &element = *static_cast<QDomElement *>(effectElement);
    element.setAttribute(kType, kTypeName);
    element.setAttribute(kVersionAttribute, kVersion);
    element.setAttribute(kID, IDText(id_));
    element.setAttribute(kLayerID, IDText(layerID_));
    properties_->Serialize(document, effectElement);
    if (!texture_)
        return;
    // The cache may have moved the picture out of the folder since.
    const WideString &folder = textures.TexturesFolderPath();
    const WideString &path = texture_->FilePath();
    const bool relative = textureIsRelative_ && path.compare(0, folder.size(), folder) == 0;
    QDomElement child = static_cast<QDomDocument *>(document)->createElement(kTexture);
    child.setAttribute(kRelative, relative ? "1" : "0");
    child.setAttribute(kFile, ToQString(relative ? path.substr(folder.size()) : path));
    element.appendChild(child);
}

kytl::KyID Ribbon::FollowedLayer() const
{
    const kytl::KyID *id = boost::get<kytl::KyID>(&std::as_const(*properties_).StaticValue(kFollowed));
    return id ? *id : kytl::KyID();
}

std::vector<ObjectPropertyList> Ribbon::LayerReferencePropertyNames() const
{
    return {{id_, {kFollowed}}};
}

void Ribbon::ChangeLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes)
{
    const auto change = changes.find(FollowedLayer().ToNarrowString());
    if (change != changes.end())
        properties_->StaticValue(kFollowed) = kytl::KyID::FromString(change->second);
}

void Ribbon::ClearInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs)
{
    if (validIDs.count(FollowedLayer().ToNarrowString()) == 0)
        properties_->StaticValue(kFollowed) = kytl::KyID();
}

bool Ribbon::IsLayerReferenced(const std::shared_ptr<CompositionAsset> &composition,
                               const kytl::KyID &layerID) const
{
    const kytl::KyID followed = FollowedLayer();
    if (followed.IsNull() || layerID.IsNull())
        return false;
    return followed == layerID || IsAncestorOfReferencedLayer(composition, followed, layerID);
}

bool Ribbon::IsTextureListReferenced(const kytl::KyID &textureID) const
{
    return texture_ && texture_->ID() == textureID;
}

std::shared_ptr<Abstract3DEffect> EffectFactory::Create(void *effectElement,
                                                        ProjectTextureImageCache &textures) const
{
    const auto &element = *static_cast<QDomElement *>(effectElement);
    if (element.attribute(kType) != Ribbon::kTypeName)
        return {};
    return std::make_shared<Ribbon>(element, textures);
}

} // namespace marlet::tool
