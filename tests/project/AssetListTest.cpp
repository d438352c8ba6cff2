#include "Loading.h"

#include <tests/support/FixedLayer.h>

#include <marlet/layers/PointLayer.h>
#include <marlet/project/AbstractAssetInstance.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/ProjectTextureImageCache.h>
#include <marlet/project/SolidAsset.h>

#include <gtest/gtest.h>

using namespace marlet::project;

namespace
{

std::shared_ptr<SolidAsset> Solid(const WideString &name)
{
    return SolidAsset::Create(name, {1, 0.5f, 0, 1}, 64, 32, PAR::PalWide);
}

class SequenceObject : public AbstractAssetInstance
{
public:
    explicit SequenceObject(Type type) : type_(type) {}

    const kytl::KyID &ID() const override { return id_; }
    const WideString &Name() const override { return name_; }
    void SetName(const WideString &name) override { name_ = name; }
    const kytl::KyID &AssetID() const override { return id_; }
    marlet::project::AssetType AssetType() const override { return marlet::project::AssetType::Solid; }
    Type AssetInstanceType() const override { return type_; }
    int AssetInstanceStart() const override { return 0; }
    void SetAssetInstanceStart(int) override {}
    int AssetInstanceEnd() const override { return 0; }

private:
    kytl::KyID id_ = kytl::KyID::Generate();
    WideString name_;
    Type type_;
};

/// A layer that shows an asset.
struct UsingLayer : marlet::test::FixedLayer, SequenceObject {
    UsingLayer() : FixedLayer(LayerType::Asset), SequenceObject(AbstractAssetInstance::Type::AssetLayer) {}
};

} // namespace

TEST(AssetList, FindsAssetsByIDAsTheListStands)
{
    const auto project = Project::Create(nullptr);
    AssetList &list = project->Assets();
    const auto first = Solid(u"first");
    EXPECT_EQ(list.GetByID(first->ID()), nullptr);
    list.All().Add(first);
    EXPECT_EQ(list.GetByID(first->ID()), first);

    AssetList::Assets &kept = list.All();
    auto second = Solid(u"second");
    const kytl::KyID secondID = second->ID();
    kept.Add(second);
    EXPECT_EQ(list.GetByID(secondID), second);

    // The list is not looked through again for a change that it is not told of, but what has gone is gone.
    kept.pop_back();
    EXPECT_EQ(list.GetByID(secondID), second);
    second.reset();
    EXPECT_EQ(list.GetByID(secondID), nullptr);
}

TEST(AssetList, FindsTheFirstOfTwoAssetsWithOneID)
{
    const auto project = Project::Create(nullptr);
    AssetList &list = project->Assets();
    const auto original = Solid(u"original");
    const NoEffects noEffects;
    ProjectTextureImageCache textures;
    const auto twin = Solid(u"twin");
    twin->Deserialize(original->Serialize(textures), nullptr, noEffects, textures);
    list.All().Add(original);
    list.All().Add(twin);
    EXPECT_EQ(list.GetByID(original->ID()), original);
}

TEST(AssetList, FindsNothingByTheNullIDEvenIfAnAssetHasIt)
{
    const auto project = Project::Create(nullptr);
    ProjectTextureImageCache textures;
    const auto composition = CompositionAsset::Create(u"", AudioVideoSettings::Preset::Pal, 1);
    WideString text = composition->Serialize(textures);
    const WideString id = composition->ID().ToWideString();
    text.replace(text.find(id), id.size(), kytl::KyID().ToWideString());
    const auto nameless = CompositionAsset::CreateFromXml(text, nullptr, NoEffects(), textures);
    ASSERT_TRUE(nameless->ID().IsNull());
    project->Assets().All().Add(nameless);

    EXPECT_EQ(project->Assets().GetByID(kytl::KyID()), nullptr);
    // So a layer of no composition does not get into that one.
    EXPECT_THROW(PointLayer::Create(u"")->ParentComposition(project->Assets()), std::runtime_error);
}

TEST(AssetList, WritesLiveInstancesAndReadsNone)
{
    const auto object = std::make_shared<SequenceObject>(AbstractAssetInstance::Type::AudioObject);
    const auto layer = std::make_shared<UsingLayer>();
    layer->SetParentComposition(kytl::KyID::Generate());
    const auto solid = Solid(u"used");
    solid->Instances().Add(object);
    solid->Instances().Add(std::make_shared<SequenceObject>(AbstractAssetInstance::Type::VisualObject));
    solid->Instances().Add(layer);

    const ProjectTextureImageCache textures;
    const WideString written = u" <Instances>\n"
                               u"  <Instance ID=\"" +
                               object->ID().ToWideString() +
                               u"\" Type=\"1\"/>\n"
                               u"  <Instance ID=\"" +
                               layer->SequenceObject::ID().ToWideString() + u"\" Type=\"2\" CompID=\"" +
                               layer->ParentCompositionID().ToWideString() +
                               u"\"/>\n"
                               u" </Instances>\n";
    EXPECT_NE(solid->Serialize(textures).find(written), WideString::npos);
    EXPECT_TRUE(SolidAsset::CreateFromXml(solid->Serialize(textures))->Instances().IsEmpty());
}

TEST(Assets, AreClonedWithIDsOfTheirOwnAndNoInstances)
{
    const auto object = std::make_shared<SequenceObject>(AbstractAssetInstance::Type::AudioObject);
    const std::shared_ptr<AbstractAsset> assets[] = {
        Solid(u"solid"), ImageAsset::Create(u"/no/such/file.png"),
        CompositionAsset::Create(u"composition", AudioVideoSettings::Preset::Pal, 1)};
    const ProjectTextureImageCache textures;
    for (const auto &asset : assets) {
        SCOPED_TRACE(static_cast<int>(asset->Type()));
        asset->SetParentFolderID(kytl::KyID::Generate());
        const WideString text = asset->Serialize(textures);
        asset->Instances().Add(object);
        const auto clone = asset->Clone();
        EXPECT_NE(clone->ID(), asset->ID());
        EXPECT_TRUE(clone->Instances().IsEmpty());
        EXPECT_EQ(asset->Instances().Count(), 1u);
        WideString copied = clone->Serialize(textures);
        const WideString id = clone->ID().ToWideString();
        copied.replace(copied.find(id), id.size(), asset->ID().ToWideString());
        EXPECT_EQ(copied, text);
    }
}

TEST(Assets, AnswerTheRatioOfTheirPixels)
{
    EXPECT_DOUBLE_EQ(AbstractAsset::AspectRatio(Solid(u"")), 16.0 / 11);
    const auto missingImage = ImageAsset::Create(u"/no/such/file.png");
    missingImage->SetPixelAspectRatio(PAR::Anamorphic2x);
    EXPECT_DOUBLE_EQ(AbstractAsset::AspectRatio(missingImage), 1);

    const auto composition = CompositionAsset::Create(u"", AudioVideoSettings::Preset::Pal, 1);
    composition->Settings().SetPixelAspectRatio(PAR::Custom);
    composition->Settings().SetCustomPixelAspectRatio(1.25);
    EXPECT_DOUBLE_EQ(AbstractAsset::AspectRatio(composition), 1.25);
}
