#include "TitlesProject.h"

#include "document/Scene.h"
#include "plugins/Displacement.h"
#include "plugins/PluginManager.h"
#include "plugins/Plugins.h"
#include "plugins/Ribbon.h"

#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectFile.h>
#include <marlet/project/ProjectTextureImageCache.h>

#include <cmath>

namespace marlet::tool
{

using namespace project;

namespace
{

using Color = kytl::KyColorRGBA_32f;
using Point = kytl::matl::KyPoint<2, float>;
using Vector = kytl::matl::KyVector<2, float>;
using FormatPointer = std::shared_ptr<TextLayer::Format>;

constexpr Color kWhite{1, 1, 1, 1};
constexpr Color kGold{0.95f, 0.75f, 0.3f, 1};
constexpr Color kInk{0.05f, 0.05f, 0.1f, 1};
constexpr TextLayer::JustificationType kLeft{0};
constexpr TextLayer::JustificationType kCentred{1};
constexpr TextLayer::JustificationType kRight{2};

FormatPointer Format(TextLayer &layer, const WideString &family, const WideString &style, int size,
                     const Color &fill, float strokeWidth = 0, float tracking = 0)
{
    return layer.TextFormat(family, style, size, fill, kInk, strokeWidth, tracking,
                            static_cast<float>(size) * 6 / 5);
}

void Append(TextLayer &layer, const WideString &text, const FormatPointer &format)
{
    for (const char16_t unit : text)
        layer.Text().Append(TextLayer::CreateCharToken(unit, format, {}));
}

void EndParagraph(TextLayer &layer, TextLayer::JustificationType justification)
{
    layer.Text().Append(TextLayer::CreateParagraphToken(justification, {}));
}

/// Adds layers to one composition, and to layers what hangs on them.
class TitleScene
{
public:
    explicit TitleScene(const CompositionPointer &composition)
        : scene_(composition),
          composition_(composition),
          width_(composition->Settings().Width()),
          height_(composition->Settings().Height())
    {
    }

protected:
    std::shared_ptr<TextLayer> AddText(const WideString &name)
    {
        auto layer = TextLayer::Create(name, width_ * 3 / 4, height_ / 4);
        scene_.Add(layer, {});
        return layer;
    }

    std::shared_ptr<GradeLayer> AddGrade(const WideString &name)
    {
        auto layer = GradeLayer::Create(name, width_, height_);
        scene_.Add(layer, {});
        return layer;
    }

    template <class Layer>
    std::shared_ptr<EffectInstance> AddEffect(const std::shared_ptr<Layer> &layer, const kytl::KyID &plugin)
    {
        auto effect = EffectInstance::Create(Plugins()->FindPlugin(plugin));
        effect->SetParent(layer->ID(), composition_->ID());
        layer->Effects().Add(effect);
        return effect;
    }

    /// A closed outline of smooth points on an ellipse that fills three fifths of the frame.
    template <class Layer>
    std::shared_ptr<Mask> AddMask(const std::shared_ptr<Layer> &layer, const WideString &name, int points)
    {
        constexpr double kTurn = 6.28318530717958647692;
        auto mask = Mask::Create(name);
        mask->SetParentLayerID(layer->ID());
        MotionPath &path = mask->Path();
        for (int i = 0; i < points; ++i) {
            const double angle = kTurn * i / points;
            const Vector out{Share(-0.13 * std::sin(angle), width_), Share(0.13 * std::cos(angle), height_)};
            path.Points().Add(PathPoint::Create(Share(0.3 * std::cos(angle), width_),
                                                Share(0.3 * std::sin(angle), height_), path.ID()));
            PropertyManager &handles = path.Points().back()->Animation();
            handles.StaticValue("rightHandle") = out;
            handles.StaticValue("leftHandle") = Vector{-out.X, -out.Y};
            path.Points().back()->SetLinear(false);
        }
        path.SetClosed(true);
        layer->Masks().Add(mask);
        return mask;
    }

    /// Every point moves away from the middle and comes back.
    void Breathe(const AbstractLayer &layer, Mask &mask, float swell) const
    {
        for (const auto &point : mask.Path().Points()) {
            const auto rest = boost::get<Point>(point->Animation().StaticValue("position"));
            KeyFrameList &keys = point->Animation().KeyFrames("position");
            for (const double at : {0.0, 0.5, 1.0}) {
                const float factor = at == 0.5 ? swell : 1;
                const KeyFrame key(scene_.Time(layer, at), Point{rest.X * factor, rest.Y * factor});
                if (!keys.Exists(key.Time()))
                    keys.Add(key);
            }
        }
    }

    /// To thousandths, which leaves a file that people can read.
    static float Share(double part, int whole)
    {
        return static_cast<float>(std::round(part * whole * 1000) / 1000);
    }

