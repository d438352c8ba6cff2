#include "EncoderOutput.h"

#include "output/Failure.h"

#include <marlet/foundation/KyID.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <new>
#include <system_error>

#include <unistd.h>

namespace marlet::tool
{

namespace
{

namespace fs = std::filesystem;

std::string Words(int error)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(error, text, sizeof text);
    return text;
}

std::string TemporaryPathFor(const std::string &path)
{
    const std::string name = ".marlet-" + kytl::KyID::Generate().ToNarrowString() + ".tmp";
    return (fs::path(path).parent_path() / name).string();
}

} // namespace

EncoderOutput::EncoderOutput(const std::string &path)
    : path_(path), temporaryPath_(TemporaryPathFor(path)), packet_(av_packet_alloc())
{
    if (!packet_)
        throw std::bad_alloc();
    const AVOutputFormat *container = av_guess_format(nullptr, path.c_str(), nullptr);
    if (!container || container->flags & AVFMT_NOFILE)
        Fail("the name has no ending of a video file");
    AVFormatContext *format = nullptr;
    Check(avformat_alloc_output_context2(&format, container, nullptr, nullptr));
    format_.reset(format);
}

EncoderOutput::~EncoderOutput()
{
    if (!format_ || !format_->pb)
        return;
    avio_closep(&format_->pb);
    ::unlink(temporaryPath_.c_str());
}

void EncoderOutput::Check(int result) const
{
    if (result < 0)
        Fail(Words(result));
}

void EncoderOutput::Fail(const std::string &message) const
{
    throw Failure(path_, message);
}

bool EncoderOutput::Holds(AVCodecID codec) const
{
    return avformat_query_codec(format_->oformat, codec, FF_COMPLIANCE_NORMAL) == 1;
}

CodecPtr EncoderOutput::NewEncoder(AVCodecID codec) const
{
    const AVCodec *encoder = avcodec_find_encoder(codec);
    if (!encoder || !Holds(codec))
        Fail(std::string("this kind of file cannot hold ") + avcodec_get_name(codec));
    CodecPtr context(avcodec_alloc_context3(encoder));
    if (!context)
        throw std::bad_alloc();
    if (format_->oformat->flags & AVFMT_GLOBALHEADER)
        context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    return context;
}

AVStream *EncoderOutput::AddStream(const AVCodecContext &encoder)
{
    AVStream *stream = avformat_new_stream(format_.get(), nullptr);
    if (!stream)
        throw std::bad_alloc();
    stream->time_base = encoder.time_base;
    Check(avcodec_parameters_from_context(stream->codecpar, &encoder));
    if (encoder.codec_type == AVMEDIA_TYPE_VIDEO) {
        stream->avg_frame_rate = encoder.framerate;
        stream->sample_aspect_ratio = encoder.sample_aspect_ratio;
    }
    return stream;
}

void EncoderOutput::WriteHeader()
{
    // The prefix keeps a name with a colon from being taken for a protocol.
    Check(avio_open(&format_->pb, ("file:" + temporaryPath_).c_str(), AVIO_FLAG_WRITE));
    Check(avformat_write_header(format_.get(), nullptr));
}

void EncoderOutput::Encode(AVCodecContext &encoder, const AVStream &stream, const AVFrame *frame)
{
    Check(avcodec_send_frame(&encoder, frame));
    for (;;) {
        const int result = avcodec_receive_packet(&encoder, packet_.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
            return;
        Check(result);
        // Each frame lasts as long as the others, but an encoder that reorders them does not say so.
        if (encoder.codec_type == AVMEDIA_TYPE_VIDEO && packet_->duration == 0)
            packet_->duration = 1;
        av_packet_rescale_ts(packet_.get(), encoder.time_base, stream.time_base);
        packet_->stream_index = stream.index;
        Check(av_interleaved_write_frame(format_.get(), packet_.get()));
    }
}

void EncoderOutput::Finish()
{
    Check(av_write_trailer(format_.get()));
    const int result = avio_closep(&format_->pb);
    std::error_code error;
    if (result >= 0)
        fs::rename(temporaryPath_, path_, error);
    if (result < 0 || error)
        ::unlink(temporaryPath_.c_str());
    Check(result);
    if (error)
        Fail(error.message());
}

} // namespace marlet::tool
