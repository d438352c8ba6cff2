#include "ExampleProject.h"

#include "document/Scene.h"
#include "plugins/PluginManager.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/CompositionRenderSettings.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectMetadata.h>
#include <marlet/project/SolidAsset.h>

#include <cmath>

namespace marlet::tool
{

using namespace project;

namespace
{

using Color = kytl::KyColorRGBA_32f;
using Point = kytl::matl::KyPoint<3, float>;
using Moments = std::vector<Scene::Moment>;

/// Builds the layers from front to back. Lengths are fractions of the frame's height.
class Orbit
{
public:
    explicit Orbit(const CompositionPointer &composition)
        : scene_(composition), composition_(composition), height_(composition->Settings().Height())
    {
    }

    void Build()
    {
        // Parents stand behind their children here, so they are made before they are added.
        rig_ = NewPoint(u"Camera Rig");
        sun_ = NewPoint(u"Sun");
        planet_ = NewPoint(u"Planet");
        moon_ = NewPoint(u"Moon");
        comet_ = NewPoint(u"Comet");
        belt_ = NewPoint(u"Asteroid Belt");
        AddCamera();
        AddLights();
        AddMoonAndPlanet();
        AddComet();
        AddBelt();
        AddSun();
    }

private:
    static LayerPointer NewPoint(const WideString &name)
    {
        LayerPointer point = PointLayer::Create(name);
        point->SetDimensions(LayerDimensions::ThreeD);
        return point;
    }

    float Length(double heights) const { return static_cast<float>(heights * height_); }

    Point At(double x, double y, double z) const { return {Length(x), Length(y), Length(z)}; }

    void AddCamera()
    {
        const AudioVideoSettings &settings = composition_->Settings();
        const float zoom =
            CameraLayer::CalculateLensZoom(CameraLayer::HorizontalFieldOfView(CameraLayer::Lens::Focal35),
                                           settings.Width(), settings.PixelAspectRatioValue());
        const auto camera = CameraLayer::Create(u"Camera", 5.6f, zoom, zoom, 100);
        camera->SetAutoOrientation(AutoOrient::TowardsTarget);
        camera->SetDepthOfField(true);
        const double distance = zoom / static_cast<double>(height_);
        scene_.Add(camera, rig_);
        scene_.AnimateEased(camera, "position",
                            {{0, At(0, 0.6, 1.5 * distance)},
                             {0.45, At(0.1, 0.3, 1.1 * distance)},
                             {0.7, At(-0.1, 0.2, distance)},
                             {1, At(0, 0.4, 1.3 * distance)}});
        scene_.AnimateEased(camera, "focusDistance",
                            {{0, 1.6f * zoom}, {0.5, 1.1f * zoom}, {1, 1.35f * zoom}});

        scene_.Add(rig_, {});
        scene_.AnimateEased(rig_, "rotationY", {{0, -20.f}, {0.5, 8.f}, {1, 25.f}});
        // The rig swings a little beyond the middle before it goes on.
        KeyFrameList &swing = rig_->Animation().KeyFrames("rotationY");
        KeyFrame &middle = swing.At(swing.NearestToTime(swing.LastByTime().Time() / 2).Time());
        middle.SetIncomingPoint({middle.IncomingPoint().X, 6});
    }