    Scene scene_;
    CompositionPointer composition_;
    int width_;
    int height_;
};

/// The opening: titles in several scripts over a drifting cloud, a ribbon round a point in space, and at last
/// the credits in a window.
class Opening : public TitleScene
{
public:
    using TitleScene::TitleScene;

    void Build(ProjectTextureImageCache &textures, const std::string &texture,
               const CompositionPointer &credits)
    {
        AddWindow(credits);
        const auto title = AddTitle();
        AddScripts(title);
        AddVignette();
        AddHeat(title);
        AddRibbon(textures, texture);
    }

private:
    /// In the upper right corner, at half the size.
    void AddWindow(const CompositionPointer &credits)
    {
        const auto window = AssetLayer::Create(credits);
        scene_.Add(window, {}, 0.6);
        window->Animation().StaticValue("scale") = Scale3D{50, 50, 100};
        window->Animation().StaticValue("position") =
            kytl::matl::KyPoint<3, float>{Share(0.22, width_), Share(0.22, height_), 0};
        scene_.AnimateEased(window, "opacity", {{0.6, 0.f}, {0.7, 100.f}});
        AddMask(window, u"Pane", 4);
        AddEffect(window, kDropShadowID);
    }

    std::shared_ptr<TextLayer> AddTitle()
    {
        const auto title = AddText(u"Title");
        const auto large = Format(*title, u"DejaVu Serif", u"Bold", height_ / 8, kGold, 2, 40);
        const auto small = Format(*title, u"DejaVu Sans", u"Book", height_ / 24, kWhite);
        // A clef and a key lie beyond the first 65,536 characters.
        Append(*title, u"The Long Way Home \U0001D11E", large);
        EndParagraph(*title, kCentred);
        Append(*title, u"a film in four scripts ", small);
        Append(*title, u"\U0001F511", large);
        EndParagraph(*title, kCentred);

        AddEffect(title, kDropShadowID)->SetName(u"Soft Shadow");
        const auto lit = AddEffect(title, kDropShadowID);
        lit->SetName(u"Lamp");
        lit->Properties().StaticValue("pointLight") = true;
        lit->NotifyPropertyChanged("pointLight");
        lit->Properties().StaticValue("color") = Color{0.3f, 0.1f, 0, 0.8f};
        scene_.AnimateEased(title, "opacity", {{0, 0.f}, {0.1, 100.f}, {0.9, 100.f}, {1, 0.f}});
        Breathe(*title, *AddMask(title, u"Reveal", 8), 1.8f);
        return title;
    }

    void AddScripts(const LayerPointer &title)
    {
        const auto scripts = AddText(u"Scripts");
        scripts->SetParentLayer(title);
        const auto plain = Format(*scripts, u"Noto Sans", u"Regular", height_ / 20, kWhite);
        const auto bold = Format(*scripts, u"Noto Sans", u"Bold", height_ / 20, kGold);
        const auto han = Format(*scripts, u"Noto Sans CJK JP", u"Medium", height_ / 18, kWhite, 1);
        Append(*scripts, u"\u05D4\u05D3\u05E8\u05DA ", plain);
        Append(*scripts, u"\u05D4\u05D1\u05D9\u05EA\u05D4", bold);
        EndParagraph(*scripts, kRight);
        Append(*scripts, u"\u0627\u0644\u0637\u0631\u064A\u0642 \u0627\u0644\u0637\u0648\u064A\u0644", plain);
        EndParagraph(*scripts, kRight);
        Append(*scripts, u"\u5E30\u308A\u9053 \U00020BB7", han);
        EndParagraph(*scripts, kLeft);
        Append(*scripts, u"\u0394\u03C1\u03CC\u03BC\u03BF\u03C2", plain);
        AddEffect(scripts, kGaussianBlurID)->SetEnabled(false);
    }

    void AddVignette()
    {
        const auto grade = AddGrade(u"Vignette");
        const auto levels = AddEffect(grade, kLevelsID);
        levels->Properties().StaticValue("rgbOutputWhite") = 160;
        levels->Properties().StaticValue("redGamma") = 1.1f;
        const auto edge = AddMask(grade, u"Edge", 12);
        edge->SetInverted(true);
        edge->Animation().StaticValue("feather") = Share(0.2, height_);
        const auto corner = AddMask(grade, u"Corner", 5);
        corner->SetVisible(false);
        Breathe(*grade, *corner, 0.5f);
    }

