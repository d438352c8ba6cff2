#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/KyID.h>
#include <marlet/layers/Abstract3DEffect.h>
#include <marlet/layers/Abstract3DEffectFactory.h>
#include <marlet/plugins/WithoutHostOperations.h>

#include <memory>

class QDomElement;

namespace marlet::project
{
class TextureImage;
}

namespace marlet::tool
{

/// A band of paper that winds round a layer, and follows it where its parents take it: radius and height of
/// the winding and width of the band in pixels, turns, a colour, and a picture on the paper.
///
/// It owns its properties and shares its picture with the project's cache.
class Ribbon : public project::WithoutHostOperations<project::Abstract3DEffect>
{
public:
    static constexpr char kTypeName[] = "Ribbon";
    static constexpr char kFollowed[] = "followedLayer";

    Ribbon();
    /// @throws XmlParseException, InvalidProjectVersionException, std::runtime_error,
    /// boost::bad_lexical_cast
    Ribbon(const QDomElement &element, project::ProjectTextureImageCache &textures);
    Ribbon(const Ribbon &) = delete;
    Ribbon &operator=(const Ribbon &) = delete;
    ~Ribbon() override;

    std::shared_ptr<project::Abstract3DEffect> Clone() const override;
    void SetLayerID(const kytl::KyID &layerID) override;
    void Serialize(void *document, void *effectElement,
                   const project::ProjectTextureImageCache &textures) const override;
    std::vector<project::ObjectPropertyList> LayerReferencePropertyNames() const override;
    void ChangeLayerReferences(
        const std::unordered_map<project::NarrowString, project::NarrowString> &changes) override;
    void
    ClearInvalidLayerReferences(const std::unordered_map<project::NarrowString, bool> &validIDs) override;
    /// The layers above the followed one count too.
    bool IsLayerReferenced(const std::shared_ptr<project::CompositionAsset> &composition,
                           const kytl::KyID &layerID) const override;
    bool IsTextureListReferenced(const kytl::KyID &textureID) const override;

    const kytl::KyID &ID() const { return id_; }
    project::PropertyManager &Properties() { return *properties_; }
    const project::PropertyManager &Properties() const { return *properties_; }
    /// The null ID if it follows none.
    kytl::KyID FollowedLayer() const;
    /// Empty if the paper is blank. A picture that is named relative to the textures folder moves with it.
    const std::shared_ptr<project::TextureImage> &Texture() const { return texture_; }
    void SetTexture(std::shared_ptr<project::TextureImage> texture, bool relative);

private:
    kytl::KyID id_;
    kytl::KyID layerID_;
    std::shared_ptr<project::PropertyManager> properties_;
    std::shared_ptr<project::TextureImage> texture_;
    bool textureIsRelative_ = false;
};

/// Knows ribbons alone: of any other effect it makes nothing.
class EffectFactory : public project::Abstract3DEffectFactory
{
public:
    std::shared_ptr<project::Abstract3DEffect>
    Create(void *effectElement, project::ProjectTextureImageCache &textures) const override;
};

} // namespace marlet::tool
