#include "ClipFiles.h"
#include "Loading.h"

#include <tests/support/FakeMedia.h>

#include <marlet/platform/media/KyMedia.h>
#include <marlet/project/AssetPicture.h>
#include <marlet/project/MediaAudioStream.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/project/ProjectTextureImageCache.h>

#include <QDomDocument>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <optional>
#include <tuple>

using namespace marlet::project;
using marlet::test::FakeMedia;
using Status = MediaAsset::Status;

namespace
{

const ProjectTextureImageCache kNoTextures;

/// Of a frame; a code of the media layer below 0.
int GreyOf(const std::shared_ptr<MediaVideoStream> &stream)
{
    std::vector<unsigned char> picture(ClipFiles::kWidth * ClipFiles::kHeight * 4);
    const int code = stream->GetFrame(3, kyh::media::KyImageChannels::Four, picture.data(),
                                      static_cast<int>(picture.size()), nullptr, 0);
    return code == 0 ? picture[0] : -code;
}

auto OpenDescriptors()
{
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return std::distance(begin(entries), end(entries));
}

} // namespace

TEST(MediaManager, OpensOneFileForPathsThatDifferInCase)
{
    const ClipFiles clips;
    const WideString other = clips.Path("cLIP é.MOV");
    MediaManager manager;
    const auto first = manager.CreateMediaAsset(clips.Write("Clip É.mov", 90));
    const auto second = manager.CreateMediaAsset(other);
    ASSERT_EQ(first->MediaFileStatus(), Status::Usable);
    EXPECT_EQ(second->MediaFile(), first->MediaFile());
    EXPECT_EQ(second->Filename(), other);
    EXPECT_TRUE(first->HasVideo() && !first->HasAudio());

    // What a path was opened as at first counts.
    const auto sequence = manager.CreateImageSequence(other, 24.0);
    EXPECT_EQ(sequence->MediaFile(), first->MediaFile());
    EXPECT_TRUE(sequence->IsImageSequence() && sequence->Override().overrideFrameRate);
    EXPECT_EQ(sequence->Override().frameRate, 24.0);
}

TEST(MediaManager, TriesAFailedPathAgainForAReloadAndForALoadAlone)
{
    const ClipFiles clips;
    const WideString path = clips.Path("late.mov");
    MediaManager manager;
    auto asset = manager.CreateMediaAsset(path);
    EXPECT_EQ(asset->MediaFileStatus(), Status::Missing);
    EXPECT_TRUE(!asset->HasVideo() && !asset->VideoStream() && !asset->AudioStream());
    clips.Write("late.mov", 90);

    EXPECT_TRUE(manager.CreateMediaAsset(path)->IsOffline());
    auto relinked = manager.CreateMediaAsset(clips.Path("another.mov"));
    manager.RelinkMediaFile(relinked, path);
    EXPECT_TRUE(relinked->IsOffline());
    const auto loaded = manager.CreateMediaAssetFromXml(asset->Serialize(kNoTextures));
    EXPECT_FALSE(loaded->IsOffline());
    EXPECT_TRUE(asset->IsOffline());
    manager.TryReload(asset);
    EXPECT_FALSE(asset->IsOffline());
    EXPECT_NE(asset->MediaFile(), loaded->MediaFile());
}