    /// The title flickers as over a fire, by the levels of the title itself.
    void AddHeat(const LayerPointer &map)
    {
        const auto grade = AddGrade(u"Heat");
        const auto shift = AddEffect(grade, kDisplacementID);
        shift->SetName(u"Shimmer");
        shift->Properties().StaticValue("map") = map->ID();
        KeyFrameList &amount = shift->Properties().KeyFrames("vertical");
        amount.Add(KeyFrame(0, 0.f));
        if (const int end = scene_.Time(*grade, 1); end > 0)
            amount.Add(KeyFrame(end, 35.f));
        Displacement::Response response;
        for (std::size_t level = 0; level < response.size(); ++level) {
            const double x = static_cast<double>(level) / 127.5 - 1;
            response[level] = static_cast<unsigned char>(std::lround(127.5 * (1 + x * x * x)));
        }
        std::static_pointer_cast<Displacement>(shift->Plugin())->SetResponse(*shift, response);
        AddEffect(grade, kColorBalanceID)->Properties().StaticValue("highlightsHue") = 30.f;
    }

    void AddRibbon(ProjectTextureImageCache &textures, const std::string &texture)
    {
        const LayerPointer rig = PointLayer::Create(u"Rig");
        const LayerPointer spindle = PointLayer::Create(u"Spindle");
        for (const LayerPointer &point : {rig, spindle})
            point->SetDimensions(LayerDimensions::ThreeD);
        const auto ribbon = std::make_shared<Ribbon>();
        ribbon->Properties().StaticValue(Ribbon::kFollowed) = spindle->ID();
        ribbon->Properties().StaticValue("radius") = Share(0.3, height_);
        if (!texture.empty())
            ribbon->SetTexture(textures.CacheItem(FromUtf8(texture), texture[0] != '/'), texture[0] != '/');
        scene_.Add(Effect3DLayer::Create(ribbon, u"Ribbon"), {});
        scene_.Add(spindle, rig);
        scene_.Animate(spindle, "rotationY", {{0, 0.f}, {1, 720.f}});
        scene_.Add(rig, {});
        scene_.AnimateEased(rig, "rotationZ", {{0, -10.f}, {1, 10.f}});
        scene_.Add(LightLayer::Create(u"Key Light", LightLayer::LightType(1)), rig);
        const auto width = static_cast<float>(width_);
        scene_.Add(CameraLayer::Create(u"Camera", 5.6f, width, width, 100), {});
    }
};

/// The credits, which the opening shows in a window.
class Credits : public TitleScene
{
public:
    using TitleScene::TitleScene;

    void Build()
    {
        const auto roll = AddText(u"Roll");
        roll->SetMinY(-2 * Share(1, height_));
        const auto role = Format(*roll, u"DejaVu Sans", u"Oblique", height_ / 30, kWhite);
        const auto name = Format(*roll, u"DejaVu Sans", u"Bold", height_ / 24, kGold);
        const std::pair<const char16_t *, const char16_t *> lines[] = {
            {u"Written by ", u"I\u00F1\u00E8s \u00C5str\u00F6m"},
            {u"Music ", u"\u0414\u0430\u0440\u044C\u044F \U0001D15E"},
            {u"Titles ", u"\u05E0\u05D5\u05E2\u05D4"},
        };
        for (const auto &[what, who] : lines) {
            Append(*roll, what, role);
            Append(*roll, who, name);
            EndParagraph(*roll, kCentred);
        }
        const kytl::matl::KyPoint<3, float> below{0, -Share(1, height_), 0};
        const kytl::matl::KyPoint<3, float> above{0, Share(1, height_), 0};
        scene_.Animate(roll, "position", {{0, below}, {1, above}});

        const auto blur = AddEffect(AddGrade(u"Blur"), kGaussianBlurID);
        blur->Properties().StaticValue("direction") = 2;
        blur->Properties().StaticValue("radius") = 3.5f;
    }
};

CompositionPointer AddComposition(Project &project, BinFolder &folder, const WideString &name,
                                  AudioVideoSettings::Preset preset, int frameCount)
{
    CompositionPointer composition = CompositionAsset::Create(name, preset, frameCount);
    project.Assets().All().Add(composition);
    folder.Assets().Add(composition);
    composition->SetParentFolderID(folder.ID());
    return composition;
}

} // namespace

std::shared_ptr<Project> MakeTitlesProject(AudioVideoSettings::Preset preset, int frameCount,
                                           const std::string &file, const std::string &texture)
{
    const auto project = Project::Create(Plugins());
    project->SetName(u"Titles");
    ProjectTextureImageCache &textures = project->TextureImageCache();
    textures.SetTexturesFolderPath(ProjectFile::FolderOf(file));
    BinFolder &root = project->Assets().Bin();
    const auto folder = BinFolder::Create(u"Titles");
    folder->SetParentFolderID(root.ID());
    root.Folders().Add(folder);
    const auto opening = AddComposition(*project, *folder, u"Opening", preset, frameCount);
    const auto credits = AddComposition(*project, root, u"Credits", preset, frameCount);
    Opening(opening).Build(textures, texture, credits);
    Credits(credits).Build();
    FillInstances(*project);
    return project;
}

} // namespace marlet::tool
