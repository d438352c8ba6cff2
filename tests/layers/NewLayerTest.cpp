// What new layers, masks and points of outlines are made with.

#include <tests/support/LayerStage.h>
#include <tests/support/LayerTexts.h>
#include <tests/support/NewProperties.h>
#include <tests/support/Setters.h>

#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/project/SolidAsset.h>

#include <gmock/gmock.h>

namespace marlet::test
{
namespace
{

using Rows = std::vector<NewProperty>;
using Colour = kytl::KyColorRGBA_32f;

Rows operator+(Rows first, const Rows &second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

const Rows kTurned = {{"rotationX", 0.f}, {"rotationY", 0.f}, {"rotationZ", 0.f}};
const Rows kPlaced = Rows{{"anchorPoint", Point{0, 0, 0}, kAlongPath},
                          {"position", Point{0, 0, 0}, kAlongPath},
                          {"scale", Scale3D{100, 100, 100}},
                          {"scaleLinked", true, kFixed},
                          {"orientation", Orientation3D{0, 0, 0}}} +
                     kTurned;
const Rows kOpacity = {{"opacity", 100.f}};
const Rows kLit = {{"illuminated", true, kFixed},
                   {"receiveShadows", true, kFixed},
                   {"shadowColor", Colour{0, 0, 0, 1}},
                   {"castShadows", false, kFixed},
                   {"castShadowsIfLayerDisabled", false, kFixed},
                   {"billboardedShadows", false, kFixed},
                   {"billboardedLights", false, kFixed},
                   {"matAmbient", 100.f},
                   {"matDiffuse", 50.f},
                   {"matSpecular", 50.f},
                   {"matShininess", 100.f},
                   {"matEmissiveColor", Colour{0, 0, 0, 1}}};

Rows LightTurnedBy(float degrees)
{
    return Rows{{"position", Point{0, 400, 0}, kAlongPath},
                {"target", Point{0, 0, 0}, kAlongPath},
                {"orientation", Orientation3D{degrees, 0, 0}}} +
           kTurned +
           Rows{{"color", Colour{1, 1, 1, 1}}, {"intensity", 100.f},    {"castShadows", false, kFixed},
                {"falloff", 1, kFixed},        {"reach", 1000.f},       {"spotlightAngle", 15.f},
                {"spotlightFeather", 50.f},    {"shadowOpacity", 50.f}, {"shadowDiffusion", 0.f}};
}

struct NewLayer {
    std::shared_ptr<AbstractLayer> layer;
    Rows rows;
    int type;
    int dimensions;
    bool hasVideo;
};

std::vector<NewLayer> NewLayers()
{
    const Rows camera = Rows{{"position", Point{0, 0, 600}, kAlongPath},
                             {"target", Point{0, 0, 0}, kAlongPath},
                             {"orientation", Orientation3D{0, 0, 0}}} +
                        kTurned +
                        Rows{{"aperture", 5.f}, {"zoom", 600.f}, {"focusDistance", 7.f}, {"blurDoF", 8.f}};
    const auto light = [](int type) { return LightLayer::Create(u"New", LightLayer::LightType{type}); };
    return {
        {AssetLayer::Create(SolidAsset::Create(u"New", {}, 4, 3, {})),
         kPlaced + kOpacity + Rows{{"audioLevel", 0.f}} + kLit, 0, 0, true},
        {Effect3DLayer::Create(std::make_shared<PlainBall>("red"), u"New"), kPlaced + kOpacity + kLit, 1, 2,
         true},
        {CameraLayer::Create(u"New", 5, 600, 7, 8), camera, 2, 1, false},
        {light(0), LightTurnedBy(0), 3, 2, true},
        {light(3), LightTurnedBy(90), 3, 2, true},
        {GradeLayer::Create(u"New", 4, 3), kOpacity + kPlaced, 4, 0, true},
        {PointLayer::Create(u"New"), kPlaced, 5, 0, false},
        {TextLayer::Create(u"New", 4, 3), kPlaced + kOpacity + kLit, 6, 0, true},
    };
}

TEST(NewLayer, HasThePropertiesOfItsClass)
{
    for (const NewLayer &c : NewLayers()) {
        SCOPED_TRACE(c.type);
        EXPECT_EQ(PropertiesOf(c.layer->Animation()), c.rows);
    }
    const auto mask = Mask::Create(u"");
    EXPECT_EQ(PropertiesOf(mask->Animation()), (Rows{{"opacity", 100.f},
                                                     {"expansion", 0.f},
                                                     {"feather", 0.f},
                                                     {"roundness", 0.f},
                                                     {"featherMode", 2, kFixed},
                                                     {"inverted", false, kFixed},
                                                     {"blendMode", 2, kFixed},
                                                     {"motionPath", true}}));
    using Offset = kytl::matl::KyVector<2, float>;
    EXPECT_EQ(PropertiesOf(PathPoint::Create(3, 4, {})->Animation()),
              (Rows{{"position", kytl::matl::KyPoint<2, float>{3, 4}},
                    {"leftHandle", Offset{0, 0}},
                    {"rightHandle", Offset{0, 0}}}));
}

TEST(NewLayer, SpansNothingIsShownAndHasNoParent)
{
    for (const auto &[layer, rows, type, dimensions, hasVideo] : NewLayers()) {
        SCOPED_TRACE(type);
        EXPECT_EQ(layer->Type(), LayerType{type});
        EXPECT_EQ(layer->Dimensions(), LayerDimensions{dimensions});
        EXPECT_EQ(layer->HasVideo(), hasVideo);
        EXPECT_FALSE(layer->HasAudio());
        EXPECT_FALSE(layer->ID().IsNull());
        EXPECT_EQ(layer->Name(), u"New");
        EXPECT_TRUE(layer->ParentCompositionID().IsNull() && layer->ParentLayerID().IsNull());
        EXPECT_EQ(std::tuple(layer->StartFrame(), layer->EndFrame(), layer->BlendMode()),
                  std::tuple(0, 0, Blend{}));
        EXPECT_TRUE(layer->IsVisible());
        EXPECT_FALSE(layer->IsSelected() || layer->IsMuted() || layer->IsLocked() ||
                     layer->IsMotionBlurEnabled());
        // The null ID leads to no layer.
        EXPECT_FALSE(layer->IsLayerReferenced(nullptr, KyID()));
    }
    const auto camera = CameraLayer::Create(u"", 1, 1, 1, 1);
    EXPECT_EQ(std::tuple(camera->NearClip(), camera->FarClip(), camera->HasDepthOfField()),
              std::tuple(0.1f, 100000.f, false));
    EXPECT_EQ(camera->AutoOrientation(), AutoOrient::Off);
}

TEST(NewLayer, TakesTheDimensionsThatItsClassCanHave)
{
    for (const auto &[layer, rows, type, dimensions, hasVideo] : NewLayers()) {
        SCOPED_TRACE(type);
        const bool isFixed = layer->Type() == LayerType::Camera || dimensions == 2;
        layer->SetDimensions(LayerDimensions::ThreeDContent);
        EXPECT_EQ(layer->Dimensions(), LayerDimensions{dimensions});
        layer->SetDimensions(LayerDimensions::ThreeD);
        layer->SetDimensions(LayerDimensions::ThreeDContent);
        EXPECT_EQ(layer->Dimensions(), LayerDimensions{isFixed ? dimensions : 1});
        layer->SetDimensions(LayerDimensions::TwoD);
        EXPECT_EQ(layer->Dimensions(), LayerDimensions{isFixed ? dimensions : 0});
    }
}

TEST(NewLayer, StoresWhatItIsTold)
{
    using Layer = AbstractLayer;
    for (const NewLayer &c : NewLayers()) {
        SCOPED_TRACE(c.type);
        Layer &layer = *c.layer;
        ExpectStored("name", layer, &Layer::Name, &Layer::SetName, WideString(u"Old"));
        ExpectStored("start", layer, &Layer::StartFrame, &Layer::SetStartFrame, -7);
        ExpectStored("end", layer, &Layer::EndFrame, &Layer::SetEndFrame, 8);
        ExpectStored("blend", layer, &Layer::BlendMode, &Layer::SetBlendMode, Blend{-9});
        ExpectStored("visible", layer, &Layer::IsVisible, &Layer::SetVisible, false);
        ExpectStored("selected", layer, &Layer::IsSelected, &Layer::SetSelected, true);
        ExpectStored("muted", layer, &Layer::IsMuted, &Layer::SetMuted, true);
        ExpectStored("locked", layer, &Layer::IsLocked, &Layer::SetLocked, true);
        ExpectStored("blur", layer, &Layer::IsMotionBlurEnabled, &Layer::SetMotionBlur, true);
    }
    using Camera = CameraLayer;
    const auto camera = Camera::Create(u"", 1, 1, 1, 1);
    ExpectStored("depth", *camera, &Camera::HasDepthOfField, &Camera::SetDepthOfField, true);
    ExpectStored("near", *camera, &Camera::NearClip, &Camera::SetNearClip, 2.f);
    ExpectStored("far", *camera, &Camera::FarClip, &Camera::SetFarClip, 3.f);
    const auto grade = GradeLayer::Create(u"", 4, 3);
    ExpectStored("width", *grade, &GradeLayer::Width, &GradeLayer::SetWidth, 5);
    ExpectStored("height", *grade, &GradeLayer::Height, &GradeLayer::SetHeight, 6);
}

} // namespace
} // namespace marlet::test
