#include "ClipFiles.h"
#include "Loading.h"

#include <marlet/platform/media/KyMedia.h>
#include <marlet/project/LoadOptions.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/MediaProgress.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/project/SolidAsset.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <thread>
#include <vector>

using namespace marlet::project;
using Status = MediaAsset::Status;

namespace
{

/// Notes what it is told, and cancels or throws at a file.
struct NotedProgress : MediaProgress {
    int cancelAt = 0;
    int throwAt = 0;
    std::vector<WideString> told;
    int count = 0;

    bool OnFile(const WideString &path, int number, int all) override
    {
        EXPECT_EQ(std::this_thread::get_id(), thread);
        told.push_back(path);
        EXPECT_EQ(number, static_cast<int>(told.size()));
        count = all;
        if (number == throwAt)
            throw std::runtime_error("enough");
        return number != cancelAt;
    }

private:
    const std::thread::id thread = std::this_thread::get_id();
};

std::shared_ptr<Project> LoadWith(const WideString &text, const std::shared_ptr<MediaManager> &media,
                                  MediaProgress *progress)
{
    return Project::CreateFromXml(text, u"", nullptr, NoEffects(), {.media = media, .progress = progress});
}

std::vector<std::shared_ptr<MediaAsset>> MediaOf(const Project &project)
{
    std::vector<std::shared_ptr<MediaAsset>> media;
    for (const auto &asset : project.Assets().GetByType(AssetType::Media))
        media.push_back(std::static_pointer_cast<MediaAsset>(asset));
    return media;
}

std::vector<Status> StatusesOf(const Project &project)
{
    std::vector<Status> statuses;
    for (const auto &media : MediaOf(project))
        statuses.push_back(media->MediaFileStatus());
    return statuses;
}

bool GivesAFrame(const MediaAsset &asset)
{
    std::vector<unsigned char> picture(ClipFiles::kWidth * ClipFiles::kHeight * 4);
    const auto stream = asset.VideoStream();
    return stream && stream->GetFrame(0, kyh::media::KyImageChannels::Four, picture.data(),
                                      static_cast<int>(picture.size()), nullptr, 0) == 0;
}

/// A project of eight media assets, of five files that can be told apart, and what each is when all are
/// opened.
class MediaLoadTest : public testing::Test
{
protected:
    MediaLoadTest()
    {
        const auto project = Project::Create(nullptr);
        const auto add = [&](const std::shared_ptr<AbstractAsset> &asset) {
            project->Assets().All().Add(asset);
        };
        clips_.WritePicture("a.1.png", 60);
        clips_.WritePicture("still.png", 60);
        for (const WideString &path :
             {clips_.Write("one.mov", 40), clips_.Path("gone.mov"), clips_.Write("two.mov", 90),
              clips_.Path("ONE.mov"), clips_.Path("gone.mov")})
            add(project->Media().CreateMediaAsset(path));
        add(SolidAsset::Create(u"", {}, 1, 1, PAR::Square));
        add(project->Media().CreateImageSequence(clips_.Path("a.1.png"), 10));
        add(project->Media().CreateMediaAsset(clips_.Path("still.png")));
        add(project->Media().CreateMediaAsset(clips_.Path("two.mov")));
        text_ = project->Serialize();
        for (const char *name : {"one.mov", "gone.mov", "two.mov", "a.1.png", "still.png"})
            files_.push_back(clips_.Path(name));
    }

    /// What the asset at each place is when only so many files were opened.
    static std::vector<Status> Expected(int opened)
    {
        constexpr std::pair<int, Status> kAssets[] = {
            {1, Status::Usable},  {2, Status::Missing}, {3, Status::Usable}, {1, Status::Usable},
            {2, Status::Missing}, {4, Status::Usable},  {5, Status::Usable}, {3, Status::Usable}};
        std::vector<Status> statuses;
        for (const auto &[file, status] : kAssets)
            statuses.push_back(file <= opened ? status : Status::Failed);
        return statuses;
    }

    const ClipFiles clips_;
    WideString text_;
    std::vector<WideString> files_;
};

} // namespace

TEST_F(MediaLoadTest, IsAsIfOneFileWereOpenedAfterTheOtherWhereverItIsCancelled)
{
    for (int cancelAt = 0; cancelAt <= 5; ++cancelAt) {
        NotedProgress progress;
        progress.cancelAt = cancelAt;
        const auto media = std::make_shared<MediaManager>();
        const auto project = LoadWith(text_, media, &progress);
        const int opened = cancelAt == 0 ? 5 : cancelAt;
        EXPECT_EQ(progress.told, std::vector(files_.begin(), files_.begin() + opened));
        EXPECT_EQ(progress.count, 5);
        EXPECT_EQ(StatusesOf(*project), Expected(opened)) << cancelAt;
        EXPECT_EQ(project->Serialize(), text_);
        const auto assets = MediaOf(*project);
        EXPECT_EQ(assets[0]->MediaFile(), assets[3]->MediaFile());
        EXPECT_EQ(assets[2]->MediaFile(), assets[7]->MediaFile());

        if (cancelAt % 2 == 0) {
            media->WakeAll();
        } else {
            for (auto asset : assets)
                if (asset->MediaFileStatus() == Status::Failed)
                    asset->Wake();
        }
        EXPECT_EQ(StatusesOf(*project), Expected(5)) << cancelAt;
        EXPECT_TRUE(GivesAFrame(*assets[7]));
    }
}

