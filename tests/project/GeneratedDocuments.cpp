#include "GeneratedDocuments.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/CompositionRenderSettings.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/ProjectMetadata.h>
#include <marlet/project/ProjectSettings.h>
#include <marlet/project/SolidAsset.h>

#include <bit>
#include <random>

using namespace marlet::project;

namespace
{

class Noise
{
public:
    explicit Noise(unsigned int seed) : generator_(seed) {}

    int Below(int end) { return static_cast<int>(Bits() % static_cast<unsigned int>(end)); }
    bool Bool() { return Below(2) == 1; }
    int Int() { return static_cast<int>(Bits()); }
    /// Any bits that make a number that is equal to itself.
    float Float()
    {
        const float value = std::bit_cast<float>(Bits());
        return value == value ? value : 0.1f;
    }
    double Double()
    {
        const double value = std::bit_cast<double>(std::uint64_t(Bits()) << 32 | Bits());
        return value == value ? value : 0.1;
    }
    template <class Enum> Enum Any() { return static_cast<Enum>(Int()); }
    kytl::KyID ID() { return {Bits(), std::uint16_t(Bits()), std::uint16_t(Bits()), {1, 2, 3}}; }
    kytl::KyColorRGBA_32f Color() { return {Float(), Float(), Float(), Float()}; }

    WideString Text()
    {
        static const WideString kPieces[] = {u" ",    u"\t",     u"\n",     u"\r",        u"<", u">",
                                             u"&",    u"\"",     u"'",      u"]]>",       u"a", u"Z",
                                             u"&lt;", u"\u00e9", u"\u4e2d", u"\U0001f3ac"};
        WideString text;
        for (int length = Below(8); length > 0; --length)
            text += kPieces[Below(std::size(kPieces))];
        return text;
    }

    /// One of the 14 alternatives. A scale is read through float.
    PropertyValue Value(int alternative)
    {
        const PropertyValue values[] = {Int(),
                                        static_cast<unsigned int>(Int()),
                                        static_cast<unsigned char>(Int()),
                                        Float(),
                                        Double(),
                                        Bool(),
                                        Scale3D{Float(), Float(), Float()},
                                        Orientation3D{Float(), Float(), Float()},
                                        Color(),
                                        kytl::matl::KyPoint<2, float>{Float(), Float()},
                                        kytl::matl::KyPoint<3, float>{Float(), Float(), Float()},
                                        kytl::matl::KyVector<2, float>{Float(), Float()},
                                        kytl::matl::KyVector<3, float>{Float(), Float(), Float()},
                                        ID()};
        return values[alternative];
    }

private:
    std::uint32_t Bits() { return static_cast<std::uint32_t>(generator_()); }

