#include "ShowcaseProject.h"

#include "ClipProject.h"
#include "CutProject.h"
#include "ExampleProject.h"
#include "document/Document.h"
#include "document/MediaSource.h"
#include "output/Failure.h"
#include "plugins/PluginManager.h"
#include "plugins/Plugins.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>
#include <marlet/tracking/Tracker.h>

#include <cerrno>
#include <filesystem>

namespace marlet::tool
{

using namespace project;

namespace
{

using AssetPointer = std::shared_ptr<AbstractAsset>;
using Point = kytl::matl::KyPoint<3, float>;

WideString AbsolutePath(const std::string &path)
{
    return FromUtf8(std::filesystem::absolute(path).lexically_normal().string());
}

void Put(Project &project, const AssetPointer &asset)
{
    BinFolder &folder = project.Assets().Bin();
    project.Assets().All().Add(asset);
    folder.Assets().Add(asset);
    asset->SetParentFolderID(folder.ID());
}

/// The assets of another project.
void TakeOver(Project &project, const Project &other)
{
    for (const AssetPointer &asset : other.Assets().All())
        Put(project, asset);
}

/// Fills one composition with layers, the first in front.
class Studio
{
public:
    Studio(const ProjectPointer &project, const ShowcaseOptions &options)
        : project_(project),
          composition_(CompositionAsset::Create(u"Studio", options.preset, options.frameCount)),
          width_(static_cast<float>(composition_->Settings().Width())),
          height_(static_cast<float>(composition_->Settings().Height()))
    {
        Put(*project_, composition_);
    }

    void Build(const ShowcaseOptions &options)
    {
        AddCamera();
        AddTitle();
        AddPicture(options.picture);
        AddClip(options.clip);
        AddFloor();
    }

private:
    template <class Layer> std::shared_ptr<Layer> Add(std::shared_ptr<Layer> layer)
    {
        layer->SetParentComposition(composition_);
        layer->SetEndFrame(composition_->Settings().FrameCount());
        composition_->Layers().Add(layer);
        return layer;
    }

    std::shared_ptr<AssetLayer> AddInSpace(const AssetPointer &asset, const Point &position, double scale)
    {
        const auto layer = Add(AssetLayer::Create(asset));
        layer->SetDimensions(LayerDimensions::ThreeD);
        layer->Animation().StaticValue("position") = position;
        layer->Animation().StaticValue("scale") = Scale3D{scale, scale, scale};
        return layer;
    }

    void AddEffect(AssetLayer &layer, const kytl::KyID &plugin)
    {
        auto effect = EffectInstance::Create(Plugins()->FindPlugin(plugin));
        effect->SetParent(layer.ID(), composition_->ID());
        layer.Effects().Add(effect);
    }

    /// Moves from one side to the other and keeps looking at the middle.
    void AddCamera()
    {
        const float zoom = CameraLayer::CalculateLensZoom(
            CameraLayer::HorizontalFieldOfView(CameraLayer::Lens::Focal35), static_cast<int>(width_), 1);
        const auto camera = Add(CameraLayer::Create(u"Camera", 2, zoom, zoom, 0));
        camera->SetAutoOrientation(AutoOrient::TowardsTarget);
        KeyFrameList &path = camera->Animation().KeyFrames("position");
        path.Set(0, Point{-width_ * 0.3f, height_ * 0.2f, zoom * 1.1f});
        path.Set(5000, Point{width_ * 0.05f, height_ * 0.3f, zoom});
        path.Set(10000, Point{width_ * 0.35f, height_ * 0.1f, zoom * 1.1f});
        const auto light = Add(LightLayer::Create(u"Lamp", LightLayer::LightType{}));
        light->Animation().StaticValue("position") = Point{width_ * 0.3f, height_ * 0.4f, zoom * 0.2f};
    }

    /// The opening as a screen of its own.
    void AddTitle()
    {
        const auto layer = AddInSpace(FindComposition(*project_, "Opening"), {0, height_ * 0.28f, 0}, 40);
        layer->SetName(u"Title Screen");
        AddEffect(*layer, kDropShadowID);
    }

