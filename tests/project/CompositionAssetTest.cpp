#include "Loading.h"

#include <tests/support/Setters.h>
#include <tests/support/TestPlugins.h>

#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/CompositionRenderSettings.h>
#include <marlet/project/ProjectTextureImageCache.h>
#include <marlet/project/SolidAsset.h>

#include <gtest/gtest.h>

#include <limits>

using namespace marlet::project;
using marlet::test::ExpectStored;

namespace
{

using Span = std::pair<int, int>;

std::shared_ptr<CompositionAsset> Composition(int frameCount)
{
    return CompositionAsset::Create(u"Shot", AudioVideoSettings::Preset::Hd720At25, frameCount);
}

template <class Layer>
std::shared_ptr<Layer> Add(CompositionAsset &composition, std::shared_ptr<Layer> layer, Span span)
{
    layer->SetStartFrame(span.first);
    layer->SetEndFrame(span.second);
    layer->SetParentComposition(composition.ID());
    composition.Layers().Add(layer);
    return layer;
}

std::shared_ptr<PointLayer> AddPoint(CompositionAsset &composition, Span span = {0, 10})
{
    return Add(composition, PointLayer::Create(u"point"), span);
}

} // namespace

TEST(CompositionAsset, StartsWithTheLengthAndTheDefaultsOfItsKind)
{
    const auto composition = Composition(250);
    EXPECT_FALSE(composition->ID().IsNull());
    EXPECT_TRUE(composition->ParentFolderID().IsNull());
    EXPECT_EQ(composition->Name(), u"Shot");
    EXPECT_EQ(std::tuple(composition->Width(), composition->Height(), composition->Settings().FrameCount()),
              std::tuple(1280, 720, 250));
    EXPECT_EQ(
        std::tuple(composition->CurrentTimeIndicator(), composition->InPoint(), composition->OutPoint()),
        std::tuple(0, 0, 250));
    EXPECT_EQ(std::tuple(composition->TimelineZoom(), composition->SplitterPosition()), std::tuple(0.0, 440));
    EXPECT_EQ(composition->TimelineTimeFormat(), TimeFormat{1000});
    EXPECT_EQ(composition->TimelineSnapMode(), SnapMode{1000});
    EXPECT_TRUE(composition->Layers().IsEmpty() && composition->Instances().IsEmpty());
    EXPECT_TRUE(composition->HasAudio() && composition->HasVideo() && !composition->IsOffline());
    const CompositionRenderSettings &settings = composition->RenderSettings();
    EXPECT_EQ(std::tuple(settings.FogEnabled(), settings.FogNearDistance(), settings.FogFarDistance(),
                         settings.FogDensity(), settings.FogFalloff()),
              std::tuple(false, 900.f, 2000.f, 1.f, CompositionRenderSettings::FalloffType{0}));
    EXPECT_EQ(settings.FogColor(), (kytl::KyColorRGBA_32f{0, 0, 0, 1}));
    EXPECT_EQ(std::tuple(settings.MotionBlurEnabled(), settings.ShutterAngle(), settings.ShutterPhase()),
              std::tuple(true, 180.f, -90.f));
}

TEST(CompositionAsset, StoresWhatItIsTold)
{
    using Asset = CompositionAsset;
    const auto composition = Composition(250);
    Asset &c = *composition;
    ExpectStored("name", c, &Asset::Name, &Asset::SetName, WideString(u"Other"));
    ExpectStored("playhead", c, &Asset::CurrentTimeIndicator, &Asset::SetCurrentTimeIndicator, -7);
    ExpectStored("in", c, &Asset::InPoint, &Asset::SetInPoint, 7);
    ExpectStored("out", c, &Asset::OutPoint, &Asset::SetOutPoint, -5);
    ExpectStored("zoom", c, &Asset::TimelineZoom, &Asset::SetTimelineZoom, 1.5);
    ExpectStored("splitter", c, &Asset::SplitterPosition, &Asset::SetSplitterPosition, 9);
    ExpectStored("format", c, &Asset::TimelineTimeFormat, &Asset::SetTimelineTimeFormat, TimeFormat{2});
    ExpectStored("snap", c, &Asset::TimelineSnapMode, &Asset::SetTimelineSnapMode, SnapMode{3});
    c.SetInPoint(-5);
    EXPECT_EQ(c.InPoint(), 0);

    using Solid = SolidAsset;
    const auto solid = Solid::Create(u"", {}, 1, 1, PAR::Square);
    ExpectStored("colour", *solid, &Solid::Color, &Solid::SetColor, kytl::KyColorRGBA_32f{1, 2, 3, 4});
    ExpectStored("width", *solid, &Solid::Width, &Solid::SetWidth, 2);
    ExpectStored("height", *solid, &Solid::Height, &Solid::SetHeight, 3);
    ExpectStored("pixels", *solid, &Solid::PixelAspectRatio, &Solid::SetPixelAspectRatio, PAR::PalWide);
}

