// What scripts do to layers and what these own.

#include "EditScript.h"

#include <marlet/layers/Abstract3DEffect.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/plugins/WithoutHostOperations.h>

#include <QDomElement>

namespace marlet::test
{

namespace
{

/// A 3D effect with a number.
struct Block : WithoutHostOperations<Abstract3DEffect> {
    explicit Block(unsigned int ofSize) : size(ofSize) {}

    std::shared_ptr<Abstract3DEffect> Clone() const override { return std::make_shared<Block>(size); }
    void SetLayerID(const KyID &) override {}
    void Serialize(void *, void *effectElement, const ProjectTextureImageCache &) const override
    {
        static_cast<QDomElement *>(effectElement)->setAttribute("size", size);
    }

    unsigned int size;
};

} // namespace

void EditScript::ChangeValue(Edit &edit)
{
    if (document_.composition->Layers().empty())
        return;
    const auto layer = AnyLayer();
    edit.Touch(layer, "orientation");
    layer->Animation().StaticValue("orientation") = Orientation3D{float(Below(100)), 0, 1};
    if (Chance(2)) {
        edit.Touch(layer, "rotationZ");
        layer->Animation().Expression("rotationZ") = "wiggle(" + std::to_string(Below(9)) + ")";
    }
}

void EditScript::ChangeCurve(KeyFrameList &keys)
{
    const int time = static_cast<int>(Below(6)) * 100;
    switch (Below(4)) {
    case 0:
        keys.Set(time, float(Below(360)));
        break;
    case 1:
        keys.Add(KeyFrame(time, float(Below(360))));
        break;
    case 2:
        if (!keys.IsEmpty())
            keys.Move(AnyOf(keys.Identifiers()), time);
        break;
    default:
        keys.Remove(time);
    }
}

void EditScript::ChangeKeyFrames(Edit &edit)
{
    if (document_.composition->Layers().empty())
        return;
    const auto layer = AnyLayer();
    edit.Touch(layer, "rotationX");
    ChangeCurve(layer->Animation().KeyFrames("rotationX"));
    ChangeCurve(layer->Animation().KeyFrames("rotationX"));
}

void EditScript::ChangeOneKeyFrame(Edit &edit)
{
    if (document_.composition->Layers().empty())
        return;
    const auto layer = AnyLayer();
    KeyFrameList &keys = layer->Animation().KeyFrames("rotationX");
    const std::vector<KyID> all = keys.Identifiers();
    const KyID id = all.empty() ? KyID::Generate() : AnyOf(all);
    KeyFrame added(static_cast<int>(Below(4)) * 100, float(Below(360)));
    edit.TouchKeyFrame(PropertiesOf(layer), "rotationX", all.empty() ? added.ID() : id, ObjectKind::Layer,
                       layer->ID());
    if (all.empty())
        keys.Add(added);
    else if (Chance(3))
        keys.Remove(id);
    else if (Chance(2))
        keys.Move(id, added.Time());
    else
        keys.GetByID(id).SetOutgoingPoint({float(Below(50)), 3});
}

void EditScript::ChangeProperties(Edit &edit)
{
    const std::shared_ptr<PropertyManager> properties = PropertiesOf(document_.point);
    edit.TouchAll(properties, ObjectKind::Layer, document_.point->ID());
    const NarrowString name = "extra" + std::to_string(Below(5));
    properties->CreateProperty(name.c_str(), float(Below(9)), PropertyManager::Type::Animatable, nullptr);
    properties->StaticValue(name.c_str()) = float(Below(9));
}

void EditScript::ChangeLayer(Edit &edit)
{
    if (document_.composition->Layers().empty())
        return;
    const auto layer = AnyLayer();
    edit.Touch(layer);
    layer->SetName(Word());
    layer->SetMuted(Chance(2));
    layer->SetStartFrame(Frame());
    layer->SetEndFrame(Frame());
    layer->SetVisible(Chance(2));
    layer->SetSelected(Chance(2));
    layer->SetBlendMode(Blend{static_cast<int>(Below(30))});
    layer->SetDimensions(LayerDimensions{static_cast<int>(Below(3))});
    layer->SetParentLayer(Chance(2) ? AnyLayer()->ID() : KyID());
    if (const auto shown = std::dynamic_pointer_cast<AssetLayer>(layer)) {
        shown->SetAssetInstanceStart(Frame());
        const std::shared_ptr<AbstractAsset> assets[] = {document_.inner, document_.solid, image_, media_};
        shown->SetAsset(assets[Below(4)]);
        shown->SetDimensions(LayerDimensions{static_cast<int>(Below(3))});
        shown->SetPromoteLights(Chance(2));
    } else if (const auto camera = std::dynamic_pointer_cast<CameraLayer>(layer)) {
        camera->SetNearClip(float(Below(100)));
        camera->SetDepthOfField(Chance(2));
        camera->SetAutoOrientation(Chance(2) ? AutoOrient::TowardsTarget : AutoOrient::Off);
    } else if (const auto light = std::dynamic_pointer_cast<LightLayer>(layer)) {
        light->SetLightSourceType(LightLayer::LightType{static_cast<int>(Below(4))});
    } else if (const auto grade = std::dynamic_pointer_cast<GradeLayer>(layer)) {
        grade->SetWidth(static_cast<int>(Below(1000)));
    } else if (const auto effect = std::dynamic_pointer_cast<Effect3DLayer>(layer)) {
        effect->SetEffect(std::make_shared<Block>(Below(100)));
    }
}

void EditScript::ChangeLayerLists(Edit &edit)
{
    const auto layer = document_.layer;
    edit.Touch(layer);
    switch (Below(4)) {
    case 0: {
        const auto effect = EffectInstance::Create(document_.plugins->plugins[0]);
        effect->SetParent(layer->ID(), document_.composition->ID());
        layer->Effects().Add(effect);
        break;
    }
    case 1:
        if (!layer->Effects().empty())
            layer->Effects().erase(layer->Effects().begin());
        break;
    case 2: {
        const auto mask = Mask::Create(Word());
        mask->SetParentLayerID(layer->ID());
        layer->Masks().insert(layer->Masks().begin(), mask);
        break;
    }
    default:
        std::ranges::reverse(layer->Masks());
    }
}

void EditScript::AddLayer(Edit &edit)
{
    std::shared_ptr<AbstractLayer> layer;
    switch (Below(5)) {
    case 0:
        layer = CameraLayer::Create(Word(), 1, 100, 100, 1);
        break;
    case 1:
        layer = LightLayer::Create(Word(), LightLayer::LightType{0});
        break;
    case 2:
        layer = GradeLayer::Create(Word(), 10, 20);
        break;
    case 3:
        layer = Effect3DLayer::Create(std::make_shared<Block>(Below(100)), Word());
        break;
    default:
        layer = document_.layer->Clone(document_.composition->ID());
    }
    const std::shared_ptr<CompositionAsset> composition = Chance(3) ? deep_ : document_.composition;
    layer->SetParentComposition(composition);
    layer->SetEndFrame(Frame());
    edit.TouchLayers(composition);
    auto &layers = composition->Layers();
    layers.insert(std::next(layers.begin(), Below(static_cast<unsigned int>(layers.size()) + 1)), layer);
}

void EditScript::RemoveLayer(Edit &edit)
{
    edit.TouchLayers(document_.composition);
    auto &layers = document_.composition->Layers();
    if (layers.size() > 2)
        layers.erase(std::next(layers.begin(), Below(static_cast<unsigned int>(layers.size()))));
}

void EditScript::MoveLayerInStack(Edit &edit)
{
    edit.TouchLayers(document_.composition);
    auto &layers = document_.composition->Layers();
    if (!layers.empty())
        layers.splice(layers.begin(), layers, std::prev(layers.end()));
}

void EditScript::ChangeText(Edit &edit)
{
    const auto text = document_.text;
    edit.TouchText(text);
    if (Chance(3))
        text->Text() = {};
    const auto format = text->TextFormat(u"Family", u"Bold", static_cast<int>(Below(40)), {}, {}, 1, 0, 0);
    text->Text().Append(TextLayer::CreateCharToken(static_cast<unsigned short>('a' + Below(26)), format, {}));
    text->Text().first->format = format;
    text->SetMinX(float(Below(300)) - 150);
    text->SetMaxX(float(Below(300)) - 150);
    text->SetCursorPosition(text->Text().first, {});
    if (Chance(2))
        text->CleanUpFormat();
}

void EditScript::ChangeMask(Edit &edit)
{
    const auto mask = document_.mask;
    edit.Touch(mask);
    mask->SetName(Word());
    mask->SetVisible(Chance(2));
    auto &points = mask->Path().Points();
    if (Chance(2))
        points.Add(PathPoint::Create(float(Below(9)), 1, mask->Path().ID()));
    else if (!points.empty())
        points.erase(points.begin());
    mask->Path().SetClosed(Chance(2));
    if (points.empty())
        return;
    edit.Touch(points.back());
    points.back()->SetLocked(Chance(2));
    points.back()->SetLinear(Chance(2));
    edit.Touch(points.back(), "position");
    points.back()->Animation().StaticValue("position") = kytl::matl::KyPoint<2, float>{float(Below(9)), 1};
}

void EditScript::ChangeTracker(Edit &edit)
{
    const auto tracker = document_.tracker;
    edit.Touch(tracker);
    tracker->SetName(Word());
    tracker->SetType(Tracker::TrackerType{static_cast<int>(Below(2))});
    tracker->SetDestinationLayerID(AnyLayer()->ID());
    edit.Touch(tracker->PrimaryTrackingPoint());
    tracker->PrimaryTrackingPoint()->SetVisible(Chance(2));
    edit.Touch(tracker->PrimaryTrackingPoint(), "featurePosition");
    tracker->PrimaryTrackingPoint()
        ->Animation()
        .KeyFrames("featurePosition")
        .Set(static_cast<int>(Below(500)), kytl::matl::KyPoint<2, float>{float(Below(9)), 1});
}

void EditScript::ChangeEffect(Edit &edit)
{
    const auto effect = document_.effect;
    edit.Touch(std::static_pointer_cast<PluginInstance>(effect));
    TestPlugin::Text(*effect) = ToUtf8(Word());
    effect->SetName(Word());
    effect->SetEnabled(Chance(2));
    effect->SetPropertyUIState("amount", {Chance(2)});
    edit.Touch(std::static_pointer_cast<PluginInstance>(effect), "layer");
    effect->Properties().StaticValue("layer") = AnyLayer()->ID();
}

} // namespace marlet::test