TEST(MediaManager, RelinksAnAssetAndLeavesTheOldFileToItsUsers)
{
    const ClipFiles clips;
    const auto descriptors = OpenDescriptors();
    {
        MediaManager manager;
        auto asset = manager.CreateMediaAsset(clips.Write("dark.mov", 40));
        const auto sharing = manager.CreateMediaAsset(asset->Filename());
        const auto held = asset->VideoStream();
        manager.RelinkMediaFile(asset, clips.Write("bright.mov", 200));
        EXPECT_EQ(asset->Name(), u"dark.mov");
        EXPECT_NEAR(GreyOf(asset->VideoStream()), 200, 4);
        EXPECT_NEAR(GreyOf(held), 40, 4);
        EXPECT_NEAR(GreyOf(sharing->VideoStream()), 40, 4);

        manager.SleepAll();
        EXPECT_EQ(GreyOf(asset->VideoStream()), -kyh::media::kAsleep);
        EXPECT_FALSE(asset->IsOffline());
        manager.WakeAll();
        EXPECT_NEAR(GreyOf(asset->VideoStream()), 200, 4);

        manager.RelinkMediaFile(asset, clips.Path("none.mov"));
        EXPECT_EQ(asset->MediaFileStatus(), Status::Missing);
        EXPECT_EQ(asset->Filename(), clips.Path("none.mov"));
        EXPECT_EQ(asset->MediaFile(), nullptr);
    }
    EXPECT_EQ(OpenDescriptors(), descriptors);
}

TEST(MediaManager, WakesTheFileThatAnAssetIsPointedAt)
{
    const ClipFiles clips;
    const WideString path = clips.Write("bright.mov", 200);
    MediaManager manager;
    const auto sleeping = manager.CreateMediaAsset(path);
    auto asset = manager.CreateMediaAsset(clips.Write("dark.mov", 40));
    manager.SleepAll();
    manager.RelinkMediaFile(asset, path);
    EXPECT_NEAR(GreyOf(asset->VideoStream()), 200, 4);
    EXPECT_NEAR(GreyOf(sleeping->VideoStream()), 200, 4);
}

TEST(MediaManager, RelinksAndReloadsSequencesAtTheRateOfTheirAsset)
{
    const ClipFiles clips;
    const auto members = [&clips](const char *format, int count) {
        for (int number = 1; number <= count; ++number)
            clips.WritePicture(QString::asprintf(format, number).toStdString().c_str(), 60);
        return clips.Path(QString::asprintf(format, 1).toStdString().c_str());
    };
    const auto facts = [](const MediaAsset &asset) {
        const auto stream = asset.VideoStream();
        return std::tuple(stream->FrameCount(), stream->OriginalFrameRate(), asset.IsImageSequence());
    };
    MediaManager manager;
    auto asset = manager.CreateImageSequence(members("a.%02d.png", 2), 12.5);
    ASSERT_EQ(facts(*asset), std::tuple(2, 12.5, true));
    asset->Override().frameRate = 24;
    manager.RelinkImageSequence(asset, members("b.%02d.png", 3));
    EXPECT_EQ(facts(*asset), std::tuple(3, 24.0, true));
    EXPECT_EQ(asset->Name(), u"a.01.png");
    members("b.%02d.png", 5);
    asset->Override().frameRate = 50;
    manager.TryReload(asset);
    EXPECT_EQ(facts(*asset), std::tuple(5, 50.0, true));
    const auto loaded = manager.CreateMediaAssetFromXml(asset->Serialize(kNoTextures));
    EXPECT_EQ(loaded->MediaFile(), asset->MediaFile());
}

TEST(MediaManager, NeverCallsAFileUsableThatGivesNoFrames)
{
    const ClipFiles clips;
    struct Change {
        const char *name;
        std::function<void(const char *file)> change;
        std::optional<Status> status;
    };
    const auto overwrite = [&clips](const char *file, const std::string &bytes) {
        std::ofstream(std::filesystem::path(clips.Path(file)), std::ios::binary) << bytes;
    };
    const Change changes[] = {
        {"none", [](const char *) {}, Status::Usable},
        {"another clip", [&](const char *file) { clips.Write(file, 200, 25); }, std::nullopt},
        {"no clip", [&](const char *file) { overwrite(file, "no clip"); }, Status::Unreadable},
        {"no file", [&](const char *file) { std::filesystem::remove(clips.Path(file)); }, Status::Missing},
    };
    for (const Change &change : changes) {
        MediaManager manager;
        const auto asset = manager.CreateMediaAsset(clips.Write("clip.mov", 90));
        const auto held = asset->VideoStream();
        manager.SleepAll();
        change.change("clip.mov");
        manager.WakeAll();
        EXPECT_EQ(asset->MediaFileStatus(), change.status.value_or(asset->MediaFileStatus())) << change.name;
        EXPECT_TRUE(asset->IsOffline() || GreyOf(asset->VideoStream()) >= 0) << change.name;
        EXPECT_EQ(GreyOf(held) >= 0, change.status == Status::Usable) << change.name;
    }
}

