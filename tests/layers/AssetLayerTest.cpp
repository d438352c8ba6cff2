#include <tests/support/FakeMedia.h>
#include <tests/support/LayerStage.h>
#include <tests/support/LayerTexts.h>
#include <tests/support/MatrixMatchers.h>
#include <tests/support/TestPlugins.h>

#include <marlet/layers/AssetLayer.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/SolidAsset.h>
#include <marlet/tracking/Tracker.h>

#include <gmock/gmock.h>

#include <limits>

namespace marlet::test
{
namespace
{

using Asset = std::shared_ptr<AbstractAsset>;
using LayerPointer = std::shared_ptr<AssetLayer>;

Asset Solid()
{
    return SolidAsset::Create(u"Sky", {}, 100, 50, PAR::Anamorphic2x);
}

/// A layer of an asset of the project.
LayerPointer Show(const LayerStage &stage, const Asset &asset)
{
    stage.project->Assets().All().Add(asset);
    return stage.Add(AssetLayer::Create(asset));
}

LayerPointer Reread(const AbstractLayer &layer, const char *what, const char *by)
{
    return std::static_pointer_cast<AssetLayer>(ReadLayer(Replaced(TextOf(layer), what, by)));
}

TEST(AssetLayer, RemembersWhatItsAssetHasAndOnceHad)
{
    const LayerStage stage;
    const auto layer = Show(stage, Solid());
    const auto read = Reread(*layer, "<AssetHasAudio>0", "<AssetHasAudio>1");
    EXPECT_TRUE(read->HasAudio() && read->HasVideo() && !read->AssetHadAudio() && read->AssetHadVideo());
    ASSERT_NE(read->Asset(stage.Assets()), nullptr);
    EXPECT_FALSE(read->HasAudio() || read->AssetHadAudio());

    const auto typed = Reread(*layer, "<AssetType>2", "<AssetType>3");
    EXPECT_EQ(typed->AssetType(), AssetType::Composition);
    typed->Asset(stage.Assets());
    stage.project->Assets().All().Clear();
    EXPECT_EQ(typed->AssetType(), AssetType::Solid);
    EXPECT_TRUE(typed->HasVideo() && typed->Asset(stage.Assets()) == nullptr);

    FakeMedia clip;
    const auto film = AssetLayer::Create(clip.asset);
    clip.file.audio = nullptr;
    clip.file.video = nullptr;
    Hand(*clip.asset, &clip.file, 0);
    EXPECT_FALSE(film->HasAudio() || film->HasVideo());
    EXPECT_TRUE(film->AssetHadAudio() && film->AssetHadVideo());
}

TEST(AssetLayer, TakesWhatItsAssetAllows)
{
    const auto solid = AssetLayer::Create(Solid());
    const auto nested = AssetLayer::Create(CompositionAsset::Create(u"", AudioVideoSettings::Preset::Pal, 9));
    for (const auto &layer : {solid, nested}) {
        layer->SetPromoteLights(true);
        layer->SetDimensions(LayerDimensions::ThreeD);
        layer->SetDimensions(LayerDimensions::ThreeDContent);
        for (const int mode : {1, 3, 4})
            layer->SetAutoOrientation(AutoOrient{mode});
        EXPECT_EQ(layer->AutoOrientation(), AutoOrient{3});
        EXPECT_EQ(layer->PromoteLights(), layer == nested);
        EXPECT_EQ(layer->Dimensions(), LayerDimensions{layer == nested ? 2 : 1});
    }
    solid->SetEndFrame(100);
    solid->SetAssetInstanceStart(10);
    EXPECT_EQ(solid->AssetInstanceEnd(), 109);
    solid->SetAssetInstanceStart(std::numeric_limits<int>::max());
    EXPECT_EQ(solid->AssetInstanceEnd(), std::numeric_limits<int>::max());
    EXPECT_THROW(AssetLayer::Create(nullptr), std::logic_error);
}

TEST(AssetLayer, StandsWhereItsPictureIs)
{
    const LayerStage stage;
    stage.composition->Settings().SetPixelAspectRatio(PAR::Custom);
    stage.composition->Settings().SetCustomPixelAspectRatio(3);
    stage.composition->Settings().SetWidth(200);
    FakeMedia clip;
    clip.file.video->pixelAspect = 1.5;
    clip.file.video->frameRate = 23.5;
    const Asset missing = ImageAsset::Create(u"/no/such.png");
    const Matrix anchor = Matrix::Translation(-1, -2, 3);
    const Matrix position = Matrix::Translation(40, 50, 60);
    const struct {
        Asset asset;
        Matrix origin;
        Matrix toSetParent;
        double soundRate;
    } cases[] = {
        {Solid(), anchor * Matrix::Scaling(2, 1, 1) * Matrix::Translation(-50, -25, 0),
         position * anchor * Matrix::Translation(-50, -25, 0), 0},
        {stage.composition, anchor * Matrix::Scaling(3, 1, 1) * Matrix::Translation(-100, 0, 0),
         position * anchor * Matrix::Translation(-100, 0, 0), 30},
        {clip.asset, anchor * Matrix::Scaling(1.5f, 1, 1) * Matrix::Translation(-32, -16, 0),
         position * anchor * Matrix::Translation(-32, -16, 0), 23.5},
        {missing, position * Matrix::Translation(-150, -150, 0),
         position * anchor * Matrix::Translation(-150, -150, 0), 0},
    };
    for (const auto &[asset, origin, toSetParent, soundRate] : cases) {
        const auto layer = Show(stage, asset);
        Set(*layer, "anchorPoint", Point{1, 2, 3});
        Set(*layer, "position", Point{40, 50, 60});
        EXPECT_THAT(layer->OriginAtTime(0, stage.project), IsMatrixNear(origin, 1e-6));
        EXPECT_THAT(layer->WorldTransformationAtTimeToSetParent(0, stage.project, false),
                    IsMatrixNear(toSetParent, 1e-6));
        EXPECT_EQ(layer->ParentingWorldTransformationAtTime(0, stage.project, false), position * anchor);
        EXPECT_EQ(layer->AudioFrameRate(stage.Assets()), soundRate);
    }
}

TEST(AssetLayer, StandsNowhereWithoutAPictureOrAnAsset)
{
    const LayerStage stage;
    FakeMedia sound;
    sound.file.video = nullptr;
    const auto layer = Show(stage, sound.asset);
    layer->SetParentLayer(stage.AddPoint());
    Set(*layer, "position", Point{1, 2, 3});
    Set(*layer->ParentLayer(stage.Assets()), "position", Point{1, 2, 3});
    EXPECT_EQ(layer->TransformationAtTime(0, stage.project, false), Matrix());
    EXPECT_EQ(layer->OriginAtTime(0, stage.project), Matrix());
    EXPECT_EQ(layer->WorldTransformationAtTimeToSetParent(0, stage.project, false), Matrix());

    const auto lost =
        Reread(*layer, sound.asset->ID().ToNarrowString().c_str(), "00000001-0000-0000-0000-000000000000");
    try {
        lost->WorldTransformationAtTime(0, stage.project, false);
        ADD_FAILURE();
    } catch (const std::logic_error &failure) {
        EXPECT_THAT(failure.what(), testing::AllOf(testing::HasSubstr(ToUtf8(lost->Name())),
                                                   testing::HasSubstr("00000001-0000")));
    }
    EXPECT_THROW(lost->AudioFrameRate(stage.Assets()), std::logic_error);
}

TEST(AssetLayer, TurnsAlongItsPathAboutTheMiddleOfItsPicture)
{
    const LayerStage stage;
    for (const auto &[asset, half] :
         {std::pair(Solid(), Point{50, 25, 0}), {ImageAsset::Create(u"/no/such.png"), Point{150, 150, 0}}}) {
        const auto layer = Show(stage, asset);
        layer->SetAutoOrientation(AutoOrient::AlongPath);
        SetAt(*layer, "position", 0, Point{7, 0, 0});
        SetAt(*layer, "position", 1000, Point{1007, 0, 0});
        const Matrix still = layer->OriginAtTime(0, stage.project);
        const Matrix world = layer->WorldTransformationAtTime(0, stage.project, false);
        const Point middle =
            (layer->TransformationAtTime(0, stage.project, false) * still).TransformPoint(half);
        EXPECT_THAT(world.TransformPoint(half), IsPointNear(middle.X, middle.Y, middle.Z, 1e-4));
        EXPECT_THAT(world.TransformPoint({half.X, half.Y + 10, 0}),
                    IsPointNear(middle.X + 10, middle.Y, middle.Z, 1e-4));
    }
}

TEST(AssetLayer, GrowsByItsFiltersOneAfterAnother)
{
    const auto frame = std::make_shared<TestPlugin>();
    const auto other = std::make_shared<TestPlugin>();
    frame->kind = AbstractPlugin::kFilter2D;
    AssetLayer::EffectList effects;
    for (const auto &plugin : {frame, other, frame, frame})
        effects.Add(EffectInstance::Create(plugin));
    effects.back()->SetEnabled(false);
    kytl::matl::KyPoint<2, float> offset{9, 9};
    int width = 0;
    int height = 0;
    AssetLayer::ComputePostFilterDims(Solid(), effects, 70, 0.5f, true, offset, width, height);
    const std::vector<std::vector<double>> expected = {{100, 50, 100, 50, 100, 50, 1, 0.5, 1, 70},
                                                       {130, 57, 130, 57, 130, 57, 1, 0.5, 1, 70}};
    EXPECT_EQ(frame->filtered, expected);
    EXPECT_TRUE(other->filtered.empty());
    EXPECT_EQ(std::pair(width, height), std::pair(160, 64));
    EXPECT_TRUE(offset.X == 20 && offset.Y == 8);
    AssetLayer::ComputePostFilterDims(Solid(), {}, 70, 0.5f, true, offset, width, height);
    EXPECT_TRUE(offset.X == 0 && offset.Y == 0 && width == 100 && height == 50);
}

TEST(AssetLayer, ClonesItsTrackersWithTheirDestinations)
{
    const auto layer = AssetLayer::Create(Solid());
    const KyID destination{.Data1 = 1};
    layer->Trackers().Add(Tracker::Create(u"", {}, {}, 8, 16));
    layer->Trackers()[0]->SetDestinationLayerID(destination);
    const auto clone = std::static_pointer_cast<AssetLayer>(layer->Clone({}));
    EXPECT_NE(clone->Trackers().at(0)->ID(), layer->Trackers()[0]->ID());
    EXPECT_EQ(clone->Trackers()[0]->ParentLayerID(), clone->ID());
    EXPECT_TRUE(clone->IsLayerReferenced(nullptr, destination));
    clone->ClearInvalidLayerReferences({});
    EXPECT_FALSE(clone->IsLayerReferenced(nullptr, destination));
    EXPECT_TRUE(layer->IsLayerReferenced(nullptr, destination));
}

} // namespace
} // namespace marlet::test
