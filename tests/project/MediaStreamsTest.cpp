#include <tests/support/FakeMedia.h>

#include <marlet/platform/media/KyMedia.h>
#include <marlet/project/MediaAudioStream.h>
#include <marlet/project/MediaVideoStream.h>

#include <boost/smart_ptr/shared_array.hpp>
#include <fcntl.h>
#include <gtest/gtest.h>

#include <climits>
#include <cmath>

using namespace marlet::project;
using kyh::media::KyImageChannels;
using kyh::media::KyVideoCodec;

namespace
{

struct MediaVideoStreamTest : testing::Test {
    marlet::test::FakeMedia media;
    std::shared_ptr<MediaVideoStream> stream = media.asset->VideoStream();
    marlet::test::FakeVideo &video = *media.file.video;

    static constexpr unsigned int kRoom = 64 * 32 * 4;
    boost::shared_array<unsigned char> scratch;
    unsigned int scratchSize = 0;
    boost::shared_array<unsigned char> destination{new unsigned char[kRoom]()};
    std::pair<int, int> size;

    int Read(double rate, int frame, int flags = 0)
    {
        return stream->GetFrame(rate, frame, KyImageChannels::Four, destination.get(), kRoom, nullptr, flags);
    }
    int ReadScaled(int maxWidth, int maxHeight, unsigned int room = kRoom, int frame = 0)
    {
        return stream->GetFrame(30.0, frame, maxWidth, maxHeight, scratch, scratchSize, destination, room,
                                &size.first, &size.second, 0);
    }
};

bool IsOpen(int descriptor)
{
    return fcntl(descriptor, F_GETFD) != -1;
}

} // namespace

TEST_F(MediaVideoStreamTest, CountsFramesAtAnotherRateThanTheFiles)
{
    const std::tuple<double, std::optional<double>, double, int> kCases[] = {
        {0.0, {}, 1.0, 100}, {29.97, {}, 30.0, 100}, {30.0, 15.0, 30.0, 200},    {30.0, 0.5, 30.0, 6000},
        {30.0, {}, NAN, 0},  {30.0, {}, 0.0, 0},     {30.0, 0.0, 30.0, INT_MAX}, {30.0, -15.0, 30.0, -200}};
    for (const auto &[fileRate, rate, asked, count] : kCases) {
        video.frameRate = fileRate;
        media.asset->Override().overrideFrameRate = rate.has_value();
        media.asset->Override().frameRate = rate.value_or(99);
        EXPECT_EQ(stream->OriginalFrameRate(), std::max(fileRate, 1.0));
        EXPECT_EQ(stream->FrameCount(asked), count) << fileRate << " at " << asked;
        EXPECT_EQ(stream->FrameCount(), 100);
        // The last frame, if there is any, is one that the file has.
        EXPECT_EQ(Read(asked, count - 1), count > 0 ? 0 : 8);
        EXPECT_LT(video.lastFrame, 100);
    }
}

TEST_F(MediaVideoStreamTest, ShowsTheFrameOfTheFileThatTheRatesPick)
{
    const std::tuple<double, int, int> kCases[] = {
        {60, 10, 5}, {60, 11, 5}, {24, 79, 98}, {15, 3, 6}, {60, 199, 99}};
    for (const auto &[rate, frame, expected] : kCases) {
        EXPECT_EQ(Read(rate, frame, 7), 0);
        EXPECT_EQ(video.lastFrame, expected) << frame << " at " << rate;
        EXPECT_EQ(video.lastFlags, 1);
    }
    const int calls = video.calls;
    for (const int outside : {-1, 100}) {
        EXPECT_EQ(stream->GetFrame(outside, KyImageChannels::Four, destination.get(), kRoom, nullptr, 0), 8);
        EXPECT_EQ(Read(30.0, outside), 8);
        EXPECT_EQ(ReadScaled(64, 32, kRoom, outside), 8);
    }
    EXPECT_EQ(video.calls, calls);
}