    void AddLights()
    {
        const LayerPointer sunlight = LightLayer::Create(u"Sunlight", LightLayer::LightType(0));
        sunlight->Animation().StaticValue("castShadows") = true;
        sunlight->Animation().StaticValue("position") = Point();
        scene_.Add(sunlight, sun_);
        Moments flicker;
        for (int i = 0; i <= 24; ++i)
            flicker.push_back(
                {i / 24.0, static_cast<float>(100 + 8 * std::sin(1.9 * i) + 3 * std::sin(5.3 * i))});
        scene_.AnimateEased(sunlight, "intensity", flicker);
        scene_.Animate(
            sunlight, "color",
            {{0, Color{1, 0.93f, 0.8f, 1}}, {0.5, Color{1, 0.8f, 0.55f, 1}}, {1, Color{1, 0.95f, 0.85f, 1}}});

        const LayerPointer beacon = LightLayer::Create(u"Moon Beacon", LightLayer::LightType(1));
        beacon->Animation().StaticValue("color") = Color{0.4f, 0.7f, 1, 1};
        beacon->Animation().StaticValue("position") = At(0, 0.04, 0.02);
        scene_.Add(beacon, moon_);
        Moments blinking;
        for (int i = 0; i < 24; ++i)
            blinking.push_back({i / 24.0, i % 2 == 0 ? 140.f : 0.f});
        scene_.AnimateInSteps(beacon, "intensity", blinking);

        const auto rim = LightLayer::Create(u"Rim Light", LightLayer::LightType(2));
        rim->SetAutoOrientation(AutoOrient::TowardsTarget);
        rim->Animation().StaticValue("position") = At(-1.2, 0.8, -0.6);
        scene_.Add(rim, rig_);
        scene_.AnimateEased(rim, "target",
                            {{0, At(0.8, 0, 0)}, {0.3, At(0, 0.8, 0)}, {1, At(-0.4, -0.4, 0)}});
        scene_.AnimateEased(rim, "spotlightAngle", {{0, 18.f}, {0.6, 30.f}, {1, 24.f}});
    }

    void AddMoonAndPlanet()
    {
        scene_.Add(moon_, planet_);
        scene_.AnimateOrbit(moon_, Length(0.22), Length(0.2), 3, 8);
        scene_.Animate(moon_, "rotationZ", {{0, 0.f}, {1, 1080.f}});

        scene_.Add(planet_, sun_);
        scene_.AnimateOrbit(planet_, Length(0.8), Length(0.7), 1, 12);
        scene_.Animate(planet_, "orientation",
                       {{0, Orientation3D{0, 0, 23.5f}},
                        {0.5, Orientation3D{8, 0, 350}},
                        {1, Orientation3D{0, 0, 23.5f}}});
        scene_.Animate(planet_, "rotationY", {{0, 0.f}, {1, 1440.f}});
    }

    void AddComet()
    {
        const LayerPointer glow = LightLayer::Create(u"Comet Glow", LightLayer::LightType(1));
        glow->Animation().StaticValue("position") = Point();
        scene_.Add(glow, comet_, 0.2);
        scene_.AnimateEased(glow, "reach", {{0.2, 200.f}, {0.6, 1500.f}, {1, 300.f}});
        scene_.Animate(
            glow, "color",
            {{0.2, Color{0.6f, 0.8f, 1, 1}}, {0.6, Color{1, 1, 1, 1}}, {1, Color{0.5f, 0.7f, 1, 1}}});

        comet_->SetMotionBlur(true);
        scene_.Add(comet_, {}, 0.2);
        scene_.AnimateOrbit(comet_, Length(1.6), Length(0.45), 1, 16);
        scene_.AnimateEased(comet_, "anchorPoint", {{0.2, At(0.9, 0, 0)}, {1, At(1, 0, 0)}});
    }

    void AddBelt()
    {
        constexpr int kAsteroids = 4;
        constexpr double kQuarter = 1.57079632679489661923;
        for (int i = 0; i < kAsteroids; ++i) {
            const LayerPointer asteroid =
                NewPoint(u"Asteroid " + WideString(1, static_cast<char16_t>(u'1' + i)));
            scene_.Add(asteroid, belt_);
            Moments drift;
            for (int step = 0; step <= 8; ++step) {
                const double angle = i * kQuarter + 0.05 * std::sin(step * kQuarter);
                const double radius = 1.1 + 0.02 * i + 0.015 * std::cos(step * kQuarter);
                drift.push_back(
                    {step / 8.0, At(radius * std::cos(angle), radius * std::sin(angle), 0.01 * (step % 3))});
            }
            scene_.AnimateEased(asteroid, "position", drift);
            const float turn = 90.f * static_cast<float>(i + 1);
            scene_.Animate(asteroid, "rotationX", {{0, 0.f}, {0.5, turn}, {1, 2 * turn}});
            const double size = 60 + 12.5 * i;
            asteroid->Animation().StaticValue("scale") = Scale3D{size, size, 0.5 * size};
        }
        scene_.Add(belt_, sun_);
        scene_.Animate(belt_, "rotationZ", {{0, 0.f}, {1, 90.f}});
        belt_->SetLocked(true);
    }

