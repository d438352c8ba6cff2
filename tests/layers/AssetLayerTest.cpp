#include <tests/support/FakeMedia.h>
#include <tests/support/LayerStage.h>
#include <tests/support/LayerTexts.h>
#include <tests/support/MatrixMatchers.h>

#include <marlet/layers/AssetLayer.h>
#include <marlet/plugins/AbstractPlugin2D.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/plugins/FilterSurface.h>
#include <marlet/plugins/PluginUINode.h>
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

/// Widens a frame by 10, 20, 3 and 4 pixels, and notes what it is told.
class Frame : public AbstractPlugin2D
{
public:
    KyID id = KyID::Generate();
    WideString name = u"Frame";
    VersionInfo version;
    PropertyManager properties;
    std::shared_ptr<AbstractPluginUITreeNode> panel = PluginUINode::CreateTreeRoot();
    int kind = kFilter2D;
    std::vector<std::vector<double>> calls;

    const KyID &ID() const override { return id; }
    int Kind() const override { return kind; }
    const WideString &Name() const override { return name; }
    const VersionInfo &Version() const override { return version; }
    const PropertyManager &Properties() const override { return properties; }
    const std::shared_ptr<AbstractPluginUITreeNode> &UITree() const override { return panel; }
    void InstanceCreated(AbstractPluginInstance *) override {}
    void InstanceDestroyed(AbstractPluginInstance *) override {}
    void SerializeInstance(AbstractPluginInstance *, void *, void *) override {}
    void DeserializeInstance(AbstractPluginInstance *, unsigned char *, int) override {}
    void PropertyChanged(AbstractPluginInstance *, const char *) override {}
    void FilterMargins(EffectInstance *, FilterSurface *surface, int width, int height, float scale,
                       float aFloat, bool aBool, int time, int *left, int *right, int *top,
                       int *bottom) override
    {
        calls.push_back({double(width), double(height), double(surface->width), double(surface->height),
                         double(surface->textureWidth), double(surface->textureHeight), scale, aFloat,
                         double(aBool), double(time)});
        std::tie(*left, *right, *top, *bottom) = std::tuple(*left + 10, *right + 20, *top + 3, *bottom + 4);
    }

    void HostOperation1() override {}
    void HostOperation2() override {}
    void HostOperation3() override {}
    void HostOperation4() override {}
    void HostOperation5() override {}
    void HostOperation6() override {}
    void HostOperation7() override {}
    void HostOperation8() override {}
};