TEST(MediaManager, OpensTheFilesOfAProjectAsItLoads)
{
    const ClipFiles clips;
    const auto project = Project::Create(nullptr);
    const auto asset = project->Media().CreateMediaAsset(clips.Write("clip.mov", 90));
    project->Assets().All().Add(asset);
    const auto loaded = Load(project->Serialize());
    const auto again = std::dynamic_pointer_cast<MediaAsset>(loaded->Assets().GetByID(asset->ID()));
    ASSERT_NE(again, nullptr);
    EXPECT_NEAR(GreyOf(again->VideoStream()), 90, 4);

    QDomDocument document;
    document.setContent(QString::fromStdU16String(asset->Serialize(kNoTextures)));
    QDomElement element = document.documentElement();
    const auto fromNode = loaded->Media().CreateMediaAssetFromXmlNode(&element);
    EXPECT_EQ(fromNode->Serialize(kNoTextures), asset->Serialize(kNoTextures));
    EXPECT_EQ(fromNode->MediaFile(), again->MediaFile());
}

TEST(MediaAsset, TakesItsStatusFromCodesAndDropsItsStreamsOnWaking)
{
    FakeMedia media;
    for (int code = -1; code <= 22; ++code) {
        Status expected = code == 0 ? Status::Usable : Status::Failed;
        if (code == 9 || code == 14 || code == 20)
            expected = Status::Missing;
        if (code == 10 || code == 13 || code == 18)
            expected = Status::Unreadable; // which stays, after 18
        const auto stream = media.asset->VideoStream();
        Hand(*media.asset, &media.file, 13);
        media.file.wakeCode = code;
        media.asset->Wake();
        EXPECT_EQ(media.asset->MediaFileStatus(), expected) << code;
        EXPECT_NE(stream, media.asset->VideoStream());
    }
}

TEST(MediaAsset, IsToldOfByItsNewFileIfThatIsUsable)
{
    FakeMedia media;
    for (const int code : {0, 9, 13, 17}) {
        const auto stream = media.asset->VideoStream();
        const int before = media.file.relinks;
        Relink(*media.asset, &media.file, code);
        EXPECT_EQ(media.file.relinks - before, code == 0 ? 1 : 0) << code;
        EXPECT_EQ(media.asset->IsOffline(), code != 0);
        EXPECT_NE(media.asset->VideoStream(), stream);
        EXPECT_EQ(media.asset->Filename(), u"/no/such/other.mov");
    }
}

TEST(MediaAsset, FollowsWhatBecomesOfItsFile)
{
    FakeMedia media;
    const auto video = media.asset->VideoStream();
    const auto audio = media.asset->AudioStream();
    const std::pair<int, Status> states[] = {{0, Status::Usable},
                                             {9, Status::Missing},
                                             {13, Status::Unreadable},
                                             {17, Status::Failed},
                                             {0, Status::Usable}};
    for (const auto &[state, status] : states) {
        media.file.state = state;
        EXPECT_EQ(media.asset->MediaFileStatus(), status) << state;
        EXPECT_EQ(std::static_pointer_cast<MediaAsset>(media.asset->Clone())->MediaFileStatus(), status);
    }
    EXPECT_EQ(media.asset->VideoStream(), video);
    EXPECT_EQ(media.asset->AudioStream(), audio);

    media.file.video = std::make_shared<marlet::test::FakeVideo>();
    media.file.video->width = 100;
    EXPECT_EQ(media.asset->Width(), 100);
    EXPECT_NE(media.asset->VideoStream(), video);
    media.file.audio.reset();
    EXPECT_EQ(media.asset->AudioStream(), nullptr);

    // What opening or waking gave counts until the file says something else, but no file is usable that is
    // not.
    Hand(*media.asset, &media.file, 13);
    EXPECT_TRUE(media.asset->IsOffline());
    media.file.state = 9;
    Hand(*media.asset, &media.file, 0);
    EXPECT_EQ(media.asset->MediaFileStatus(), Status::Missing);
}

