#include <bench/support/BareMedia.h>

#include <algorithm>
#include <cstdint>
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

BareSound::BareSound(const std::string &path)
{
    Require(avformat_open_input(&format_, path.c_str(), nullptr, nullptr) >= 0);
    Require(avformat_find_stream_info(format_, nullptr) >= 0);
    const AVCodec *codec = nullptr;
    stream_ = av_find_best_stream(format_, AVMEDIA_TYPE_AUDIO, -1, -1, &codec, 0);
    Require(stream_ >= 0);
    for (unsigned int i = 0; i < format_->nb_streams; ++i)
        if (static_cast<int>(i) != stream_)
            format_->streams[i]->discard = AVDISCARD_ALL;
    decoder_ = avcodec_alloc_context3(codec);
    avcodec_parameters_to_context(decoder_, format_->streams[stream_]->codecpar);
    Require(avcodec_open2(decoder_, codec, nullptr) >= 0);
}

BareSound::~BareSound()
{
    av_frame_free(&frame_);
    av_packet_free(&packet_);
    avcodec_free_context(&decoder_);
    avformat_close_input(&format_);
}

void BareSound::Read(int start, int count)
{
    const AVStream &stream = *format_->streams[stream_];
    const AVRational perSample = {1, decoder_->sample_rate};
    const auto sampleOf = [&](std::int64_t time) { return av_rescale_q(time, stream.time_base, perSample); };
    // A packet overlaps with the one before.
    const std::int64_t from = std::max(start - decoder_->frame_size, 0);
    Require(av_seek_frame(format_, stream_, av_rescale_q(from, perSample, stream.time_base),
                          AVSEEK_FLAG_BACKWARD) >= 0);
    avcodec_flush_buffers(decoder_);
    for (std::int64_t end = 0; end < start + count && av_read_frame(format_, packet_) >= 0;) {
        if (packet_->stream_index == stream_)
            avcodec_send_packet(decoder_, packet_);
        av_packet_unref(packet_);
        while (avcodec_receive_frame(decoder_, frame_) >= 0)
            end = sampleOf(frame_->pts) + frame_->nb_samples;
    }
}

} // namespace bench
