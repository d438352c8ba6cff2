#pragma once

#include <marlet/foundation/Strings.h>
#include <marlet/layers/Abstract3DEffect.h>
#include <marlet/layers/Abstract3DEffectFactory.h>

#include <QDomDocument>
#include <gtest/gtest.h>

namespace marlet::test
{

using namespace marlet::project;
using kytl::KyID;

/// A 3D effect with a colour, for its element, and no references.
class PlainBall : public Abstract3DEffect
{
public:
    explicit PlainBall(std::string name) : colour(std::move(name)) {}

    std::shared_ptr<Abstract3DEffect> Clone() const override { return std::make_shared<PlainBall>(*this); }
    void HostOperation1() override {}
    void HostOperation2() override {}
    void HostOperation3() override {}
    void SetLayerID(const KyID &id) override { toldLayerIDs.push_back(id); }
    void HostOperation4() override {}
    void HostOperation5() override {}
    void HostOperation6() override {}
    void HostOperation7() override {}
    void HostOperation8() override {}
    void HostOperation9() override {}
    void Serialize(void *document, void *effectElement, const ProjectTextureImageCache &) const override
    {
        auto &dom = *static_cast<QDomDocument *>(document);
        auto &element = *static_cast<QDomElement *>(effectElement);
        stoodInItsDocument = dom.documentElement() == element;
        element.setAttribute("shape", "ball");
        element.setAttribute("colour", QString::fromStdString(colour));
        element.appendChild(dom.createElement("Size")).appendChild(dom.createTextNode(" 7 "));
    }
    void HostOperation10() override {}

    std::string colour;
    std::vector<KyID> toldLayerIDs;
    mutable bool stoodInItsDocument = false;
};

/// One that follows a layer.
class Ball : public PlainBall
{
public:
    explicit Ball(const std::string &name, const KyID &followed = {}) : PlainBall(name), target(followed) {}

    std::shared_ptr<Abstract3DEffect> Clone() const override { return std::make_shared<Ball>(*this); }
    std::vector<ObjectPropertyList> LayerReferencePropertyNames() const override
    {
        return {{{}, {"target"}}};
    }
    void ChangeLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes) override
    {
        if (const auto change = changes.find(target.ToNarrowString()); change != changes.end())
            target = KyID::FromString(change->second);
    }
    void ClearInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs) override
    {
        if (!validIDs.contains(target.ToNarrowString()))
            target = {};
    }
    /// A layer counts, too, if the followed one hangs below it.
    bool IsLayerReferenced(const std::shared_ptr<CompositionAsset> &composition,
                           const KyID &layerID) const override
    {
        return target == layerID || IsAncestorOfReferencedLayer(composition, target, layerID);
    }

    KyID target;
};

/// Makes balls of all elements but those without a colour.
struct BallFactory : Abstract3DEffectFactory {
    std::shared_ptr<Abstract3DEffect> Create(void *effectElement, ProjectTextureImageCache &) const override
    {
        const auto &element = *static_cast<const QDomElement *>(effectElement);
        if (!element.hasAttribute("colour"))
            return nullptr;
        EXPECT_EQ(element.ownerDocument().documentElement(), element);
        EXPECT_EQ(element.firstChildElement("Size").text(), " 7 ");
        return std::make_shared<PlainBall>(element.attribute("colour").toStdString());
    }
};

} // namespace marlet::test
