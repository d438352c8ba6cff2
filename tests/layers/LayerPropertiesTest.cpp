#include <tests/support/Ball.h>
#include <tests/support/LayerStage.h>

#include <marlet/foundation/Exceptions.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/LayerProperties.h>
#include <marlet/layers/TextLayer.h>

#include <gtest/gtest.h>

#include <functional>

namespace marlet::test
{
namespace
{

std::vector<NarrowString> NamesWhere(const PropertyManager &properties,
                                     const std::function<bool(const char *)> &condition)
{
    std::vector<NarrowString> names = properties.PropertyNames();
    std::erase_if(names, [&](const NarrowString &name) { return !condition(name.c_str()); });
    return names;
}

TEST(LayerProperties, MoveAlongPathsAndAnimateButForSwitches)
{
    using Names = std::vector<NarrowString>;
    const auto ball = std::make_shared<PlainBall>("red");
    const Names switches = {"scaleLinked",
                            "illuminated",
                            "receiveShadows",
                            "castShadows",
                            "castShadowsIfLayerDisabled",
                            "billboardedShadows",
                            "billboardedLights"};
    const struct {
        std::shared_ptr<AbstractLayer> layer;
        unsigned int count;
        Names spatial;
        Names fixed;
    } kCases[] = {
        {PointLayer::Create(u""), 8, {"anchorPoint", "position"}, {"scaleLinked"}},
        {CameraLayer::Create(u"", 1, 1, 1, 1), 10, {"position", "target"}, {}},
        {LightLayer::Create(u"", {}), 15, {"position", "target"}, {"castShadows", "falloff"}},
        {GradeLayer::Create(u"", 1, 1), 9, {"anchorPoint", "position"}, {"scaleLinked"}},
        {TextLayer::Create(u"", 1, 1), 21, {"anchorPoint", "position"}, switches},
        {Effect3DLayer::Create(ball, u""), 21, {"anchorPoint", "position"}, switches},
    };
    for (const auto &c : kCases) {
        const PropertyManager &properties = c.layer->Animation();
        EXPECT_EQ(properties.PropertyCount(), c.count);
        EXPECT_EQ(NamesWhere(properties, [&](auto name) { return properties.IsSpatial(name); }), c.spatial);
        EXPECT_EQ(NamesWhere(properties, [&](auto name) { return !properties.CanAnimate(name); }), c.fixed);
        EXPECT_FALSE(properties.IsDirty());
    }
}

TEST(LayerProperties, ComeInTheOrderOfTheFileWithTheirDefaults)
{
    using Values = std::vector<std::pair<NarrowString, PropertyValue>>;
    const kytl::KyColorRGBA_32f black{0, 0, 0, 1};
    const Values placement = {{"anchorPoint", Point{}},
                              {"position", Point{}},
                              {"scale", Scale3D{100, 100, 100}},
                              {"scaleLinked", true},
                              {"orientation", Orientation3D{}},
                              {"rotationX", 0.f},
                              {"rotationY", 0.f},
                              {"rotationZ", 0.f}};
    Values grade = {{"opacity", 100.f}};
    grade.insert(grade.end(), placement.begin(), placement.end());
    Values text = placement;
    text.insert(text.end(), {{"opacity", 100.f},
                             {"illuminated", true},
                             {"receiveShadows", true},
                             {"shadowColor", black},
                             {"castShadows", false},
                             {"castShadowsIfLayerDisabled", false},
                             {"billboardedShadows", false},
                             {"billboardedLights", false},
                             {"matAmbient", 100.f},
                             {"matDiffuse", 50.f},
                             {"matSpecular", 50.f},
                             {"matShininess", 100.f},
                             {"matEmissiveColor", black}});
    const struct {
        std::shared_ptr<AbstractLayer> layer;
        Values values;
    } kCases[] = {
        {GradeLayer::Create(u"", 1, 1), grade},
        {TextLayer::Create(u"", 1, 1), text},
        {Effect3DLayer::Create(std::make_shared<PlainBall>("red"), u""), text},
    };
    for (const auto &c : kCases) {
        Values values;
        for (const NarrowString &name : c.layer->Animation().PropertyNames())
            values.emplace_back(name, c.layer->Animation().StaticValue(name.c_str()));
        EXPECT_TRUE(values == c.values);
    }
}

TEST(LayerProperties, PutACameraAtTheDistanceOfItsZoom)
{
    const auto camera = CameraLayer::Create(u"", 5, 1000, 7, 8);
    EXPECT_EQ(Get<Point>(*camera, "position"), (Point{0, 0, 1000}));
    EXPECT_EQ(Get<float>(*camera, "aperture"), 5);
    EXPECT_EQ(Get<float>(*camera, "zoom"), 1000);
    EXPECT_EQ(Get<float>(*camera, "focusDistance"), 7);
    EXPECT_EQ(Get<float>(*camera, "blurDoF"), 8);
}

TEST(LayerProperties, TurnALightOfTheThirdKindAsItIsMade)
{
    for (const int type : {0, 3}) {
        const auto light = LightLayer::Create(u"", LightLayer::LightType{type});
        light->SetLightSourceType(LightLayer::LightType{3 - type});
        EXPECT_EQ(Get<Orientation3D>(*light, "orientation"), (Orientation3D{type == 3 ? 90.f : 0.f, 0, 0}));
        EXPECT_EQ(Get<Point>(*light, "position"), (Point{0, 400, 0}));
    }
}

std::string MissingIn(PropertyManager &manager, const LayerProperties &properties, unsigned int version)
{
    try {
        RequireProperties(manager, properties, version);
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
    EXPECT_EQ(boost::get<float>(manager.StaticValue("early")), 2);
}

TEST(LayerProperties, FailWithTheStatusOfOneThatCannotBeMade)
{
    PropertyManager manager;
    try {
        CreateProperties(manager, {{"twice", 1.f}, {"twice", 1.f}});
        FAIL();
    } catch (const ProjectException &failure) {
        EXPECT_EQ(failure.Code(), PropertyManager::kNameInUse);
        EXPECT_EQ(failure.Detail(), "");
    }
}

} // namespace
} // namespace marlet::test
