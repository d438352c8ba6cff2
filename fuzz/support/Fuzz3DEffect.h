#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/layers/Abstract3DEffect.h>
#include <marlet/layers/Abstract3DEffectFactory.h>

#include <QDomDocument>

namespace marlet::project
{

/// A 3D effect that follows a layer and keeps the text of its element.
class Fuzz3DEffect : public Abstract3DEffect
{
public:
    /// Reads the element. @throws std::runtime_error if the ID of the layer is malformed
    explicit Fuzz3DEffect(const QDomElement &element) : text_(element.text())
    {
        if (element.hasAttribute(kFollows))
            followed_ = kytl::KyID::FromString(element.attribute(kFollows).toStdString());
    }

    std::shared_ptr<Abstract3DEffect> Clone() const override { return std::make_shared<Fuzz3DEffect>(*this); }
    void SetLayerID(const kytl::KyID &) override {}
    void Serialize(void *document, void *effectElement, const ProjectTextureImageCache &) const override
    {
        auto &element = *static_cast<QDomElement *>(effectElement);
        element.setAttribute(kFollows, QString::fromStdString(followed_.ToNarrowString()));
        element.appendChild(static_cast<QDomDocument *>(document)->createTextNode(text_));
    }
    std::vector<ObjectPropertyList> LayerReferencePropertyNames() const override
    {
        return {{{}, {kFollows}}};
    }
    void ChangeLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes) override
    {
        if (const auto change = changes.find(followed_.ToNarrowString()); change != changes.end())
            followed_ = kytl::KyID::FromString(change->second);
    }
    void ClearInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs) override
    {
        if (!validIDs.contains(followed_.ToNarrowString()))
            followed_ = {};
    }
    bool IsLayerReferenced(const std::shared_ptr<CompositionAsset> &composition,
                           const kytl::KyID &layerID) const override
    {
        return followed_ == layerID || IsAncestorOfReferencedLayer(composition, followed_, layerID);
    }

    void HostOperation1() override {}
    void HostOperation2() override {}
    void HostOperation3() override {}
    void HostOperation4() override {}
    void HostOperation5() override {}
    void HostOperation6() override {}
    void HostOperation7() override {}
    void HostOperation8() override {}
    void HostOperation9() override {}
    void HostOperation10() override {}

private:
    static constexpr char kFollows[] = "Follows";

    kytl::KyID followed_;
    QString text_;
};

/// Makes effects of all elements but those that say "none".
struct Fuzz3DEffectFactory : Abstract3DEffectFactory {
    std::shared_ptr<Abstract3DEffect> Create(void *effectElement, ProjectTextureImageCache &) const override
    {
        const auto &element = *static_cast<const QDomElement *>(effectElement);
        if (element.text() == "none")
            return nullptr;
        return std::make_shared<Fuzz3DEffect>(element);
    }
};

} // namespace marlet::project