TEST(MediaAsset, TellsFactsWhileAFrameIsDecodedAndReadsBesideAnotherOne)
{
    FakeMedia media;
    FakeMedia other;
    std::future<int> facts;
    bool isTold = false;
    media.file.video->onFrame = [&] {
        facts = std::async(std::launch::async, [&asset = *media.asset, &other] {
            asset.Clone();
            return GreyOf(other.asset->VideoStream()) + asset.HasVideo() + asset.HasAudio() +
                   asset.IsOffline() + asset.Width() + asset.Height() + asset.AudioStream()->ChannelCount() +
                   asset.VideoStream()->PixelBitCount() + (asset.MediaFile() != nullptr) +
                   PictureOf(asset).width;
        });
        isTold = facts.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
    };
    EXPECT_EQ(GreyOf(media.asset->VideoStream()), 128);
    EXPECT_TRUE(isTold);
    EXPECT_EQ(facts.get(), 128 + 1 + 1 + 0 + 64 + 32 + 2 + 32 + 1 + 64);
}

TEST(MediaAsset, KeepsTrimmerPointsWithinItsFrames)
{
    FakeMedia media;
    const auto point = [&media](int frame) {
        media.asset->SetTrimmerInPoint(frame);
        return media.asset->TrimmerInPoint();
    };
    EXPECT_EQ(point(-1), -1);
    EXPECT_EQ(point(99), 99);
    EXPECT_EQ(point(100), 99);
    EXPECT_NE(media.asset->Serialize(kNoTextures).find(u"<InPoint>99</InPoint>"), WideString::npos);
    media.file.video.reset();
    media.asset->Wake();
    EXPECT_EQ(point(99), 29);
    media.asset = media.manager.CreateMediaAsset(u"/no/such/file.mov");
    EXPECT_EQ(point(500), 500);
}

TEST(MediaAsset, IsClonedWithTheSameFileAndStreamsOfItsOwn)
{
    FakeMedia media;
    media.asset->Instances().Add({});
    const auto stream = media.asset->VideoStream();
    EXPECT_EQ(MediaAsset::Copy(media.asset), media.asset);
    const auto clone = std::dynamic_pointer_cast<MediaAsset>(media.asset->Clone());
    EXPECT_NE(clone->ID(), media.asset->ID());
    EXPECT_EQ(clone->MediaFile(), &media.file);
    EXPECT_TRUE(!clone->IsOffline() && clone->Instances().IsEmpty());
    EXPECT_TRUE(clone->VideoStream() != stream && &clone->Mutex() != &media.asset->Mutex());
}

TEST(MediaAsset, TellsItsPictureToWhatPlacesIt)
{
    FakeMedia media;
    media.file.video->pixelAspect = 2;
    media.file.video->frameRate = 25;
    for (const int code : {0, 13}) {
        Hand(*media.asset, &media.file, code);
        const AssetPicture picture = PictureOf(*media.asset);
        EXPECT_EQ(picture.width, code == 0 ? 64 : 300);
        EXPECT_EQ(picture.isOffline, code != 0);
        EXPECT_EQ(AbstractAsset::AspectRatio(media.asset), code == 0 ? 2 : 1);
        EXPECT_EQ(AudioFrameRateOf(*media.asset), 25);
    }
    media.file.video.reset();
    media.asset->Wake();
    EXPECT_EQ(AudioFrameRateOf(*media.asset), 30);
    EXPECT_EQ(media.asset->Width() + media.asset->Height(), 0);
}
