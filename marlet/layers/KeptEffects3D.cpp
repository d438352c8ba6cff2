#include <marlet/layers/KeptEffects3D.h>

#include <marlet/layers/Abstract3DEffect.h>
#include <marlet/plugins/WithoutHostOperations.h>

#include <QDomDocument>

namespace marlet::project
{

namespace
{

class KeptEffect3D final : public WithoutHostOperations<Abstract3DEffect>
{
public:
    /// Of a document of its own: threads that save two projects must not share one.
    explicit KeptEffect3D(const QDomElement &element)
    {
        document_.appendChild(document_.importNode(element, true));
    }

    std::shared_ptr<Abstract3DEffect> Clone() const override
    {
        return std::make_shared<KeptEffect3D>(document_.documentElement());
    }

    void SetLayerID(const kytl::KyID &) override {}

    void Serialize(void *document, void *effectElement, const ProjectTextureImageCache &) const override
    {
        auto &target = *static_cast<QDomDocument *>(document);
        auto &element = *static_cast<QDomElement *>(effectElement);
        const QDomElement kept = document_.documentElement();
        const QDomNamedNodeMap attributes = kept.attributes();
        for (int i = 0; i < attributes.count(); ++i)
            element.setAttribute(attributes.item(i).nodeName(), attributes.item(i).nodeValue());
        for (QDomNode child = kept.firstChild(); !child.isNull(); child = child.nextSibling())
            element.appendChild(target.importNode(child, true));
    }

private:
    QDomDocument document_;
};

} // namespace

std::shared_ptr<Abstract3DEffect> KeptEffects3D::Create(void *effectElement,
                                                        ProjectTextureImageCache &textures) const
{
    if (known_)
        if (std::shared_ptr<Abstract3DEffect> effect = known_->Create(effectElement, textures))
            return effect;
    return std::make_shared<KeptEffect3D>(*static_cast<const QDomElement *>(effectElement));
}

} // namespace marlet::project