    void AddSun()
    {
        scene_.Add(sun_, {});
        scene_.Animate(sun_, "rotationZ", {{0, 0.f}, {1, 120.f}});
        Moments pulse;
        for (int i = 0; i <= 6; ++i) {
            const double size = i % 2 == 0 ? 100 : 104.5;
            pulse.push_back({i / 6.0, Scale3D{size, size, size}});
        }
        scene_.AnimateEased(sun_, "scale", pulse);
        sun_->Animation().Expression("rotationX") = "wiggle(0.5, 2)";
    }

    Scene scene_;
    CompositionPointer composition_;
    int height_;
    LayerPointer rig_;
    LayerPointer sun_;
    LayerPointer planet_;
    LayerPointer moon_;
    LayerPointer comet_;
    LayerPointer belt_;
};

/// Keeps both sides of the link between an asset and its folder.
void Put(Project &project, const std::shared_ptr<AbstractAsset> &asset, BinFolder &folder)
{
    project.Assets().All().Add(asset);
    folder.Assets().Add(asset);
    asset->SetParentFolderID(folder.ID());
}

void PutFolder(const std::shared_ptr<BinFolder> &folder, BinFolder &parent)
{
    parent.Folders().Add(folder);
    folder->SetParentFolderID(parent.ID());
}

void AddBackgrounds(Project &project, const AudioVideoSettings &format)
{
    const auto backgrounds = BinFolder::Create(u"Backgrounds");
    const auto spare = BinFolder::Create(u"Spare");
    PutFolder(backgrounds, project.Assets().Bin());
    PutFolder(spare, *backgrounds);
    backgrounds->SetExpanded(true);
    Put(project,
        SolidAsset::Create(u"Deep Space", Color{0.01f, 0.01f, 0.04f, 1}, format.Width(), format.Height(),
                           format.PixelAspectRatio()),
        *backgrounds);
    Put(project,
        SolidAsset::Create(u"Nebula", Color{0.2f, 0.05f, 0.25f, 1}, format.Width(), format.Height(),
                           format.PixelAspectRatio()),
        *spare);
}

void AddMetadata(Project &project, const CompositionAsset &composition)
{
    const kytl::KyID component =
        kytl::KyID::FromString(std::string_view("5f0c1f3e-7a52-4c7e-9a0b-2f5d7c9e4b11"));
    ProjectMetadata &metadata = project.Metadata();
    metadata.SetBooleanValue(component, 0, true);
    metadata.SetIntegerValue(component, 0, composition.Settings().FrameCount());
    metadata.SetFloatValue(component, 0, 1.25f);
    metadata.SetKyIDValue(component, 0, composition.ID());
    metadata.SetStringValue(component, 0, u"Made by \"marlet new\"");
}

void ConfigureTimeline(CompositionAsset &composition)
{
    const int frameCount = composition.Settings().FrameCount();
    composition.SetCurrentTimeIndicator(frameCount / 4);
    composition.SetInPoint(frameCount / 10);
    composition.SetTimelineZoom(0.5);
    composition.RenderSettings().SetFogEnabled(true);
    composition.RenderSettings().SetFogColor({0.02f, 0.02f, 0.06f, 1});
}

} // namespace

std::shared_ptr<Project> MakeExampleProject(AudioVideoSettings::Preset preset, int frameCount)
{
    const auto project = Project::Create(Plugins());
    project->SetName(u"Orbit");
    const auto composition = CompositionAsset::Create(u"Orbit", preset, frameCount);
    ConfigureTimeline(*composition);
    Orbit(composition).Build();
    Put(*project, composition, project->Assets().Bin());
    AddBackgrounds(*project, composition->Settings());
    AddMetadata(*project, *composition);
    return project;
}

} // namespace marlet::tool
