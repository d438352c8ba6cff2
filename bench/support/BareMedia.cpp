#include <bench/support/BareMedia.h>

#include <algorithm>
#include <stdexcept>
#include <thread>

namespace bench
{

void Require(bool condition)
{
    if (!condition)
        throw std::runtime_error("a clip cannot be read");
}

void OpenBare(const std::string &path, bool readsPackets)
{
    AVFormatContext *format = nullptr;
    Require(avformat_open_input(&format, path.c_str(), nullptr, nullptr) >= 0);
    Require(avformat_find_stream_info(format, nullptr) >= 0);
    AVPacket *packet = av_packet_alloc();
    while (readsPackets && av_read_frame(format, packet) >= 0)
        av_packet_unref(packet);
    av_packet_free(&packet);
    avformat_close_input(&format);
}

BareLoop::BareLoop(const std::string &path)
{
    Require(avformat_open_input(&format_, path.c_str(), nullptr, nullptr) >= 0);
    Require(avformat_find_stream_info(format_, nullptr) >= 0);
    const AVCodecParameters *parameters = format_->streams[0]->codecpar;
    const AVCodec *codec = avcodec_find_decoder(parameters->codec_id);
    decoder_ = avcodec_alloc_context3(codec);
    avcodec_parameters_to_context(decoder_, parameters);
    decoder_->thread_count = static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1u, 8u));
    Require(avcodec_open2(decoder_, codec, nullptr) >= 0);
    const auto scaler = [this](AVPixelFormat format) {
        return sws_getContext(decoder_->width, decoder_->height, decoder_->pix_fmt, decoder_->width,
                              decoder_->height, format, SWS_BILINEAR | SWS_ACCURATE_RND, nullptr, nullptr,
                              nullptr);
    };
    toFour_ = scaler(AV_PIX_FMT_BGRA);
    toThree_ = scaler(AV_PIX_FMT_RGB24);
}

BareLoop::~BareLoop()
{
    sws_freeContext(toFour_);
    sws_freeContext(toThree_);
    av_frame_free(&frame_);
    av_packet_free(&packet_);
    avcodec_free_context(&decoder_);
    avformat_close_input(&format_);
}

int BareLoop::ReadAll(Bytes &buffer)
{
    int frames = 0;
    for (; DecodeNext(); ++frames)
        Convert(*frame_, buffer);
    return frames;
}

std::vector<AVFrame *> BareLoop::Decode(int count)
{
    std::vector<AVFrame *> frames;
    while (static_cast<int>(frames.size()) < count && DecodeNext())
        frames.push_back(av_frame_clone(frame_));
    return frames;
}

void BareLoop::Convert(const AVFrame &frame, Bytes &buffer, bool hasAlpha)
{
    unsigned char *planes[] = {buffer.data()};
    const int strides[] = {frame.width * (hasAlpha ? 4 : 3)};
    sws_scale(hasAlpha ? toFour_ : toThree_, frame.data, frame.linesize, 0, frame.height, planes, strides);
}

bool BareLoop::DecodeNext()
{
    for (;;) {
        const int result = avcodec_receive_frame(decoder_, frame_);
        if (result != AVERROR(EAGAIN))
            return result >= 0;
        const bool isMore = av_read_frame(format_, packet_) >= 0;
        avcodec_send_packet(decoder_, isMore ? packet_ : nullptr);
        av_packet_unref(packet_);
    }
}

} // namespace bench
