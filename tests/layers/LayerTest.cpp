#include <tests/support/LayerStage.h>
#include <tests/support/LayerTexts.h>

#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/LayerProperties.h>
#include <marlet/layers/TextLayer.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace marlet::test
{
namespace
{

TEST(Layer, IsClonedWithAnIdentityAndPropertiesOfItsOwn)
{
    const LayerStage stage;
    const auto parent = PointLayer::Create(u"In no composition, but known");
    const auto camera = stage.AddCamera();
    camera->SetNearClip(7);
    camera->SetAutoOrientation(AutoOrient::TowardsTarget);
    const auto light = stage.Add(LightLayer::Create(u"", LightLayer::LightType{5}));
    const auto point = stage.AddPoint();
    point->SetDimensions(LayerDimensions::ThreeD);
    const auto grade = stage.Add(GradeLayer::Create(u"", 7, 8));
    grade->SetDimensions(LayerDimensions::ThreeD);
    const auto text = stage.Add(TextLayer::Create(u"", 7, 8));
    const auto ball = stage.Add(Effect3DLayer::Create(std::make_shared<PlainBall>("red"), u""));
    const std::shared_ptr<AbstractLayer> layers[] = {camera, light, point, grade, text, ball};
    for (const auto &layer : layers) {
        layer->SetParentLayer(parent);
        layer->SetSelected(true);
        Set(*layer, "rotationX", 9.f);
        const auto clone = layer->Clone(KyID());
        EXPECT_NE(clone->ID(), layer->ID());
        EXPECT_EQ(clone->ParentLayer(stage.Assets()), parent);
        EXPECT_EQ(clone->ParentCompositionID(), stage.composition->ID());
        EXPECT_TRUE(clone->IsSelected());
        Set(*clone, "rotationX", 1.f);
        EXPECT_EQ(Get<float>(*layer, "rotationX"), 9);
        // Nothing else that is written differs.
        Set(*clone, "rotationX", 9.f);
        EXPECT_EQ(Replaced(TextOf(*clone), clone->ID().ToNarrowString(), layer->ID().ToNarrowString()),
                  TextOf(*layer));
    }
}

TEST(Layer, FollowsItsParentToANewIDUntilThatIsInvalid)
{
    const LayerStage stage;
    const auto layer = stage.AddPoint();
    const auto first = stage.AddPoint();
    const auto second = stage.AddPoint();
    layer->SetParentLayer(first);
    const NarrowString old = first->ID().ToNarrowString();
    layer->ChangeLayerReferences({{second->ID().ToNarrowString(), "not looked at"}});
    EXPECT_THROW(layer->ChangeLayerReferences({{old, "no ID"}}), std::runtime_error);
    EXPECT_EQ(layer->ParentLayer(stage.Assets()), first);
    layer->ChangeLayerReferences({{old, second->ID().ToNarrowString()}});
    EXPECT_EQ(layer->ParentLayer(stage.Assets()), second);
    EXPECT_TRUE(layer->IsLayerReferenced(nullptr, second->ID()));
    EXPECT_FALSE(layer->IsLayerReferenced(nullptr, first->ID()));

    layer->ClearInvalidLayerReferences({{second->ID().ToNarrowString(), false}});
    EXPECT_TRUE(layer->HasParentLayer());
    layer->ClearInvalidLayerReferences({{old, true}});
    EXPECT_FALSE(layer->HasParentLayer());
}

TEST(Camera, KnowsTheFieldsOfViewOfItsLenses)
{
    static constexpr double kFocalLengths[] = {24, 28, 35, 50, 80};
    for (int i = 0; i < 5; ++i) {
        const double exact = 2 * std::atan(18 / kFocalLengths[i]) * 180 / 3.14159265358979323846;
        const double angle = CameraLayer::HorizontalFieldOfView(CameraLayer::Lens{i});
        EXPECT_EQ(angle, std::round(exact * 1e4) / 1e4);
    }
}

TEST(Camera, ZoomsByItsLens)
{
    // A frame of 2000 pixels fills 90 degrees at a distance of 1000.
    EXPECT_FLOAT_EQ(CameraLayer::CalculateLensZoom(90, 2000, 1), 1000);
    EXPECT_FLOAT_EQ(CameraLayer::CalculateLensZoom(90, 1000, 1.5), 750);
    EXPECT_EQ(CameraLayer::CalculateLensZoom(0, 1920, 1), std::numeric_limits<float>::infinity());
}

TEST(Light, StaysTurnedAsItWasMade)
{
    for (const int type : {0, 3}) {
        const auto light = LightLayer::Create(u"", LightLayer::LightType{type});
        light->SetLightSourceType(LightLayer::LightType{3 - type});
        EXPECT_EQ(light->LightSourceType(), LightLayer::LightType{3 - type});
        EXPECT_EQ(Get<Orientation3D>(*light, "orientation"), (Orientation3D{type == 3 ? 90.f : 0.f, 0, 0}));
    }
}

std::string MissingIn(PropertyManager &manager, const LayerProperties &properties, unsigned int version)
{
    try {
        RequireProperties({}, manager, properties, version);
    } catch (const ProjectException &failure) {
        EXPECT_EQ(failure.Code(), 9);
        return failure.Detail();
    }
    return {};
}

TEST(LayerProperties, OfALaterVersionAreMadeForOlderElements)
{
    const LayerProperties properties = {{.name = "late", .value = 5, .since = 1}, {"early", 1.f}};
    PropertyManager manager;
    EXPECT_EQ(MissingIn(manager, properties, 0), "early");
    EXPECT_FALSE(manager.HasProperty("late"));
    manager.CreateProperty("early", 2.f, PropertyManager::Type::Animatable, nullptr);
    EXPECT_EQ(MissingIn(manager, properties, 1), "late");
    EXPECT_EQ(MissingIn(manager, properties, 0), "");
    EXPECT_EQ(boost::get<int>(manager.StaticValue("late")), 5);
    manager.StaticValue("late") = 6;
    EXPECT_EQ(MissingIn(manager, properties, 0), "");
    EXPECT_EQ(boost::get<int>(manager.StaticValue("late")), 6);
}

} // namespace
} // namespace marlet::test