    void AddPicture(const std::string &path)
    {
        const auto image = ImageAsset::Create(AbsolutePath(path));
        if (image->IsOffline())
            throw Failure(path, SystemMessage(ENOENT));
        if (image->Width() == 0)
            throw Failure(path, "Not an image that can be read");
        Put(*project_, image);
        constexpr double kShare = 0.2; // of the frame's width
        const double scale = 100 * kShare * static_cast<double>(width_) / image->Width();
        const auto layer = AddInSpace(image, {width_ * 0.3f, -height_ * 0.12f, width_ * 0.05f}, scale);
        layer->SetName(u"Picture");
        layer->Animation().StaticValue("rotationY") = -25.f;
    }

    void AddClip(const std::string &path)
    {
        const auto media = project_->Media().CreateMediaAsset(AbsolutePath(path));
        RequireUsable(*media);
        const ClipProject clip = MakeClipProject(project_, media);
        AddTracker(*clip.layer, {});
        const auto layer = AddInSpace(media, {-width_ * 0.18f, -height_ * 0.12f, 0}, 120);
        layer->SetName(u"Clip");
        layer->Masks().Add(
            RoundMask(*layer, static_cast<float>(media->Width()), static_cast<float>(media->Height())));
        AddEffect(*layer, kColorBalanceID);
        const std::shared_ptr<Tracker> tracker = AddTracker(*layer, {});
        tracker->SetDestinationLayerID(composition_->Layers().front()->ID());
    }

    /// A closed outline with round corners over four fifths of the picture.
    static std::shared_ptr<Mask> RoundMask(const AssetLayer &layer, float width, float height)
    {
        constexpr float kExtent = 0.4f;
        constexpr float kHandle = 0.22f;
        auto mask = Mask::Create(u"Rounded");
        mask->SetParentLayerID(layer.ID());
        MotionPath &path = mask->Path();
        for (const auto &[x, y] :
             {std::pair(0.f, 1.f), std::pair(1.f, 0.f), std::pair(0.f, -1.f), std::pair(-1.f, 0.f)}) {
            path.Points().Add(PathPoint::Create(x * kExtent * width, y * kExtent * height, path.ID()));
            PropertyManager &handles = path.Points().back()->Animation();
            handles.StaticValue("rightHandle") =
                kytl::matl::KyVector<2, float>{y * 2 * kHandle * width, -x * 2 * kHandle * height};
            handles.StaticValue("leftHandle") =
                kytl::matl::KyVector<2, float>{-y * 2 * kHandle * width, x * 2 * kHandle * height};
            path.Points().back()->SetLinear(false);
        }
        path.SetClosed(true);
        mask->Animation().StaticValue("feather") = 6.f;
        return mask;
    }

    void AddFloor()
    {
        const auto solid = SolidAsset::Create(u"Floor", {0.16f, 0.18f, 0.24f, 1}, static_cast<int>(width_),
                                              static_cast<int>(width_), PAR::Square);
        Put(*project_, solid);
        const auto floor = AddInSpace(solid, {0, -height_ * 0.45f, 0}, 200);
        floor->Animation().StaticValue("orientation") = Orientation3D{90, 0, 0};
        const auto backdrop =
            SolidAsset::Create(u"Backdrop", {0.05f, 0.06f, 0.1f, 1}, static_cast<int>(width_),
                               static_cast<int>(height_), PAR::Square);
        Put(*project_, backdrop);
        Add(AssetLayer::Create(backdrop));
    }

    ProjectPointer project_;
    CompositionPointer composition_;
    float width_;
    float height_;
};

} // namespace

std::shared_ptr<Project> MakeShowcaseProject(const ShowcaseOptions &options)
{
    const ProjectPointer project = MakeCutProject(options.preset, options.frameCount, options.file);
    TakeOver(*project, *MakeExampleProject(options.preset, options.frameCount));
    Studio(project, options).Build(options);
    project->SetName(u"Showcase");
    FillInstances(*project);
    return project;
}

} // namespace marlet::tool
