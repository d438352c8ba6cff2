#include <tests/support/Ball.h>
#include <tests/support/LayerStage.h>

#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/TextLayer.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace marlet::test
{
namespace
{

const KyID kFirst = KyID::FromString("00000001-0000-0000-0000-000000000000");
const KyID kSecond = KyID::FromString("00000002-0000-0000-0000-000000000000");

TEST(Layer, AnswersTheConstantQuestionsOfItsClass)
{
    const struct {
        std::shared_ptr<AbstractLayer> layer;
        int type;
        bool hasVideo;
        int dimensions;
        int dimensionsAfterSetting[3];
    } kCases[] = {
        {PointLayer::Create(u""), 5, false, 0, {0, 1, 1}},
        {CameraLayer::Create(u"", 1, 1, 1, 1), 2, false, 1, {1, 1, 1}},
        {LightLayer::Create(u"", {}), 3, true, 2, {2, 2, 2}},
        {GradeLayer::Create(u"", 1, 1), 4, true, 0, {0, 1, 1}},
        {TextLayer::Create(u"", 1, 1), 6, true, 0, {0, 1, 1}},
        {Effect3DLayer::Create(std::make_shared<PlainBall>("red"), u""), 1, true, 2, {2, 2, 2}},
    };
    for (const auto &c : kCases) {
        EXPECT_EQ(c.layer->Type(), LayerType{c.type});
        EXPECT_FALSE(c.layer->HasAudio());
        EXPECT_EQ(c.layer->HasVideo(), c.hasVideo);
        EXPECT_EQ(c.layer->Dimensions(), LayerDimensions{c.dimensions});
        for (int value = 0; value < 3; ++value) {
            c.layer->SetDimensions(LayerDimensions{value});
            EXPECT_EQ(c.layer->Dimensions(), LayerDimensions{c.dimensionsAfterSetting[value]});
        }
    }
}

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
        EXPECT_EQ(clone->Type(), layer->Type());
        EXPECT_NE(clone->ID(), layer->ID());
        EXPECT_FALSE(clone->ID().IsNull());
        EXPECT_EQ(clone->ParentLayer(stage.Assets()), parent);
        EXPECT_EQ(clone->ParentCompositionID(), stage.composition->ID());
        EXPECT_TRUE(clone->IsSelected());
        EXPECT_EQ(clone->Dimensions(), layer->Dimensions());
        EXPECT_EQ(Get<float>(*clone, "rotationX"), 9);
        Set(*clone, "rotationX", 1.f);
        EXPECT_EQ(Get<float>(*layer, "rotationX"), 9);
    }
    const auto clone = std::static_pointer_cast<CameraLayer>(camera->Clone(KyID()));
    EXPECT_EQ(clone->NearClip(), 7);
    EXPECT_EQ(clone->AutoOrientation(), AutoOrient::TowardsTarget);
    EXPECT_EQ(std::static_pointer_cast<LightLayer>(light->Clone(KyID()))->LightSourceType(),
              LightLayer::LightType{5});
    const auto gradeClone = std::static_pointer_cast<GradeLayer>(grade->Clone(KyID()));
    EXPECT_EQ(gradeClone->Width(), 7);
    EXPECT_EQ(gradeClone->Height(), 8);
}

TEST(Layer, RefersToItsParentAlone)
{
    const auto layer = PointLayer::Create(u"");
    EXPECT_FALSE(layer->IsLayerReferenced(nullptr, KyID()));
    layer->SetParentLayer(kFirst);
    EXPECT_TRUE(layer->IsLayerReferenced(nullptr, kFirst));
    EXPECT_FALSE(layer->IsLayerReferenced(nullptr, kSecond));
    EXPECT_TRUE(layer->LayerReferencePropertyNames().empty());

    layer->ClearInvalidLayerReferences({{kFirst.ToNarrowString(), false}});
    EXPECT_EQ(layer->ParentLayerID(), kFirst);
    layer->ClearInvalidLayerReferences({{kSecond.ToNarrowString(), true}});
    EXPECT_FALSE(layer->HasParentLayer());
}

TEST(Layer, FollowsItsParentToANewID)
{
    const LayerStage stage;
    const auto layer = stage.AddPoint();
    const auto first = stage.AddPoint();
    const auto second = stage.AddPoint();
    layer->SetParentLayer(first);
    const NarrowString old = first->ID().ToNarrowString();
    layer->ChangeLayerReferences({});
    layer->ChangeLayerReferences({{second->ID().ToNarrowString(), "not looked at"}});
    EXPECT_EQ(layer->ParentLayer(stage.Assets()), first);
    EXPECT_THROW(layer->ChangeLayerReferences({{old, "no ID"}}), std::runtime_error);
    EXPECT_EQ(layer->ParentLayer(stage.Assets()), first);
    layer->ChangeLayerReferences({{old, second->ID().ToNarrowString()}});
    EXPECT_EQ(layer->ParentLayer(stage.Assets()), second);
}

TEST(Layer, HasNoParentEvenIfALayerHasTheNullID)
{
    const LayerStage stage;
    const auto layer = stage.AddPoint();
    const NarrowString text = ToUtf8(layer->Serialize(stage.textures));
    const NarrowString id = layer->ID().ToNarrowString();
    WideString nameless = FromUtf8(text);
    nameless.replace(text.find(id), id.size(), KyID().ToWideString());
    stage.Add(PointLayer::CreateFromXml(nameless));
    ASSERT_NE(stage.composition->FindLayerByID(KyID()), nullptr);
    EXPECT_EQ(layer->ParentLayer(stage.Assets()), nullptr);
}

TEST(Camera, KnowsTheFieldsOfViewOfItsLenses)
{
    static constexpr double kFocalLengths[] = {24, 28, 35, 50, 80};
    for (int i = 0; i < 5; ++i) {
        const double exact = 2 * std::atan(18 / kFocalLengths[i]) * 180 / 3.14159265358979323846;
        const double angle = CameraLayer::HorizontalFieldOfView(CameraLayer::Lens{i});
        EXPECT_EQ(angle, std::round(exact * 1e4) / 1e4);
    }
    EXPECT_EQ(CameraLayer::HorizontalFieldOfView(CameraLayer::Lens{5}), 0);
}

TEST(Camera, ZoomsByItsLens)
{
    // A frame of 2000 pixels fills 90 degrees at a distance of 1000.
    EXPECT_FLOAT_EQ(CameraLayer::CalculateLensZoom(90, 2000, 1), 1000);
    EXPECT_FLOAT_EQ(CameraLayer::CalculateLensZoom(90, 1000, 1.5), 750);
    EXPECT_NEAR(CameraLayer::CalculateLensZoom(39.5978, 1920, 1), 2666.7, 0.05);
    EXPECT_EQ(CameraLayer::CalculateLensZoom(0, 1920, 1), std::numeric_limits<float>::infinity());
}

} // namespace
} // namespace marlet::test
