#include "ImageFiles.h"

#include <marlet/project/ProjectTextureImageCache.h>
#include <marlet/project/TextureImage.h>

#include <gtest/gtest.h>

using namespace marlet::project;

TEST(TextureImage, KnowsTheSizeOfAFileThatOpens)
{
    const ImageFiles files;
    TextureImage image;
    image.Load(files.Write("a.png", files.Plain(5, 4)));
    EXPECT_TRUE(image.LoadSuccessful());
    EXPECT_EQ(image.Width(), 5);

    files.Write("a.png", QByteArray("no picture"));
    EXPECT_EQ(image.Width(), 5);
    image.Reload();
    EXPECT_FALSE(image.LoadSuccessful());
    EXPECT_EQ(image.Width(), 0);
}

TEST(TextureImage, TellsItsCopiesApartByTheirIDs)
{
    const ImageFiles files;
    TextureImage source;
    source.Load(files.Write("a.png", files.Plain(5, 4)));
    const TextureImage copy(source);
    TextureImage assigned;
    assigned = source;
    for (const TextureImage *image : {&copy, static_cast<const TextureImage *>(&assigned)}) {
        EXPECT_EQ(image->FilePath(), source.FilePath());
        EXPECT_EQ(image->Width(), 5);
        EXPECT_EQ(image->Height(), 4);
        EXPECT_NE(image->ID(), source.ID());
    }
    EXPECT_NE(copy.ID(), assigned.ID());
}

TEST(ProjectTextureImageCache, SharesAnImageWhileSomebodyHoldsIt)
{
    const ImageFiles files;
    const WideString path = files.Write("a.png", files.Plain(5, 4));
    ProjectTextureImageCache cache;
    auto image = cache.CacheItem(path, false);
    const kytl::KyID id = image->ID();
    files.Write("a.png", files.Plain(6, 4));
    EXPECT_EQ(cache.CacheItem(path, false), image);
    EXPECT_EQ(image->Width(), 6);
    EXPECT_EQ(cache.GetTextureImageByID(id).lock(), image);

    image.reset();
    EXPECT_TRUE(cache.GetTextureImageByID(id).expired());
    image = cache.CacheItem(path, false);
    EXPECT_NE(image->ID(), id);
    EXPECT_EQ(cache.TextureImages().Count(), 2u);
}

TEST(ProjectTextureImageCache, PutsRelativeNamesDirectlyBehindTheFolder)
{
    const ImageFiles files;
    files.Write("a.png", files.Plain(5, 4));
    ProjectTextureImageCache cache;
    cache.SetTexturesFolderPath(files.Path("") + u"/");
    const auto found = cache.CacheItem(u"a.png", true);
    EXPECT_EQ(found->FilePath(), files.Path("a.png"));
    EXPECT_TRUE(found->LoadSuccessful());
    EXPECT_EQ(cache.CacheItem(files.Path("a.png"), false), found);

    cache.SetTexturesFolderPath(files.Path(""));
    const auto missed = cache.CacheItem(u"a.png", true);
    EXPECT_EQ(missed->FilePath(), files.Path("") + u"a.png");
    EXPECT_FALSE(missed->LoadSuccessful());
}

TEST(ProjectTextureImageCache, RelinksAnImageToAnotherFile)
{
    const ImageFiles files;
    const WideString oldPath = files.Path("old.png");
    const WideString newPath = files.Write("new.png", files.Plain(5, 4));
    ProjectTextureImageCache cache;
    const auto image = cache.CacheItem(oldPath, false);
    const kytl::KyID id = image->ID();
    // The path is the image's own, which changes on the way.
    cache.RelinkCachedItem(image->FilePath(), newPath);
    EXPECT_EQ(image->ID(), id);
    EXPECT_EQ(image->FilePath(), newPath);
    EXPECT_EQ(image->Width(), 5);
    EXPECT_EQ(cache.CacheItem(newPath, false), image);
    EXPECT_NE(cache.CacheItem(oldPath, false), image);
}