TEST_F(MediaVideoStreamTest, KnowsTheShapeOfPixelsAndTheFields)
{
    const std::tuple<KyVideoCodec, int, double, int, PAR, VideoFields> kCases[] = {
        {KyVideoCodec::H264, 1440, 16.0 / 11, 1, PAR::PalWide, VideoFields::Progressive},
        {KyVideoCodec::H264, 1440, 1.23, 2, PAR::Square, VideoFields::StandardDefinitionInterlaced},
        {KyVideoCodec::Shapeless, 1440, 2.0, 3, PAR::FourThirds, VideoFields::HighDefinitionInterlaced},
        {KyVideoCodec::Shapeless, 1920, 2.0, 4, PAR::Square, VideoFields::Progressive}};
    video.height = 1080;
    for (const auto &[codec, width, aspect, order, par, fields] : kCases) {
        std::tie(video.codec, video.width) = std::tuple(codec, width);
        std::tie(video.pixelAspect, video.fieldOrder) = std::tuple(aspect, order);
        EXPECT_EQ(stream->AspectRatio(), par) << width << " " << aspect;
        EXPECT_EQ(stream->FieldsType(), fields) << order;
    }
    media.asset->Override() = {
        .overrideFields = true, .overridePAR = true, .fields = VideoFields{9}, .par = PAR::Ntsc};
    EXPECT_EQ(stream->AspectRatio(), PAR::Ntsc);
    EXPECT_EQ(stream->FieldsType(), VideoFields{9});
}

TEST_F(MediaVideoStreamTest, ScalesDownWhatIsLargerThanAskedForIfItFits)
{
    EXPECT_EQ(ReadScaled(64, 32), 0);
    EXPECT_EQ(video.lastBuffer, destination.get());
    EXPECT_EQ(scratch, nullptr);

    EXPECT_EQ(ReadScaled(64, 31), 0);
    EXPECT_EQ(size, std::pair(62, 31));
    // Straight alpha stays straight, but for the rounding of two conversions.
    for (int i = 0; i < 62 * 31 * 4; ++i)
        ASSERT_NEAR(destination[i], 128, 2) << i;
    unsigned char *const first = scratch.get();
    EXPECT_EQ(scratchSize, 64U * 32 * 4);

    // A failed decode is handed back, and what was there is scaled.
    video.code = 13;
    EXPECT_EQ(ReadScaled(1, 100), 13);
    EXPECT_EQ(size, std::pair(1, 1));
    EXPECT_EQ(video.lastBuffer, first);
    EXPECT_EQ(scratch.get(), first);

    video.code = 0;
    std::fill_n(destination.get(), kRoom, static_cast<unsigned char>(0));
    EXPECT_EQ(ReadScaled(16, 16, 16 * 8 * 4 - 1), kyh::media::kBufferTooSmall);
    for (const auto &[maxWidth, maxHeight] : {std::pair(0, 16), std::pair(16, -1), std::pair(INT_MIN, 0)}) {
        EXPECT_EQ(ReadScaled(maxWidth, maxHeight), kyh::media::kFailed);
        EXPECT_EQ(size, std::pair(0, 0));
    }
    video.height = 0;
    EXPECT_EQ(ReadScaled(16, 16), kyh::media::kFailed);
    EXPECT_EQ(std::count(destination.get(), destination.get() + kRoom, 0), kRoom);
}

TEST(MediaAudioStream, CountsFramesAndMillisecondsOfItsSamples)
{
    const std::tuple<unsigned long long, unsigned int, double, int, int> kCases[] = {
        {48000, 48000, 29.97, 30, 1000},      {48001, 48000, 30.0, 31, 1000},
        {44099, 44100, 23.976, 24, 999},      {0, 0, 30.0, 0, 0},
        {48000, 0, 30.0, INT_MAX, INT_MAX},   {48000, 48000, NAN, 0, 1000},
        {~0ULL, 8000, 30.0, INT_MAX, INT_MAX}};
    marlet::test::FakeMedia media;
    const auto stream = media.asset->AudioStream();
    for (const auto &[samples, sampleRate, frameRate, frames, milliseconds] : kCases) {
        media.file.audio->sampleCount = samples;
        media.file.audio->sampleRate = sampleRate;
        EXPECT_EQ(stream->FrameCount(frameRate), frames) << samples << " at " << frameRate;
        EXPECT_EQ(stream->DurationMilliseconds(), milliseconds) << samples;
    }
}

TEST(MediaAudioStream, ClosesItsConformedFile)
{
    marlet::test::FakeMedia media;
    auto stream = media.asset->AudioStream();
    std::FILE *files[] = {std::tmpfile(), std::tmpfile()};
    const int descriptors[] = {fileno(files[0]), fileno(files[1])};
    stream->SetConformedFile(files[0], 5);
    stream->SetConformedFile(files[1], 6);
    EXPECT_FALSE(IsOpen(descriptors[0]));
    stream->SetConformedFile(files[1], 7);
    EXPECT_TRUE(IsOpen(descriptors[1]));

    media.asset->Wake();
    EXPECT_EQ(media.asset->AudioStream()->ConformedFile().file, nullptr);
    EXPECT_EQ(stream->ConformedFile().file, files[1]);
    stream.reset();
    EXPECT_FALSE(IsOpen(descriptors[1]));
}
