#include "KeptEffect.h"

#include <marlet/foundation/KyID.h>
#include <marlet/layers/Abstract3DEffect.h>
#include <marlet/plugins/WithoutHostOperations.h>

#include <QDomDocument>

#include <functional>

namespace marlet::python
{

namespace
{

using project::Abstract3DEffect;
using project::NarrowString;

/// Calls a function with each text and each attribute below an element.
void ForEachText(const QDomNode &node, const std::function<void(QDomNode)> &function)
{
    const QDomNamedNodeMap attributes = node.attributes();
    for (int i = 0; i < attributes.count(); ++i)
        function(attributes.item(i));
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (child.isText())
            function(child);
        else
            ForEachText(child, function);
    }
}

class KeptEffect final : public project::WithoutHostOperations<Abstract3DEffect>
{
public:
    explicit KeptEffect(const QDomElement &element)
    {
        document_.appendChild(document_.importNode(element, true));
    }

    std::shared_ptr<Abstract3DEffect> Clone() const override
    {
        auto clone = std::make_shared<KeptEffect>(document_.documentElement());
        clone->layerID_ = layerID_;
        return clone;
    }

    /// What names the layer that held it names the one that holds it now.
    void SetLayerID(const kytl::KyID &layerID) override
    {
        if (!layerID_.IsNull())
            ChangeLayerReferences({{layerID_.ToNarrowString(), layerID.ToNarrowString()}});
        layerID_ = layerID;
    }

    void Serialize(void *document, void *effectElement,
                   const project::ProjectTextureImageCache &) const override
    {
        auto &to = *static_cast<QDomDocument *>(document);
        auto &element = *static_cast<QDomElement *>(effectElement);
        const QDomElement kept = document_.documentElement();
        const QDomNamedNodeMap attributes = kept.attributes();
        for (int i = 0; i < attributes.count(); ++i)
            element.setAttribute(attributes.item(i).nodeName(), attributes.item(i).nodeValue());
        for (QDomNode child = kept.firstChild(); !child.isNull(); child = child.nextSibling())
            element.appendChild(to.importNode(child, true));
    }

    void ChangeLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes) override
    {
        ForEachText(document_.documentElement(), [&](QDomNode text) {
            const auto change = changes.find(text.nodeValue().trimmed().toStdString());
            if (change != changes.end())
                text.setNodeValue(QString::fromStdString(change->second));
        });
    }

    bool IsLayerReferenced(const std::shared_ptr<project::CompositionAsset> &,
                           const kytl::KyID &layerID) const override
    {
        const QString id = QString::fromStdString(layerID.ToNarrowString());
        bool isReferenced = false;
        ForEachText(document_.documentElement(),
                    [&](const QDomNode &text) { isReferenced |= text.nodeValue().trimmed() == id; });
        return isReferenced;
    }

private:
    QDomDocument document_;
    kytl::KyID layerID_;
};

} // namespace

std::shared_ptr<project::Abstract3DEffect>
KeptEffectFactory::Create(void *effectElement, project::ProjectTextureImageCache &) const
{
    return std::make_shared<KeptEffect>(*static_cast<QDomElement *>(effectElement));
}

} // namespace marlet::python