    std::mt19937 generator_;
};

constexpr int kAlternatives = 14;

void Animate(Noise &noise, KeyFrameList &keys, int alternative)
{
    for (int count = 1 + noise.Below(3); count > 0; --count) {
        KeyFrame key(noise.Int(), noise.Value(alternative));
        key.SetType(static_cast<KeyFrameType>(noise.Below(3)));
        key.SetIncomingPoint({noise.Float(), noise.Float()});
        key.SetOutgoingPoint({noise.Float(), noise.Float()});
        keys.Add(key);
    }
}

void FillLayer(Noise &noise, AbstractLayer &layer, const CompositionAsset &composition)
{
    layer.SetName(noise.Text());
    layer.SetParentComposition(composition.ID());
    layer.SetParentLayer(composition.Layers().IsEmpty() ? noise.ID() : composition.Layers().front()->ID());
    layer.SetStartFrame(noise.Int());
    layer.SetEndFrame(noise.Int());
    layer.SetBlendMode(noise.Any<Blend>());
    layer.SetVisible(noise.Bool());

    PropertyManager &properties = layer.Animation();
    Animate(noise, properties.KeyFrames("position"), 10);
    for (int alternative = 0; alternative < kAlternatives; ++alternative) {
        const std::string name = "extra" + std::to_string(alternative);
        const auto type =
            noise.Bool() ? PropertyManager::Type::Animatable : PropertyManager::Type::NotAnimatable;
        properties.CreateProperty(name.c_str(), noise.Value(alternative), type, nullptr);
        properties.StaticValue(name.c_str()) = noise.Value(alternative);
        properties.Expression(name.c_str()) = ToUtf8(noise.Text());
        Animate(noise, properties.KeyFrames(name.c_str()), alternative);
    }
}

std::shared_ptr<Mask> NoisyMask(Noise &noise)
{
    const auto mask = Mask::Create(noise.Text());
    mask->SetVisible(noise.Bool());
    mask->SetParentLayerID(noise.ID());
    Animate(noise, mask->Animation().KeyFrames("feather"), 3);
    for (int count = 1 + noise.Below(4); count > 0; --count) {
        const auto point = PathPoint::Create(noise.Float(), noise.Float(), noise.ID());
        point->SetLocked(noise.Bool());
        Animate(noise, point->Animation().KeyFrames("position"), 9);
        mask->Path().Points().Add(point);
    }
    mask->Path().SetClosed(noise.Bool());
    return mask;
}

std::shared_ptr<GradeLayer> NoisyGrade(Noise &noise)
{
    auto grade = GradeLayer::Create(u"", noise.Int(), noise.Int());
    grade->SetDimensions(static_cast<LayerDimensions>(noise.Below(2)));
    grade->Masks().Add(NoisyMask(noise));
    return grade;
}

std::shared_ptr<TextLayer> NoisyText(Noise &noise)
{
    auto text = TextLayer::Create(u"", noise.Int(), noise.Int());
    text->SetMinX(noise.Float());
    text->SetMaxY(noise.Float());
    for (int run = 0; run < 3; ++run) {
        const auto format = text->TextFormat(noise.Text(), noise.Text(), noise.Int(), noise.Color(),
                                             noise.Color(), noise.Float(), noise.Float(), noise.Float());
        for (const char16_t unit : noise.Text() + u"x")
            text->Text().Append(TextLayer::CreateCharToken(unit, format, noise.ID()));
        text->Text().Append(
            TextLayer::CreateParagraphToken(noise.Any<TextLayer::JustificationType>(), noise.ID()));
    }
    text->Masks().Add(NoisyMask(noise));
    return text;
}

std::shared_ptr<CompositionAsset> NoisyComposition(Noise &noise)
{
    const auto composition =
        CompositionAsset::Create(noise.Text(), AudioVideoSettings::Preset::Ntsc, noise.Int());
    composition->SetCurrentTimeIndicator(noise.Int());
    composition->SetOutPoint(noise.Int());
    composition->SetTimelineZoom(noise.Double());
    composition->SetTimelineSnapMode(noise.Any<SnapMode>());

    AudioVideoSettings &settings = composition->Settings();
    settings.SetWidth(noise.Int());
    settings.SetFrameRate(noise.Double());
    settings.SetPixelAspectRatio(noise.Any<PAR>());

    CompositionRenderSettings &render = composition->RenderSettings();
    render.SetFogEnabled(noise.Bool());
    render.SetFogDensity(noise.Float());
    render.SetFogColor(noise.Color());

    const auto camera = CameraLayer::Create(u"", noise.Float(), noise.Float(), noise.Float(), noise.Float());
    camera->SetDepthOfField(noise.Bool());
    camera->SetFarClip(noise.Float());
    const auto light = LightLayer::Create(u"", noise.Any<LightLayer::LightType>());
    for (const std::shared_ptr<AbstractLayer> &layer : std::initializer_list<std::shared_ptr<AbstractLayer>>{
             camera, light, PointLayer::Create(u""), NoisyGrade(noise), NoisyText(noise)}) {
        FillLayer(noise, *layer, *composition);
        composition->Layers().Add(layer);
    }
    return composition;
}

void FillAssets(Noise &noise, AssetList &list)
{
    const auto solid =
        SolidAsset::Create(noise.Text(), noise.Color(), noise.Int(), noise.Int(), noise.Any<PAR>());
    const auto image = ImageAsset::Create(noise.Text());
    image->SetPixelAspectRatio(noise.Any<PAR>());
    for (const std::shared_ptr<AbstractAsset> &asset :
         std::initializer_list<std::shared_ptr<AbstractAsset>>{solid, image, NoisyComposition(noise)}) {
        list.All().Add(asset);
        const auto folder = BinFolder::Create(noise.Text());
        folder->SetExpanded(noise.Bool());
        folder->Assets().Add(asset);
        BinFolder &parent = list.Bin().Folders().IsEmpty() ? list.Bin() : *list.Bin().Folders()[0];
        folder->SetParentFolderID(parent.ID());
        asset->SetParentFolderID(folder->ID());
        parent.Folders().Add(folder);
    }
}

} // namespace

std::shared_ptr<Project> NoisyProject(unsigned int seed)
{
    Noise noise(seed);
    const auto project = Project::Create(nullptr);
    project->SetName(noise.Text());
    project->Settings().SetColorBitDepth(noise.Any<BPC>());
    FillAssets(noise, project->Assets());
    ProjectMetadata &metadata = project->Metadata();
    for (unsigned int index = 0; index < 3; ++index) {
        metadata.SetBooleanValue(noise.ID(), index, noise.Bool());
        metadata.SetIntegerValue(noise.ID(), index, noise.Int());
        metadata.SetFloatValue(noise.ID(), index, noise.Float());
        metadata.SetKyIDValue(noise.ID(), index, noise.ID());
        metadata.SetStringValue(noise.ID(), index, noise.Text());
    }
    return project;
}