TEST(CompositionAsset, LooksThroughTheFirstVisibleCameraOfAFrame)
{
    const auto composition = Composition(100);
    AddPoint(*composition);
    EXPECT_FALSE(composition->Is3D());
    const auto addCamera = [&](Span span) {
        return Add(*composition, CameraLayer::Create(u"camera", 1, 1000, 1000, 0), span);
    };
    const auto hidden = addCamera({0, 100});
    hidden->SetVisible(false);
    EXPECT_TRUE(composition->Is3D());
    EXPECT_EQ(composition->ActiveCameraLayer(5), nullptr);

    const auto first = addCamera({10, 20});
    const auto second = addCamera({15, 30});
    EXPECT_EQ(composition->ActiveCameraLayer(9), nullptr);
    EXPECT_EQ(composition->ActiveCameraLayer(10), first);
    EXPECT_EQ(composition->ActiveCameraLayer(19), first);
    EXPECT_EQ(composition->ActiveCameraLayer(20), second);
    EXPECT_EQ(composition->ActiveCameraLayer(30), nullptr);
}

TEST(CompositionAsset, FindsTheEditsAroundAFrame)
{
    constexpr int kLowest = std::numeric_limits<int>::min();
    constexpr int kHighest = std::numeric_limits<int>::max();
    const std::vector<Span> one{{10, 40}};
    const std::vector<Span> two{{10, 40}, {20, 60}};
    struct {
        const char *name;
        std::vector<Span> spans;
        int frame, previous, next;
    } const cases[] = {
        {"at the start", two, 0, 0, 10},        {"at the end", two, 100, 60, 100},
        {"inside both", two, 30, 20, 40},       {"on a start", one, 10, 0, 40},
        {"on an end", one, 40, 10, 100},        {"at both ends of int", {{kLowest, kHighest}}, 0, 0, 100},
        {"far behind", two, kHighest, 60, 100}, {"far before", two, kLowest, 0, 10},
    };
    for (const auto &test : cases) {
        SCOPED_TRACE(test.name);
        const auto composition = Composition(100);
        for (const Span &span : test.spans)
            AddPoint(*composition, span);
        EXPECT_EQ(composition->PreviousEdit(test.frame), test.previous);
        EXPECT_EQ(composition->NextEdit(test.frame), test.next);
    }
}

TEST(CompositionAsset, ClonesLayersThatReferToOneAnother)
{
    const auto composition = Composition(100);
    composition->SetParentFolderID(kytl::KyID::Generate());
    // The child stands before its parent.
    const auto child = AddPoint(*composition);
    const auto parent = AddPoint(*composition);
    child->SetParentLayer(parent);

    const auto clone = CompositionAsset::Copy(composition);
    EXPECT_NE(clone->ID(), composition->ID());
    EXPECT_EQ(clone->ParentFolderID(), composition->ParentFolderID());
    ASSERT_EQ(clone->Layers().Count(), 2u);
    const auto childCopy = clone->Layers().front();
    const auto parentCopy = clone->Layers().back();
    EXPECT_NE(childCopy->ID(), child->ID());
    EXPECT_EQ(childCopy->ParentLayerID(), parentCopy->ID());
    EXPECT_EQ(childCopy->ParentCompositionID(), clone->ID());
    EXPECT_EQ(child->ParentLayerID(), parent->ID());

    const auto project = Project::Create(nullptr);
    project->Assets().All().Add(clone);
    EXPECT_EQ(childCopy->ParentLayer(project->Assets()), parentCopy);

    clone->Settings().SetWidth(1);
    EXPECT_EQ(composition->Width(), 1280);
}

TEST(CompositionAsset, ReadsIntoACompositionThatHasLayers)
{
    const NoEffects noEffects;
    ProjectTextureImageCache textures;
    const auto composition = Composition(100);
    const auto kept = AddPoint(*composition);
    const WideString written = composition->Serialize(textures);

    const auto other = Composition(7);
    AddPoint(*other);
    AddPoint(*other);
    other->Deserialize(written, nullptr, noEffects, textures);
    EXPECT_EQ(other->Serialize(textures), written);
    EXPECT_NE(other->FindLayerByID(kept->ID()), nullptr);
}

TEST(CompositionAsset, StaysAsItWasWhenAPluginFails)
{
    const auto plugin = std::make_shared<marlet::test::TestPlugin>();
    const auto manager = std::make_shared<marlet::test::TestPluginManager>();
    manager->plugins = {plugin};
    const NoEffects noEffects;
    ProjectTextureImageCache textures;
    const auto composition = Composition(100);
    AddPoint(*composition);
    Add(*composition, GradeLayer::Create(u"grade", 1, 1), {0, 10})
        ->Effects()
        .Add(EffectInstance::Create(plugin));
    const WideString written = composition->Serialize(textures);

    const auto other = Composition(7);
    const auto kept = AddPoint(*other);
    const WideString before = other->Serialize(textures);
    plugin->failing = "created";
    EXPECT_THROW(other->Deserialize(written, manager, noEffects, textures), std::domain_error);
    EXPECT_EQ(other->Serialize(textures), before);
    EXPECT_EQ(other->FindLayerByID(kept->ID()), kept);
    EXPECT_THROW(CompositionAsset::Copy(composition), std::domain_error);
    EXPECT_EQ(composition->Serialize(textures), written);
    EXPECT_EQ(plugin->living, 1);
}
