#include <marlet/project/BinFolder.h>
#include <marlet/project/SolidAsset.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

using namespace marlet::project;
using kytl::KyID;
using testing::ElementsAre;

namespace
{

std::shared_ptr<BinFolder> AddFolder(BinFolder &parent, const WideString &name)
{
    auto folder = BinFolder::Create(name);
    folder->SetParentFolderID(parent.ID());
    parent.Folders().Add(folder);
    return folder;
}

/// root holds a and b, a holds c. Each but b holds an asset.
struct Tree {
    std::shared_ptr<BinFolder> root = BinFolder::Create(u"root");
    std::shared_ptr<BinFolder> a = AddFolder(*root, u"a");
    std::shared_ptr<BinFolder> b = AddFolder(*root, u"b");
    std::shared_ptr<BinFolder> c = AddFolder(*a, u"c");
    std::shared_ptr<AbstractAsset> inRoot = AddAsset(*root);
    std::shared_ptr<AbstractAsset> inA = AddAsset(*a);
    std::shared_ptr<AbstractAsset> inC = AddAsset(*c);

    static std::shared_ptr<AbstractAsset> AddAsset(BinFolder &folder)
    {
        auto asset = SolidAsset::Create(u"", {}, 1, 1, PAR::Square);
        folder.Assets().Add(asset);
        return asset;
    }
};

} // namespace

TEST(BinFolder, FindsWhatIsBelowItAndNeverItself)
{
    const Tree tree;
    EXPECT_EQ(tree.root->FindFolderByID(tree.c->ID()), tree.c);
    EXPECT_EQ(tree.root->FindFolderByID(tree.root->ID()), nullptr);
    EXPECT_EQ(tree.a->FindFolderByID(tree.b->ID()), nullptr);

    EXPECT_EQ(tree.root->FindParentFolderID(tree.b->ID()), tree.root->ID());
    EXPECT_EQ(tree.root->FindParentFolderID(tree.c->ID()), tree.a->ID());
    EXPECT_EQ(tree.root->FindParentFolderID(tree.root->ID()), KyID());

    EXPECT_EQ(tree.root->FindFolderIDContainingAsset(tree.inC->ID()), tree.c->ID());
    EXPECT_EQ(tree.root->FindFolderIDContainingAsset(tree.inRoot->ID()), KyID());
}

TEST(BinFolder, ListsTheIDsOfFoldersBeforeThoseOfItsAssets)
{
    Tree tree;
    EXPECT_THAT(tree.root->FindIDsIntoFolder(),
                ElementsAre(tree.root->ID(), tree.a->ID(), tree.c->ID(), tree.inC->ID(), tree.inA->ID(),
                            tree.b->ID(), tree.inRoot->ID()));
    tree.inC.reset();
    EXPECT_THROW(tree.root->FindIDsIntoFolder(), std::bad_weak_ptr);
    EXPECT_EQ(tree.root->FindFolderIDContainingAsset(tree.inA->ID()), tree.a->ID());
}

TEST(BinFolder, CopiesFoldersAndSharesAssets)
{
    const Tree tree;
    tree.root->SetExpanded(true);
    const auto copy = BinFolder::Copy(tree.root);
    EXPECT_NE(copy->ID(), tree.root->ID());
    EXPECT_TRUE(copy->IsExpanded());
    ASSERT_EQ(copy->Folders().Count(), 2u);
    const auto a = copy->Folders()[0];
    EXPECT_NE(a->ID(), tree.a->ID());
    EXPECT_EQ(a->ParentFolderID(), tree.root->ID());
    EXPECT_EQ(a->Assets().at(0).lock(), tree.inA);
    EXPECT_EQ(a->Folders().Count(), 1u);
}

TEST(BinFolder, ReadsTheAssetsThatThereAre)
{
    const Tree tree;
    const WideString written = tree.root->Serialize();
    const auto all = BinFolder::CreateFromXml(written, {tree.inRoot, tree.inA, tree.inC});
    EXPECT_EQ(all->Serialize(), written);

    const auto some = BinFolder::CreateFromXml(written, {tree.inC});
    EXPECT_TRUE(some->Assets().IsEmpty());
    EXPECT_EQ(some->FindFolderIDContainingAsset(tree.inC->ID()), tree.c->ID());
}

TEST(BinFolder, ReadsIntoAFolderThatHasContent)
{
    const Tree tree;
    const Tree other;
    const WideString written = tree.root->Serialize();
    other.root->Deserialize(written, {tree.inRoot, tree.inA, tree.inC});
    EXPECT_EQ(other.root->Serialize(), written);
    EXPECT_EQ(other.root->FindFolderByID(other.a->ID()), nullptr);
}

TEST(BinFolder, WalksTreesOfAnyDepth)
{
    const auto root = BinFolder::Create(u"");
    auto innermost = root;
    for (int depth = 0; depth < 200'000; ++depth)
        innermost = AddFolder(*innermost, u"");
    EXPECT_EQ(root->FindFolderByID(innermost->ID()), innermost);
    EXPECT_EQ(root->FindIDsIntoFolder().back(), innermost->ID());
    EXPECT_EQ(BinFolder::Copy(root)->FindIDsIntoFolder().Count(), 200'001u);
    EXPECT_THROW(root->Serialize(), std::exception);
}

TEST(BinFolder, StandsCircles)
{
    const Tree tree;
    tree.c->Folders().Add(tree.a);
    tree.c->Folders().Add(tree.root);
    EXPECT_EQ(tree.root->FindFolderByID(tree.b->ID()), tree.b);
    EXPECT_EQ(tree.root->FindFolderByID(KyID::Generate()), nullptr);
    EXPECT_EQ(tree.root->FindFolderIDContainingAsset(KyID::Generate()), KyID());
    EXPECT_THROW(tree.root->FindIDsIntoFolder(), std::logic_error);
    EXPECT_THROW(BinFolder::Copy(tree.root), std::logic_error);
    EXPECT_THROW(tree.root->Serialize(), std::exception);
    tree.c->Folders().Clear();
}
