#include "Encoder.h"

#include "EncoderOutput.h"

extern "C" {
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>

namespace marlet::tool
{

namespace
{

constexpr int kMostSamplesAtOnce = 4096;
/// Pictures above this size are high definition, with the colours of BT.709.
constexpr int kStandardHeight = 576;

struct FreeScaler {
    void operator()(SwsContext *scaler) const { sws_freeContext(scaler); }
};
using ScalerPtr = std::unique_ptr<SwsContext, FreeScaler>;

/// One stream of the file.
struct Track {
    CodecPtr encoder;
    AVStream *stream = nullptr;
    FramePtr frame{av_frame_alloc()};
    std::int64_t position = 0;
};

AVColorSpace ColourSpaceFor(int height)
{
    return height > kStandardHeight ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
}

void SetFieldOrder(AVCodecContext &encoder, FieldOrder order)
{
    if (order == FieldOrder::WholeFrames)
        return;
    encoder.flags |= AV_CODEC_FLAG_INTERLACED_DCT | AV_CODEC_FLAG_INTERLACED_ME;
    encoder.field_order = order == FieldOrder::TopFirst ? AV_FIELD_TT : AV_FIELD_BB;
}

/// The codec counts in parts of a second that 16 bits can tell of: 119.88 frames a second come near
/// 120000/1001.
AVRational NearestRate(const Fraction &rate)
{
    constexpr int kMost = 65535;
    AVRational nearest;
    av_reduce(&nearest.num, &nearest.den, rate.numerator, rate.denominator, kMost);
    return nearest;
}

CodecPtr OpenVideo(const EncoderOutput &output, const EncoderOptions &options)
{
    CodecPtr encoder = output.NewEncoder(AV_CODEC_ID_MPEG4);
    encoder->width = options.width;
    encoder->height = options.height;
    encoder->pix_fmt = AV_PIX_FMT_YUV420P;
    encoder->colorspace = ColourSpaceFor(options.height);
    encoder->color_range = AVCOL_RANGE_MPEG;
    encoder->framerate = NearestRate(options.frameRate);
    encoder->time_base = av_inv_q(encoder->framerate);
    encoder->sample_aspect_ratio = {options.pixelAspect.numerator, options.pixelAspect.denominator};
    encoder->gop_size = options.groupSize;
    encoder->max_b_frames = options.bFrames;
    SetFieldOrder(*encoder, options.fieldOrder);
    if (options.bitRate > 0) {
        encoder->bit_rate = options.bitRate;
    } else {
        encoder->flags |= AV_CODEC_FLAG_QSCALE;
        encoder->global_quality = options.quantiser * FF_QP2LAMBDA;
        encoder->qmin = std::min(encoder->qmin, options.quantiser);
    }
    output.Check(avcodec_open2(encoder.get(), encoder->codec, nullptr));
    return encoder;
}

CodecPtr OpenAudio(const EncoderOutput &output, const EncoderOptions &options)
{
    CodecPtr encoder = output.NewEncoder(AV_CODEC_ID_PCM_S16LE);
    encoder->sample_rate = options.sampleRate;
    encoder->sample_fmt = AV_SAMPLE_FMT_S16;
    encoder->time_base = {1, options.sampleRate};
    av_channel_layout_default(&encoder->ch_layout, options.channels);
    output.Check(avcodec_open2(encoder.get(), encoder->codec, nullptr));
    return encoder;
}

ScalerPtr OpenConverter(const AVCodecContext &encoder)
{
    ScalerPtr scaler(sws_getContext(
        encoder.width, encoder.height, AV_PIX_FMT_BGRA, encoder.width, encoder.height, encoder.pix_fmt,
        SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INP, nullptr, nullptr, nullptr));
    if (!scaler)
        throw std::bad_alloc();
    constexpr int kUnity = 1 << 16;
    const int *matrix = sws_getCoefficients(encoder.colorspace);
    sws_setColorspaceDetails(scaler.get(), matrix, 1, matrix, 0, 0, kUnity, kUnity);
    return scaler;
}

void RequireSense(const EncoderOutput &output, const EncoderOptions &options)
{
    constexpr int kMostChannels = 64;
    const bool hasFractions = options.frameRate.numerator > 0 && options.frameRate.denominator > 0 &&
                              options.pixelAspect.numerator > 0 && options.pixelAspect.denominator > 0;
    if (options.width <= 0 || options.height <= 0)
        output.Fail("a picture has a width and a height above 0");
    if (std::max(options.width, options.height) > Encoder::kLongestSide)
        output.Fail("no side of a picture is longer than " + std::to_string(Encoder::kLongestSide));
    if (!hasFractions)
        output.Fail("a frame rate and a pixel aspect ratio are above 0");
    if (options.bitRate < 0 || options.quantiser < 1 || options.quantiser > 31)
        output.Fail("a quantiser is from 1 to 31 and a bit rate not below 0");
    if (options.sampleRate < 0 || options.channels < 1 || options.channels > kMostChannels)
        output.Fail("sound has a sample rate above 0 and at least one channel");
}

} // namespace

struct Encoder::State {
    EncoderOutput output;
    Track video;
    Track audio;
    ScalerPtr converter;
    int channels;

    State(const std::string &path, const EncoderOptions &options) : output(path), channels(options.channels)
    {
        if (!video.frame || !audio.frame)
            throw std::bad_alloc();
        RequireSense(output, options);
        video.encoder = OpenVideo(output, options);
        video.stream = output.AddStream(*video.encoder);
        converter = OpenConverter(*video.encoder);
        if (options.sampleRate > 0) {
            audio.encoder = OpenAudio(output, options);
            audio.stream = output.AddStream(*audio.encoder);
        }
        output.WriteHeader();
    }
};

Encoder::Encoder(const std::string &path, const EncoderOptions &options)
{
    // The library reports to the terminal what the exceptions say anyway.
    av_log_set_level(AV_LOG_QUIET);
    state_ = std::make_unique<State>(path, options);
}

Encoder::~Encoder() = default;

void Encoder::AddFrame(const unsigned char *bgra, int rowBytes)
{
    const AVCodecContext &encoder = *state_->video.encoder;
    AVFrame &frame = *state_->video.frame;
    // An encoder keeps the frames that it still needs, so each comes in memory of its own.
    av_frame_unref(&frame);
    frame.width = encoder.width;
    frame.height = encoder.height;
    frame.format = encoder.pix_fmt;
    frame.quality = encoder.global_quality;
    frame.interlaced_frame = (encoder.flags & AV_CODEC_FLAG_INTERLACED_DCT) != 0;
    frame.top_field_first = encoder.field_order == AV_FIELD_TT;
    frame.pts = state_->video.position++;
    state_->output.Check(av_frame_get_buffer(&frame, 0));
    sws_scale(state_->converter.get(), &bgra, &rowBytes, 0, encoder.height, frame.data, frame.linesize);
    state_->output.Encode(*state_->video.encoder, *state_->video.stream, &frame);
}

void Encoder::AddSamples(const std::int16_t *samples, int count)
{
    Track &audio = state_->audio;
    if (!audio.encoder)
        state_->output.Fail("the file was begun without sound");
    const std::size_t channels = static_cast<std::size_t>(state_->channels);
    while (count > 0) {
        const int part = std::min(count, kMostSamplesAtOnce);
        AVFrame &frame = *audio.frame;
        av_frame_unref(&frame);
        frame.nb_samples = part;
        frame.format = audio.encoder->sample_fmt;
        frame.sample_rate = audio.encoder->sample_rate;
        state_->output.Check(av_channel_layout_copy(&frame.ch_layout, &audio.encoder->ch_layout));
        state_->output.Check(av_frame_get_buffer(&frame, 0));
        std::memcpy(frame.data[0], samples, static_cast<std::size_t>(part) * channels * sizeof *samples);
        frame.pts = audio.position;
        state_->output.Encode(*audio.encoder, *audio.stream, &frame);
        audio.position += part;
        samples += static_cast<std::size_t>(part) * channels;
        count -= part;
    }
}

void Encoder::Finish()
{
    for (Track *track : {&state_->video, &state_->audio})
        if (track->encoder)
            state_->output.Encode(*track->encoder, *track->stream, nullptr);
    state_->output.Finish();
}

} // namespace marlet::tool