TEST_F(MediaLoadTest, OpensWhatIsLeftWhenItIsAskedForAgain)
{
    NotedProgress progress;
    progress.cancelAt = 1;
    const auto media = std::make_shared<MediaManager>();
    const auto cancelled = LoadWith(text_, media, &progress);

    auto reloaded = MediaOf(*cancelled)[2];
    media->TryReload(reloaded);
    EXPECT_TRUE(GivesAFrame(*reloaded));
    EXPECT_FALSE(media->CreateMediaAsset(files_[4])->IsOffline());
    // Whoever points at the one that was not opened keeps it until it wakes.
    EXPECT_EQ(MediaOf(*cancelled)[6]->MediaFileStatus(), Status::Failed);

    NotedProgress rest;
    const auto project = LoadWith(text_, media, &rest);
    EXPECT_EQ(rest.told, (std::vector{files_[1], files_[3]}));
    EXPECT_EQ(StatusesOf(*project), Expected(5));
    media->WakeAll();
    EXPECT_EQ(StatusesOf(*cancelled), Expected(5));
}

TEST_F(MediaLoadTest, SharesAManagerThatHasTheFilesOpen)
{
    auto first = LoadWith(text_, nullptr, nullptr);
    NotedProgress progress;
    const auto second = LoadWith(text_, first->SharedMedia(), &progress);
    // What could not be opened is tried anew.
    EXPECT_EQ(progress.told, std::vector{files_[1]});
    for (std::size_t i = 0; i < 8; ++i)
        EXPECT_EQ(MediaOf(*second)[i]->MediaFile(), MediaOf(*first)[i]->MediaFile());
    const auto third = Project::Create(nullptr, first->SharedMedia());
    EXPECT_EQ(&third->Media(), &second->Media());
    EXPECT_NE(&Project::Create(nullptr, nullptr)->Media(), &second->Media());
    first.reset();
    EXPECT_TRUE(GivesAFrame(*MediaOf(*second)[0]));
}

TEST_F(MediaLoadTest, EndsWithWhatTheHostThrows)
{
    const auto media = std::make_shared<MediaManager>();
    NotedProgress progress;
    progress.throwAt = 2;
    EXPECT_THROW(LoadWith(text_, media, &progress), std::runtime_error);
    EXPECT_EQ(progress.told.size(), 2u);
    NotedProgress again;
    EXPECT_EQ(StatusesOf(*LoadWith(text_, media, &again)), Expected(5));
    EXPECT_EQ(again.told, std::vector(files_.begin() + 1, files_.end()));
}

TEST_F(MediaLoadTest, TellsOfManyFilesThatAreImported)
{
    MediaManager manager;
    NotedProgress progress;
    progress.cancelAt = 2;
    const std::vector paths = {files_[0], files_[1], clips_.Path("ONE.MOV"), files_[4], files_[4]};
    const auto assets = manager.CreateMediaAssets(paths, &progress);
    constexpr Status kExpected[] = {Status::Usable, Status::Missing, Status::Usable, Status::Failed,
                                    Status::Failed};
    ASSERT_EQ(assets.size(), paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i) {
        EXPECT_EQ(assets[i]->MediaFileStatus(), kExpected[i]) << i;
        EXPECT_EQ(assets[i]->Filename(), paths[i]);
    }
    EXPECT_EQ(progress.told, (std::vector{files_[0], files_[1]}));

    NotedProgress rest;
    const auto again = manager.CreateMediaAssets(paths, &rest);
    EXPECT_EQ(rest.told, std::vector{files_[4]});
    EXPECT_TRUE(again[1]->IsOffline() && GivesAFrame(*again[3]));
}

TEST(MediaManager, KeepsABudgetAndAFolderForItsFiles)
{
    MediaManager manager;
    EXPECT_EQ(manager.CacheBudget(), std::size_t{256} << 20);
    manager.SetCacheBudget(12345);
    EXPECT_EQ(manager.CacheBudget(), 12345u);
    EXPECT_EQ(MediaManager().CacheBudget(), std::size_t{256} << 20);
    EXPECT_EQ(manager.IndexFolder(), u"");
    manager.SetIndexFolder(u"/tmp/\u00E9");
    EXPECT_EQ(manager.IndexFolder(), u"/tmp/\u00E9");
}
