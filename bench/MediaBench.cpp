// A 1080p clip with few key frames as the library hands it out, in any order, and by bare loops of the same
// decoder and scaler.

#include <bench/support/BareMedia.h>
#include <bench/support/MediaClips.h>
#include <bench/support/Stopwatch.h>

#include <marlet/platform/media/KyMedia.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/MediaVideoStream.h>

#include <QImage>
#include <boost/smart_ptr/shared_array.hpp>

#include <cstring>
#include <filesystem>
#include <memory>
#include <random>

using namespace kyh::media;

namespace
{

using bench::Bytes;
using bench::Require;

constexpr std::size_t kFrameBytes = std::size_t{bench::kHdWidth} * bench::kHdHeight * 4;
/// Holds a group of the clip as it is decoded, 778 MB.
constexpr int kRoomForGroup = 900;
constexpr int kUsualRoom = 256;

/// The clip in a manager of its own, so that nothing of it is kept from before.
class Reader
{
public:
    explicit Reader(int megabytes)
    {
        manager_.SetCacheBudget(static_cast<std::size_t>(megabytes) << 20);
        asset_ = manager_.CreateMediaAsset(std::filesystem::path(bench::HdClip()).u16string());
        video_ = asset_->VideoStream();
        Require(video_ && video_->FrameCount() == bench::kHdFrames);
    }

    void Read(int frame, KyImageChannels channels = KyImageChannels::Four)
    {
        Require(video_->GetFrame(frame, channels, buffer_.data(), static_cast<int>(buffer_.size()), nullptr,
                                 0) == kSuccess);
    }

    void ReadScaled(int frame, int width, int height)
    {
        Require(video_->GetFrame(video_->FrameRate(), frame, width, height, scratch_, scratchSize_,
                                 destination_, kFrameBytes, &width, &height, 0) == kSuccess);
    }

private:
    marlet::project::MediaManager manager_;
    std::shared_ptr<marlet::project::MediaAsset> asset_;
    std::shared_ptr<marlet::project::MediaVideoStream> video_;
    Bytes buffer_ = Bytes(kFrameBytes);
    boost::shared_array<unsigned char> scratch_;
    unsigned int scratchSize_ = 0;
    boost::shared_array<unsigned char> destination_{new unsigned char[kFrameBytes]()};
};

/// The first frames of the clip as they are decoded.
class DecodedFrames
{
public:
    explicit DecodedFrames(int count) : loop_(bench::HdClip()), frames_(loop_.Decode(count)) {}
    DecodedFrames(const DecodedFrames &) = delete;
    DecodedFrames &operator=(const DecodedFrames &) = delete;
    ~DecodedFrames()
    {
        for (AVFrame *frame : frames_)
            av_frame_free(&frame);
    }

    void Convert(int frame, bool hasAlpha = true) { loop_.Convert(*frames_.at(frame), buffer_, hasAlpha); }
    const Bytes &Converted() const { return buffer_; }

private:
    bench::BareLoop loop_;
    std::vector<AVFrame *> frames_;
    Bytes buffer_ = Bytes(kFrameBytes);
};

/// The same numbers below a count each time.
class RandomFrames
{
public:
    explicit RandomFrames(int count) : distribution_(0, count - 1) {}
    int Next() { return distribution_(engine_); }

private:
    std::mt19937 engine_;
    std::uniform_int_distribution<int> distribution_;
};

// The time of reading a whole clip is that of a frame.

void ReadForwardsBare(benchmark::State &state)
{
    Bytes buffer(kFrameBytes);
    for (auto _ : state) {
        bench::BareLoop loop(bench::HdClip());
        const bench::Clock::time_point start = bench::Clock::now();
        Require(loop.ReadAll(buffer) == bench::kHdFrames);
        state.SetIterationTime(bench::SecondsSince(start) / bench::kHdFrames);
    }
}

void ReadAll(benchmark::State &state, int first, int step)
{
    for (auto _ : state) {
        Reader reader(static_cast<int>(state.range(0)));
        const bench::Clock::time_point start = bench::Clock::now();
        for (int i = 0; i < bench::kHdFrames; ++i)
            reader.Read(first + i * step);
        state.SetIterationTime(bench::SecondsSince(start) / bench::kHdFrames);
    }
}

void ReadForwards(benchmark::State &state)
{
    ReadAll(state, 0, 1);
}

void ReadBackwards(benchmark::State &state)
{
    ReadAll(state, bench::kHdFrames - 1, -1);
}

constexpr int kSameFrame = 100;

void ReadSameFrame(benchmark::State &state)
{
    Reader reader(kUsualRoom);
    reader.Read(kSameFrame);
    for (auto _ : state)
        reader.Read(kSameFrame);
}

void CopyFrame(benchmark::State &state)
{
    const Bytes source(kFrameBytes, 1);
    Bytes target(kFrameBytes);
    for (auto _ : state) {
        std::memcpy(target.data(), source.data(), kFrameBytes);
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
    }
}

void ReadSameFrameOtherChannels(benchmark::State &state)
{
    Reader reader(kUsualRoom);
    reader.Read(kSameFrame);
    for (auto _ : state) {
        reader.Read(kSameFrame, KyImageChannels::Three);
        reader.Read(kSameFrame, KyImageChannels::Four);
    }
}

void ConvertToBothChannels(benchmark::State &state)
{
    DecodedFrames frames(1);
    for (auto _ : state) {
        frames.Convert(0, false);
        frames.Convert(0, true);
    }
}

constexpr int kSizes[][2] = {{960, 540}, {640, 360}};

void ReadSameFrameOtherSize(benchmark::State &state)
{
    Reader reader(kUsualRoom);
    reader.Read(kSameFrame);
    for (auto _ : state)
        for (const auto &[width, height] : kSizes)
            reader.ReadScaled(kSameFrame, width, height);
}

void ConvertToBothSizes(benchmark::State &state)
{
    DecodedFrames frames(1);
    for (auto _ : state)
        for (const auto &[width, height] : kSizes) {
            frames.Convert(0);
            const QImage picture(frames.Converted().data(), bench::kHdWidth, bench::kHdHeight,
                                 QImage::Format_ARGB32);
            const QImage scaled =
                picture.scaled(width, height, Qt::KeepAspectRatio, Qt::SmoothTransformation);
            benchmark::DoNotOptimize(scaled.constBits());
        }
}

void ReadRandomInGroup(benchmark::State &state)
{
    Reader reader(kRoomForGroup);
    for (int frame = 0; frame < bench::kHdGroup; ++frame)
        reader.Read(frame);
    RandomFrames random(bench::kHdGroup);
    for (auto _ : state)
        reader.Read(random.Next());
}

void ConvertRandom(benchmark::State &state)
{
    DecodedFrames frames(bench::kHdGroup);
    RandomFrames random(bench::kHdGroup);
    for (auto _ : state)
        frames.Convert(random.Next());
}

BENCHMARK(ReadForwardsBare)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadForwards)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond)->Arg(kUsualRoom);
BENCHMARK(ReadBackwards)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->Arg(kUsualRoom)
    ->Arg(kRoomForGroup);
BENCHMARK(ReadSameFrame)->Unit(benchmark::kMillisecond);
BENCHMARK(CopyFrame)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadSameFrameOtherChannels)->Unit(benchmark::kMillisecond);
BENCHMARK(ConvertToBothChannels)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadSameFrameOtherSize)->Unit(benchmark::kMillisecond);
BENCHMARK(ConvertToBothSizes)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadRandomInGroup)->Unit(benchmark::kMillisecond);
BENCHMARK(ConvertRandom)->Unit(benchmark::kMillisecond);

} // namespace
