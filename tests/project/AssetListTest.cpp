#include "Loading.h"

#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/project/AbstractAssetInstance.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/InstancesXml.h>
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
class UsingLayer : public AbstractLayer, public SequenceObject
{
public:
    UsingLayer() : AbstractLayer(u""), SequenceObject(AbstractAssetInstance::Type::AssetLayer) {}

    std::shared_ptr<AbstractLayer> Clone(const kytl::KyID &) const override { return nullptr; }
    LayerType Type() const override { return LayerType::Asset; }
    bool HasAudio() const override { return false; }
    bool HasVideo() const override { return false; }
    LayerDimensions Dimensions() const override { return LayerDimensions::TwoD; }
    void SetDimensions(LayerDimensions) override {}
    Matrix TransformationAtTime(int, const std::shared_ptr<Project> &, bool) const override { return {}; }
    Matrix OriginAtTime(int, const std::shared_ptr<Project> &) const override { return {}; }
    Matrix AlignToMotion(const Matrix &, int, const std::shared_ptr<Project> &, bool) const override
    {
        return {};
    }
    using AbstractLayer::Serialize;
    WideString Serialize(const ProjectTextureImageCache &) const override { return {}; }
};

} // namespace

TEST(AssetList, FindsAssetsByIDAsTheListStands)
{
    const auto project = Project::Create(nullptr);
    AssetList &list = project->Assets();
    const auto first = Solid(u"first");
    EXPECT_EQ(list.GetByID(first->ID()), nullptr);
    EXPECT_EQ(list.GetByID(kytl::KyID()), nullptr);

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
    EXPECT_EQ(FindAssetByID(list.All(), original->ID()), original);
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

TEST(AssetList, ListsAssetsOfATypeInTheirOrder)
{
    const auto project = Project::Create(nullptr);
    AssetList &list = project->Assets();
    const auto a = Solid(u"a");
    const auto b = Solid(u"b");
    list.All().Add(a);
    list.All().Add(ImageAsset::Create(u"/c.png"));
    list.All().Add(b);
    EXPECT_EQ(list.GetByType(AssetType::Solid), (AssetList::Assets{a, b}));
    EXPECT_TRUE(list.GetByType(AssetType::Media).IsEmpty());
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

    const std::string written =
        ToUtf8(XmlText([&](XmlWriter &writer) { WriteInstances(writer, solid->Instances()); }));
    EXPECT_EQ(written, "<Instances>\n"
                       " <Instance ID=\"" +
                           object->ID().ToNarrowString() +
                           "\" Type=\"1\"/>\n"
                           " <Instance ID=\"" +
                           layer->SequenceObject::ID().ToNarrowString() + "\" Type=\"2\" CompID=\"" +
                           layer->ParentCompositionID().ToNarrowString() +
                           "\"/>\n"
                           "</Instances>\n");

    const ProjectTextureImageCache textures;
    EXPECT_NE(solid->Serialize(textures).find(u"<Instance "), WideString::npos);
    EXPECT_TRUE(SolidAsset::CreateFromXml(solid->Serialize(textures))->Instances().IsEmpty());
    EXPECT_TRUE(solid->Clone()->Instances().IsEmpty());
}

TEST(Assets, AnswerTheRatioOfTheirPixels)
{
    EXPECT_DOUBLE_EQ(AbstractAsset::AspectRatio(Solid(u"")), 16.0 / 11);
    EXPECT_DOUBLE_EQ(AbstractAsset::AspectRatio(SolidAsset::Create(u"", {}, 1, 1, PAR::Custom)), 0);

    const auto missingImage = ImageAsset::Create(u"/no/such/file.png");
    missingImage->SetPixelAspectRatio(PAR::Anamorphic2x);
    EXPECT_DOUBLE_EQ(AbstractAsset::AspectRatio(missingImage), 1);

    const auto composition = CompositionAsset::Create(u"", AudioVideoSettings::Preset::Pal, 1);
    EXPECT_DOUBLE_EQ(AbstractAsset::AspectRatio(composition), 12.0 / 11);
    composition->Settings().SetPixelAspectRatio(PAR::Custom);
    composition->Settings().SetCustomPixelAspectRatio(1.25);
    EXPECT_DOUBLE_EQ(AbstractAsset::AspectRatio(composition), 1.25);
}

TEST(SolidAsset, ClonesAllButItsID)
{
    const auto solid = Solid(u"Sky");
    solid->SetParentFolderID(kytl::KyID::Generate());
    const auto copy = SolidAsset::Copy(solid);
    EXPECT_NE(copy->ID(), solid->ID());
    EXPECT_EQ(copy->Name(), u"Sky");
    EXPECT_EQ(copy->ParentFolderID(), solid->ParentFolderID());
    EXPECT_EQ(copy->Color(), solid->Color());
    EXPECT_EQ(copy->Width(), 64);
    EXPECT_EQ(copy->Height(), 32);
    EXPECT_EQ(copy->PixelAspectRatio(), PAR::PalWide);
    copy->SetWidth(1);
    EXPECT_EQ(solid->Width(), 64);
}