TEST(AssetLayer, RemembersWhatItsAssetHasAndOnceHad)
{
    const LayerStage stage;
    const auto layer = Show(stage, Solid());
    const auto read = Reread(*layer, "<AssetHasAudio>0", "<AssetHasAudio>1");
    EXPECT_TRUE(read->HasAudio() && read->HasVideo() && !read->AssetHadAudio() && read->AssetHadVideo());
    ASSERT_NE(read->Asset(stage.Assets()), nullptr);
    EXPECT_FALSE(read->HasAudio() || read->AssetHadAudio());

    const auto promised =
        Reread(*Reread(*layer, "<AssetType>2", "<AssetType>3"), "<AssetHadAudio>0", "<AssetHadAudio>1");
    EXPECT_EQ(promised->AssetType(), AssetType::Composition);
    promised->Asset(stage.Assets());
    stage.project->Assets().All().Clear();
    EXPECT_EQ(promised->AssetType(), AssetType::Solid);
    EXPECT_TRUE(promised->HasVideo() && !promised->HasAudio() && promised->AssetHadAudio());
    EXPECT_EQ(promised->Asset(stage.Assets()), nullptr);
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
    const Asset missing = ImageAsset::Create(u"/no/such.png");
    const Matrix anchor = Matrix::Translation(-1, -2, 3);
    const Matrix position = Matrix::Translation(40, 50, 60);
    const struct {
        Asset asset;
        Matrix origin;
        Matrix toSetParent;
    } cases[] = {
        {Solid(), anchor * Matrix::Scaling(2, 1, 1) * Matrix::Translation(-50, -25, 0),
         position * anchor * Matrix::Translation(-50, -25, 0)},
        {stage.composition, anchor * Matrix::Scaling(3, 1, 1) * Matrix::Translation(-100, 0, 0),
         position * anchor * Matrix::Translation(-100, 0, 0)},
        {clip.asset, anchor * Matrix::Scaling(1.5f, 1, 1) * Matrix::Translation(-32, -16, 0),
         position * anchor * Matrix::Translation(-32, -16, 0)},
        {missing, position * Matrix::Translation(-150, -150, 0),
         position * anchor * Matrix::Translation(-150, -150, 0)},
    };
    for (const auto &[asset, origin, toSetParent] : cases) {
        const auto layer = Show(stage, asset);
        Set(*layer, "anchorPoint", Point{1, 2, 3});
        Set(*layer, "position", Point{40, 50, 60});
        EXPECT_THAT(layer->OriginAtTime(0, stage.project), IsMatrixNear(origin, 1e-6));
        EXPECT_THAT(layer->WorldTransformationAtTimeToSetParent(0, stage.project, false),
                    IsMatrixNear(toSetParent, 1e-6));
        EXPECT_EQ(layer->ParentingWorldTransformationAtTime(0, stage.project, false), position * anchor);
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

TEST(AssetLayer, CountsSoundByTheRateOfItsAsset)
{
    const LayerStage stage;
    FakeMedia clip;
    FakeMedia sound;
    clip.file.video->frameRate = 23.5;
    sound.file.video = nullptr;
    stage.composition->Settings().SetFrameRate(12.5);
    for (const auto &[asset, rate] : {std::pair<Asset, double>(clip.asset, 23.5),
                                      {sound.asset, 30.0},
                                      {stage.composition, 12.5},
                                      {Solid(), 0.0}})
        EXPECT_EQ(Show(stage, asset)->AudioFrameRate(stage.Assets()), rate);
}

TEST(AssetLayer, GrowsByItsFiltersOneAfterAnother)
{
    const auto frame = std::make_shared<Frame>();
    const auto other = std::make_shared<Frame>();
    other->kind = 1;
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
    EXPECT_EQ(frame->calls, expected);
    EXPECT_TRUE(other->calls.empty());
    EXPECT_EQ(std::pair(width, height), std::pair(160, 64));
    EXPECT_TRUE(offset.X == 20 && offset.Y == 8);
    AssetLayer::ComputePostFilterDims(Solid(), {}, 70, 0.5f, true, offset, width, height);
    EXPECT_TRUE(offset.X == 0 && offset.Y == 0 && width == 100 && height == 50);
}

TEST(AssetLayer, RefersToTheDestinationsOfItsTrackers)
{
    const auto layer = AssetLayer::Create(Solid());
    const KyID ids[] = {{.Data1 = 1}, {.Data1 = 2}, {.Data1 = 3}};
    for (const KyID &id : {ids[0], ids[1]}) {
        layer->Trackers().Add(Tracker::Create(u"", {}, {}, 8, 16));
        layer->Trackers().back()->SetDestinationLayerID(id);
    }
    EXPECT_TRUE(layer->IsLayerReferenced(nullptr, ids[1]));
    EXPECT_FALSE(layer->IsLayerReferenced(nullptr, ids[2]));
    EXPECT_TRUE(layer->LayerReferencePropertyNames().empty());
    const auto clone = std::static_pointer_cast<AssetLayer>(layer->Clone({}));
    clone->ChangeLayerReferences({{ids[1].ToNarrowString(), ids[2].ToNarrowString()}});
    clone->ClearInvalidLayerReferences({{ids[2].ToNarrowString(), false}});
    ASSERT_EQ(clone->Trackers().Count(), 2u);
    EXPECT_EQ(clone->Trackers()[0]->DestinationLayerID(), KyID());
    EXPECT_EQ(clone->Trackers()[1]->DestinationLayerID(), ids[2]);
    EXPECT_EQ(clone->Trackers()[1]->ParentLayerID(), clone->ID());
    EXPECT_NE(clone->Trackers()[1]->ID(), layer->Trackers()[1]->ID());
    EXPECT_EQ(layer->Trackers()[1]->DestinationLayerID(), ids[1]);
    EXPECT_EQ(clone->AssetID(), layer->AssetID());
}

} // namespace
} // namespace marlet::test
