// A 1080p clip read frame by frame, as the library hands it out and by a bare loop of the same decoder and
// scaler.

#include <bench/support/Stopwatch.h>

#include <marlet/platform/media/KyMedia.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/MediaVideoStream.h>

#include <encode/Encoder.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include <unistd.h>

using namespace kyh::media;

namespace
{

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr int kFrames = 90;

using Bytes = std::vector<unsigned char>;

/// Shades that move, with some noise.
void FillFrame(Bytes &frame, int number)
{
    unsigned int noise = static_cast<unsigned int>(number) * 2654435761u;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            noise = noise * 1664525u + 1013904223u;
            unsigned char *pixel = &frame[static_cast<std::size_t>(y * kWidth + x) * 4];
            const int shade = (x + number * 3) / 2 + y / 3 + static_cast<int>(noise >> 28);
            pixel[0] = static_cast<unsigned char>(shade);
            pixel[1] = static_cast<unsigned char>(shade / 2 + 60);
            pixel[2] = static_cast<unsigned char>(255 - shade % 256);
        }
}

/// A clip that is there until the program ends.
class Clip
{
public:
    Clip()
        : path_(std::filesystem::temp_directory_path() /
                ("marlet-bench-" + std::to_string(::getpid()) + ".mov"))
    {
        marlet::tool::EncoderOptions options;
        options.width = kWidth;
        options.height = kHeight;
        options.quantiser = 4;
        marlet::tool::Encoder encoder(path_, options);
        Bytes frame(std::size_t{kWidth} * kHeight * 4, 255);
        for (int i = 0; i < kFrames; ++i) {
            FillFrame(frame, i);
            encoder.AddFrame(frame.data(), kWidth * 4);
        }
        encoder.Finish();
    }
    Clip(const Clip &) = delete;
    Clip &operator=(const Clip &) = delete;
    ~Clip() { std::filesystem::remove(path_); }

    const std::string &Path() const { return path_; }

private:
    std::string path_;
};

const std::string &ClipPath()
{
    static const Clip clip;
    return clip.Path();
}

void Require(bool condition)
{
    if (!condition)
        throw std::runtime_error("the clip cannot be read");
}

/// The least program that decodes the first stream of a file and converts it.
class BareLoop
{
public:
    explicit BareLoop(const std::string &path)
    {
        Require(avformat_open_input(&format_, path.c_str(), nullptr, nullptr) >= 0);
        Require(avformat_find_stream_info(format_, nullptr) >= 0);
        const AVCodecParameters *parameters = format_->streams[0]->codecpar;
        const AVCodec *codec = avcodec_find_decoder(parameters->codec_id);
        decoder_ = avcodec_alloc_context3(codec);
        avcodec_parameters_to_context(decoder_, parameters);
        decoder_->thread_count = static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1u, 8u));
        Require(avcodec_open2(decoder_, codec, nullptr) >= 0);
        scaler_ = sws_getContext(kWidth, kHeight, decoder_->pix_fmt, kWidth, kHeight, AV_PIX_FMT_BGRA,
                                 SWS_BILINEAR | SWS_ACCURATE_RND, nullptr, nullptr, nullptr);
    }
    BareLoop(const BareLoop &) = delete;
    BareLoop &operator=(const BareLoop &) = delete;
    ~BareLoop()
    {
        sws_freeContext(scaler_);
        av_frame_free(&frame_);
        av_packet_free(&packet_);
        avcodec_free_context(&decoder_);
        avformat_close_input(&format_);
    }

    int ReadAll(Bytes &buffer)
    {
        int frames = 0;
        bool isMore = true;
        while (isMore) {
            isMore = av_read_frame(format_, packet_) >= 0;
            avcodec_send_packet(decoder_, isMore ? packet_ : nullptr);
            av_packet_unref(packet_);
            for (; avcodec_receive_frame(decoder_, frame_) >= 0; ++frames) {
                unsigned char *planes[] = {buffer.data()};
                const int strides[] = {kWidth * 4};
                sws_scale(scaler_, frame_->data, frame_->linesize, 0, kHeight, planes, strides);
            }
        }
        return frames;
    }

private:
    AVFormatContext *format_ = nullptr;
    AVCodecContext *decoder_ = nullptr;
    SwsContext *scaler_ = nullptr;
    AVPacket *packet_ = av_packet_alloc();
    AVFrame *frame_ = av_frame_alloc();
};

void ReadClipBare(benchmark::State &state)
{
    Bytes buffer(std::size_t{kWidth} * kHeight * 4);
    for (auto _ : state) {
        BareLoop loop(ClipPath());
        const bench::Clock::time_point start = bench::Clock::now();
        Require(loop.ReadAll(buffer) == kFrames);
        state.SetIterationTime(bench::SecondsSince(start) / kFrames);
    }
}

void ReadClip(benchmark::State &state)
{
    marlet::project::MediaManager media;
    const auto asset = media.CreateMediaAsset(std::filesystem::path(ClipPath()).u16string());
    const auto video = asset->VideoStream();
    Require(video != nullptr);
    Bytes buffer(static_cast<std::size_t>(video->FrameBufferSize(KyImageChannels::Four)));
    Require(video->FrameCount() == kFrames);
    for (auto _ : state) {
        const bench::Clock::time_point start = bench::Clock::now();
        for (int i = 0; i < kFrames; ++i)
            Require(video->GetFrame(i, KyImageChannels::Four, buffer.data(), static_cast<int>(buffer.size()),
                                    nullptr, 0) == kSuccess);
        state.SetIterationTime(bench::SecondsSince(start) / kFrames);
    }
}

// The time is that of a frame, so that the benchmark would read the clip a hundred times to fill half a
// second.
BENCHMARK(ReadClipBare)->UseManualTime()->Iterations(2)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadClip)->UseManualTime()->Iterations(2)->Unit(benchmark::kMillisecond);

} // namespace
