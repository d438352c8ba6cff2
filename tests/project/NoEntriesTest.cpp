// Empty entries of the lists that hosts fill are passed over by whatever walks them.

#include "Loading.h"

#include <tests/support/FakeMedia.h>
#include <tests/support/NoPointers.h>

#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/project/ProjectTextureImageCache.h>
#include <marlet/project/SolidAsset.h>

#include <boost/smart_ptr/shared_array.hpp>
#include <gmock/gmock.h>

using namespace marlet::project;
using kytl::KyID;
using marlet::test::Refuses;
using marlet::test::Surround;

TEST(NoEntries, OfACompositionAreNoLayers)
{
    const auto composition = CompositionAsset::Create(u"", AudioVideoSettings::Preset::Pal, 100);
    const auto camera = CameraLayer::Create(u"", 1, 1, 1, 1);
    camera->SetStartFrame(10);
    camera->SetEndFrame(20);
    composition->Layers().Add(nullptr);
    EXPECT_FALSE(composition->Is3D());
    EXPECT_EQ(composition->ActiveCameraLayer(15), nullptr);
    EXPECT_EQ(composition->FindLayerByID(KyID()), nullptr);
    Surround(composition->Layers(), camera);
    EXPECT_TRUE(composition->Is3D());
    EXPECT_EQ(composition->ActiveCameraLayer(15), camera);
    EXPECT_EQ(composition->PreviousEdit(15), 10);
    EXPECT_EQ(composition->NextEdit(15), 20);
    EXPECT_EQ(composition->FindLayerByID(camera->ID()), camera);

    const auto parent = PointLayer::Create(u"");
    camera->SetParentLayer(KyID{.Data1 = 1});
    composition->ChangeLayerReferences({{KyID{.Data1 = 1}.ToNarrowString(), parent->ID().ToNarrowString()}});
    EXPECT_EQ(camera->ParentLayerID(), parent->ID());
    EXPECT_EQ(CompositionAsset::Copy(composition)->Layers().Count(), 1u);
    ProjectTextureImageCache textures;
    const auto read =
        CompositionAsset::CreateFromXml(composition->Serialize(textures), nullptr, NoEffects(), textures);
    EXPECT_EQ(read->Layers().Count(), 1u);
}

TEST(NoEntries, OfAProjectAreNoAssetsAndNoFolders)
{
    const auto project = Project::Create(nullptr);
    const auto solid = SolidAsset::Create(u"", {}, 1, 1, PAR::Square);
    Surround(project->Assets().All(), solid);
    const auto folder = BinFolder::Create(u"");
    const auto below = BinFolder::Create(u"");
    Surround(project->Assets().Bin().Folders(), folder);
    Surround(folder->Folders(), below);
    below->Assets().Add(solid);
    folder->Assets().Add({});

    const AssetList &assets = project->Assets();
    EXPECT_EQ(assets.GetByID(solid->ID()), solid);
    EXPECT_EQ(assets.GetByType(AssetType::Solid).Count(), 1u);
    EXPECT_EQ(FindAssetByID(assets.All(), solid->ID()), solid);
    EXPECT_EQ(assets.Bin().FindFolderByID(below->ID()), below);
    EXPECT_EQ(assets.Bin().FindParentFolderID(below->ID()), folder->ID());
    EXPECT_EQ(assets.Bin().FindFolderIDContainingAsset(solid->ID()), below->ID());
    EXPECT_THAT(below->FindIDsIntoFolder(), testing::ElementsAre(below->ID(), solid->ID()));
    const auto copy = BinFolder::Copy(folder);
    ASSERT_EQ(copy->Folders().Count(), 1u);

    const auto read = Load(project->Serialize());
    EXPECT_EQ(read->Assets().All().Count(), 1u);
    EXPECT_NE(read->Assets().Bin().FindFolderByID(below->ID()), nullptr);
    const AssetList::Assets list = {nullptr, solid};
    EXPECT_EQ(BinFolder::CreateFromXml(below->Serialize(), list)->Assets().Count(), 1u);
}

TEST(NoPointers, AreRefusedByTheNamesOfTheArguments)
{
    EXPECT_TRUE(Refuses("composition", [] { CompositionAsset::Copy(nullptr); }));
    EXPECT_TRUE(Refuses("asset", [] { SolidAsset::Copy(nullptr); }));
    EXPECT_TRUE(Refuses("asset", [] { ImageAsset::Copy(nullptr); }));
    EXPECT_TRUE(Refuses("asset", [] { AbstractAsset::AspectRatio(nullptr); }));
    EXPECT_TRUE(Refuses("folder", [] { BinFolder::Copy(nullptr); }));
    boost::shared_array<unsigned char> pixels;
    int size = 1;
    const auto image = ImageAsset::Create(u"");
    EXPECT_TRUE(Refuses("width", [&] { image->ReadPixelData(1, 1, pixels, nullptr, &size); }));
    EXPECT_TRUE(Refuses("height", [&] { image->ReadPixelData(1, 1, pixels, &size, nullptr); }));

    MediaManager manager;
    std::shared_ptr<MediaAsset> noAsset;
    EXPECT_TRUE(Refuses("asset", [&] { MediaAsset::Copy(noAsset); }));
    EXPECT_TRUE(Refuses("asset", [&] { manager.RelinkMediaFile(noAsset, u""); }));
    EXPECT_TRUE(Refuses("asset", [&] { manager.RelinkImageSequence(noAsset, u""); }));
    EXPECT_TRUE(Refuses("asset", [&] { manager.TryReload(noAsset); }));
    EXPECT_TRUE(Refuses("element", [&] { manager.CreateMediaAssetFromXmlNode(nullptr); }));
    marlet::test::FakeMedia media;
    const auto read = [&](int *width, int *height) {
        unsigned int scratchSize = 0;
        media.asset->VideoStream()->GetFrame(30.0, 0, 1, 1, pixels, scratchSize, pixels, 0, width, height, 0);
    };
    EXPECT_TRUE(Refuses("width", [&] { read(nullptr, &size); }));
    EXPECT_TRUE(Refuses("height", [&] { read(&size, nullptr); }));
}
